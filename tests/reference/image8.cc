#include "reference/image8.h"

#include <algorithm>

namespace reference {

void Image8::setIfInside(std::int64_t x, std::int64_t y, std::uint8_t value) {
  if (x < 0 || x >= width || y < 0 || y >= height) return;
  at(static_cast<int>(x), static_cast<int>(y)) = value;
}

Palette grayPalette() {
  Palette palette{};
  for (std::size_t i = 0; i < palette.size(); ++i) {
    const auto level = static_cast<std::uint8_t>(i);
    palette[i] = {level, level, level, 0};
  }
  return palette;
}

Palette twoLevelPalette() {
  Palette palette{};
  palette[1] = {255, 255, 255, 0};
  return palette;
}

Image8 blankImage(int width, int height, const Palette& palette) {
  Image8 image{width, height, {}, palette};
  image.bytes.assign(static_cast<std::size_t>(image.rowBytes()) * static_cast<std::size_t>(height),
                     0);
  return image;
}

bool imageCanExist(int width, int height) {
  if (width <= 0 || height <= 0) return false;
  const std::uint32_t pixels =
      static_cast<std::uint32_t>(width) * static_cast<std::uint32_t>(height);
  const std::uint32_t bits = pixels * 8;
  return bits / 8 == pixels;
}

std::optional<Image8> imageFromLines(const std::vector<std::uint8_t>& data, int width, int height,
                                     int bytes_per_line) {
  if (!imageCanExist(width, height)) return std::nullopt;
  Image8 image = blankImage(width, height, grayPalette());
  const int copied = std::min(image.rowBytes(), bytes_per_line);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < copied; ++x) {
      const std::size_t line =
          static_cast<std::size_t>(y) * static_cast<std::size_t>(bytes_per_line);
      image.at(x, y) = data[line + static_cast<std::size_t>(x)];
    }
  }
  return image;
}

Gray pixelsOf(const Image8& image) {
  Gray pixels(image.width, image.height);
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) pixels.at(x, y) = image.at(x, y);
  }
  return pixels;
}

std::uint8_t nearestEntry(const Palette& palette, const Colour& colour) {
  int best_distance = 200000;
  std::size_t best = 0;
  for (std::size_t j = 0; j < palette.size(); ++j) {
    const int blue = palette[j].blue - colour.blue;
    const int green = palette[j].green - colour.green;
    const int red = palette[j].red - colour.red;
    const int distance = blue * blue + green * green + red * red;
    if (distance < best_distance) {
      best_distance = distance;
      best = j;
    }
  }
  return static_cast<std::uint8_t>(best);
}

}  // namespace reference
