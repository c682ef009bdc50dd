#include "fuzz/finding.h"

#include <time.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace fuzz {

namespace {

double processorSeconds() {
  timespec used{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
  return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) * 1e-9;
}

}  // namespace

Watch::Watch() : start_(processorSeconds()) {}

Watch::~Watch() { require(processorSeconds() - start_ < 1.0, "takes more than a second"); }

void finding(std::string_view what) {
  const std::string line = "finding: " + std::string(what) + "\n";
  if (::write(STDERR_FILENO, line.data(), line.size()) < 0) std::abort();
  std::abort();
}

}  // namespace fuzz

/// The address sanitizer's defaults, should it be there: a page whose header claims more than this
/// gets no memory, as on a machine that has none left. Setting up more would take it most of the
/// time that an input has.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
  return "allocator_may_return_null=1:max_allocation_size_mb=256";
}
