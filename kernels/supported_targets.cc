// Which vector instructions this processor has: the two functions of Highway's library that its
// headers call.
//
// The library itself is not linked. Debian's measures a timer while it is being loaded, which takes
// longer than all the rest of the filter's start, and ends the process where memory is short.
#include <hwy/targets.h>

#include <cstdint>

#if HWY_ARCH_X86
#include <cpuid.h>
#elif HWY_ARCH_ARM_V7
#include <asm/hwcap.h>
#include <sys/auxv.h>
#endif

namespace {

#if HWY_ARCH_X86

/// Two of AVX2's companions that Clang's query did not know by name until lately.
bool hasHalfFloatsAndLeadingZeros() {
  unsigned a = 0, b = 0, c = 0, d = 0;
  const bool halfFloats = __get_cpuid(1, &a, &b, &c, &d) != 0 && (c & bit_F16C) != 0;
  return halfFloats && __get_cpuid(0x80000001, &a, &b, &c, &d) != 0 && (c & bit_LZCNT) != 0;
}

/// The targets from the least to the best, each with all that Highway has its code compiled for.
/// The compiler's queries see to it that the system keeps the registers, too.
std::int64_t vectorTargets() {
  __builtin_cpu_init();
  if (!(__builtin_cpu_supports("sse2") && __builtin_cpu_supports("ssse3"))) return 0;
  std::int64_t targets = HWY_SSSE3;
  if (!(__builtin_cpu_supports("sse4.1") && __builtin_cpu_supports("sse4.2") &&
        __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("aes"))) {
    return targets;
  }
  targets |= HWY_SSE4;
  if (!(__builtin_cpu_supports("avx") && __builtin_cpu_supports("avx2") &&
        __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2") &&
        __builtin_cpu_supports("fma") && hasHalfFloatsAndLeadingZeros())) {
    return targets;
  }
  targets |= HWY_AVX2;
  if (!(__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512cd") &&
        __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512dq") &&
        __builtin_cpu_supports("avx512bw"))) {
    return targets;
  }
  return targets | HWY_AVX3;
}

#elif HWY_ARCH_ARM_V7

std::int64_t vectorTargets() {
  constexpr unsigned long kNeeded = HWCAP_NEON | HWCAP_VFPv4;
  return (getauxval(AT_HWCAP) & kNeeded) == kNeeded ? HWY_NEON : 0;
}

#else

/// Elsewhere the compiler's own baseline is all that is built.
std::int64_t vectorTargets() { return 0; }

#endif

constinit hwy::ChosenTarget chosenForProcess;

}  // namespace

namespace hwy {

std::int64_t SupportedTargets() {
  static const std::int64_t targets = vectorTargets() | HWY_STATIC_TARGET;
  return targets;
}

ChosenTarget& GetChosenTarget() { return chosenForProcess; }

}  // namespace hwy
