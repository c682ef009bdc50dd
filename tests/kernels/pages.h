// Pages for the tests of the kernels: each of the kinds that tell a fast kernel from a plain one.
#ifndef TARVO_TESTS_KERNELS_PAGES_H_
#define TARVO_TESTS_KERNELS_PAGES_H_

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "reference/gray.h"

struct NamedPage {
  std::string name;
  reference::Gray pixels;
};

inline reference::Gray drawn(int width, int height, auto level) {
  reference::Gray page(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) page.at(x, y) = static_cast<std::uint8_t>(level(x, y));
  }
  return page;
}

/// Alternating extremes, levels on both sides of a threshold, levels whose errors saturate their
/// neighbours, a ramp and noise.
inline std::vector<NamedPage> pagesOf(int width, int height) {
  std::minstd_rand random(static_cast<unsigned>(width * 1000 + height));
  return {
      {"noise", drawn(width, height, [&](int, int) { return random() >> 8; })},
      {"columns of extremes", drawn(width, height, [](int x, int) { return x % 2 * 255; })},
      {"checks of extremes", drawn(width, height, [](int x, int y) { return (x + y) % 2 * 255; })},
      {"levels about the threshold",
       drawn(width, height, [&](int, int) { return 126 + random() % 5; })},
      {"saturating",
       drawn(width, height,
             [&](int x, int y) { return (x + 2 * y) % 3 ? 254 + random() % 2 : 128; })},
      {"ramp", drawn(width, height, [](int x, int y) { return x * 3 + y; })},
  };
}

/// Elements that begin `shift` elements after where memory does, and end where it ends.
template <typename T>
class ShiftedRow {
 public:
  ShiftedRow(const std::vector<T>& row, std::size_t shift) : memory_(shift), shift_(shift) {
    memory_.insert(memory_.end(), row.begin(), row.end());
    memory_.shrink_to_fit();
  }

  const T* data() const { return memory_.data() + shift_; }

 private:
  std::vector<T> memory_;
  std::size_t shift_;
};

template <typename T>
ShiftedRow(const std::vector<T>&, std::size_t) -> ShiftedRow<T>;

/// The result, `shift` elements after where a vector may want it to begin, and something around it
/// that a kernel must leave alone.
template <typename T, int pattern>
class GuardedRow {
 public:
  explicit GuardedRow(std::size_t size, std::size_t shift = 0)
      : memory_(size + 2 * kGuard + shift, kPattern), begin_(kGuard + shift), size_(size) {}

  T* data() { return memory_.data() + begin_; }
  std::vector<T> content() const {
    const auto begin = memory_.begin() + static_cast<std::ptrdiff_t>(begin_);
    return {begin, begin + static_cast<std::ptrdiff_t>(size_)};
  }
  bool guardsAreWhole() const {
    for (std::size_t i = 0; i < memory_.size(); ++i) {
      if ((i < begin_ || i >= begin_ + size_) && memory_[i] != kPattern) return false;
    }
    return true;
  }

  static constexpr T kPattern{pattern};

 private:
  static constexpr std::size_t kGuard = 64;
  std::vector<T> memory_;
  std::size_t begin_;
  std::size_t size_;
};

using GuardedBytes = GuardedRow<std::uint8_t, 0xA5>;
using GuardedFloats = GuardedRow<float, -12345>;

#endif  // TARVO_TESTS_KERNELS_PAGES_H_
