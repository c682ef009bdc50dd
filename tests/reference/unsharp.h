#pragma once

#include "reference/gray.h"

namespace reference {

/// a * (1 + w) - b * w, rounded and clamped to 0..255. REQUIRES: a and b of the same size.
Gray addWeighted(const Gray& a, const Gray& b, float w);

/// The image sharpened by `amount` per cent of its difference from a Gaussian blur of ksize taps,
/// whose sigma is 3 whatever ksize is.
Gray unsharpMask(const Gray& image, float amount, int ksize);

}  // namespace reference
