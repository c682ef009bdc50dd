// Sharpening by an unsharp mask.
#ifndef TARVO_ENHANCE_UNSHARP_MASK_H_
#define TARVO_ENHANCE_UNSHARP_MASK_H_

#include "enhance/lumo_image.h"

/// Quirk: fixed-sigma. The blur's, whatever its kernel size.
inline constexpr double kUnsharpSigma = 3.0;

/// a x (1 + w) - b x w for each byte, rounded and clamped to 0..255. REQUIRES: `b` has at least as
/// many pixels as `a`.
LumoImage add_Weighted(const LumoImage& a, const LumoImage& b, float w);

/// src + amount per cent of (src - blurred), the blur a separable Gaussian of `ksize` taps.
/// Quirk: fixed-sigma. Its sigma is 3 whatever `ksize` is. REQUIRES: ksize odd and positive.
LumoImage enh_unsharp_mask(const LumoImage& src, float amount, int ksize);

#endif  // TARVO_ENHANCE_UNSHARP_MASK_H_
