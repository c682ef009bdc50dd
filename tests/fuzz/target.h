// The function that a fuzzer calls with every input it makes up.
#ifndef TARVO_TESTS_FUZZ_TARGET_H_
#define TARVO_TESTS_FUZZ_TARGET_H_

#include <cstddef>
#include <cstdint>

/// Runs one case. Returns 0, or -1 for an input that is not worth keeping.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

#endif  // TARVO_TESTS_FUZZ_TARGET_H_
