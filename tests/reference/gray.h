#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace reference {

/// A gray image whose rows follow each other with no gap: pixel (x, y) is px[y * width + x].
/// REQUIRES (everywhere): px holds width * height bytes.
struct Gray {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> px;

  Gray() = default;

  /// An image with every pixel at `level`.
  Gray(int image_width, int image_height, std::uint8_t level = 0)
      : width(image_width), height(image_height), px(count(image_width, image_height), level) {}

  /// An image of the given pixels, row after row.
  Gray(int image_width, int image_height, std::vector<std::uint8_t> pixels)
      : width(image_width), height(image_height), px(std::move(pixels)) {}

  std::size_t index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
           static_cast<std::size_t>(x);
  }
  std::uint8_t at(int x, int y) const { return px[index(x, y)]; }
  std::uint8_t& at(int x, int y) { return px[index(x, y)]; }

  bool operator==(const Gray&) const = default;

 private:
  static std::size_t count(int w, int h) {
    return static_cast<std::size_t>(w) * static_cast<std::size_t>(h);
  }
};

}  // namespace reference
