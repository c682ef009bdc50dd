// Makes one large block fail to be had. The linker leads calls of calloc and mmap here (--wrap).
#ifndef TARVO_TESTS_PRINTER_FAILING_ALLOCATION_H_
#define TARVO_TESTS_PRINTER_FAILING_ALLOCATION_H_

#include <cstddef>

/// While it lives, the `nth` call of calloc or mmap for 64 KiB or more, counted from 1, fails.
class FailingAllocation {
 public:
  explicit FailingAllocation(int nth);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  /// How large the one that failed was to be; 0 when none did.
  std::size_t bytes() const;
};

#endif  // TARVO_TESTS_PRINTER_FAILING_ALLOCATION_H_
