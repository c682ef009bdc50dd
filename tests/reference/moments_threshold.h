#pragma once

#include <array>

#include "reference/gray.h"

namespace reference {

/// The share of each of the 256 levels among the image's pixels, single precision.
std::array<float, 256> levelShares(const Gray& image);

/// The moment-preserving threshold (W.-H. Tsai, "Moment-preserving thresholding", 1985): a level 0
/// to 255; 128 when the moment equations have no real solution; -1 when no level qualifies.
int momentsThreshold(const Gray& image);

}  // namespace reference
