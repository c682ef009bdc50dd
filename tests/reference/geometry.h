#pragma once

#include <optional>

#include "reference/image8.h"

namespace reference {

/// Turned by 180 degrees; the padding of the result is zero.
Image8 rotate180(const Image8& image);

/// Mirrored left to right; the padding of the result is zero.
Image8 mirror(const Image8& image);

/// The image on a larger canvas filled (padding too) with the palette entry nearest to `colour`.
/// `bottom` rows come first in memory, `top` rows last. Nothing for a negative margin or when the
/// canvas cannot exist.
std::optional<Image8> expand(const Image8& image, int left, int top, int right, int bottom,
                             const Colour& colour);

}  // namespace reference
