// The two tattoo halftones: the chain as a whole.
#include "enhance/tattoo.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "enhance/error_diffusion.h"
#include "enhance/gray.h"
#include "enhance/moments_threshold.h"
#include "enhance/tone_curve.h"
#include "enhance/unsharp_mask.h"
#include "test_lumo.h"

namespace {

struct Variant {
  const char* name;
  LumoImage (*halftone)(LumoImage&);
  bool thresholdIsPivot;
  float low, high;
};

const Variant kVariants[] = {{"tattoo", lumoTattooDithering, false, 0.85F, 0.7F},
                             {"tattoo x8", lumoTattooDitheringX8, true, 0.5F, 1.5F}};

Picture halftone(const Variant& variant, const Levels& levels) {
  LumoImage image = grayImage(levels);
  return dotsOf(variant.halftone(image));
}

/// The steps one by one; the threshold is that of the page before its tones are bent.
Picture chain(const Variant& variant, const Levels& levels) {
  LumoImage gray = grayImage(levels);
  const int threshold = thresh_global_moments(gray);
  enh_piecewise_gamma(gray, variant.thresholdIsPivot ? threshold : 64, variant.low, variant.high);
  return dotsOf(edf_cus(enh_unsharp_mask(gray, 300.0F, 11), threshold));
}

/// Black text on white: strokes two dots wide.
Levels lineArt(int width, int height) {
  Levels levels = uniformLevels(width, height, 255);
  for (std::size_t y = 0; y < levels.size(); ++y) {
    for (std::size_t x = 0; x < levels[y].size(); ++x) {
      if (x % 11 < 2 || (x + y) % 17 < 2) levels[y][x] = 0;
    }
  }
  return levels;
}

Levels ramp(int width, int height) {
  Levels levels = uniformLevels(width, height, 0);
  for (auto& row : levels) {
    for (std::size_t x = 0; x < row.size(); ++x) row[x] = static_cast<int>(x) * 255 / (width - 1);
  }
  return levels;
}

TEST(Tattoo, NoPixelsComeBackAsACopyOfTheInput) {
  const struct { int width, height; } kCases[] = {{0, 5}, {5, 0}, {0, 0}};
  for (const Variant& variant : kVariants) {
    for (const auto& c : kCases) {
      LumoImage image(c.width, c.height, LUMO_IMG_BGRA);
      const LumoImage result = variant.halftone(image);
      EXPECT_EQ(result.width, c.width);
      EXPECT_EQ(result.height, c.height);
      EXPECT_EQ(result.color, LUMO_IMG_BGRA) << "the layout, too";
      EXPECT_EQ(result.channels, 4);
    }
  }
}

TEST(Tattoo, TwoNegativeSizesHaveBytesButNoPixels) {
  LumoImage image(-2, -3, LUMO_IMG_GRAY);  // a buffer of 6 bytes
  std::fill_n(image.data, 6, std::uint8_t{9});
  for (const LumoImage& result : {lumoTattooDithering(image), lumoTattooDitheringX8(image)}) {
    EXPECT_EQ(result.width, -2);
    EXPECT_EQ(result.height, -3);
  }
}

TEST(Tattoo, BlankPageIsBlankAndFullPageFull) {
  const struct { int width, height; } kSizes[] = {{1, 1}, {1, 9}, {9, 1}, {32, 20}, {812, 1218}};
  for (const Variant& variant : kVariants) {
    for (const auto& size : kSizes) {
      const auto all = [&size](char dot) {
        return Picture(static_cast<std::size_t>(size.height),
                       std::string(static_cast<std::size_t>(size.width), dot));
      };
      EXPECT_TRUE(
          samePicture(halftone(variant, uniformLevels(size.width, size.height, 255)), all('.')))
          << variant.name;
      EXPECT_TRUE(
          samePicture(halftone(variant, uniformLevels(size.width, size.height, 0)), all('#')))
          << variant.name;
    }
  }
}

TEST(Tattoo, UniformPageOfEachLevelEndsAsItsBentLevelDiffused) {
  for (const Variant& variant : kVariants) {
    // No real solution: threshold 128, which is the pivot of the X8 curve as well.
    const auto table =
        piecewiseGammaTable(variant.thresholdIsPivot ? 128 : 64, variant.low, variant.high);
    for (std::size_t level = 0; level < 256; ++level) {
      const Levels bent = uniformLevels(13, 7, table[level]);
      EXPECT_TRUE(samePicture(halftone(variant, uniformLevels(13, 7, static_cast<int>(level))),
                              dotsOf(edf_cus(grayImage(bent), 128))))
          << variant.name << ", level " << level;
    }
  }
}

TEST(Tattoo, PageFollowsTheChain) {
  const struct {
    const char* name;
    Levels levels;
  } kPages[] = {
      {"noise", noiseLevels(37, 29, 1)},     {"ramp", ramp(64, 16)},
      {"line art", lineArt(60, 40)},         {"one row", noiseLevels(50, 1, 2)},
      {"one column", noiseLevels(1, 50, 3)},
  };
  for (const Variant& variant : kVariants) {
    for (const auto& page : kPages) {
      EXPECT_TRUE(samePicture(halftone(variant, page.levels), chain(variant, page.levels)))
          << variant.name << ", " << page.name;
    }
  }
}

TEST(Tattoo, ThresholdIsNotComputedAgainIsKept) {
  const Levels levels = ramp(64, 16);
  for (const Variant& variant : kVariants) {
    LumoImage gray = grayImage(levels);
    const int threshold = thresh_global_moments(gray);
    enh_piecewise_gamma(gray, variant.thresholdIsPivot ? threshold : 64, variant.low, variant.high);
    const LumoImage sharp = enh_unsharp_mask(gray, 300.0F, 11);
    const int again = thresh_global_moments(sharp);
    ASSERT_NE(again, threshold);
    EXPECT_FALSE(samePicture(halftone(variant, levels), dotsOf(edf_cus(sharp, again))));
    EXPECT_TRUE(samePicture(halftone(variant, levels), dotsOf(edf_cus(sharp, threshold))));
  }
}

// The pivots at the ends of the scale: each page's threshold is stated, and the page ends.
TEST(Tattoo, ExtremeThresholds) {
  Levels oneDotOn254 = uniformLevels(10, 10, 254);
  oneDotOn254[5][5] = 255;
  Levels oneBlackDot = uniformLevels(100, 100, 255);
  oneBlackDot[50][50] = 0;
  Levels halves = uniformLevels(16, 8, 0);
  for (auto& row : halves) std::fill(row.begin() + 8, row.end(), 255);
  Levels neighbours = uniformLevels(2, 3, 50);
  for (auto& row : neighbours) row[1] = 51;
  const struct {
    const char* name;
    Levels levels;
    int threshold;
  } kPages[] = {
      {"no level qualifies", oneDotOn254, -1},
      {"one black dot on white", oneBlackDot, 0},
      {"no real solution", neighbours, 128},
      {"half black, half white", halves, 255},
  };
  for (const Variant& variant : kVariants) {
    for (const auto& page : kPages) {
      ASSERT_EQ(thresh_global_moments(grayImage(page.levels)), page.threshold) << page.name;
      EXPECT_TRUE(samePicture(halftone(variant, page.levels), chain(variant, page.levels)))
          << variant.name << ", " << page.name;
    }
  }
}

// Where no level qualifies, the X8 curve bends every level upwards from -1: other pivots make other
// dots of this page.
TEST(Tattoo, X8BendsAllLevelsFromMinus1WhereNoLevelQualifies) {
  Levels levels = uniformLevels(5, 3, 68);
  levels[2][3] = 71;
  LumoImage page = grayImage(levels);
  ASSERT_EQ(thresh_global_moments(page), -1);
  const auto dotsWithPivot = [&levels](int pivot) {
    LumoImage gray = grayImage(levels);
    enh_piecewise_gamma(gray, pivot, 0.5F, 1.5F);
    return dotsOf(edf_cus(enh_unsharp_mask(gray, 300.0F, 11), -1));
  };
  for (int pivot : {0, 128}) ASSERT_NE(dotsWithPivot(pivot), dotsWithPivot(-1)) << pivot;
  EXPECT_TRUE(samePicture(dotsOf(lumoTattooDitheringX8(page)), dotsWithPivot(-1)));
}

TEST(Tattoo, HalfBlackHalfWhiteIsDiffusedAtThreshold255) {
  // Threshold 255: only carried error makes a dot white, the first white column is lost and the
  // rest of the white half is above it.
  Levels halves = uniformLevels(6, 1, 0);
  for (std::size_t x = 3; x < 6; ++x) halves[0][x] = 255;
  // The curve keeps 0 and 255. Sharpened: 0 0 0 255 255 255 (both sides clamped). Then 255 is not
  // above 255: black, 255 carried; 255 + 128.98 = 383.98: white, 128.98 carried;
  // 255 - 13.50 + 65.24 = 306.74: white.
  for (const Variant& variant : kVariants) {
    EXPECT_TRUE(samePicture(halftone(variant, halves), {"####.."})) << variant.name;
  }
}

TEST(Tattoo, ResultHasTwoLevelsAndTheSizeAndTheInputStays) {
  for (const Variant& variant : kVariants) {
    const Levels levels = noiseLevels(23, 19, 4);
    LumoImage image = grayImage(levels);
    const LumoImage result = variant.halftone(image);
    EXPECT_EQ(result.width, 23);
    EXPECT_EQ(result.height, 19);
    EXPECT_EQ(result.color, LUMO_IMG_GRAY);
    EXPECT_EQ(result.channels, 1);
    for (int byte : bytesOf(result)) EXPECT_TRUE(byte == 0 || byte == 255) << byte;
    EXPECT_EQ(levelsOf(image), levels);
    EXPECT_EQ(image.color, LUMO_IMG_GRAY);
  }
}

TEST(Tattoo, ColoursAreMadeGrayFirst) {
  std::vector<unsigned char> pixels;
  for (const auto& row : noiseLevels(60, 12, 5)) {
    for (int level : row) pixels.push_back(static_cast<unsigned char>(level));
  }
  for (const Variant& variant : kVariants) {
    for (LUMO_IMG_COLOR color : {LUMO_IMG_BGR, LUMO_IMG_RGB, LUMO_IMG_BGRA, LUMO_IMG_RGBA}) {
      LumoImage image(15, 12, color, pixels.data());
      LumoImage gray = cvtGray(image);
      const std::vector<int> before = bytesOf(image);
      EXPECT_TRUE(samePicture(dotsOf(variant.halftone(image)), dotsOf(variant.halftone(gray))));
      EXPECT_EQ(bytesOf(image), before);
    }
  }
}

TEST(Tattoo, GrayOfOtherChannelsAndOneChannelOfColoursAreConverted) {
  std::vector<unsigned char> bytes;
  for (const auto& row : noiseLevels(60, 13, 7)) {
    for (int level : row) bytes.push_back(static_cast<unsigned char>(level));
  }
  // Every third byte counts.
  LumoImage grayOfThree(20, 12, LUMO_IMG_RGB, bytes.data());
  grayOfThree.color = LUMO_IMG_GRAY;
  // Each pixel is made of its byte and of the two that follow; the last row is there for the last
  // pixel.
  LumoImage coloursOfOne(60, 13, LUMO_IMG_GRAY, bytes.data());
  coloursOfOne.color = LUMO_IMG_BGR;
  coloursOfOne.height = 12;
  for (const Variant& variant : kVariants) {
    for (LumoImage* image : {&grayOfThree, &coloursOfOne}) {
      LumoImage gray = cvtGray(*image);
      ASSERT_NE(levelsOf(gray), levelsOf(*image));
      EXPECT_TRUE(samePicture(dotsOf(variant.halftone(*image)), dotsOf(variant.halftone(gray))))
          << variant.name << ", " << image->channels << " channels";
    }
  }
}

TEST(Tattoo, SameInputGivesTheSameDots) {
  const Levels levels = noiseLevels(40, 30, 6);
  for (const Variant& variant : kVariants) {
    EXPECT_TRUE(samePicture(halftone(variant, levels), halftone(variant, levels)));
  }
}

TEST(Tattoo, VariantsDiffer) {
  const Levels levels = ramp(64, 16);
  EXPECT_FALSE(samePicture(halftone(kVariants[0], levels), halftone(kVariants[1], levels)));
}

}  // namespace
