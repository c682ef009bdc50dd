#include "enhance/tattoo.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "enhance/blurred_rows.h"
#include "enhance/gray.h"
#include "enhance/moments_threshold.h"
#include "enhance/tone_curve.h"
#include "enhance/unsharp_mask.h"
#include "kernels/blur.h"
#include "kernels/six_tap.h"

namespace {

constexpr float kSharpenPercent = 300.0f;

bool hasNoPixels(const LumoImage& image) { return std::int64_t{image.width} * image.height <= 0; }

/// The gray levels of an image: the image itself where it is gray already.
class GrayLevels {
 public:
  explicit GrayLevels(const LumoImage& image) : gray_(&image) {
    if (image.color == LUMO_IMG_GRAY && image.channels == 1) return;
    converted_.emplace(cvtGray(image));
    gray_ = &*converted_;
  }
  const LumoImage& image() const { return *gray_; }

 private:
  std::optional<LumoImage> converted_;
  const LumoImage* gray_;
};

/// What both variants do from the tone curve on: row by row, a band at a time, so that none of the
/// images between exists as a whole.
LumoImage curveSharpenAndDiffuse(const LumoImage& gray, const std::array<std::uint8_t, 256>& curve,
                                 int threshold) {
  LumoImage result(gray.width, gray.height, LUMO_IMG_GRAY);
  if (gray.width <= 0 || gray.height <= 0) return result;
  const auto width = static_cast<std::size_t>(gray.width);
  const auto height = static_cast<std::size_t>(gray.height);
  constexpr float kWeight = kSharpenPercent / 100.0f;

  BlurredRows rows(gray, curve.data(), kUnsharpSigma);
  kernels::SixTapDiffuser diffuser(width, height, static_cast<float>(threshold));
  for (std::size_t top = 0; top < height; top += kernels::SixTapDiffuser::kBandRows) {
    const std::size_t count = std::min(kernels::SixTapDiffuser::kBandRows, height - top);
    for (std::size_t row = 0; row < count; ++row) {
      rows.next();
      kernels::sharpenRow(rows.levels(), rows.blurred(), width, 1.0f + kWeight, -kWeight,
                          diffuser.input(row));
    }
    diffuser.diffuseBand();
    for (std::size_t row = 0; row < count; ++row) {
      std::memcpy(result.data + (top + row) * width, diffuser.output(row), width);
    }
  }
  return result;
}

}  // namespace

// Quirk: early-threshold. In both variants the threshold is that of the page before its tone curve.

LumoImage lumoTattooDithering(LumoImage& input) {
  if (hasNoPixels(input)) return input;
  const GrayLevels gray(input);
  const int threshold = thresh_global_moments(gray.image());
  return curveSharpenAndDiffuse(gray.image(), piecewiseGammaTable(64, 0.85f, 0.7f), threshold);
}

LumoImage lumoTattooDitheringX8(LumoImage& input) {
  if (hasNoPixels(input)) return input;
  const GrayLevels gray(input);
  const int threshold = thresh_global_moments(gray.image());
  return curveSharpenAndDiffuse(gray.image(), piecewiseGammaTable(threshold, 0.5f, 1.5f),
                                threshold);
}
