#include "enhance/tattoo.h"

#include <algorithm>
#include <cstring>

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

}  // namespace

// Row by row and a strip at a time, so that none of the images between exists as a whole.
void ditherRowsForTattoo(TattooVariant variant, const GrayRows& page, std::uint8_t* out,
                         std::ptrdiff_t outStride) {
  // Quirk: early-threshold. In both variants that of the page before its tone curve.
  const int threshold = momentsThreshold(page);
  const auto curve = variant == TattooVariant::kX8 ? piecewiseGammaTable(threshold, 0.5f, 1.5f)
                                                   : piecewiseGammaTable(64, 0.85f, 0.7f);
  constexpr float kWeight = kSharpenPercent / 100.0f;
  const auto width = static_cast<std::size_t>(page.width);
  const auto height = static_cast<std::size_t>(page.height);

  BlurredRows rows(page, curve.data(), kUnsharpSigma);
  kernels::SixTapDiffuser diffuser(width, height, static_cast<float>(threshold));
  for (std::size_t top = 0; top < height; top += kernels::SixTapDiffuser::kStripRows) {
    const std::size_t count = std::min(kernels::SixTapDiffuser::kStripRows, height - top);
    for (std::size_t row = 0; row < count; ++row) {
      rows.next();
      kernels::sharpenRow(rows.levels(), rows.blurred(), width, 1.0f + kWeight, -kWeight,
                          diffuser.input(row));
    }
    diffuser.diffuseStrip();
    for (std::size_t row = 0; row < count; ++row) {
      std::memcpy(out + static_cast<std::ptrdiff_t>(top + row) * outStride, diffuser.output(row),
                  width);
    }
  }
}

namespace {

LumoImage ditherForTattoo(TattooVariant variant, const LumoImage& input) {
  if (hasNoPixels(input)) return input;
  LumoImage result(input.width, input.height, LUMO_IMG_GRAY);
  if (input.width < 0) return result;  // and so the height: no pixel either
  if (input.color == LUMO_IMG_GRAY && input.channels == 1) {
    ditherRowsForTattoo(variant, rowsOf(input), result.data, result.width);
  } else {
    const LumoImage gray = cvtGray(input);
    ditherRowsForTattoo(variant, rowsOf(gray), result.data, result.width);
  }
  return result;
}

}  // namespace

LumoImage lumoTattooDithering(LumoImage& input) {
  return ditherForTattoo(TattooVariant::kPlain, input);
}

LumoImage lumoTattooDitheringX8(LumoImage& input) {
  return ditherForTattoo(TattooVariant::kX8, input);
}
