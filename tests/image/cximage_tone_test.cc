// Brightness and contrast, tables, negative, and greater depths.
#include <gtest/gtest.h>

#include <array>

#include "test_image.h"

namespace {

using Table = std::array<int, 256>;

/// A row of every level once.
Levels everyLevel() {
  Levels levels(1);
  for (int i = 0; i < 256; ++i) levels[0].push_back(i);
  return levels;
}

/// What Light makes of each level.
Table lightTable(std::int32_t brightness, std::int32_t contrast) {
  IndexedImage image(8, everyLevel());
  EXPECT_TRUE(image.Light(brightness, contrast));
  Table table = {};
  for (int i = 0; i < 256; ++i) {
    table[static_cast<std::size_t>(i)] = image.GetPixelIndex(i, 0);
  }
  return table;
}

Table tableOf(int (*entry)(int)) {
  Table table = {};
  for (int i = 0; i < 256; ++i) table[static_cast<std::size_t>(i)] = entry(i);
  return table;
}

TEST(Light, ZeroAndZeroChangeNothing) {
  EXPECT_EQ(lightTable(0, 0), tableOf([](int i) { return i; }));
}

TEST(Light, ContrastOfMinus100FlattensToTheBrightness) {
  const struct {
    std::int32_t brightness;
    int level;  // 128 + brightness
  } kCases[] = {{0, 128}, {-128, 0}, {127, 255}, {-100, 28}, {100, 228}, {-200, 0}, {200, 255}};
  for (const auto& c : kCases) {
    Table flat;
    flat.fill(c.level);
    EXPECT_EQ(lightTable(c.brightness, -100), flat) << c.brightness;
  }
}

TEST(Light, BrightnessShiftsEachLevelByItsOwnAmount) {
  EXPECT_EQ(lightTable(200, 0), tableOf([](int i) { return i + 200 > 255 ? 255 : i + 200; }));
  EXPECT_EQ(lightTable(20, 0), tableOf([](int i) { return i > 235 ? 255 : i + 20; }));
  EXPECT_EQ(lightTable(-37, 0), tableOf([](int i) { return i < 37 ? 0 : i - 37; }));
}

TEST(Light, ContrastOf100DoublesTheSlopeAbout128) {
  const Table table = lightTable(0, 100);
  EXPECT_EQ(table[0], 0);      // (0 - 128) x 2 + 128 + 0.5 = -127.5
  EXPECT_EQ(table[64], 0);     // -128 + 128 + 0.5 = 0.5
  EXPECT_EQ(table[65], 2);     // -126 + 128
  EXPECT_EQ(table[128], 128);  // 0 + 128
  EXPECT_EQ(table[191], 254);  // 126 + 128
  for (std::size_t i = 192; i < 256; ++i) EXPECT_EQ(table[i], 255) << i;  // 128 + 128 and up
}

TEST(Light, HalvesAreRoundedUp) {
  const Table table = lightTable(0, -50);
  EXPECT_EQ(table[129], 129);  // 0.5 + 128 + 0.5 = 129.0
  EXPECT_EQ(table[127], 128);  // -0.5 + 128 + 0.5 = 128.0
  EXPECT_EQ(table[0], 64);     // -64 + 128
  EXPECT_EQ(table[255], 192);  // 63.5 + 128 + 0.5 = 192.0
}

TEST(Light, EachContrastAndBrightnessFollowsTheFormula) {
  for (int contrast = -100; contrast <= 100; ++contrast) {
    const float slope = static_cast<float>(contrast + 100) / 100.0F;
    for (int brightness = -100; brightness <= 100; brightness += 3) {
      const Table table = lightTable(brightness, contrast);
      for (int i = 0; i < 256; ++i) {
        const float value =
            static_cast<float>(i - 128) * slope + static_cast<float>(brightness + 128) + 0.5F;
        const int expected = value < 0 ? 0 : value >= 255 ? 255 : static_cast<int>(value);
        ASSERT_EQ(table[static_cast<std::size_t>(i)], expected)
            << "level " << i << ", brightness " << brightness << ", contrast " << contrast;
      }
    }
  }
}

TEST(Light, ContrastBelowMinus100TurnsTheScaleRoundIsKept) {
  // Slope -1: 256 - i.
  EXPECT_EQ(lightTable(0, -200), tableOf([](int i) { return i == 0 ? 255 : 256 - i; }));
}

TEST(Light, FarBeyondTheSettingsItClamps) {
  EXPECT_EQ(lightTable(100000, 0), tableOf([](int) { return 255; }));
  EXPECT_EQ(lightTable(-100000, 0), tableOf([](int) { return 0; }));
  EXPECT_EQ(lightTable(0, 1000000), tableOf([](int i) {
              return i < 128 ? 0 : i == 128 ? 128 : 255;
            }));
}

TEST(Light, LeavesPaletteAndPadding) {
  IndexedImage image(8, {{10, 20, 30}});
  image.SetPaletteColor(10, 1, 2, 3, 4);
  EXPECT_TRUE(image.Light(50, 0));
  EXPECT_EQ(rowBytes(image, 0), (std::vector<int>{60, 70, 80, 0}));
  EXPECT_EQ(image.GetPaletteColor(10), rgb(1, 2, 3, 4));
}

TEST(Light, OfAnEmptyImageFails) {
  CxImage image;
  EXPECT_FALSE(image.Light(0, 0));
}

std::array<std::uint8_t, 256> plusOne() {
  std::array<std::uint8_t, 256> table = {};
  for (std::size_t i = 0; i < 256; ++i) table[i] = static_cast<std::uint8_t>(i + 1);
  return table;
}

TEST(Lut, ReplacesEachIndexAndMasksItToTheDepth) {
  const auto table = plusOne();
  const struct {
    std::uint32_t bpp;
    Levels before, after;
  } kCases[] = {
      {8, {{0, 100, 255}}, {{1, 101, 0}}},
      {4, {{0, 9, 15}}, {{1, 10, 0}}},  // 15 + 1 = 16, & 15 = 0
      {1, {{0, 1, 1}}, {{1, 0, 0}}},    // 1 + 1 = 2, & 1 = 0
  };
  for (const auto& c : kCases) {
    IndexedImage image(c.bpp, c.before);
    EXPECT_TRUE(image.Lut(table.data()));
    EXPECT_EQ(levelsOf(image), c.after) << c.bpp;
  }
}

TEST(Lut, ChangesEachPixelOnceAndNothingBesideIt) {
  std::array<std::uint8_t, 256> next{};
  for (std::size_t i = 0; i < next.size(); ++i) next[i] = static_cast<std::uint8_t>(i + 1);
  // Rows of four bytes: of eight pixels, without padding, and of seven.
  IndexedImage full(4, {{0, 1, 2, 3, 4, 5, 6, 7}, {1, 1, 1, 1, 1, 1, 1, 1}});
  ASSERT_TRUE(full.Lut(next.data()));
  EXPECT_EQ(levelsOf(full), (Levels{{1, 2, 3, 4, 5, 6, 7, 8}, {2, 2, 2, 2, 2, 2, 2, 2}}));
  IndexedImage padded(4, {{0, 1, 2, 3, 4, 5, 6}});
  ASSERT_TRUE(padded.Lut(next.data()));
  EXPECT_EQ(rowBytes(padded, 0), (std::vector<int>{0x12, 0x34, 0x56, 0x70}));
}

TEST(Lut, At24BitsSucceedsAndChangesNothing) {
  const std::uint8_t array[] = {1, 2, 3, 4, 5, 6};
  CxImage image;
  ASSERT_TRUE(image.CreateFromArray(array, 2, 1, 24, 6, false));
  const std::vector<int> before = blockBytes(image);
  EXPECT_TRUE(image.Lut(plusOne().data()));
  EXPECT_TRUE(image.Light(50, 50));
  EXPECT_EQ(blockBytes(image), before);
}

TEST(Lut, NullTableOrEmptyImageFails) {
  IndexedImage image(8, {{1, 2}});
  EXPECT_FALSE(image.Lut(nullptr));
  EXPECT_EQ(levelsOf(image), (Levels{{1, 2}}));
  CxImage empty;
  EXPECT_FALSE(empty.Lut(plusOne().data()));
  EXPECT_FALSE(empty.Lut(nullptr));
}

TEST(Negative, InvertsEveryByteOfTheRowsPaddingIncluded) {
  const struct {
    std::uint32_t bpp;
    std::vector<int> bytes;  // after: pixels 1 0 1, then padding
  } kCases[] = {
      {1, {0x5F, 255, 255, 255}},  // ~1010'0000
      {4, {0xEF, 0xEF, 255, 255}},
      {8, {254, 255, 254, 255}},
      {24, {255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255}},
  };
  for (const auto& c : kCases) {
    IndexedImage image(c.bpp, {{1, 0, 1}});
    image.SetPaletteColor(1, 1, 2, 3, 4);
    const std::vector<int> before = blockBytes(image);
    image.Negative();
    EXPECT_EQ(rowBytes(image, 0), c.bytes) << c.bpp;
    EXPECT_EQ(image.GetPaletteColor(1), c.bpp < 24 ? rgb(1, 2, 3, 4) : rgb(0, 0, 0)) << c.bpp;
    image.Negative();
    EXPECT_EQ(blockBytes(image), before) << "twice at " << c.bpp;
  }
}

TEST(Negative, Of24BitsInvertsEachChannel) {
  const std::uint8_t array[] = {1, 2, 3};
  CxImage image;
  ASSERT_TRUE(image.CreateFromArray(array, 1, 1, 24, 3, false));
  image.Negative();
  EXPECT_EQ(image.BlindGetPixelColor(0, 0, false), rgb(252, 253, 254));
}

TEST(Negative, OfAnEmptyImageDoesNothing) {
  CxImage image;
  image.Negative();
  EXPECT_FALSE(image.IsValid());
}

TEST(IncreaseBpp, GoesUpOnlyAndOnlyTo4And8And24) {
  const struct {
    std::uint32_t from, to;
    bool done;
    std::uint32_t colors;  // afterwards
  } kCases[] = {
      {1, 0, false, 2},    {1, 1, false, 2},   {1, 2, false, 2},    {1, 4, true, 16},
      {1, 8, true, 256},   {1, 16, false, 2},  {1, 24, true, 0},    {1, 32, false, 2},
      {4, 1, false, 16},   {4, 4, true, 16},   {4, 8, true, 256},   {4, 16, false, 16},
      {4, 24, true, 0},    {8, 1, false, 256}, {8, 4, false, 256},  {8, 8, true, 256},
      {8, 16, false, 256}, {8, 24, true, 0},   {8, 32, false, 256}, {24, 4, false, 0},
      {24, 8, false, 0},   {24, 16, false, 0}, {24, 24, true, 0},   {24, 32, false, 0},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(testing::Message() << "from " << c.from << " to " << c.to);
    IndexedImage image(c.from, {{1, 0, 1}, {0, 1, 1}});
    const std::uint8_t* const bits = image.GetBits(0);
    const std::vector<int> before = blockBytes(image);
    EXPECT_EQ(image.IncreaseBpp(c.to), c.done);
    EXPECT_EQ(image.GetNumColors(), c.colors);
    EXPECT_EQ(image.GetWidth(), 3u);
    EXPECT_EQ(image.GetHeight(), 2u);
    if (!c.done || c.from == c.to) {
      EXPECT_EQ(image.GetBits(0), bits) << "the storage stays";
      EXPECT_EQ(blockBytes(image), before);
    }
    EXPECT_STREQ(image.GetLastError(), "");
  }
}

TEST(IncreaseBpp, KeepsIndicesAndPaletteEntries) {
  const struct {
    std::uint32_t from, to;
    Levels levels;
  } kCases[] = {{1, 4, {{1, 0, 1}}}, {1, 8, {{1, 0, 1}}}, {4, 8, {{15, 0, 9}}}};
  for (const auto& c : kCases) {
    IndexedImage image(c.from, c.levels);
    image.SetPaletteColor(1, 1, 2, 3, 4);
    const std::uint32_t old = image.GetNumColors();
    EXPECT_TRUE(image.IncreaseBpp(c.to));
    EXPECT_EQ(levelsOf(image), c.levels);
    EXPECT_EQ(image.GetPaletteColor(1), rgb(1, 2, 3, 4));
    for (std::uint32_t i = old; i < image.GetNumColors(); ++i) {
      EXPECT_EQ(image.GetPaletteColor(static_cast<std::uint8_t>(i)), rgb(0, 0, 0)) << i;
    }
  }
}

TEST(IncreaseBpp, OfADitheredPageHoldsIndices0And1) {
  IndexedImage image(8, {{0, 255, 255, 0}});
  ASSERT_TRUE(image.Dither(0));
  ASSERT_TRUE(image.IncreaseBpp(8));
  EXPECT_EQ(levelsOf(image), (Levels{{0, 1, 1, 0}}));
  EXPECT_EQ(image.GetPaletteColor(0), rgb(0, 0, 0));
  EXPECT_EQ(image.GetPaletteColor(1), rgb(255, 255, 255));
  for (int i = 2; i < 256; ++i) {
    EXPECT_EQ(image.GetPaletteColor(static_cast<std::uint8_t>(i)), rgb(0, 0, 0)) << i;
  }
  image.Negative();
  EXPECT_EQ(levelsOf(image), (Levels{{255, 254, 254, 255}}));
}

TEST(IncreaseBpp, To24BitsLooksUpTheColours) {
  IndexedImage bits(1, {{0, 1}});
  EXPECT_TRUE(bits.IncreaseBpp(24));
  EXPECT_EQ(rowBytes(bits, 0), (std::vector<int>{0, 0, 0, 255, 255, 255, 0, 0}));

  for (std::uint32_t bpp : {4u, 8u}) {
    IndexedImage image(bpp, {{2, 3}});
    image.SetPaletteColor(2, 10, 20, 30, 40);
    image.SetPaletteColor(3, 50, 60, 70, 80);
    EXPECT_TRUE(image.IncreaseBpp(24));
    EXPECT_EQ(rowBytes(image, 0), (std::vector<int>{30, 20, 10, 70, 60, 50, 0, 0})) << bpp;
  }
}

TEST(IncreaseBpp, LeavesThePaddingOfARow0) {
  IndexedImage image(4, {{1, 1, 1, 1, 1}});
  image.SetPaletteColor(0, 7, 8, 9, 0);
  image.SetPaletteColor(1, 1, 2, 3, 0);
  ASSERT_TRUE(image.IncreaseBpp(24));
  EXPECT_EQ(rowBytes(image, 0), (std::vector<int>{3, 2, 1, 3, 2, 1, 3, 2, 1, 3, 2, 1, 3, 2, 1, 0}));
}

TEST(IncreaseBpp, OfAnEmptyImageFails) {
  CxImage image;
  EXPECT_FALSE(image.IncreaseBpp(8));
}

TEST(IncreaseBpp, TooLargeFailsWithTheReasonAndLeavesTheImage) {
  // 32768 x 16384 = 2^29 dots fit at 1 bit; times 8 they are 2^32.
  CxImage image;
  ASSERT_NE(image.Create(32768, 16384, 1, 0), nullptr);
  image.SetPixelIndex(5, 16383, 1);
  EXPECT_FALSE(image.IncreaseBpp(8));
  EXPECT_STREQ(image.GetLastError(), "CXIMAGE_MAX_MEMORY exceeded");
  EXPECT_EQ(image.GetNumColors(), 2u);
  EXPECT_EQ(image.GetPixelIndex(5, 16383), 1);
}

TEST(IncreaseBpp, WithoutMemoryFailsWithTheReasonAndLeavesTheImage) {
  CxImage image;
  ASSERT_NE(image.Create(4096, 4096, 1, 0), nullptr);
  image.SetPixelIndex(5, 4095, 1);
  bool done = true;
  {
    const MemoryIsShort guard;
    done = image.IncreaseBpp(8);
  }
  EXPECT_FALSE(done);
  EXPECT_STREQ(image.GetLastError(), "CxImage::Create can't allocate memory");
  EXPECT_EQ(image.GetNumColors(), 2u);
  EXPECT_EQ(image.GetPixelIndex(5, 4095), 1);
}

}  // namespace
