#include "enhance/tattoo.h"

#include "enhance/error_diffusion.h"
#include "enhance/gray.h"
#include "enhance/moments_threshold.h"
#include "enhance/tone_curve.h"
#include "enhance/unsharp_mask.h"

namespace {

constexpr float kSharpenPercent = 300.0f;
constexpr int kSharpenTaps = 11;

bool hasNoPixels(const LumoImage& image) { return std::int64_t{image.width} * image.height <= 0; }

/// What both variants do once the tone curve has been applied to `gray`.
LumoImage sharpenAndDiffuse(const LumoImage& gray, int threshold) {
  return edf_cus(enh_unsharp_mask(gray, kSharpenPercent, kSharpenTaps), threshold);
}

}  // namespace

// Quirk: early-threshold. In both variants the threshold is that of the page before its tone curve.

LumoImage lumoTattooDithering(LumoImage& input) {
  if (hasNoPixels(input)) return input;
  LumoImage gray = cvtGray(input);
  const int threshold = thresh_global_moments(gray);
  enh_piecewise_gamma(gray, 64, 0.85f, 0.7f);
  return sharpenAndDiffuse(gray, threshold);
}

LumoImage lumoTattooDitheringX8(LumoImage& input) {
  if (hasNoPixels(input)) return input;
  LumoImage gray = cvtGray(input);
  const int threshold = thresh_global_moments(gray);
  enh_piecewise_gamma(gray, threshold, 0.5f, 1.5f);
  return sharpenAndDiffuse(gray, threshold);
}
