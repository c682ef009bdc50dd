#include "reference/moments_threshold.h"

#include <cmath>

#include "reference/scalar_math.h"

namespace reference {

std::array<float, 256> levelShares(const Gray& image) {
  std::array<int, 256> counts{};
  for (const std::uint8_t level : image.px) ++counts[level];

  const int pixels = image.width * image.height;
  std::array<float, 256> shares{};
  for (std::size_t i = 0; i < 256; ++i) {
    shares[i] = static_cast<float>(counts[i]) / static_cast<float>(pixels);
  }
  return shares;
}

int momentsThreshold(const Gray& image) {
  constexpr int kNoRealSolution = 128;
  constexpr int kNoLevelQualifies = -1;
  const std::array<float, 256> shares = levelShares(image);

  const float m0 = 1.0F;
  float m1 = 0.0F;
  float m2 = 0.0F;
  float m3 = 0.0F;
  for (int i = 0; i < 256; ++i) {
    const float share = shares[static_cast<std::size_t>(i)];
    m1 += static_cast<float>(i) * share;
    m2 += static_cast<float>(i * i) * share;
    m3 += static_cast<float>(i * i * i) * share;
  }

  const float cd = m0 * m2 - m1 * m1;
  const float c0 = ((-m2) * m2 + m1 * m3) / cd;
  const float c1 = (m0 * (-m3) + m2 * m1) / cd;

  const float c1_squared = c1 * c1;
  const double wide = static_cast<double>(c1_squared) - 4.0 * static_cast<double>(c0);
  const float discriminant = static_cast<float>(wide);
  if (!std::isfinite(discriminant) || 0 > discriminant) return kNoRealSolution;

  const float root = my_sqrt(discriminant);
  const float z0 = 0.5F * (-c1 - root);
  const float z1 = 0.5F * (-c1 + root);
  const float p0 = (z1 - m1) / (z1 - z0);

  float cumulative = 0.0F;
  for (int i = 0; i < 256; ++i) {
    cumulative += shares[static_cast<std::size_t>(i)];
    if (cumulative > p0) return i;
  }
  return kNoLevelQualifies;
}

}  // namespace reference
