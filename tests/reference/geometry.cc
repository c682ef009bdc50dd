#include "reference/geometry.h"

#include <algorithm>

namespace reference {

Image8 rotate180(const Image8& image) {
  Image8 result = blankImage(image.width, image.height, image.palette);
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      result.at(image.width - x - 1, image.height - y - 1) = image.at(x, y);
    }
  }
  return result;
}

Image8 mirror(const Image8& image) {
  Image8 result = blankImage(image.width, image.height, image.palette);
  const int last = image.width - 1;
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x <= last; ++x) result.at(x, y) = image.at(last - x, y);
  }
  return result;
}

std::optional<Image8> expand(const Image8& image, int left, int top, int right, int bottom,
                             const Colour& colour) {
  if (left < 0 || top < 0 || right < 0 || bottom < 0) return std::nullopt;
  const int width = image.width + left + right;
  const int height = image.height + top + bottom;
  if (!imageCanExist(width, height)) return std::nullopt;

  Image8 result = blankImage(width, height, image.palette);
  std::ranges::fill(result.bytes, nearestEntry(image.palette, colour));
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) result.at(x + left, y + bottom) = image.at(x, y);
  }
  return result;
}

}  // namespace reference
