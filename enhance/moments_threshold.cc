#include "enhance/moments_threshold.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "enhance/lumo_math.h"
#include "kernels/bytes.h"

namespace {

constexpr int kNoRealSolution = 128;
constexpr int kNoLevel = -1;

using Histogram = std::array<float, 256>;

/// Share of the pixels at each level.
Histogram normalisedHistogram(const GrayRows& image) {
  std::array<std::int64_t, 256> counts{};
  const std::int64_t pixels = std::int64_t{image.width} * image.height;
  if (image.stride == image.width) {
    const std::int64_t bytes = std::max<std::int64_t>(pixels, 0);
    kernels::countLevels(image.levels, static_cast<std::size_t>(bytes), counts.data());
  } else {
    const auto width = static_cast<std::size_t>(std::max(image.width, 0));
    for (int y = 0; y < image.height; ++y) {
      kernels::countLevels(image.row(y), width, counts.data());
    }
  }
  Histogram shares;
  for (std::size_t i = 0; i < shares.size(); ++i) {
    shares[i] = static_cast<float>(counts[i]) / static_cast<float>(pixels);
  }
  return shares;
}

/// The first level at which the cumulative share exceeds `target`.
int levelAbove(const Histogram& shares, float target) {
  float cumulative = 0.0f;
  for (int i = 0; i < 256; ++i) {
    cumulative += shares[static_cast<std::size_t>(i)];
    if (cumulative > target) return i;
  }
  return kNoLevel;
}

}  // namespace

int thresh_global_moments(const LumoImage& img) { return momentsThreshold(rowsOf(img)); }

int momentsThreshold(const GrayRows& image) {
  const Histogram shares = normalisedHistogram(image);

  const float m0 = 1.0f;
  float m1 = 0.0f;
  float m2 = 0.0f;
  float m3 = 0.0f;
  for (int i = 0; i < 256; ++i) {
    const float share = shares[static_cast<std::size_t>(i)];
    m1 += static_cast<float>(i) * share;
    m2 += static_cast<float>(i * i) * share;
    m3 += static_cast<float>(i * i * i) * share;
  }

  // The two levels z0 and z1 that keep the moments are the roots of z^2 + c1 z + c0.
  const float cd = m0 * m2 - m1 * m1;
  const float c0 = ((-m2) * m2 + m1 * m3) / cd;
  const float c1 = (m0 * (-m3) + m2 * m1) / cd;
  const auto discriminant =
      static_cast<float>(static_cast<double>(c1 * c1) - 4.0 * static_cast<double>(c0));
  // Quirk: one-level. A uniform page makes it 0 / 0; one nearly so, infinite: the root of either
  // would never come. Such a page has to end as well, and gets what all without a solution get.
  if (0.0f > discriminant || !std::isfinite(discriminant)) return kNoRealSolution;

  const float root = my_sqrt(discriminant);
  const float z0 = 0.5f * (-c1 - root);
  const float z1 = 0.5f * (-c1 + root);
  return levelAbove(shares, (z1 - m1) / (z1 - z0));
}
