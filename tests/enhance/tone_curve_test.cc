// The gamma curve in two pieces.
#include "enhance/tone_curve.h"

#include <gtest/gtest.h>

#include "test_lumo.h"

namespace {

TEST(PiecewiseGamma, ReferenceTables) {
  const struct {
    std::size_t level;
    int tattoo;  // pivot 64, exponents 0.85 and 0.7
    int x8;      // pivot 128, exponents 0.5 and 1.5
  } kCases[] = {
      {0, 0, 0},        // 0 to any power is 0
      {1, 1, 11},       // (1/64)^0.85 x 64 = 1.87; (1/128)^0.5 x 128 = 11.3
      {16, 19, 45},     // 0.25^0.85 x 64 = 19.7; 0.125^0.5 x 128 = 45.3
      {32, 35, 64},     // 0.5^0.85 x 64 = 35.5; 0.5 x 128
      {63, 63, 89},     //
      {64, 64, 90},     // 0 + 64; 0.5^0.5 x 128 = 90.5
      {65, 68, 91},     // (1/191)^0.7 x 191 + 64 = 68.8
      {128, 152, 128},  // (64/191)^0.7 x 191 + 64 = 152.9; 0 + 128
      {200, 214, 182},  //
      {254, 254, 253},  //
      {255, 255, 255},  // 1 x 191 + 64; 1 x 127 + 128
  };
  const auto tattoo = piecewiseGammaTable(64, 0.85F, 0.7F);
  const auto x8 = piecewiseGammaTable(128, 0.5F, 1.5F);
  for (const auto& c : kCases) {
    EXPECT_EQ(tattoo[c.level], c.tattoo) << "level " << c.level;
    EXPECT_EQ(x8[c.level], c.x8) << "level " << c.level;
  }
}

TEST(PiecewiseGamma, ZeroPivotAndWhiteStayFixedAndTheCurveRises) {
  const struct { float low, high; } kExponents[] = {{0.85F, 0.7F}, {0.5F, 1.5F}, {1.0F, 1.0F}};
  for (const auto& exponents : kExponents) {
    for (int pivot = 1; pivot <= 254; ++pivot) {
      const auto table = piecewiseGammaTable(pivot, exponents.low, exponents.high);
      EXPECT_EQ(table[0], 0) << pivot;
      EXPECT_EQ(table[static_cast<std::size_t>(pivot)], pivot);
      EXPECT_EQ(table[255], 255) << pivot;
      for (std::size_t i = 1; i < 256; ++i) {
        EXPECT_GE(table[i], table[i - 1]) << "pivot " << pivot << ", level " << i;
      }
    }
  }
}

TEST(PiecewiseGamma, ExponentBelow1BrightensAndAbove1Darkens) {
  const auto brighter = piecewiseGammaTable(128, 0.5F, 0.5F);
  const auto darker = piecewiseGammaTable(128, 2.0F, 2.0F);
  for (std::size_t level : {20u, 60u, 100u, 160u, 200u, 240u}) {
    EXPECT_GT(brighter[level], level);
    EXPECT_LT(darker[level], level);
  }
}

TEST(PiecewiseGamma, Pivot255KeepsWhite) {
  // Level 255 has 0 / 0 above the pivot: it is the pivot itself. All others lie below it.
  const auto table = piecewiseGammaTable(255, 0.5F, 1.5F);
  EXPECT_EQ(table[255], 255);
  EXPECT_EQ(table[0], 0);
  EXPECT_EQ(table[1], 15);     // (1/255)^0.5 x 255 = 15.97
  EXPECT_EQ(table[64], 127);   // 127.75
  EXPECT_EQ(table[128], 180);  // 180.67
  EXPECT_EQ(table[254], 254);  // 254.4995
}

TEST(PiecewiseGamma, PivotOf0OrBelowUsesTheUpperSideOnly) {
  const auto zero = piecewiseGammaTable(0, 0.5F, 1.5F);
  EXPECT_EQ(zero[0], 0);
  EXPECT_EQ(zero[64], 32);   // (64/255)^1.5 x 255 = 32.06
  EXPECT_EQ(zero[128], 90);  // 90.69
  EXPECT_EQ(zero[255], 255);
  const auto below = piecewiseGammaTable(-1, 0.5F, 1.5F);
  EXPECT_EQ(below[0], 0);      // (1/256)^1.5 x 256 - 1 = -0.94, toward zero
  EXPECT_EQ(below[64], 31);    // (65/256)^1.5 x 256 - 1 = 31.75
  EXPECT_EQ(below[255], 255);  // 1 x 256 - 1
}

TEST(PiecewiseGamma, OnlyTheLowByteIsStoredIsKept) {
  // Pivot 300: (254/300)^0.5 x 300 = 276.04, less 256.
  EXPECT_EQ(piecewiseGammaTable(300, 0.5F, 1.5F)[254], 20);
}

TEST(PiecewiseGamma, EntriesAreTruncatedNotRoundedIsKept) {
  EXPECT_EQ(piecewiseGammaTable(128, 0.5F, 1.5F)[64], 90);  // 90.51
  EXPECT_EQ(piecewiseGammaTable(64, 0.85F, 0.7F)[16], 19);  // 19.7
}

TEST(PiecewiseGamma, BendsEachByteInPlace) {
  LumoImage image = grayImage({{0, 64, 255}, {1, 128, 200}});
  enh_piecewise_gamma(image, 64, 0.85F, 0.7F);
  EXPECT_EQ(levelsOf(image), (Levels{{0, 64, 255}, {1, 152, 214}}));
}

TEST(PiecewiseGamma, ImageFollowsTheTable) {
  for (int pivot : {-1, 0, 1, 64, 128, 200, 254, 255}) {
    const auto table = piecewiseGammaTable(pivot, 0.5F, 1.5F);
    Levels levels(1);
    std::vector<int> expected;
    for (int i = 0; i < 256; ++i) {
      levels[0].push_back(i);
      expected.push_back(table[static_cast<std::size_t>(i)]);
    }
    LumoImage image = grayImage(levels);
    enh_piecewise_gamma(image, pivot, 0.5F, 1.5F);
    EXPECT_EQ(levelsOf(image)[0], expected) << "pivot " << pivot;
  }
}

TEST(PiecewiseGamma, NoPixelsAreNoWork) {
  LumoImage image(0, 4, LUMO_IMG_GRAY);
  enh_piecewise_gamma(image, 64, 0.85F, 0.7F);
  EXPECT_EQ(image.height, 4);
}

}  // namespace
