#include "heap.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

constexpr std::size_t kEvents = 15;  // a text so short takes no block of its own

struct {
  bool isOn = false;
  int blocksUntilFailure = 0;  // 0: none fails
  bool failed = false;
  int blocks = 0;
  char events[kEvents] = {};
  std::size_t eventCount = 0;
} watch;

void note(char event, int blocks) {
  if (!watch.isOn) return;
  watch.blocks += blocks;
  if (watch.eventCount < kEvents) watch.events[watch.eventCount++] = event;
}

void* blockOrNull(std::size_t bytes, std::size_t alignment) noexcept {
  if (watch.isOn && watch.blocksUntilFailure > 0 && --watch.blocksUntilFailure == 0) {
    watch.failed = true;
    return nullptr;
  }
  bytes = std::max<std::size_t>(bytes, 1);
  void* block = nullptr;
  if (alignment <= alignof(std::max_align_t)) {
    block = std::malloc(bytes);
  } else if (posix_memalign(&block, alignment, bytes) != 0) {
    block = nullptr;
  }
  if (block != nullptr) note('+', 1);
  return block;
}

void* blockOf(std::size_t bytes, std::align_val_t alignment = std::align_val_t{1}) {
  void* block = blockOrNull(bytes, static_cast<std::size_t>(alignment));
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void giveBack(void* block) noexcept {
  if (block != nullptr) note('-', -1);
  std::free(block);
}

}  // namespace

void* operator new(std::size_t bytes) { return blockOf(bytes); }
void* operator new[](std::size_t bytes) { return blockOf(bytes); }
void* operator new(std::size_t bytes, std::align_val_t alignment) {
  return blockOf(bytes, alignment);
}
void* operator new[](std::size_t bytes, std::align_val_t alignment) {
  return blockOf(bytes, alignment);
}
void* operator new(std::size_t bytes, const std::nothrow_t& /*unused*/) noexcept {
  return blockOrNull(bytes, 1);
}
void* operator new[](std::size_t bytes, const std::nothrow_t& /*unused*/) noexcept {
  return blockOrNull(bytes, 1);
}

void operator delete(void* block) noexcept { giveBack(block); }
void operator delete[](void* block) noexcept { giveBack(block); }
void operator delete(void* block, std::size_t /*bytes*/) noexcept { giveBack(block); }
void operator delete[](void* block, std::size_t /*bytes*/) noexcept { giveBack(block); }
void operator delete(void* block, std::align_val_t /*alignment*/) noexcept { giveBack(block); }
void operator delete[](void* block, std::align_val_t /*alignment*/) noexcept { giveBack(block); }
void operator delete(void* block, std::size_t /*bytes*/, std::align_val_t /*alignment*/) noexcept {
  giveBack(block);
}
void operator delete[](void* block, std::size_t /*bytes*/,
                       std::align_val_t /*alignment*/) noexcept {
  giveBack(block);
}
void operator delete(void* block, const std::nothrow_t& /*unused*/) noexcept { giveBack(block); }
void operator delete[](void* block, const std::nothrow_t& /*unused*/) noexcept { giveBack(block); }

HeapWatch::HeapWatch(int failing) {
  watch = {};
  watch.blocksUntilFailure = failing;
  watch.isOn = true;
}

HeapWatch::~HeapWatch() { watch.isOn = false; }

std::string HeapWatch::events() const { return std::string(watch.events, watch.eventCount); }

int HeapWatch::blocksLeft() const { return watch.blocks; }

bool HeapWatch::hasFailed() const { return watch.failed; }
