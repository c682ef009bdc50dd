// What the whole test program needs for MemoryIsShort to work.
#include <malloc.h>

// Under the address sanitizer, too, a failed allocation is left to the code under test.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1"; }

namespace {

// Blocks from 1 MiB are always asked of the system, never taken from what earlier tests freed.
[[maybe_unused]] const int kThresholdIsSet = mallopt(M_MMAP_THRESHOLD, 1 << 20);

}  // namespace
