#include "failing_allocation.h"

#include <sys/mman.h>

#include <cerrno>

namespace {

constexpr std::size_t kLargeBytes = 65536;

int callsUntilFailure = 0;  // 0: none fails
std::size_t failedBytes = 0;

bool fails(std::size_t bytes) {
  if (callsUntilFailure == 0 || bytes < kLargeBytes || --callsUntilFailure > 0) return false;
  failedBytes = bytes;
  return true;
}

}  // namespace

extern "C" void* __real_calloc(std::size_t count, std::size_t size);
extern "C" void* __wrap_calloc(std::size_t count, std::size_t size);
extern "C" void* __real_mmap(void* at, std::size_t size, int access, int flags, int file,
                             off_t from);
extern "C" void* __wrap_mmap(void* at, std::size_t size, int access, int flags, int file,
                             off_t from);

void* __wrap_calloc(std::size_t count, std::size_t size) {
  return fails(count * size) ? nullptr : __real_calloc(count, size);
}

void* __wrap_mmap(void* at, std::size_t size, int access, int flags, int file, off_t from) {
  if (fails(size)) {
    errno = ENOMEM;
    return MAP_FAILED;
  }
  return __real_mmap(at, size, access, flags, file, from);
}

FailingAllocation::FailingAllocation(int nth) {
  callsUntilFailure = nth;
  failedBytes = 0;
}

FailingAllocation::~FailingAllocation() { callsUntilFailure = 0; }

std::size_t FailingAllocation::bytes() const { return failedBytes; }
