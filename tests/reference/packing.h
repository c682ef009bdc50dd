#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "reference/image8.h"

namespace reference {

/// One row of dots as the printer takes it: a zero byte gives a set bit, the leftmost dot in the
/// highest bit; the bits past the last dot are set.
std::string packedDots(const std::uint8_t* row, int width);

/// The bitmap and print commands of a processed image. Row n is read from n * width bytes after the
/// first: rows step by the width, not by the padded row.
std::string printCommands(const Image8& image, std::uint32_t copies);

/// Byte-per-pixel lines packed to one bit a pixel, one row after another: a non-zero byte gives a
/// set bit; the rightmost `skip_right` bytes of a line are left out when they are fewer than the
/// line.
std::vector<std::uint8_t> grayToMono(const std::vector<std::uint8_t>& buffer, int bytes_per_line,
                                     int height, std::uint64_t skip_right);

/// The processed pixels as they are copied out, rows `stride` bytes apart: 1 becomes 255, and a
/// negative page is complemented once more.
std::vector<std::uint8_t> processedPixels(const Image8& image, int stride, bool negative);

}  // namespace reference
