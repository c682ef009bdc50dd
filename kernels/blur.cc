#include "kernels/blur.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/blur.cc"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kernels {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::ScalableTag<float>;
using Ints = hn::RebindToSigned<Floats>;
using Levels = hn::Rebind<std::uint8_t, Floats>;

/// Calls vector(i) for vectors of floats that cover 0..count, the last of which overlaps the one
/// before; scalar(i) for each when count is less than a vector.
template <class Vector, class Scalar>
HWY_INLINE void Cover(std::size_t count, Vector vector, Scalar scalar) {
  const std::size_t lanes = hn::Lanes(Floats());
  if (count < lanes) {
    for (std::size_t i = 0; i < count; ++i) scalar(i);
    return;
  }
  std::size_t i = 0;
  for (; i + lanes <= count; i += lanes) vector(i);
  if (i < count) vector(count - lanes);
}

void ToFloats(const std::uint8_t* levels, std::size_t count, float* to) {
  const Floats d;
  Cover(
      count,
      [&](std::size_t i) HWY_ATTR {
        const auto v = hn::LoadU(Levels(), levels + i);
        hn::StoreU(hn::ConvertTo(d, hn::PromoteTo(Ints(), v)), d, to + i);
      },
      [&](std::size_t i) HWY_ATTR { to[i] = static_cast<float>(levels[i]); });
}

/// One pixel exactly as the blur is defined.
float BlurredExactly(const float* const rows[kBlurTaps], const double taps[kBlurTaps],
                     std::size_t i) {
  double sum = 0.0;
  for (std::size_t k = 0; k < kBlurTaps; ++k) sum = static_cast<double>(rows[k][i]) * taps[k] + sum;
  // A sum that is not a number is rounded to the least int, whose low byte is 0.
  return sum >= 0.0 ? static_cast<float>(static_cast<int>(static_cast<float>(sum) + 0.5f)) : 0.0f;
}

/// The weighted sums of one row, or of a stretch of one.
class Blur {
 public:
  explicit Blur(const double taps[kBlurTaps]) : taps_(taps) {
    for (std::size_t k = 0; k <= kMiddle; ++k) weights_[k] = static_cast<float>(taps[k]);
  }

  void operator()(const float* const rows[kBlurTaps], std::size_t count, float* to) const {
    const Floats d;
    hn::Vec<Floats> weights[kMiddle + 1];
    const float* left[kMiddle + 1];
    const float* right[kMiddle + 1];
    for (std::size_t k = 0; k <= kMiddle; ++k) {
      weights[k] = hn::Set(d, weights_[k]);
      left[k] = rows[k];
      right[k] = rows[kBlurTaps - 1 - k];
    }
    const auto half = hn::Set(d, 0.5f);
    const auto farFromMiddle = hn::Set(d, 0.5f - kNear);
    const auto exactly = [&](std::size_t i) HWY_ATTR { to[i] = BlurredExactly(rows, taps_, i); };
    const auto blur = [&](std::size_t i) HWY_ATTR {
      auto sum = hn::Mul(hn::LoadU(d, left[kMiddle] + i), weights[kMiddle]);
      for (std::size_t k = 0; k < kMiddle; ++k) {
        // Exact: whole numbers.
        const auto pair = hn::Add(hn::LoadU(d, left[k] + i), hn::LoadU(d, right[k] + i));
        sum = hn::MulAdd(pair, weights[k], sum);
      }
      const auto rounded = hn::Trunc(hn::Add(sum, half));
      hn::StoreU(rounded, d, to + i);
      const auto isSure = hn::Lt(hn::Abs(hn::Sub(sum, rounded)), farFromMiddle);
      if (HWY_LIKELY(hn::AllTrue(d, isSure))) return;
      std::uint8_t sure[HWY_MAX_BYTES / sizeof(float) / 8 + 1];
      hn::StoreMaskBits(d, isSure, sure);
      for (std::size_t lane = 0; lane < hn::Lanes(d); ++lane) {
        if ((sure[lane / 8] >> (lane % 8) & 1) == 0) exactly(i + lane);
      }
    };
    Cover(count, blur, exactly);
  }

 private:
  static constexpr std::size_t kMiddle = kBlurTaps / 2;

  /// Single precision does where the sum is not near the middle between two levels: its error is
  /// below 9 roundings of half a unit in the last place of 255, 1.3e-4, with or without a rounding
  /// between multiplication and addition. The others are done again.
  static constexpr float kNear = 2e-4f;

  const double* taps_;
  float weights_[kMiddle + 1];
};

void BlurAlong(const float* levels, const double taps[kBlurTaps], std::size_t count, float* to) {
  const float* views[kBlurTaps];
  for (std::size_t k = 0; k < kBlurTaps; ++k) views[k] = levels + k;
  Blur blur(taps);
  blur(views, count, to);
}

void BlurAcross(const float* const rows[kBlurRowsRead], const double taps[kBlurTaps],
                std::size_t count, float* const to[kBlurRows]) {
  // In the nearest cache there is room for a stretch of all these rows, but not for the rows.
  constexpr std::size_t kStretch = 256;
  const Blur blur(taps);
  for (std::size_t begin = 0; begin < count; begin += kStretch) {
    const float* stretches[kBlurRowsRead];
    for (std::size_t k = 0; k < kBlurRowsRead; ++k) stretches[k] = rows[k] + begin;
    for (std::size_t row = 0; row < kBlurRows; ++row) {
      blur(stretches + row, std::min(kStretch, count - begin), to[row] + begin);
    }
  }
}

void SharpenRow(const std::uint8_t* levels, const float* blurred, std::size_t count, float alpha,
                float beta, std::uint8_t* to) {
  const Floats d;
  const auto ofLevel = hn::Set(d, alpha);
  const auto ofBlurred = hn::Set(d, beta);
  const auto half = hn::Set(d, 0.5f);
  Cover(
      count,
      [&](std::size_t i) HWY_ATTR {
        const auto level = hn::ConvertTo(d, hn::PromoteTo(Ints(), hn::LoadU(Levels(), levels + i)));
        const auto sum =
            hn::Add(hn::Mul(level, ofLevel), hn::Mul(hn::LoadU(d, blurred + i), ofBlurred));
        // What lies below 0 or above 255 saturates.
        const auto rounded = hn::ConvertTo(Ints(), hn::Add(sum, half));
        hn::StoreU(hn::DemoteTo(Levels(), rounded), Levels(), to + i);
      },
      [&](std::size_t i) HWY_ATTR {
        const float sum = static_cast<float>(levels[i]) * alpha + blurred[i] * beta;
        to[i] = static_cast<std::uint8_t>(std::min(std::max(sum, 0.0f), 255.0f) + 0.5f);
      });
}

}  // namespace HWY_NAMESPACE
}  // namespace kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kernels {

HWY_EXPORT(ToFloats);
HWY_EXPORT(BlurAlong);
HWY_EXPORT(BlurAcross);
HWY_EXPORT(SharpenRow);

void toFloats(const std::uint8_t* levels, std::size_t count, float* to) {
  HWY_DYNAMIC_DISPATCH(ToFloats)(levels, count, to);
}

void blurAlong(const float* levels, const double taps[kBlurTaps], std::size_t count, float* to) {
  HWY_DYNAMIC_DISPATCH(BlurAlong)(levels, taps, count, to);
}

void blurAcross(const float* const rows[kBlurRowsRead], const double taps[kBlurTaps],
                std::size_t count, float* const to[kBlurRows]) {
  HWY_DYNAMIC_DISPATCH(BlurAcross)(rows, taps, count, to);
}

void sharpenRow(const std::uint8_t* levels, const float* blurred, std::size_t count, float alpha,
                float beta, std::uint8_t* to) {
  HWY_DYNAMIC_DISPATCH(SharpenRow)(levels, blurred, count, alpha, beta, to);
}

}  // namespace kernels
#endif  // HWY_ONCE
