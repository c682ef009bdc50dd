#include "enhance/tone_curve.h"

#include <cmath>

#include "enhance/lumo_math.h"
#include "kernels/bytes.h"

std::array<std::uint8_t, 256> piecewiseGammaTable(int pivot, float gammaLow, float gammaHigh) {
  const auto pivotLevel = static_cast<float>(pivot);
  const auto upperSpan = static_cast<float>(std::int64_t{255} - pivot);
  std::array<std::uint8_t, 256> table;
  for (int i = 0; i < 256; ++i) {
    const auto level = static_cast<float>(i);
    float entry;
    float t;
    if (i < pivot) {
      t = my_pow(level / pivotLevel, gammaLow);
      entry = t * pivotLevel;
    } else {
      t = my_pow((level - pivotLevel) / upperSpan, gammaHigh);
      entry = t * upperSpan + pivotLevel;
    }
    // With the pivot at 255, level 255 is 0 / 0: the pivot stays where it is.
    if (std::isnan(t)) entry = pivotLevel;
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
