#include "enhance/tone_curve.h"

#include "enhance/lumo_math.h"
#include "kernels/bytes.h"

std::array<std::uint8_t, 256> piecewiseGammaTable(int pivot, float gammaLow, float gammaHigh) {
  const auto pivotLevel = static_cast<float>(pivot);
  const auto upperSpan = static_cast<float>(std::int64_t{255} - pivot);
  std::array<std::uint8_t, 256> table;
  for (int i = 0; i < 256; ++i) {
    const auto level = static_cast<float>(i);
    float entry;
    if (i < pivot) {
      const float t = my_pow(level / pivotLevel, gammaLow);
      entry = t * pivotLevel;
    } else if (upperSpan == 0.0f) {
      // Quirk: white-pivot. The pivot is 255, and level 255 would be the power of 0 / 0, whose
      // steps never end. A page with that threshold has to end: white stays, as every pivot does.
      entry = pivotLevel;
    } else {
      const float t = my_pow((level - pivotLevel) / upperSpan, gammaHigh);
      entry = t * upperSpan + pivotLevel;
    }
    table[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(truncateToInt(entry));
  }
  return table;
}

void enh_piecewise_gamma(LumoImage& img, int pivot, float gammaLow, float gammaHigh) {
  const auto table = piecewiseGammaTable(pivot, gammaLow, gammaHigh);
  const std::int64_t pixels = std::int64_t{img.width} * img.height;
  if (pixels > 0) {
    kernels::lookUp(img.data, static_cast<std::size_t>(pixels), table.data(), img.data);
  }
}
