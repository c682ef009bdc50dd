#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "reference/gray.h"

namespace reference {

struct Colour {
  std::uint8_t blue = 0;
  std::uint8_t green = 0;
  std::uint8_t red = 0;
  std::uint8_t reserved = 0;

  bool operator==(const Colour&) const = default;
};

using Palette = std::array<Colour, 256>;

/// A page image of one byte (a palette index) for each pixel, as it lies in memory: row y begins at
/// bytes[y * rowBytes()], and rows are padded to a multiple of four bytes. What lies in the padding
/// matters: the printed rows run into it when the width is not a multiple of four.
struct Image8 {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> bytes;
  Palette palette{};

  int rowBytes() const { return (width + 3) / 4 * 4; }
  std::size_t index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(rowBytes()) +
           static_cast<std::size_t>(x);
  }
  std::uint8_t at(int x, int y) const { return bytes[index(x, y)]; }
  std::uint8_t& at(int x, int y) { return bytes[index(x, y)]; }

  /// Stores `value` at (x, y); a position outside the image is ignored.
  void setIfInside(std::int64_t x, std::int64_t y, std::uint8_t value);

  bool operator==(const Image8&) const = default;
};

/// Entry i is the gray level i.
Palette grayPalette();

/// Entry 0 black, entry 1 white, the rest zero.
Palette twoLevelPalette();

/// An image with all bytes, padding included, zero. REQUIRES: width and height above 0.
Image8 blankImage(int width, int height, const Palette& palette);

/// True when an image of this size can exist: both sides above 0, and 8 * width * height within 32
/// bits.
bool imageCanExist(int width, int height);

/// The image of `height` rows of `data`, `bytes_per_line` bytes apart, with the gray palette. As
/// many bytes of each line are copied as fit a padded row, so bytes beyond the width reach the
/// padding. Nothing when the image cannot exist.
std::optional<Image8> imageFromLines(const std::vector<std::uint8_t>& data, int width, int height,
                                     int bytes_per_line);

/// The image's pixels without the padding.
Gray pixelsOf(const Image8& image);

/// The palette entry nearest to `colour` in squared distance, the lowest of equals.
std::uint8_t nearestEntry(const Palette& palette, const Colour& colour);

}  // namespace reference
