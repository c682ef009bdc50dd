#include "reference/tattoo.h"

#include "reference/gray_conversion.h"
#include "reference/moments_threshold.h"
#include "reference/six_tap_diffusion.h"
#include "reference/tone_curve.h"
#include "reference/unsharp.h"

namespace reference {

namespace {

constexpr float kUnsharpAmount = 300.0F;
constexpr int kUnsharpTaps = 11;

}  // namespace

Gray tattoo(const Gray& page) {
  if (page.width * page.height <= 0) return page;
  const Gray gray = cvtGray(page.width, page.height, ColourLayout::Gray, page.px);
  const int threshold = momentsThreshold(gray);
  const Gray toned = piecewiseGamma(gray, 64, 0.85F, 0.7F);
  const Gray sharp = unsharpMask(toned, kUnsharpAmount, kUnsharpTaps);
  return sixTapDiffusion(sharp, threshold);
}

Gray tattooX8(const Gray& page) {
  if (page.width * page.height <= 0) return page;
  const Gray gray = cvtGray(page.width, page.height, ColourLayout::Gray, page.px);
  const int threshold = momentsThreshold(gray);
  const Gray toned = piecewiseGamma(gray, threshold, 0.5F, 1.5F);
  const Gray sharp = unsharpMask(toned, kUnsharpAmount, kUnsharpTaps);
  return sixTapDiffusion(sharp, threshold);
}

}  // namespace reference
