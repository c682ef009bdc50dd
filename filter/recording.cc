#include "filter/recording.h"

#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <utility>

#include "common/log.h"

namespace {

/// More jobs than a print server runs at once.
constexpr int kMostNames = 10000;

void logUnwritable(const std::string& name) {
  tarvoLogCommon(3, "Unable to create the output file: %s", name.c_str());
}

/// The `number`-th name, from 1, that is tried. One that was cut, as it was too long, may lack its
/// ending.
std::string numbered(std::string_view name, int number) {
  constexpr std::string_view kEnding = ".bin";
  if (number == 1) return std::string(name);
  const bool whole = name.ends_with(kEnding);
  if (whole) name.remove_suffix(kEnding.size());
  return std::string(name) + "-" + std::to_string(number) + (whole ? std::string(kEnding) : "");
}

}  // namespace

void Recording::attach(TarvoPrinter& printer, const char* name) {
  if (name[0] == '\0') return;
  for (int number = 1; number <= kMostNames; ++number) {
    name_ = numbered(name, number);
    file_ = tarvoOpenUnsharedFile(name_.c_str());
    if (file_ != nullptr || errno != EWOULDBLOCK) break;
  }
  if (file_ == nullptr) {
    logUnwritable(name);
    return;
  }
  tarvoLogCommon(0, "Filter data output to: %s", name_.c_str());
  printer.getOutputStreams().push_back(file_.get());
}

Recording::~Recording() {
  if (file_ == nullptr || tarvoCloseWhole(std::move(file_))) return;
  unlink(name_.c_str());
  logUnwritable(name_);
}
