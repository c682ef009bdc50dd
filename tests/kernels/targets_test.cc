// That the vector kernels are really there and really chosen.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "every_target.h"
#include "kernels/target.h"

namespace {

TEST(KernelTargets, BestOneOfThisMachineIsChosen) {
  EXPECT_EQ(hwy::TargetName(kernels::chosenTarget()), hwy::TargetName(everyTarget().front()));
}

#ifndef HWY_COMPILE_ONLY_EMU128
TEST(KernelTargets, VectorsAreUsed) {
  EXPECT_NE(kernels::chosenTarget(), HWY_EMU128) << "this build or machine has no vector target";
}
#endif

#if HWY_ARCH_X86

/// What the kernel of the operating system says that the processor has.
std::set<std::string> processorFlags() {
  std::ifstream file("/proc/cpuinfo");
  for (std::string line; std::getline(file, line);) {
    if (!line.starts_with("flags")) continue;
    std::istringstream words(line.substr(line.find(':') + 1));
    std::set<std::string> flags;
    for (std::string word; words >> word;) flags.insert(word);
    return flags;
  }
  return {};
}

// Each target needs what the one before it does, and what its own code is compiled for.
TEST(KernelTargets, AreThoseThatTheProcessorHas) {
  const std::set<std::string> flags = processorFlags();
  if (flags.empty()) GTEST_SKIP() << "/proc/cpuinfo does not tell what the processor has";
  // A processor that is emulated is another one than the system's.
  if (std::getenv("TARVO_OTHER_PROCESSOR") != nullptr) GTEST_SKIP() << "on an emulated processor";
  const struct {
    std::int64_t target;
    std::vector<std::string> flags;
  } kTargets[] = {
      {HWY_SSSE3, {"sse2", "ssse3"}},
      {HWY_SSE4, {"sse4_1", "sse4_2", "pclmulqdq", "aes"}},
      {HWY_AVX2, {"avx", "avx2", "bmi1", "bmi2", "fma", "f16c", "abm"}},
      {HWY_AVX3, {"avx512f", "avx512cd", "avx512vl", "avx512dq", "avx512bw"}},
  };
  bool all = true;
  for (const auto& [target, needed] : kTargets) {
    for (const std::string& flag : needed) all = all && flags.contains(flag);
    EXPECT_EQ((hwy::SupportedTargets() & target) != 0, all) << hwy::TargetName(target);
  }
}

#endif

}  // namespace
