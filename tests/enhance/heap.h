// Watches the blocks of operator new and operator delete, which the test program has of its own.
#ifndef TARVO_TESTS_ENHANCE_HEAP_H_
#define TARVO_TESTS_ENHANCE_HEAP_H_

#include <string>

/// What happens to the heap while it lives. One at a time.
class HeapWatch {
 public:
  /// The `failing`th block that is asked for, counted from 1, can't be had; 0: all can.
  explicit HeapWatch(int failing = 0);
  ~HeapWatch();
  HeapWatch(const HeapWatch&) = delete;
  HeapWatch& operator=(const HeapWatch&) = delete;

  /// '+' for a block that was had, '-' for one that was given back, in order; the first fifteen.
  std::string events() const;

  /// Blocks had less blocks given back.
  int blocksLeft() const;

  /// Whether the one that was to fail was asked for.
  bool hasFailed() const;
};

#endif  // TARVO_TESTS_ENHANCE_HEAP_H_
