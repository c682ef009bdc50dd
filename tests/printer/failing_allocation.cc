#include "failing_allocation.h"

#include <sys/mman.h>

#include <cstddef>

namespace {

constexpr std::size_t kLargeBytes = 65536;

int callsUntilFailure = 0;  // 0: none fails

}  // namespace

extern "C" void* __real_calloc(std::size_t count, std::size_t size);
extern "C" void* __wrap_calloc(std::size_t count, std::size_t size);
extern "C" void* __real_mmap(void* at, std::size_t size, int protection, int flags, int file,
                             off_t offset);
extern "C" void* __wrap_mmap(void* at, std::size_t size, int protection, int flags, int file,
                             off_t offset);

void* __wrap_mmap(void* at, std::size_t size, int protection, int flags, int file, off_t offset) {
  if (callsUntilFailure > 0 && size >= kLargeBytes && --callsUntilFailure == 0) return MAP_FAILED;
  return __real_mmap(at, size, protection, flags, file, offset);
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
  if (callsUntilFailure > 0 && count * size >= kLargeBytes && --callsUntilFailure == 0) {
    return nullptr;
  }
  return __real_calloc(count, size);
}

FailingAllocation::FailingAllocation(int nth) { callsUntilFailure = nth; }

FailingAllocation::~FailingAllocation() { callsUntilFailure = 0; }
