// The moment-preserving threshold, on histograms.
#include "enhance/moments_threshold.h"

#include <gtest/gtest.h>

#include "test_lumo.h"

namespace {

struct Bin {
  int level;
  int pixels;
};

/// A one-row image with this histogram.
int thresholdOf(const std::vector<Bin>& bins) {
  std::vector<int> row;
  for (const Bin& bin : bins)
    row.insert(row.end(), static_cast<std::size_t>(bin.pixels), bin.level);
  return thresh_global_moments(grayImage({row}));
}

TEST(MomentsThreshold, HalfBlackHalfWhiteIs255) {
  // m1 = 127.5, m2 = 32512.5, m3 = 8290687.5; the two levels are 0 and 255, the fraction of black
  // 0.5. The sum of the histogram is exactly 0.5 from 0 to 254, so 255 is the first above it.
  EXPECT_EQ(thresh_global_moments(grayImage({{0, 255}, {255, 0}})), 255);
  EXPECT_EQ(thresholdOf({{0, 5000}, {255, 5000}}), 255);
}

TEST(MomentsThreshold, CountsAllTheBytesOfASizeThatIsNegativeBothWays) {
  const unsigned char bytes[] = {0, 255, 255, 0};
  const LumoImage image(-2, -2, LUMO_IMG_GRAY, bytes);  // 4 bytes
  EXPECT_EQ(thresh_global_moments(image), 255);
}

TEST(MomentsThreshold, KnownHistograms) {
  const struct {
    std::vector<Bin> bins;
    int level;
    const char* why;
  } kCases[] = {
      // Of two levels a and b the equations give a and b back, and a's own fraction as the target:
      // the sum at a equals it, and the answer is b.
      {{{64, 1}, {192, 7}}, 192, "m 176, 32768, 6225920; z 64, 192; p0 = 16 / 128 = 0.125"},
      {{{64, 4}, {192, 4}}, 192, "m 128, 20480, 3670016; z 64, 192; p0 = 64 / 128 = 0.5"},
      {{{64, 7}, {192, 1}}, 192, "m 80, 8192, 1114112; z 64, 192; p0 = 112 / 128 = 0.875"},
      {{{0, 3}, {255, 5}}, 255, "p0 = 0.37500003"},
      {{{0, 5}, {255, 3}}, 255, "p0 = 0.625"},
      {{{0, 1}, {255, 63}}, 255, "p0 = 0.015629 for 1 / 64 = 0.015625"},
      {{{0, 63}, {255, 1}}, 255, "p0 = 63 / 64"},
      // Where rounding leaves the target just below the sum, it is a.
      {{{0, 1}, {128, 99}}, 0, "p0 = 0.00999999 for 0.01"},
      {{{1, 1}, {255, 99}}, 1, "p0 = 0.009995"},
      {{{100, 1}, {255, 99}}, 100, "p0 = 0.009997"},
      // More levels: the answer is where the sum passes the target.
      {{{0, 1}, {85, 1}, {170, 1}, {255, 1}}, 170, "z 32.5, 222.5; p0 = 0.5, the sum at 85"},
      {{{0, 1}, {128, 2}, {255, 1}}, 128, "z 37.2, 217.5; p0 = 0.498"},
      {{{0, 2}, {64, 1}, {255, 1}}, 64, "z 13.9, 245.5; p0 = 0.716, 0.5 at 0, 0.75 at 64"},
      {{{0, 2}, {64, 3}, {192, 1}, {255, 2}}, 64, "z 30.7, 234.1; p0 = 0.602, 0.625 at 64"},
      {{{0, 5}, {120, 5}, {255, 90}}, 120, "z 26.2, 253.6; p0 = 0.0795, 0.05 at 0"},
  };
  for (const auto& c : kCases) EXPECT_EQ(thresholdOf(c.bins), c.level) << c.why;
}

TEST(MomentsThreshold, EvenRampIsInTheMiddle) {
  std::vector<Bin> bins;
  for (int level = 0; level < 256; ++level) bins.push_back({level, 1});
  // z 53.6, 201.4; p0 = 0.5000003: 128 of 256 levels are not enough.
  EXPECT_EQ(thresholdOf(bins), 128);
}

TEST(MomentsThreshold, UniformImageOfEachLevelIs128) {
  const struct { int width, height; } kSizes[] = {{1, 1}, {7, 3}, {64, 50}};
  for (const auto& size : kSizes) {
    for (int level = 0; level < 256; ++level) {
      // The variance and both numerators are exactly 0: 0 / 0.
      EXPECT_EQ(thresh_global_moments(grayImage(uniformLevels(size.width, size.height, level))),
                128)
          << "level " << level << ", " << size.width << " x " << size.height;
    }
  }
}

TEST(MomentsThreshold, NegativeDiscriminantIs128) {
  // m 50.5, 2550.5, 128825.5; variance 0.25. In single precision m2 x m2 = 6505050 and
  // m1 x m3 = 6505688: c0 = 638 / 0.25 = 2552 (2550 with all digits), c1 = -101,
  // d = 10201 - 10208 = -7.
  EXPECT_EQ(thresholdOf({{50, 1}, {51, 1}}), 128);
  EXPECT_EQ(thresholdOf({{252, 17}, {254, 13}}), 128);  // d = -974
}

TEST(MomentsThreshold, NotANumberOrInfiniteDiscriminantIs128) {
  const struct {
    std::vector<Bin> bins;
    const char* why;
  } kCases[] = {
      {{{172, 999}, {173, 1}}, "c0 = -infinity, c1 = infinity: d = infinity"},
      {{{190, 1}, {191, 999}}, "c0 = -infinity, c1 = infinity: d = infinity"},
      {{{140, 999}, {141, 1}}, "c0 = infinity, c1 = -infinity: infinity - infinity"},
      {{{200, 999}, {201, 1}}, "c0 = 0 / 0"},
      {{{254, 999999}, {255, 1}}, "c0 = 0 / 0, c1 = 0 / 0"},
  };
  for (const auto& c : kCases) EXPECT_EQ(thresholdOf(c.bins), 128) << c.why;
}

TEST(MomentsThreshold, NoLevelAboveTheTargetIsMinus1) {
  const struct {
    std::vector<Bin> bins;
    const char* why;
  } kCases[] = {
      {{{254, 99}, {255, 1}}, "z 256, 1024; p0 = 1.0026, the whole sum is 1"},
      {{{1, 8}, {52, 651974}, {224, 4}}, "z 52.02, 190.4; p0 = 1.0001"},
      {{{254, 3}, {255, 1}}, "z 256, 256: p0 = 1.75 / 0 = infinity"},
      {{{63, 1}, {65, 1}}, "z 64, 64: p0 = 0 / 0, and nothing is above that"},
  };
  for (const auto& c : kCases) EXPECT_EQ(thresholdOf(c.bins), -1) << c.why;
}

TEST(MomentsThreshold, NothingIsReadOfAPageWithoutPixels) {
  // The shares are 0 / 0.
  for (const GrayRows& page : {GrayRows{nullptr, 0, 0, 0}, GrayRows{nullptr, 0, 0, 5},
                               GrayRows{nullptr, 8, 8, 0}, GrayRows{nullptr, 8, 0, 1}}) {
    EXPECT_EQ(momentsThreshold(page), 128) << page.width << " x " << page.height;
  }
}

// Pages that are all but uniform, the everyday case: rounding decides, and the search ends.
TEST(MomentsThreshold, OneDotOnAPage) {
  const struct {
    int pixels;
    int blackOnWhite, whiteOnBlack;
  } kCases[] = {
      {100, 255, 255}, {2400, 255, 255},   {10000, 0, 255},
      {90000, 0, 0},   {973200, 255, 255}, {8640000, 255, 255},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(thresholdOf({{0, 1}, {255, c.pixels - 1}}), c.blackOnWhite) << c.pixels;
    EXPECT_EQ(thresholdOf({{255, 1}, {0, c.pixels - 1}}), c.whiteOnBlack) << c.pixels;
  }
}

TEST(MomentsThreshold, OrderOfThePixelsDoesNotMatterAndNoneChanges) {
  const LumoImage image = grayImage({{64, 192, 192, 192}, {192, 192, 192, 192}});
  EXPECT_EQ(thresh_global_moments(image), 192);
  EXPECT_EQ(
      thresh_global_moments(grayImage({{192}, {192}, {192}, {64}, {192}, {192}, {192}, {192}})),
      192);
  EXPECT_EQ(levelsOf(image), (Levels{{64, 192, 192, 192}, {192, 192, 192, 192}}));
}

TEST(MomentsThreshold, ReadsOneBytePerPixelWhateverTheLayout) {
  const unsigned char pixels[] = {64, 192, 192, 192, 192, 192, 192, 192, 0, 0, 0, 0,
                                  0,  0,   0,   0,   0,   0,   0,   0,   0, 0, 0, 0};
  EXPECT_EQ(thresh_global_moments(LumoImage(8, 1, LUMO_IMG_RGB, pixels)), 192);
}

}  // namespace
