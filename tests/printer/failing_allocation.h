// Makes one large block fail to be had. The linker leads calls of calloc and mmap here (--wrap).
#ifndef TARVO_TESTS_PRINTER_FAILING_ALLOCATION_H_
#define TARVO_TESTS_PRINTER_FAILING_ALLOCATION_H_

/// While it lives, the `nth` call of calloc or mmap for 64 KiB or more, counted from 1, fails.
class FailingAllocation {
 public:
  explicit FailingAllocation(int nth);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
};

#endif  // TARVO_TESTS_PRINTER_FAILING_ALLOCATION_H_
