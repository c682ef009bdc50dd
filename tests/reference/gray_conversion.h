#pragma once

#include <cstdint>
#include <vector>

#include "reference/gray.h"

namespace reference {

/// The order of a colour pixel's bytes; the values are those of the enhancement images.
enum class ColourLayout { Gray = 0, Bgr = 1, Rgb = 2, Bgra = 3, Rgba = 4 };

/// Bytes of one pixel: 1 for Gray, 3 for Bgr and Rgb, 4 for everything else.
int channelsOf(ColourLayout layout);

/// One gray byte for each pixel: BT.601 weights, single precision, rounded; Gray is copied.
/// REQUIRES: pixels holds width * height * channelsOf(layout) bytes.
Gray cvtGray(int width, int height, ColourLayout layout, const std::vector<std::uint8_t>& pixels);

}  // namespace reference
