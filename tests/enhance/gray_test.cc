// Gray from each colour layout.
#include "enhance/gray.h"

#include <gtest/gtest.h>

#include <array>

#include "test_lumo.h"

namespace {

/// The gray of one pixel.
int grayOf(LUMO_IMG_COLOR color, const std::array<unsigned char, 4>& pixel) {
  return cvtGray(LumoImage(1, 1, color, pixel.data())).data[0];
}

TEST(CvtGray, GrayIsCopied) {
  const Levels levels = noiseLevels(17, 9, 1);
  const LumoImage gray = cvtGray(grayImage(levels));
  EXPECT_EQ(gray.color, LUMO_IMG_GRAY);
  EXPECT_EQ(gray.channels, 1);
  EXPECT_EQ(levelsOf(gray), levels);
}

TEST(CvtGray, KnownPixels) {
  const struct {
    std::array<unsigned char, 4> pixel;
    int asBgr, asRgb;
    const char* why;
  } kCases[] = {
      {{255, 0, 0, 9}, 29, 76, "0.114 x 255 = 29.07; 0.299 x 255 = 76.245"},
      {{0, 255, 0, 9}, 150, 150, "0.587 x 255 = 149.685"},
      {{0, 0, 255, 9}, 76, 29, ""},
      {{255, 255, 255, 9}, 255, 255, ""},
      {{0, 0, 0, 9}, 0, 0, ""},
      {{10, 20, 30, 9}, 22, 18, "1.14 + 11.74 + 8.97 = 21.85; 2.99 + 11.74 + 3.42 = 18.15"},
      {{250, 0, 0, 9}, 29, 75, "0.114 x 250 = 28.5, half up; 0.299 x 250 = 74.75"},
      {{200, 100, 50, 9}, 96, 124, "22.8 + 58.7 + 14.95 = 96.45; 59.8 + 58.7 + 5.7 = 124.2"},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(grayOf(LUMO_IMG_BGR, c.pixel), c.asBgr) << c.why;
    EXPECT_EQ(grayOf(LUMO_IMG_BGRA, c.pixel), c.asBgr) << c.why;
    EXPECT_EQ(grayOf(LUMO_IMG_RGB, c.pixel), c.asRgb) << c.why;
    EXPECT_EQ(grayOf(LUMO_IMG_RGBA, c.pixel), c.asRgb) << c.why;
  }
}

TEST(CvtGray, EachLevelOfEachPrimary) {
  for (int level = 0; level < 256; ++level) {
    const auto byte = static_cast<unsigned char>(level);
    // Thousandths, rounded half up.
    EXPECT_EQ(grayOf(LUMO_IMG_RGB, {byte, 0, 0, 0}), (299 * level + 500) / 1000) << level;
    EXPECT_EQ(grayOf(LUMO_IMG_RGB, {0, byte, 0, 0}), (587 * level + 500) / 1000) << level;
    EXPECT_EQ(grayOf(LUMO_IMG_RGB, {0, 0, byte, 0}), (114 * level + 500) / 1000) << level;
    EXPECT_EQ(grayOf(LUMO_IMG_RGB, {byte, byte, byte, 0}), level);
    EXPECT_EQ(grayOf(LUMO_IMG_BGR, {byte, byte, byte, 0}), level);
  }
}

TEST(CvtGray, SumsAreMadeInSinglePrecisionAndInOrder) {
  const struct {
    LUMO_IMG_COLOR color;
    std::array<unsigned char, 4> pixel;
    int gray;
    const char* why;
  } kCases[] = {
      {LUMO_IMG_RGB,
       {1, 63, 230, 9},
       64,
       "0.299 + 36.981 + 26.22 = 63.5; from the other end below it"},
      {LUMO_IMG_RGBA, {1, 63, 230, 9}, 64, "the same"},
      {LUMO_IMG_RGB, {2, 0, 43, 9}, 6, "0.598 + 4.902 = 5.5; in double precision below it"},
      {LUMO_IMG_RGB, {4, 40, 16, 9}, 26, "1.196 + 23.48 + 1.824 = 26.5; here below it"},
      {LUMO_IMG_BGR,
       {1, 5, 249, 9},
       78,
       "0.114 + 2.935 + 74.451 = 77.5; from the other end below it"},
      {LUMO_IMG_BGRA, {1, 5, 249, 9}, 78, "the same"},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(grayOf(c.color, c.pixel), c.gray) << "layout " << c.color << ": " << c.why;
  }
}

TEST(CvtGray, PixelsFollowByTheirChannels) {
  const unsigned char bgr[] = {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255};
  EXPECT_EQ(levelsOf(cvtGray(LumoImage(2, 2, LUMO_IMG_BGR, bgr))), (Levels{{29, 150}, {76, 255}}));
  const unsigned char rgba[] = {255, 0, 0, 7, 0, 255, 0, 8, 0, 0, 255, 9};
  EXPECT_EQ(levelsOf(cvtGray(LumoImage(3, 1, LUMO_IMG_RGBA, rgba))), (Levels{{76, 150, 29}}));
}

TEST(CvtGray, ChannelsTellTheStepAndTheLayoutTheBytes) {
  const unsigned char pixels[] = {255, 0, 0, 7, 0, 0, 255, 9};
  const struct {
    LUMO_IMG_COLOR made, becomes;
    Levels levels;
    const char* why;
  } kCases[] = {
      {LUMO_IMG_BGRA, LUMO_IMG_BGR, {{29, 76}}, "four bytes a pixel, of which three count"},
      {LUMO_IMG_BGRA, LUMO_IMG_GRAY, {{255, 0}}, "four bytes a pixel, of which one counts"},
      {LUMO_IMG_RGB, LUMO_IMG_RGBA, {{76, 2}}, "three bytes a pixel, then 7 0 0: 2.093"},
  };
  for (const auto& c : kCases) {
    LumoImage image(2, 1, c.made, pixels);
    image.color = c.becomes;
    EXPECT_EQ(levelsOf(cvtGray(image)), c.levels) << c.why;
  }
}

TEST(CvtGray, UnknownLayoutCountsAsRgbWithAlpha) {
  const unsigned char pixels[] = {255, 0, 0, 7, 0, 0, 255, 9};
  for (int color : {5, 77, -1}) {
    const LumoImage gray = cvtGray(LumoImage(2, 1, static_cast<LUMO_IMG_COLOR>(color), pixels));
    EXPECT_EQ(gray.color, LUMO_IMG_GRAY);
    EXPECT_EQ(levelsOf(gray), (Levels{{76, 29}})) << color;
  }
}

TEST(CvtGray, NoPixelsGiveNoPixels) {
  const LumoImage gray = cvtGray(LumoImage(0, 5, LUMO_IMG_RGB));
  EXPECT_EQ(gray.width, 0);
  EXPECT_EQ(gray.height, 5);
  EXPECT_EQ(gray.color, LUMO_IMG_GRAY);
}

TEST(CvtGray, InputIsUnchanged) {
  const unsigned char pixels[] = {1, 2, 3, 4, 5, 6};
  const LumoImage image(2, 1, LUMO_IMG_BGR, pixels);
  cvtGray(image);
  EXPECT_EQ(bytesOf(image), (std::vector<int>{1, 2, 3, 4, 5, 6}));
}

}  // namespace
