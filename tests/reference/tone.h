#pragma once

#include <array>
#include <cstdint>

#include "reference/image8.h"

namespace reference {

/// The brightness and contrast table: slope (contrast + 100) / 100 about level 128, then brightness
/// and a rounding half, in single precision, cut toward zero and clamped to 0..255.
std::array<std::uint8_t, 256> lightTable(int brightness, int contrast);

/// Every pixel (not the padding) through the table.
Image8 throughTable(const Image8& image, const std::array<std::uint8_t, 256>& table);

/// Brightness and contrast.
Image8 light(const Image8& image, int brightness, int contrast);

/// Every byte complemented, the padding too; the palette stays.
Image8 negative(const Image8& image);

}  // namespace reference
