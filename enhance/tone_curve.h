// A gamma curve in two pieces.
#ifndef TARVO_ENHANCE_TONE_CURVE_H_
#define TARVO_ENHANCE_TONE_CURVE_H_

#include <array>
#include <cstdint>

#include "enhance/lumo_image.h"

/// The table of enh_piecewise_gamma: entry i is the level that i becomes. Takes long for pivots far
/// above 255, whose small fractions have logarithms of many steps: a second or so for ten million,
/// minutes for the largest.
std::array<std::uint8_t, 256> piecewiseGammaTable(int pivot, float gammaLow, float gammaHigh);

/// Bends the levels of `img` (one byte per pixel) in place: those below `pivot` by the exponent
/// `gammaLow`, the others by `gammaHigh`; an exponent below 1 brightens its side, above 1 darkens
/// it. 0, the pivot and 255 stay fixed, up to truncation. A pivot of 0 or below sends every level
/// through the upper side.
void enh_piecewise_gamma(LumoImage& img, int pivot, float gammaLow, float gammaHigh);

#endif  // TARVO_ENHANCE_TONE_CURVE_H_
