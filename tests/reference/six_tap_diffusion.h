#pragma once

#include "reference/gray.h"

namespace reference {

/// Error diffusion with six taps, two of them negative, in plain raster order and single precision.
/// A pixel above `threshold` becomes 255, any other 0; away from the border a white pixel beside
/// black ones (left, above) passes more of its value on. `threshold` may be any int.
Gray sixTapDiffusion(const Gray& image, int threshold);

}  // namespace reference
