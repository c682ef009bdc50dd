#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "reference/gaussian.h"
#include "reference/gray_conversion.h"
#include "reference/moments_threshold.h"
#include "reference/six_tap_diffusion.h"
#include "reference/tattoo.h"
#include "reference/tone_curve.h"
#include "reference/unsharp.h"

namespace reference {
namespace {

using testing::Each;
using testing::ElementsAre;

/// Left half 0, right half 255.
Gray halfAndHalf(int width, int height) {
  Gray image(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = width / 2; x < width; ++x) image.at(x, y) = 255;
  }
  return image;
}

TEST(GrayConversion, WeighsTheColoursOfAPixel) {
  const std::vector<std::uint8_t> pixel = {255, 0, 0};
  EXPECT_THAT(cvtGray(1, 1, ColourLayout::Bgr, pixel).px, ElementsAre(29));  // 0.114 x 255 = 29.07
  EXPECT_THAT(cvtGray(1, 1, ColourLayout::Rgb, pixel).px, ElementsAre(76));  // 0.299 x 255 = 76.245
}

TEST(GrayConversion, StepsOverTheFourthByte) {
  const std::vector<std::uint8_t> pixels = {255, 0, 0, 99, 0, 255, 0, 99};  // 0.587 x 255 = 149.685
  EXPECT_THAT(cvtGray(2, 1, ColourLayout::Bgra, pixels).px, ElementsAre(29, 150));
  EXPECT_THAT(cvtGray(2, 1, ColourLayout::Rgba, pixels).px, ElementsAre(76, 150));
}

TEST(GrayConversion, CopiesAGrayImage) {
  const std::vector<std::uint8_t> pixels = {0, 1, 128, 255};
  EXPECT_EQ(cvtGray(2, 2, ColourLayout::Gray, pixels).px, pixels);
}

TEST(MomentsThreshold, TwoEqualLevelsGiveTheUpperOne) {
  // m1 = 127.5, p0 = 0.5: the share of level 0 is exactly 0.5, not above it.
  EXPECT_EQ(momentsThreshold(halfAndHalf(8, 3)), 255);
}

TEST(MomentsThreshold, AUniformImageHasNoRealSolution) {
  for (int level = 0; level < 256; ++level) {
    EXPECT_EQ(momentsThreshold(Gray(5, 3, static_cast<std::uint8_t>(level))), 128) << level;
  }
}

struct CurveCase {
  int level;
  int pivot_64;   // exponents 0.85 and 0.7
  int pivot_128;  // exponents 0.5 and 1.5
};

TEST(ToneCurve, HasItsWorkedTable) {
  const CurveCase cases[] = {
      {1, 1, 11},   {16, 19, 45},    {32, 35, 64},    {63, 63, 89},    {64, 64, 90},
      {65, 68, 91}, {128, 152, 128}, {200, 214, 182}, {254, 254, 253}, {255, 255, 255},
  };
  const auto first = piecewiseGammaTable(64, 0.85F, 0.7F);
  const auto second = piecewiseGammaTable(128, 0.5F, 1.5F);
  for (const CurveCase& c : cases) {
    EXPECT_EQ(first[static_cast<std::size_t>(c.level)], c.pivot_64) << c.level;
    EXPECT_EQ(second[static_cast<std::size_t>(c.level)], c.pivot_128) << c.level;
  }
  EXPECT_EQ(first[0], 0);
}

TEST(ToneCurve, PivotAtTheTopEnds) {
  // The upper side is 0 / 0, so its only level is the pivot itself.
  EXPECT_EQ(piecewiseGammaTable(255, 0.5F, 1.5F)[255], 255);
}

TEST(ToneCurve, EveryThresholdMakesATable) {
  for (int pivot = -1; pivot <= 255; ++pivot) {
    EXPECT_EQ(piecewiseGammaTable(pivot, 0.5F, 1.5F)[255], 255) << pivot;
  }
}

TEST(Gaussian, ElevenTapsHaveTheirWorkedValues) {
  const double taps[] = {0.035483, 0.058501, 0.086310, 0.113945, 0.134610, 0.142300};
  const std::vector<double> kernel = gaussianKernel1D(11, 3.0);
  ASSERT_EQ(kernel.size(), 11U);
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_NEAR(kernel[i], taps[i], 5e-7) << i;
    EXPECT_EQ(kernel[i], kernel[10 - i]) << i;
  }
}

TEST(Gaussian, AUniformImagePassesUnchanged) {
  for (const int level : {0, 1, 77, 128, 254, 255}) {
    const Gray image(7, 5, static_cast<std::uint8_t>(level));
    EXPECT_EQ(gaussianBlurSeparable(image, 11, 3.0), image) << level;
    EXPECT_EQ(gaussianBlur2D(image, 5, 1.0, 2.0), image) << level;
  }
}

TEST(Gaussian, AOnePixelWideRowKeepsItsLevels) {
  const Gray image(1, 3, std::vector<std::uint8_t>{10, 200, 255});
  EXPECT_EQ(convolve1D(image, gaussianKernel1D(11, 3.0), true), image);
}

TEST(Gaussian, TheTwoSigmasAreNotExchanged) {
  // A sigma of 0.2 leaves almost everything in the middle, one of 3 spreads: a lone dot becomes a
  // row when only sigma x is wide.
  Gray dot(5, 5);
  dot.at(2, 2) = 255;
  const Gray blurred = gaussianBlur2D(dot, 5, 3.0, 0.2);
  EXPECT_GT(blurred.at(0, 2), 20);
  EXPECT_EQ(blurred.at(2, 0), 0);
}

TEST(Unsharp, WeighsAndClamps) {
  // 200 x 4 - 100 x 3 = 500, 50 x 4 - 100 x 3 = -100, 100 x 4 - 100 x 3 = 100.
  const Gray image(3, 1, std::vector<std::uint8_t>{200, 50, 100});
  EXPECT_THAT(addWeighted(image, Gray(3, 1, 100), 3.0F).px, ElementsAre(255, 0, 100));
}

TEST(Unsharp, SigmaStaysAtThreeWhateverTheTaps) {
  Gray image = halfAndHalf(20, 3);
  for (std::uint8_t& level : image.px) level = level == 0 ? 100 : 150;
  EXPECT_EQ(unsharpMask(image, 100.0F, 5),
            addWeighted(image, gaussianBlurSeparable(image, 5, 3.0), 1.0F));
  EXPECT_NE(unsharpMask(image, 100.0F, 5), unsharpMask(image, 100.0F, 11));
}

TEST(SixTapDiffusion, AtTheThresholdIsBlack) {
  EXPECT_THAT(sixTapDiffusion(Gray(1, 1, 100), 100).px, ElementsAre(0));
  EXPECT_THAT(sixTapDiffusion(Gray(1, 1, 101), 100).px, ElementsAre(255));
}

TEST(SixTapDiffusion, MinusOneWhitensTheFirstBlackPixel) {
  // 0 > -1: white, with the error -255. Its neighbour reads -255 x 0.505786 = -128.98: black. The
  // third reads 255 x 0.052926 - 128.98 x 0.505786 = 13.50 - 65.23: black.
  EXPECT_THAT(sixTapDiffusion(Gray(3, 1, 0), -1).px, ElementsAre(255, 0, 0));
}

TEST(SixTapDiffusion, AOnePixelWideImageFeedsOnlyTheRowBelow) {
  // 100 is black; below it 100 + 100 x 0.243191 = 124.3 is above 124.
  EXPECT_THAT(sixTapDiffusion(Gray(1, 2, 100), 124).px, ElementsAre(0, 255));
  EXPECT_THAT(sixTapDiffusion(Gray(1, 2, 100), 125).px, ElementsAre(0, 0));
}

TEST(SixTapDiffusion, AWhitePixelBesideBlackOnesPassesMoreOn) {
  // Row 0 is black and carries nothing. At (1, 1) 200 is white with black left and above: it keeps
  // 200 - 255 x 0.7146 = 17.78, and (2, 1) reads 17.78 x 0.505786 = 8.99, above 8.
  // On the border the same pixel would keep -55 and leave (2, 1) black.
  Gray image(3, 3);
  image.at(1, 1) = 200;
  const Gray out = sixTapDiffusion(image, 8);
  EXPECT_EQ(out.at(0, 1), 0);
  EXPECT_EQ(out.at(1, 1), 255);
  EXPECT_EQ(out.at(2, 1), 255);

  Gray first_row(3, 3);
  first_row.at(1, 0) = 200;
  EXPECT_EQ(sixTapDiffusion(first_row, 8).at(2, 0), 0);

  Gray last_row(3, 2);
  last_row.at(1, 1) = 200;
  EXPECT_EQ(sixTapDiffusion(last_row, 8).at(2, 1), 0);
}

TEST(SixTapDiffusion, EachTapHasItsWeight) {
  // Black pixels only. Row 0 holds 100, 0, 0 and keeps the errors 100, 50.579 and
  // -100 x 0.052926 + 50.579 x 0.505786 = 20.289. Row 1 then receives, with each pixel's own error
  // passed to the right,
  //   (0, 1): 100 x 0.243191 + 50.579 x 0.128835 + 20.289 x 0.226194 = 35.425
  //   (1, 1): -100 x 0.111078 + 50.579 x 0.243191 + 20.289 x 0.128835 + 35.425 x 0.505786 = 21.724
  //   (2, 1): -50.579 x 0.111078 + 20.289 x 0.243191 - 35.425 x 0.052926 + 21.724 x 0.505786
  //   = 8.429
  struct Case {
    int x;
    int y;
    std::uint8_t black;
    std::uint8_t white;
  };
  const Case cases[] = {{2, 0, 79, 80}, {0, 1, 64, 65}, {1, 1, 78, 79}, {2, 1, 91, 92}};
  for (const Case& c : cases) {
    Gray image(3, 2);
    image.at(0, 0) = 100;
    image.at(c.x, c.y) = c.black;
    EXPECT_EQ(sixTapDiffusion(image, 100).at(c.x, c.y), 0) << c.x << ", " << c.y;
    image.at(c.x, c.y) = c.white;
    EXPECT_EQ(sixTapDiffusion(image, 100).at(c.x, c.y), 255) << c.x << ", " << c.y;
  }
}

TEST(SixTapDiffusion, AThresholdOf255LeavesAPlainImageBlack) {
  EXPECT_THAT(sixTapDiffusion(Gray(3, 1, 100), 255).px, Each(0));
}

TEST(Tattoo, ABlankPageStaysBlankAndAFullOneFull) {
  for (const int level : {0, 255}) {
    const Gray page(9, 4, static_cast<std::uint8_t>(level));
    EXPECT_EQ(tattoo(page), page) << level;
    EXPECT_EQ(tattooX8(page), page) << level;
  }
}

TEST(Tattoo, LineArtEnds) {
  for (const Gray& result : {tattoo(halfAndHalf(16, 8)), tattooX8(halfAndHalf(16, 8))}) {
    EXPECT_THAT(result.px, Each(testing::AnyOf(0, 255)));
    EXPECT_EQ(result.width, 16);
    EXPECT_EQ(result.height, 8);
  }
}

TEST(Tattoo, TheThresholdIsThatOfThePageBeforeItsTonesChange) {
  Gray page(32, 32);
  for (std::size_t i = 0; i < page.px.size(); ++i) {
    page.px[i] = static_cast<std::uint8_t>(i * i / 4096);
  }
  const int threshold = momentsThreshold(page);
  const Gray fixed_pivot = piecewiseGamma(page, 64, 0.85F, 0.7F);
  const Gray own_pivot = piecewiseGamma(page, threshold, 0.5F, 1.5F);
  ASSERT_NE(momentsThreshold(fixed_pivot), threshold);
  EXPECT_EQ(tattoo(page), sixTapDiffusion(unsharpMask(fixed_pivot, 300.0F, 11), threshold));
  EXPECT_EQ(tattooX8(page), sixTapDiffusion(unsharpMask(own_pivot, 300.0F, 11), threshold));
}

TEST(Tattoo, AnImageWithoutPixelsComesBack) {
  EXPECT_EQ(tattoo(Gray(0, 4)), Gray(0, 4));
  EXPECT_EQ(tattooX8(Gray(4, 0)), Gray(4, 0));
}

}  // namespace
}  // namespace reference
