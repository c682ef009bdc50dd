#include "reference/tone_curve.h"

#include "reference/scalar_math.h"

namespace reference {

std::array<std::uint8_t, 256> piecewiseGammaTable(int pivot, float gamma_low, float gamma_high) {
  std::array<std::uint8_t, 256> table{};
  const float pivot_level = static_cast<float>(pivot);
  const float span_above = static_cast<float>(255 - pivot);

  for (int i = 0; i < 256; ++i) {
    const float level = static_cast<float>(i);
    float entry = 0;
    if (i < pivot) {
      const float t = my_pow(level / pivot_level, gamma_low);
      entry = t * pivot_level;
    } else if (i == 255 && pivot == 255) {
      entry = 255.0F;
    } else {
      const float t = my_pow((level - pivot_level) / span_above, gamma_high);
      entry = t * span_above + pivot_level;
    }
    table[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(truncated(entry));
  }
  return table;
}

Gray piecewiseGamma(const Gray& image, int pivot, float gamma_low, float gamma_high) {
  const std::array<std::uint8_t, 256> table = piecewiseGammaTable(pivot, gamma_low, gamma_high);
  Gray result = image;
  for (std::uint8_t& level : result.px) level = table[level];
  return result;
}

}  // namespace reference
