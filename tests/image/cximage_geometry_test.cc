// Turning, mirroring, margins and lines.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "test_image.h"

namespace {

constexpr tagRGBQUAD kWhite = rgb(255, 255, 255);

std::uint16_t depthOf(CxImage& image) {
  switch (image.GetNumColors()) {
    case 2:
      return 1;
    case 16:
      return 4;
    case 256:
      return 8;
    default:
      return 24;
  }
}

TEST(Rotate180, TurnsRowsAndColumns) {
  IndexedImage image(8, {{1, 2, 3}, {4, 5, 6}});
  EXPECT_TRUE(image.Rotate180(nullptr));
  EXPECT_EQ(levelsOf(image), (Levels{{6, 5, 4}, {3, 2, 1}}));
}

TEST(Rotate180, TwiceRestoresAn8BitImage) {
  for (int width = 1; width <= 9; ++width) {
    for (int height = 1; height <= 4; ++height) {
      IndexedImage image(8, noiseLevels(width, height, 1));
      image.SetPaletteColor(3, 1, 2, 3, 4);
      const std::vector<int> before = blockBytes(image);
      EXPECT_TRUE(image.Rotate180(nullptr));
      EXPECT_TRUE(image.Rotate180(nullptr));
      EXPECT_EQ(blockBytes(image), before) << width << " x " << height;
    }
  }
}

TEST(Rotate180, WithADestinationLeavesTheSource) {
  IndexedImage image(8, {{1, 2, 3}, {4, 5, 6}});
  image.SetPaletteColor(3, 1, 2, 3, 4);
  const std::vector<int> before = blockBytes(image);
  IndexedImage destination(8, {{9}});
  EXPECT_TRUE(image.Rotate180(&destination));
  EXPECT_EQ(levelsOf(destination), (Levels{{6, 5, 4}, {3, 2, 1}}));
  EXPECT_EQ(destination.GetPaletteColor(3), rgb(1, 2, 3, 4));
  EXPECT_EQ(blockBytes(image), before);
}

TEST(Rotate180, OntoItselfIsInPlace) {
  IndexedImage image(8, {{1, 2}, {3, 4}});
  EXPECT_TRUE(image.Rotate180(&image));
  EXPECT_EQ(levelsOf(image), (Levels{{4, 3}, {2, 1}}));
}

TEST(Rotate180, OfAnEmptyImageFailsAndLeavesTheDestination) {
  CxImage image;
  EXPECT_FALSE(image.Rotate180(nullptr));
  IndexedImage destination(8, {{9}});
  EXPECT_FALSE(image.Rotate180(&destination));
  EXPECT_EQ(levelsOf(destination), (Levels{{9}}));
}

TEST(Rotate180, TooLargeForADestinationEmptiesIt) {
  CxImage image;  // 2^29 dots, times 8 bits
  ASSERT_NE(image.Create(32768, 16384, 1, 0), nullptr);
  IndexedImage destination(8, {{9}});
  EXPECT_TRUE(image.Rotate180(&destination));
  EXPECT_FALSE(destination.IsValid());
  EXPECT_STREQ(destination.GetLastError(), "CXIMAGE_MAX_MEMORY exceeded");
  EXPECT_TRUE(image.IsValid());
  EXPECT_STREQ(image.GetLastError(), "");
}

TEST(Rotate180, ResultAlwaysHas8BitsIsKept) {
  for (std::uint32_t bpp : {1u, 4u}) {
    IndexedImage image(bpp, {{1, 0, 0}, {1, 1, 0}});
    image.SetPaletteColor(1, 10, 20, 30, 40);
    EXPECT_TRUE(image.Rotate180(nullptr));
    EXPECT_EQ(image.GetNumColors(), 256u);
    EXPECT_EQ(levelsOf(image), (Levels{{0, 1, 1}, {0, 0, 1}}));
    EXPECT_EQ(image.GetPaletteColor(1), rgb(10, 20, 30, 40));
    EXPECT_EQ(image.GetPaletteColor(16), rgb(0, 0, 0));
  }
  const std::uint8_t array[] = {1, 2, 3, 4, 5, 6};
  CxImage colours;  // its pixels read as index 0
  ASSERT_TRUE(colours.CreateFromArray(array, 2, 1, 24, 6, false));
  EXPECT_TRUE(colours.Rotate180(nullptr));
  EXPECT_EQ(levelsOf(colours), (Levels{{0, 0}}));
}

TEST(Mirror, ReversesTheWidthBytesOfEachRowAndNoPadding) {
  for (int width = 1; width <= 9; ++width) {
    Levels levels = noiseLevels(width, 3, 2);
    IndexedImage image(8, levels);
    image.SetPaletteColor(5, 1, 2, 3, 4);
    const std::uint32_t stride = image.GetEffWidth();
    for (std::uint32_t y = 0; y < 3; ++y) {
      std::fill(image.GetBits(y) + width, image.GetBits(y) + stride, std::uint8_t{0xEE});
    }

    image.Mirror();

    for (std::uint32_t y = 0; y < 3; ++y) {
      std::vector<int> expected(levels[y].rbegin(), levels[y].rend());
      expected.resize(stride, 0);
      EXPECT_EQ(rowBytes(image, y), expected) << "width " << width;
    }
    EXPECT_EQ(image.GetPaletteColor(5), rgb(1, 2, 3, 4));
  }
}

TEST(Mirror, OfAnEmptyImageDoesNothing) {
  CxImage image;
  image.Mirror();
  EXPECT_FALSE(image.IsValid());
}

TEST(Mirror, KeepsThePaletteEntriesThatThereAre) {
  for (const std::uint32_t bpp : {1u, 4u}) {
    CxImage image;
    image.Create(3, 1, bpp, 0);
    const auto last = static_cast<std::uint8_t>(image.GetNumColors() - 1);
    image.SetPaletteColor(0, 10, 20, 30, 40);
    image.SetPaletteColor(last, 50, 60, 70, 80);
    image.Mirror();
    EXPECT_EQ(image.GetNumColors(), 256u);
    EXPECT_EQ(image.GetPaletteColor(0), rgb(10, 20, 30, 40)) << bpp << " bits";
    EXPECT_EQ(image.GetPaletteColor(last), rgb(50, 60, 70, 80)) << bpp << " bits";
    for (int i = last + 1; i < 256; ++i) {
      EXPECT_EQ(image.GetPaletteColor(static_cast<std::uint8_t>(i)), rgb(0, 0, 0)) << i;
    }
  }
}

TEST(Mirror, BytesOf24BitRowsAreReversedAsFarAsTheResultHasThem) {
  // Width 3: the last byte that is moved is (3 - 1) x 3 = 6, to byte 0; the rows of the result have
  // four bytes.
  CxImage image;
  image.Create(3, 1, 24, 0);
  for (std::uint8_t i = 0; i < 9; ++i) image.GetBits(0)[i] = i;
  image.Mirror();
  EXPECT_EQ(rowBytes(image, 0), (std::vector<int>{6, 5, 4, 3}));
}

TEST(Mirror, BytesOf4BitRowsAreReversedAsIfTheyWerePixels) {
  // Width 6: byte i takes byte 5 - i, of which the row of four bytes has 3, 2, 1 and 0.
  CxImage image;
  image.Create(6, 1, 4, 0);
  for (std::uint8_t i = 0; i < 4; ++i) image.GetBits(0)[i] = static_cast<std::uint8_t>(i + 1);
  image.Mirror();
  EXPECT_EQ(rowBytes(image, 0), (std::vector<int>{0, 0, 4, 3, 2, 1, 0, 0}));
}

TEST(Mirror, OfOtherDepthsMovesTheBytesThatBothRowsHave) {
  for (const std::uint32_t bpp : {1u, 4u, 24u}) {
    for (std::uint32_t width = 1; width <= 40; ++width) {
      CxImage image;
      image.Create(width, 2, bpp, 0);
      const int stride = static_cast<int>(image.GetEffWidth());
      for (std::uint32_t y = 0; y < 2; ++y) {
        for (int i = 0; i < stride; ++i) {
          image.GetBits(y)[i] = static_cast<std::uint8_t>(1 + i + 125 * static_cast<int>(y));
        }
      }
      image.Mirror();
      const int last = static_cast<int>(width - 1) * (bpp == 24 ? 3 : 1);
      for (std::uint32_t y = 0; y < 2; ++y) {
        std::vector<int> expected(image.GetEffWidth(), 0);
        for (int i = 0; i < static_cast<int>(expected.size()) && i <= last; ++i) {
          const int from = last - i;
          if (from < stride) {
            expected[static_cast<std::size_t>(i)] = 1 + from + 125 * static_cast<int>(y);
          }
        }
        EXPECT_EQ(rowBytes(image, y), expected) << bpp << " bits, width " << width;
      }
    }
  }
}

// The rows of the 8-bit result are shorter than 24-bit rows and longer than 1- and 4-bit rows: the
// sanitizers watch that nothing outside the blocks is touched.
TEST(Mirror, AtOtherDepthsStaysInsideItsBlocks) {
  for (std::uint32_t bpp : {1u, 4u, 24u}) {
    for (std::uint32_t width = 1; width <= 70; ++width) {
      CxImage image;
      image.Create(width, 2, bpp, 0);
      image.Mirror();
      ASSERT_TRUE(image.IsValid());
      EXPECT_EQ(depthOf(image), 8);
      EXPECT_EQ(image.GetWidth(), width);
      EXPECT_EQ(image.GetHeight(), 2u);
      EXPECT_EQ(image.GetSize(), 40 + 1024 + 2 * image.GetEffWidth());
    }
  }
}

TEST(Expand, PutsTheBottomMarginFirst) {
  IndexedImage image(8, {{1, 2}, {3, 4}});
  EXPECT_TRUE(image.Expand(1, 1, 2, 3, rgb(7, 7, 7)));  // left, top, right, bottom
  EXPECT_EQ(levelsOf(image), (Levels{
                                 {7, 7, 7, 7, 7},
                                 {7, 7, 7, 7, 7},
                                 {7, 7, 7, 7, 7},
                                 {7, 1, 2, 7, 7},
                                 {7, 3, 4, 7, 7},
                                 {7, 7, 7, 7, 7},
                             }));
}

TEST(Expand, TenByTenBecomesFifteenByFifteen) {
  // Width 10 + 2 + 3, height 10 + 1 + 4; the source at x 2..11 and y 4..13.
  for (std::uint32_t bpp : {1u, 4u, 8u}) {
    const Levels source = noiseLevels(10, 10, 3, 2);
    IndexedImage image(bpp, source);
    EXPECT_TRUE(image.Expand(2, 1, 3, 4, kWhite));
    const int white = static_cast<int>(image.GetNumColors()) - 1;
    Levels expected = uniformLevels(15, 15, white);
    for (std::size_t y = 0; y < 10; ++y) {
      std::copy(source[y].begin(), source[y].end(), expected[y + 4].begin() + 2);
    }
    EXPECT_EQ(levelsOf(image), expected) << bpp << " bits";
  }
}

TEST(Expand, FillsThePaddingOf8BitRowsToo) {
  IndexedImage image(8, {{1}});
  EXPECT_TRUE(image.Expand(1, 0, 0, 0, kWhite));
  EXPECT_EQ(rowBytes(image, 0), (std::vector<int>{255, 1, 255, 255}));
}

TEST(Expand, WithoutMarginsIsAnIdenticalCopy) {
  for (std::uint32_t bpp : {1u, 4u, 8u, 24u}) {
    IndexedImage image(bpp, noiseLevels(8, 3, 4));
    const std::vector<int> before = blockBytes(image);
    EXPECT_TRUE(image.Expand(0, 0, 0, 0, kWhite));
    EXPECT_EQ(blockBytes(image), before) << bpp;
  }
}

TEST(Expand, CanvasIsTheNearestPaletteEntry) {
  // 200 is 0 + 200 from black and 55 from white.
  for (std::uint32_t bpp : {1u, 4u, 8u}) {
    IndexedImage image(bpp, {{0}});
    image.SetPaletteColor(1, 200, 0, 0, 0);
    EXPECT_TRUE(image.Expand(0, 0, 1, 0, rgb(190, 5, 5)));
    EXPECT_EQ(levelsOf(image), (Levels{{0, 1}})) << bpp;
    EXPECT_EQ(image.GetPaletteColor(1), rgb(200, 0, 0)) << bpp;
  }
}

// The search leaves its colour in the cache of the canvas, which becomes the image's.
TEST(Expand, CanvasColourIsTheCachedOneIsKept) {
  for (std::uint32_t bpp : {1u, 4u, 8u}) {
    IndexedImage image(bpp, {{0}});
    image.SetPaletteColor(1, 200, 0, 0, 0);
    image.GetNearestIndex(kWhite);
    EXPECT_TRUE(image.Expand(0, 0, 1, 0, rgb(190, 5, 5)));
    image.SetPaletteColor(1, 0, 0, 0, 0);
    image.SetPaletteColor(0, 190, 5, 5, 0);
    EXPECT_EQ(image.GetNearestIndex(rgb(190, 5, 5)), 1) << bpp << " bits: not searched again";
  }
}

TEST(Expand, At24BitsWritesTheColourItself) {
  const std::uint8_t array[] = {1, 2, 3, 4, 5, 6};
  CxImage image;
  ASSERT_TRUE(image.CreateFromArray(array, 2, 1, 24, 6, false));
  EXPECT_TRUE(image.Expand(1, 1, 1, 0, rgb(70, 80, 90)));
  EXPECT_EQ(rowBytes(image, 0), (std::vector<int>{90, 80, 70, 1, 2, 3, 4, 5, 6, 90, 80, 70}));
  EXPECT_EQ(rowBytes(image, 1), (std::vector<int>{90, 80, 70, 90, 80, 70, 90, 80, 70, 90, 80, 70}));
}

TEST(Expand, At24BitsLeavesThePaddingOfARow0) {
  const std::uint8_t array[] = {1, 2, 3, 4, 5, 6};
  CxImage image;
  ASSERT_TRUE(image.CreateFromArray(array, 2, 1, 24, 6, false));
  EXPECT_TRUE(image.Expand(1, 1, 2, 0, rgb(70, 80, 90)));
  ASSERT_EQ(image.GetEffWidth(), 16U);
  EXPECT_EQ(rowBytes(image, 0)[15], 0);
  EXPECT_EQ(rowBytes(image, 1)[15], 0);
}

TEST(Expand, NegativeMarginFailsAndLeavesTheImage) {
  const struct {
    std::int64_t left, top, right, bottom;
  } kCases[] = {{-1, 0, 0, 0}, {0, -1, 0, 0}, {0, 0, -1, 0},
                {0, 0, 0, -1}, {5, 5, 5, -1}, {std::numeric_limits<std::int64_t>::min(), 0, 0, 0}};
  for (const auto& c : kCases) {
    IndexedImage image(8, {{1, 2}, {3, 4}});
    const std::vector<int> before = blockBytes(image);
    EXPECT_FALSE(image.Expand(c.left, c.top, c.right, c.bottom, kWhite));
    EXPECT_EQ(blockBytes(image), before);
    EXPECT_STREQ(image.GetLastError(), "");
  }
}

TEST(Expand, OfAnEmptyImageFails) {
  CxImage image;
  EXPECT_FALSE(image.Expand(1, 1, 1, 1, kWhite));
  EXPECT_FALSE(image.IsValid());
}

TEST(Expand, TooLargeFailsWithTheReasonAndLeavesTheImage) {
  // 65536 x 8192 x 8 = 2^32
  IndexedImage image(8, {{1, 2}, {3, 4}});
  const std::vector<int> before = blockBytes(image);
  EXPECT_FALSE(image.Expand(65534, 8190, 0, 0, kWhite));
  EXPECT_EQ(blockBytes(image), before);
  EXPECT_STREQ(image.GetLastError(), "CXIMAGE_MAX_MEMORY exceeded");
}

TEST(Expand, SizesBeyond32BitsFailWithTheReasonAndLeaveTheImage) {
  constexpr std::int64_t kMost = 0xFFFFFFFF;
  const struct {
    std::int64_t left, top, right, bottom;
  } kCases[] = {{kMost, 0, 0, 0},  // 2 more than 32 bits hold
                {0, kMost, 0, 0},     {0, 0, kMost - 1, 0}, {0, 0, 0, kMost - 1},  // 1 more
                {kMost + 1, 0, 0, 0}, {0, 0, 0, INT64_MAX}, {INT64_MAX, 0, INT64_MAX, 0}};
  for (const auto& c : kCases) {
    IndexedImage image(8, {{1, 2}, {3, 4}});
    EXPECT_FALSE(image.Expand(c.left, c.top, c.right, c.bottom, kWhite));
    EXPECT_STREQ(image.GetLastError(), "CXIMAGE_MAX_MEMORY exceeded");
    EXPECT_EQ(levelsOf(image), (Levels{{1, 2}, {3, 4}}));
  }
}

TEST(Expand, WithoutMemoryFailsWithTheReasonAndLeavesTheImage) {
  IndexedImage image(8, {{1, 2}, {3, 4}});
  const std::vector<int> before = blockBytes(image);
  bool done = true;
  {
    const MemoryIsShort guard;
    done = image.Expand(10000, 10000, 0, 0, kWhite);
  }
  EXPECT_FALSE(done);
  EXPECT_EQ(blockBytes(image), before);
  EXPECT_STREQ(image.GetLastError(), "CxImage::Create can't allocate memory");
}

TEST(Expand, PixelCountThatWrapsFailsAndLeavesTheImage) {
  // 65536 x 65536 = 2^32
  IndexedImage image(8, {{1, 2}, {3, 4}});
  const std::vector<int> before = blockBytes(image);
  EXPECT_FALSE(image.Expand(65534, 65534, 0, 0, kWhite));
  EXPECT_EQ(blockBytes(image), before);
  EXPECT_STREQ(image.GetLastError(), "CxImage::Create can't allocate memory");
}

// The new width is 2 again when it is cut to 32 bits, but the old rows would go 2^32 bytes away.
TEST(Expand, MarginBeyond32BitsFails) {
  const std::int64_t kFar = std::int64_t{1} << 32;
  const struct {
    std::int64_t left, top, right, bottom;
  } kCases[] = {{kFar, 0, 0, 0}, {0, kFar, 0, 0}, {0, 0, kFar, 0}, {0, 0, 0, kFar}};
  for (const auto& c : kCases) {
    IndexedImage image(8, {{1, 2}, {3, 4}});
    EXPECT_FALSE(image.Expand(c.left, c.top, c.right, c.bottom, kWhite));
    EXPECT_EQ(levelsOf(image), (Levels{{1, 2}, {3, 4}}));
  }
}

TEST(MakeCenter, CentresInColumnsOfZero) {
  const struct {
    std::int32_t width;
    Levels expected;
  } kCases[] = {
      {5, {{0, 1, 2, 3, 0}}},           // (5 - 3) / 2 = 1
      {6, {{0, 1, 2, 3, 0, 0}}},        // 3 / 2 = 1
      {4, {{1, 2, 3, 0}}},              // 1 / 2 = 0
      {8, {{0, 0, 1, 2, 3, 0, 0, 0}}},  // 5 / 2 = 2
  };
  for (const auto& c : kCases) {
    IndexedImage image(8, {{1, 2, 3}});
    image.SetPaletteColor(2, 1, 2, 3, 4);
    image.MakeCenter(c.width);
    EXPECT_EQ(levelsOf(image), c.expected);
    EXPECT_EQ(image.GetPaletteColor(2), rgb(1, 2, 3, 4));
  }
}

TEST(MakeCenter, OfARowWithoutPaddingTakesNothingFromTheNext) {
  IndexedImage image(8, {{1, 2, 3, 4}, {5, 6, 7, 8}});
  image.MakeCenter(8);
  EXPECT_EQ(levelsOf(image), (Levels{{0, 0, 1, 2, 3, 4, 0, 0}, {0, 0, 5, 6, 7, 8, 0, 0}}));
}

TEST(MakeCenter, NotWiderDoesNothing) {
  for (std::int32_t width : {3, 2, 0, -1, std::numeric_limits<std::int32_t>::min()}) {
    IndexedImage image(1, {{1, 0, 1}});
    const std::vector<int> before = blockBytes(image);
    image.MakeCenter(width);
    EXPECT_EQ(blockBytes(image), before) << width;
  }
  CxImage empty;
  empty.MakeCenter(10);
  EXPECT_FALSE(empty.IsValid());
}

TEST(MakeCenter, ResultAlwaysHas8BitsIsKept) {
  for (const std::uint32_t bpp : {1u, 4u}) {
    IndexedImage image(bpp, {{1, 0, 1}, {0, 1, 1}});
    const auto last = static_cast<std::uint8_t>(image.GetNumColors() - 1);
    image.SetPaletteColor(0, 10, 20, 30, 40);
    image.SetPaletteColor(last, 50, 60, 70, 80);
    image.MakeCenter(5);
    EXPECT_EQ(image.GetNumColors(), 256u);
    EXPECT_EQ(levelsOf(image), (Levels{{0, 1, 0, 1, 0}, {0, 0, 1, 1, 0}})) << bpp << " bits";
    EXPECT_EQ(image.GetPaletteColor(0), rgb(10, 20, 30, 40)) << bpp << " bits";
    EXPECT_EQ(image.GetPaletteColor(last), rgb(50, 60, 70, 80)) << bpp << " bits";
    for (int i = last + 1; i < 256; ++i) {
      EXPECT_EQ(image.GetPaletteColor(static_cast<std::uint8_t>(i)), rgb(0, 0, 0)) << i;
    }
  }
  const std::uint8_t array[] = {1, 2, 3, 4, 5, 6};
  CxImage colours;  // its pixels read as index 0, and it has no palette
  ASSERT_TRUE(colours.CreateFromArray(array, 2, 1, 24, 6, false));
  colours.MakeCenter(5);
  EXPECT_EQ(colours.GetNumColors(), 256u);
  EXPECT_EQ(rowBytes(colours, 0), (std::vector<int>{0, 0, 0, 0, 0, 0, 0, 0}));
  for (int i = 0; i < 256; ++i) {
    EXPECT_EQ(colours.GetPaletteColor(static_cast<std::uint8_t>(i)), rgb(0, 0, 0)) << i;
  }
}

// Widths from 2^31 on are below 0 in the header's 32 bits, so that any width is larger.
TEST(MakeCenter, OfAWidthBelow0CentresNothing) {
  const struct {
    std::uint32_t width;
    std::int32_t newWidth;
    const char* reason;  // none: there is a result
  } kCases[] = {
      {0x80000000, 1, ""},
      {0x80000000, 0, "CxImage::Create : width and height must be greater than zero"},
      {0x80000000, INT32_MAX, "CXIMAGE_MAX_MEMORY exceeded"},
      {0xFFFFFFFF, INT32_MAX, "CXIMAGE_MAX_MEMORY exceeded"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(testing::Message() << c.width << " to " << c.newWidth);
    CxImage image;
    ASSERT_NE(image.Create(c.width, 1, 1, 0), nullptr);
    image.MakeCenter(c.newWidth);
    EXPECT_STREQ(image.GetLastError(), c.reason);
    ASSERT_EQ(image.IsValid(), c.reason[0] == '\0');
    if (!image.IsValid()) continue;
    ASSERT_EQ(image.GetWidth(), 1u);
    EXPECT_EQ(levelsOf(image), (Levels{{0}}));
  }
}

// These report no failure by their results: an image whose result cannot be made becomes what the
// failure left of the result, an empty one with the new sizes, if they were possible, and the
// reason.
TEST(Geometry, WithoutMemoryTheImageIsEmpty) {
  const struct {
    const char* name;
    void (*run)(CxImage&);
    std::uint32_t width;
  } kOperations[] = {
      {"Rotate180", [](CxImage& image) { EXPECT_TRUE(image.Rotate180(nullptr)); }, 3000},
      {"Mirror", [](CxImage& image) { image.Mirror(); }, 3000},
      {"MakeCenter", [](CxImage& image) { image.MakeCenter(4000); }, 4000},
  };
  for (const auto& operation : kOperations) {
    SCOPED_TRACE(operation.name);
    CxImage image;
    ASSERT_NE(image.Create(3000, 3000, 8, 0), nullptr);
    {
      const MemoryIsShort guard;
      operation.run(image);
    }
    EXPECT_FALSE(image.IsValid());
    EXPECT_STREQ(image.GetLastError(), "CxImage::Create can't allocate memory");
    EXPECT_EQ(image.GetWidth(), operation.width);
    EXPECT_EQ(image.GetHeight(), 3000u);
  }
}

TEST(Geometry, TooLargeAt8BitsTheImageIsEmpty) {
  // 32768 x 16384 = 2^29 dots fit at 1 bit; times 8 they are 2^32.
  const struct {
    const char* name;
    void (*run)(CxImage&);
  } kOperations[] = {
      {"Rotate180", [](CxImage& image) { EXPECT_TRUE(image.Rotate180(nullptr)); }},
      {"Mirror", [](CxImage& image) { image.Mirror(); }},
      {"MakeCenter", [](CxImage& image) { image.MakeCenter(32769); }},
  };
  for (const auto& operation : kOperations) {
    SCOPED_TRACE(operation.name);
    CxImage image;
    ASSERT_NE(image.Create(32768, 16384, 1, 0), nullptr);
    operation.run(image);
    EXPECT_FALSE(image.IsValid());
    EXPECT_STREQ(image.GetLastError(), "CXIMAGE_MAX_MEMORY exceeded");
    EXPECT_EQ(image.GetWidth(), 0u);
    EXPECT_EQ(image.GetHeight(), 0u);
  }
}

/// The dots that a line sets in a white 1-bit image.
Picture lineIn(int width, int height, std::int32_t startX, std::int32_t endX, std::int32_t startY,
               std::int32_t endY) {
  IndexedImage image(1, uniformLevels(width, height, 1));
  image.DrawLine(startX, endX, startY, endY, 0);
  return dotsOf(image);
}

TEST(DrawLine, TakesBothXThenBothY) {
  IndexedImage image(8, uniformLevels(4, 2, 0));
  image.DrawLine(0, 3, 0, 1, 255);  // (0, 0), (1, 0), (2, 1), (3, 1)
  EXPECT_EQ(levelsOf(image), (Levels{{255, 255, 0, 0}, {0, 0, 255, 255}}));
}

TEST(DrawLine, GoesInEveryDirection) {
  const struct {
    const char* what;
    std::int32_t startX, endX, startY, endY;
    Picture expected;
  } kCases[] = {
      {"a point", 2, 2, 1, 1, {".....", "..#..", ".....", ".....", "....."}},
      {"right", 0, 4, 2, 2, {".....", ".....", "#####", ".....", "....."}},
      {"left", 4, 0, 2, 2, {".....", ".....", "#####", ".....", "....."}},
      {"down", 1, 1, 0, 4, {".#...", ".#...", ".#...", ".#...", ".#..."}},
      {"up", 1, 1, 4, 0, {".#...", ".#...", ".#...", ".#...", ".#..."}},
      {"diagonal down", 0, 4, 0, 4, {"#....", ".#...", "..#..", "...#.", "....#"}},
      {"diagonal up", 0, 4, 4, 0, {"....#", "...#.", "..#..", ".#...", "#...."}},
      // 4 over, 2 down: the numerator runs 2+2=4>=4 step, 0+2, 2+2=4 step, 0+2
      {"flat", 0, 4, 0, 2, {"#....", ".##..", "...##", ".....", "....."}},
      {"flat, leftward up", 4, 0, 2, 0, {"##...", "..##.", "....#", ".....", "....."}},
      // the same with both axes swapped
      {"steep", 0, 2, 0, 4, {"#....", ".#...", ".#...", "..#..", "..#.."}},
      {"steep, leftward up", 2, 0, 4, 0, {"#....", "#....", ".#...", ".#...", "..#.."}},
      {"steep, rightward up", 0, 2, 4, 0, {"..#..", "..#..", ".#...", ".#...", "#...."}},
      {"flat, rightward up", 0, 4, 2, 0, {"...##", ".##..", "#....", ".....", "....."}},
  };
  for (const auto& c : kCases) {
    EXPECT_TRUE(samePicture(lineIn(5, 5, c.startX, c.endX, c.startY, c.endY), c.expected))
        << c.what;
  }
}

TEST(DrawLine, DependsOnItsDirectionIsKept) {
  // 4 over, 1 down, from either end: numerator 2, 3, 4 >= 4, so the second dot is the last of its
  // row.
  EXPECT_TRUE(samePicture(lineIn(5, 2, 0, 4, 0, 1), {"##...", "..###"}));
  EXPECT_TRUE(samePicture(lineIn(5, 2, 4, 0, 1, 0), {"###..", "...##"}));
}

TEST(DrawLine, PartsOutsideAreLeftOut) {
  EXPECT_TRUE(samePicture(lineIn(4, 3, -3, 10, 1, 1), {"....", "####", "...."}));
  EXPECT_TRUE(samePicture(lineIn(4, 3, -1, 3, -1, 3), {"#...", ".#..", "..#."}));
  EXPECT_TRUE(samePicture(lineIn(4, 3, -5, -1, 0, 2), {"....", "....", "...."}));
  EXPECT_TRUE(samePicture(lineIn(4, 3, 0, 3, 3, 3), {"....", "....", "...."}));
}

TEST(DrawLine, StoresTheLowBitsOfTheIndex) {
  IndexedImage bits(1, uniformLevels(2, 1, 0));
  bits.DrawLine(0, 1, 0, 0, 255);
  EXPECT_EQ(levelsOf(bits), (Levels{{1, 1}}));
  IndexedImage nibbles(4, uniformLevels(2, 1, 0));
  nibbles.DrawLine(0, 1, 0, 0, 0xF7);
  EXPECT_EQ(levelsOf(nibbles), (Levels{{7, 7}}));
}

TEST(DrawLine, OnAnEmptyOrA24BitImageDoesNothing) {
  CxImage empty;
  empty.DrawLine(0, 3, 0, 1, 255);
  EXPECT_FALSE(empty.IsValid());
  CxImage colours;
  colours.Create(2, 1, 24, 0);
  colours.DrawLine(0, 1, 0, 0, 255);
  EXPECT_EQ(rowBytes(colours, 0), (std::vector<int>{0, 0, 0, 0, 0, 0, 0, 0}));
}

}  // namespace
