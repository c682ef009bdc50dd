// A file descriptor that is closed when its owner goes.
#ifndef TARVO_FILES_DESCRIPTOR_H_
#define TARVO_FILES_DESCRIPTOR_H_

#include <unistd.h>

#include <utility>

namespace files {

class Descriptor {
 public:
  Descriptor() = default;
  /// Takes `number` over; a negative one is none.
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }

  explicit operator bool() const { return number_ >= 0; }
  int number() const { return number_; }

 private:
  int number_ = -1;
};

}  // namespace files

#endif  // TARVO_FILES_DESCRIPTOR_H_
