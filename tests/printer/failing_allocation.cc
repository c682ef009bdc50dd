#include "failing_allocation.h"

#include <cstddef>

namespace {

constexpr std::size_t kLargeBytes = 65536;

int callsUntilFailure = 0;  // 0: none fails

}  // namespace

extern "C" void* __real_calloc(std::size_t count, std::size_t size);
extern "C" void* __wrap_calloc(std::size_t count, std::size_t size);

void* __wrap_calloc(std::size_t count, std::size_t size) {
  if (callsUntilFailure > 0 && count * size >= kLargeBytes && --callsUntilFailure == 0) {
    return nullptr;
  }
  return __real_calloc(count, size);
}

FailingAllocation::FailingAllocation(int nth) { callsUntilFailure = nth; }

FailingAllocation::~FailingAllocation() { callsUntilFailure = 0; }
