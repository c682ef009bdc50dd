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

/// The result and something around it that a kernel must leave alone.
class GuardedBytes {
 public:
  explicit GuardedBytes(std::size_t size) : bytes_(size + 2 * kGuard, kPattern), size_(size) {}

  std::uint8_t* data() { return bytes_.data() + kGuard; }
  std::vector<std::uint8_t> content() const {
    return {bytes_.begin() + kGuard, bytes_.begin() + kGuard + static_cast<std::ptrdiff_t>(size_)};
  }
  bool guardsAreWhole() const {
    for (std::size_t i = 0; i < kGuard; ++i) {
      if (bytes_[i] != kPattern || bytes_[kGuard + size_ + i] != kPattern) return false;
    }
    return true;
  }

  static constexpr std::uint8_t kPattern = 0xA5;

 private:
  static constexpr std::size_t kGuard = 64;
  std::vector<std::uint8_t> bytes_;
  std::size_t size_;
};

#endif  // TARVO_TESTS_KERNELS_PAGES_H_
