#include "enhance/unsharp_mask.h"

#include "enhance/gaussian.h"
#include "enhance/lumo_math.h"

LumoImage add_Weighted(const LumoImage& a, const LumoImage& b, float w) {
  LumoImage result(a);
  const float alpha = 1.0f + w;
  const float beta = -w;
  const float gamma = 0.0f;
  const std::int64_t pixels = a.width > 0 ? std::int64_t{a.width} * a.height : 0;
  for (std::int64_t i = 0; i < pixels; ++i) {
    const float sum =
        (static_cast<float>(a.data[i]) * alpha + static_cast<float>(b.data[i]) * beta) + gamma;
    result.data[i] = static_cast<std::uint8_t>(myClamp(my_round(sum), 0, 255));
  }
  return result;
}

LumoImage enh_unsharp_mask(const LumoImage& src, float amount, int ksize) {
  const float weight = amount / 100.0f;
  return add_Weighted(src, enh_gaussian_filter_fast(src, ksize, kUnsharpSigma), weight);
}
