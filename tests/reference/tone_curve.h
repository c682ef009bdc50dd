#pragma once

#include <array>
#include <cstdint>

#include "reference/gray.h"

namespace reference {

/// The two-piece gamma curve as a table: levels below `pivot` bend by `gamma_low`, the others by
/// `gamma_high`; each entry is cut, not rounded, to its low byte. Level 255 of the pivot 255,
/// which would be the power of 0 / 0, stays 255.
std::array<std::uint8_t, 256> piecewiseGammaTable(int pivot, float gamma_low, float gamma_high);

/// Every pixel of `image` through the table.
Gray piecewiseGamma(const Gray& image, int pivot, float gamma_low, float gamma_high);

}  // namespace reference
