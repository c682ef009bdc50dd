// How a target says that something is wrong.
#ifndef TARVO_TESTS_FUZZ_FINDING_H_
#define TARVO_TESTS_FUZZ_FINDING_H_

#include <string_view>

namespace fuzz {

/// Says what is wrong, on standard error as the process was given it, and ends the process as a
/// crash, which the fuzzer keeps the input of.
[[noreturn]] void finding(std::string_view what);

/// The same unless `good`.
inline void require(bool good, std::string_view what) {
  if (!good) finding(what);
}

/// An input that takes more than a second of the processor's time is a finding: make one of these
/// first. Unlike the fuzzer's own watch it does not go on while others have the processor.
class Watch {
 public:
  Watch();
  ~Watch();
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

 private:
  double start_;
};

}  // namespace fuzz

#endif  // TARVO_TESTS_FUZZ_FINDING_H_
