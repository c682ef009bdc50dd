// Reading and writing single pixels at every depth.
#include <gtest/gtest.h>

#include <limits>

#include "test_image.h"

namespace {

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

TEST(PixelIndex, OneBitPixelsStartAtTheMostSignificantBit) {
  CxImage image;
  image.Create(20, 2, 1, 0);
  image.SetPixelIndex(0, 1, 1);
  EXPECT_EQ(rowBytes(image, 1), (std::vector<int>{0x80, 0, 0, 0}));     // bit 7 - 0
  image.SetPixelIndex(9, 1, 255);                                       // 255 & 1 = 1
  EXPECT_EQ(rowBytes(image, 1), (std::vector<int>{0x80, 0x40, 0, 0}));  // bit 7 - 1
  image.SetPixelIndex(0, 1, 254);                                       // 254 & 1 = 0
  EXPECT_EQ(rowBytes(image, 1), (std::vector<int>{0, 0x40, 0, 0}));
  EXPECT_EQ(rowBytes(image, 0), (std::vector<int>{0, 0, 0, 0}));
}

TEST(PixelIndex, FourBitPixelsStartAtTheHighNibble) {
  CxImage image;
  image.Create(3, 1, 4, 0);
  image.SetPixelIndex(0, 0, 0xA);
  image.SetPixelIndex(1, 0, 0x5);
  image.SetPixelIndex(2, 0, 0xF7);  // & 15 = 7
  EXPECT_EQ(rowBytes(image, 0), (std::vector<int>{0xA5, 0x70, 0, 0}));
  image.SetPixelIndex(0, 0, 0x3);
  EXPECT_EQ(rowBytes(image, 0), (std::vector<int>{0x35, 0x70, 0, 0}));
  image.SetPixelIndex(1, 0, 0);
  EXPECT_EQ(rowBytes(image, 0), (std::vector<int>{0x30, 0x70, 0, 0}));
}

TEST(PixelIndex, EightBitPixelIsItsByte) {
  CxImage image;
  image.Create(3, 1, 8, 0);
  image.SetPixelIndex(1, 0, 200);
  EXPECT_EQ(rowBytes(image, 0), (std::vector<int>{0, 200, 0, 0}));
}

TEST(PixelIndex, EachPixelIsReadBackAndLeavesItsNeighbours) {
  const struct {
    std::uint32_t bpp;
    int levels;
  } kCases[] = {{1, 2}, {4, 16}, {8, 256}};
  for (const auto& c : kCases) {
    for (int width = 1; width <= 35; ++width) {
      const Levels expected = noiseLevels(width, 3, static_cast<unsigned>(width), c.levels);
      const IndexedImage checked(c.bpp, expected);
      CxImage blind;
      blind.Create(static_cast<std::uint32_t>(width), 3, c.bpp, 0);
      for (int y = 2; y >= 0; --y) {
        for (int x = width - 1; x >= 0; --x) {
          blind.BlindSetPixelIndex(x, y, checked.GetPixelIndex(x, y));
        }
      }
      EXPECT_EQ(levelsOf(checked), expected) << c.bpp << " bits, width " << width;
      EXPECT_EQ(levelsOf(blind), expected) << c.bpp << " bits, width " << width;
    }
  }
}

TEST(PixelIndex, BlindFormMasksLikeTheCheckedOne) {
  const struct {
    std::uint32_t bpp;
    int stored;  // of 0xB7
  } kCases[] = {{1, 1}, {4, 7}, {8, 0xB7}, {24, 0}};
  for (const auto& c : kCases) {
    CxImage image;
    image.Create(2, 1, c.bpp, 0);
    image.BlindSetPixelIndex(1, 0, 0xB7);
    EXPECT_EQ(image.BlindGetPixelIndex(1, 0), c.stored) << c.bpp;
    EXPECT_EQ(image.BlindGetPixelIndex(0, 0), 0) << c.bpp;
  }
}

TEST(PixelIndex, At24BitsReadsZeroAndWritesNothing) {
  const std::uint8_t array[] = {1, 2, 3, 4, 5, 6};
  CxImage image;
  ASSERT_TRUE(image.CreateFromArray(array, 2, 1, 24, 6, false));
  EXPECT_EQ(image.GetPixelIndex(0, 0), 0);
  EXPECT_EQ(image.GetPixelIndex(-1, 0), 0);
  EXPECT_EQ(image.BlindGetPixelIndex(1, 0), 0);
  image.SetPixelIndex(0, 0, 99);
  image.BlindSetPixelIndex(1, 0, 99);
  EXPECT_EQ(rowBytes(image, 0), (std::vector<int>{1, 2, 3, 4, 5, 6, 0, 0}));
}

constexpr struct {
  std::int64_t x, y;
} kOutside[] = {{-1, 0},
                {0, -1},
                {-1, -1},
                {5, 0},
                {0, 2},
                {5, 2},
                {7, 1},
                {kLeast, 0},
                {0, kLeast},
                {kMost, kMost},
                {std::int64_t{1} << 32, 0},
                {0, std::int64_t{1} << 32}};

TEST(PixelIndex, OutsideReadGivesTheFirstByteIsKept) {
  const struct {
    std::uint32_t bpp;
    int firstByte;
  } kCases[] = {
      {8, 3},     // pixel (0, 0)
      {4, 0x3C},  // pixels 3 and 12: more than the palette holds
      {1, 0xA0},  // pixels 1, 0, 1, 0, 0: likewise
  };
  for (const auto& c : kCases) {
    const IndexedImage image(c.bpp, {{3, 12, 1, 0, 0}, {9, 9, 9, 9, 9}});
    for (const auto& at : kOutside) {
      EXPECT_EQ(image.GetPixelIndex(at.x, at.y), c.firstByte)
          << c.bpp << " bits at (" << at.x << ", " << at.y << ")";
    }
  }
}

TEST(PixelIndex, OutsideWriteChangesNothing) {
  for (std::uint32_t bpp : {1u, 4u, 8u, 24u}) {
    IndexedImage image(bpp, {{3, 12, 1, 0, 0}, {9, 9, 9, 9, 9}});
    const std::vector<int> before = blockBytes(image);
    for (const auto& at : kOutside) image.SetPixelIndex(at.x, at.y, 255);
    EXPECT_EQ(blockBytes(image), before) << bpp;
  }
}

TEST(PixelColor, GoesThroughThePalette) {
  for (std::uint32_t bpp : {1u, 4u, 8u}) {
    IndexedImage image(bpp, {{0, 1, 0}});
    image.SetPaletteColor(1, 10, 20, 30, 40);
    for (bool alpha : {false, true}) {
      EXPECT_EQ(image.BlindGetPixelColor(1, 0, alpha), rgb(10, 20, 30, 40)) << bpp;
      EXPECT_EQ(image.BlindGetPixelColor(2, 0, alpha), rgb(0, 0, 0)) << bpp;
    }
  }
}

TEST(PixelColor, At24BitsIsThreeBytesWithNothingReserved) {
  const std::uint8_t array[] = {1, 2, 3, 4, 5, 6};
  CxImage image;
  ASSERT_TRUE(image.CreateFromArray(array, 2, 1, 24, 6, false));
  for (bool alpha : {false, true}) {
    EXPECT_EQ(image.BlindGetPixelColor(1, 0, alpha), rgb(6, 5, 4));  // stored blue first
  }
  image.BlindSetPixelColor(0, 0, rgb(70, 80, 90, 99), true);
  EXPECT_EQ(rowBytes(image, 0), (std::vector<int>{90, 80, 70, 4, 5, 6, 0, 0}));
}

TEST(PixelColor, SetStoresTheNearestIndex) {
  const struct {
    std::uint32_t bpp;
    int index;  // nearest to gray 120 on the ramp
  } kCases[] = {
      {1, 0},  // 120 to black, 135 to white
      {4, 7},  // 7 x 17 = 119, 8 x 17 = 136
      {8, 120},
  };
  for (const auto& c : kCases) {
    for (bool alpha : {false, true}) {
      IndexedImage image(c.bpp, {{1, 1, 1, 1, 1, 1, 1, 1, 1}});
      image.BlindSetPixelColor(1, 0, rgb(120, 120, 120), alpha);
      EXPECT_EQ(levelsOf(image), (Levels{{1, c.index, 1, 1, 1, 1, 1, 1, 1}})) << c.bpp;
    }
  }
}

}  // namespace
