#include "reference/unsharp.h"

#include "reference/gaussian.h"
#include "reference/scalar_math.h"

namespace reference {

Gray addWeighted(const Gray& a, const Gray& b, float w) {
  const float alpha = 1.0F + w;
  const float beta = -w;
  const float gamma = 0.0F;

  Gray result = a;
  for (std::size_t i = 0; i < a.px.size(); ++i) {
    const float from_a = static_cast<float>(a.px[i]) * alpha;
    const float from_b = static_cast<float>(b.px[i]) * beta;
    const int level = my_clamp(my_round((from_a + from_b) + gamma), 0, 255);
    result.px[i] = static_cast<std::uint8_t>(level);
  }
  return result;
}

Gray unsharpMask(const Gray& image, float amount, int ksize) {
  const float w = amount / 100.0F;
  const Gray blurred = gaussianBlurSeparable(image, ksize, 3.0);
  return addWeighted(image, blurred, w);
}

}  // namespace reference
