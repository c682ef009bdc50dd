// Catches what code under test writes to a stream or to standard error.
#ifndef TARVO_TESTS_SUPPORT_CAPTURE_H_
#define TARVO_TESTS_SUPPORT_CAPTURE_H_

#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>

#include <new>
#include <string>

namespace support {

/// A stream that keeps in memory what is written to it.
class MemoryStream {
 public:
  MemoryStream() : stream_(::open_memstream(&bytes_, &size_)) {
    if (stream_ == nullptr) throw std::bad_alloc();
  }
  ~MemoryStream() {
    ::fclose(stream_);
    ::free(bytes_);
  }
  MemoryStream(const MemoryStream&) = delete;
  MemoryStream& operator=(const MemoryStream&) = delete;

  FILE* get() const { return stream_; }

  std::string bytes() const {
    ::fflush(stream_);
    return std::string(bytes_, size_);
  }

 private:
  char* bytes_ = nullptr;
  size_t size_ = 0;
  FILE* stream_;
};

/// What `function` writes to standard error.
template <typename Function>
std::string standardErrorOf(Function function) {
  testing::internal::CaptureStderr();
  function();
  return testing::internal::GetCapturedStderr();
}

}  // namespace support

#endif  // TARVO_TESTS_SUPPORT_CAPTURE_H_
