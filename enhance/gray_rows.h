// A gray page in memory that someone else owns.
#ifndef TARVO_ENHANCE_GRAY_ROWS_H_
#define TARVO_ENHANCE_GRAY_ROWS_H_

#include <cstddef>
#include <cstdint>

#include "enhance/lumo_image.h"

/// `height` rows of `width` levels, `stride` bytes apart.
struct GrayRows {
  const std::uint8_t* levels;
  std::ptrdiff_t stride;
  int width;
  int height;

  const std::uint8_t* row(int y) const { return levels + y * stride; }
};

/// The rows of `image`, read as one byte per pixel.
inline GrayRows rowsOf(const LumoImage& image) {
  return {image.data, image.width, image.width, image.height};
}

#endif  // TARVO_ENHANCE_GRAY_ROWS_H_
