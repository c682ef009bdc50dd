// The gamma curve in two pieces.
#include "enhance/tone_curve.h"

#include <gtest/gtest.h>

#include <limits>

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

TEST(PiecewiseGamma, PowersThatAreNotANumberBecomeBlack) {
  constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  // What no int holds is cut to the least int, whose low byte is 0.
  const struct {
    const char* name;
    int pivot;
    float low, high;
    std::size_t level;
    int becomes;
    const char* why;
  } kCases[] = {
      {"lower side", 128, kNan, 1.0F, 64, 0, "a power that is not a number"},
      {"lower side", 128, kNan, 1.0F, 200, 199, "the upper side is as it was: 199.9999"},
      {"lower side", 128, kNan, 1.0F, 0, 128, "0 to it is -1: -128, of which the low byte is 128"},
      {"upper side", 128, 1.0F, kNan, 200, 0, "a power that is not a number"},
      {"upper side", 128, 1.0F, kNan, 64, 64, "the lower side is as it was"},
      {"upper side", 128, 1.0F, kNan, 128, 1, "0 to it is -1: -127 + 128"},
      {"infinite", 128, 1.0F, kInfinity, 255, 0, "infinity x ln 1"},
      {"infinite", 128, 1.0F, kInfinity, 200, 128, "0.57 to it is 0, and so the pivot"},
      {"minus infinite", 128, 1.0F, -kInfinity, 255, 0, "minus infinity x ln 1"},
      {"white is the pivot", 255, kNan, kNan, 254, 0, "a power that is not a number"},
      {"white is the pivot", 255, kNan, kNan, 255, 255, "there is no power to it"},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(piecewiseGammaTable(c.pivot, c.low, c.high)[c.level], c.becomes)
        << c.name << ", level " << c.level << ": " << c.why;
  }
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

TEST(PiecewiseGamma, BendsOneBytePerPixelWhateverTheLayout) {
  const unsigned char bytes[] = {128, 200, 128, 200, 128, 200, 128, 200};
  const struct {
    LUMO_IMG_COLOR color;
    std::vector<int> result;
  } kCases[] = {
      {LUMO_IMG_GRAY, {152, 214}},
      {LUMO_IMG_BGR, {152, 214, 128, 200, 128, 200}},
      {LUMO_IMG_RGBA, {152, 214, 128, 200, 128, 200, 128, 200}},
  };
  for (const auto& c : kCases) {
    LumoImage image(2, 1, c.color, bytes);
    enh_piecewise_gamma(image, 64, 0.85F, 0.7F);
    EXPECT_EQ(bytesOf(image), c.result) << "layout " << c.color;
  }
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
