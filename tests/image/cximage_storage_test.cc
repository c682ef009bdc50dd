// Creation, the layout of the block, and who owns it.
#include <gtest/gtest.h>

#include <cstring>

#include "test_image.h"

namespace {

constexpr char kZeroSize[] = "CxImage::Create : width and height must be greater than zero";
constexpr char kTooLarge[] = "CXIMAGE_MAX_MEMORY exceeded";
constexpr char kNoMemory[] = "CxImage::Create can't allocate memory";

TEST(Storage, NewImageIsEmptyAndAllZero) {
  CxImage image;
  EXPECT_FALSE(image.IsValid());
  EXPECT_EQ(image.GetWidth(), 0u);
  EXPECT_EQ(image.GetHeight(), 0u);
  EXPECT_EQ(image.GetEffWidth(), 0u);
  EXPECT_EQ(image.GetNumColors(), 0u);
  EXPECT_EQ(image.GetSize(), 0u);
  EXPECT_STREQ(image.GetLastError(), "");
}

TEST(Storage, ConstAndOtherAccessorsAgree) {
  CxImage image;
  image.Create(7, 3, 8, 0);
  const CxImage& same = image;
  EXPECT_EQ(same.GetWidth(), 7u);
  EXPECT_EQ(image.GetWidth(), 7u);
  EXPECT_EQ(same.GetHeight(), 3u);
  EXPECT_EQ(image.GetHeight(), 3u);
}

TEST(Storage, EmptyImageAnswersNeutralValues) {
  CxImage image;
  EXPECT_EQ(image.GetBits(0), nullptr);
  EXPECT_EQ(image.GetPalette(), nullptr);
  EXPECT_EQ(image.GetPaletteSize(), 0u);
  EXPECT_EQ(image.GetPaletteColor(0), rgb(0, 0, 0));
  EXPECT_EQ(image.GetNearestIndex(rgb(255, 255, 255)), 0);
  EXPECT_EQ(image.GetPixelIndex(0, 0), 0);
  image.SetPixelIndex(0, 0, 1);
  image.SetPaletteColor(0, 1, 2, 3, 4);
  image.SetGrayPalette();
  EXPECT_TRUE(image.Destroy());
  EXPECT_FALSE(image.IsValid());
}

TEST(Create, SizeOfZeroFailsAndEmptiesTheImage) {
  const struct { std::uint32_t width, height; } kCases[] = {{0, 5}, {5, 0}, {0, 0}};
  for (const auto& c : kCases) {
    CxImage fresh;
    EXPECT_EQ(fresh.Create(c.width, c.height, 8, 0), nullptr);
    EXPECT_FALSE(fresh.IsValid());
    EXPECT_STREQ(fresh.GetLastError(), kZeroSize);

    CxImage used;
    ASSERT_NE(used.Create(4, 4, 8, 0), nullptr);
    EXPECT_EQ(used.Create(c.width, c.height, 8, 0), nullptr);
    EXPECT_FALSE(used.IsValid());
    EXPECT_EQ(used.GetBits(0), nullptr);
    EXPECT_STREQ(used.GetLastError(), kZeroSize);
  }
}

TEST(Create, DepthIsRaisedToOneThatExists) {
  const struct {
    std::uint32_t asked;
    std::uint16_t made;
    std::uint32_t colors;
  } kCases[] = {
      {0, 1, 2},   {1, 1, 2},   {2, 4, 16},  {3, 4, 16},          {4, 4, 16},
      {5, 8, 256}, {7, 8, 256}, {8, 8, 256}, {9, 24, 0},          {16, 24, 0},
      {24, 24, 0}, {25, 24, 0}, {32, 24, 0}, {0xFFFFFFFF, 24, 0},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.asked);
    CxImage image;
    const std::uint8_t* const block = image.Create(10, 2, c.asked, 0);
    ASSERT_NE(block, nullptr);
    BITMAPINFOHEADER header;
    std::memcpy(&header, block, sizeof header);
    EXPECT_EQ(header.biBitCount, c.made);
    EXPECT_EQ(image.GetNumColors(), c.colors);
    EXPECT_EQ(image.GetPaletteSize(), c.colors * 4);
    EXPECT_EQ(image.GetPalette() == nullptr, c.colors == 0);
  }
}

TEST(Create, RowsArePaddedToFourBytes) {
  // ((bpp x width + 31) / 32) x 4
  const struct {
    std::uint32_t bpp, width, stride;
  } kCases[] = {
      {1, 1, 4},    // (1 + 31) / 32 = 1
      {1, 32, 4},   // 63 / 32 = 1
      {1, 33, 8},   // 64 / 32 = 2
      {4, 8, 4},    // 63 / 32 = 1
      {4, 9, 8},    // 67 / 32 = 2
      {8, 1, 4},    // 39 / 32 = 1
      {8, 4, 4},    // 63 / 32 = 1
      {8, 5, 8},    // 71 / 32 = 2
      {24, 1, 4},   // 55 / 32 = 1
      {24, 3, 12},  // 103 / 32 = 3
      {24, 4, 12},  // 127 / 32 = 3
      {24, 5, 16},  // 151 / 32 = 4
  };
  for (const auto& c : kCases) {
    CxImage image;
    ASSERT_NE(image.Create(c.width, 3, c.bpp, 0), nullptr);
    EXPECT_EQ(image.GetEffWidth(), c.stride) << c.bpp << " bits, " << c.width << " pixels";
  }
}

TEST(Create, RowsAreAsLongAsTheRaisedDepthNeeds) {
  const struct {
    std::uint32_t asked, width, stride;
  } kCases[] = {
      {0, 1, 4},    // 1 bit: 32 / 32 = 1
      {2, 10, 8},   // 4 bits: 71 / 32 = 2; 2 bits would need 51 / 32 = 1
      {3, 9, 8},    // 4 bits: 67 / 32 = 2; 3 bits would need 58 / 32 = 1
      {5, 5, 8},    // 8 bits: 71 / 32 = 2; 5 bits would need 56 / 32 = 1
      {16, 3, 12},  // 24 bits: 103 / 32 = 3; 16 bits would need 79 / 32 = 2
      {32, 4, 12},  // 24 bits: 127 / 32 = 3; 32 bits would need 159 / 32 = 4
  };
  for (const auto& c : kCases) {
    CxImage image;
    ASSERT_NE(image.Create(c.width, 3, c.asked, 0), nullptr);
    EXPECT_EQ(image.GetEffWidth(), c.stride) << c.asked << " bits, " << c.width << " pixels";
    EXPECT_EQ(image.GetSize(), 40 + image.GetPaletteSize() + 3 * c.stride) << c.asked << " bits";
  }
}

TEST(Create, BlockHoldsHeaderPaletteAndRows) {
  const struct {
    std::uint32_t bpp, palette, stride;
  } kCases[] = {{1, 8, 4}, {4, 64, 4}, {8, 1024, 8}, {24, 0, 16}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.bpp);
    CxImage image;
    std::uint8_t* const block = image.Create(5, 3, c.bpp, 0);
    ASSERT_NE(block, nullptr);
    BITMAPINFOHEADER header;
    std::memcpy(&header, block, sizeof header);
    EXPECT_EQ(header.biSize, 40u);
    EXPECT_EQ(header.biWidth, 5);
    EXPECT_EQ(header.biHeight, 3);
    EXPECT_EQ(header.biPlanes, 1);
    EXPECT_EQ(header.biBitCount, c.bpp);
    EXPECT_EQ(header.biCompression, 0u);
    EXPECT_EQ(header.biSizeImage, c.stride * 3);
    EXPECT_EQ(header.biXPelsPerMeter, 0);
    EXPECT_EQ(header.biYPelsPerMeter, 0);
    EXPECT_EQ(header.biClrUsed, c.palette / 4);
    EXPECT_EQ(header.biClrImportant, 0u);

    EXPECT_EQ(image.GetSize(), 40 + c.palette + c.stride * 3);
    EXPECT_EQ(reinterpret_cast<std::uint8_t*>(image.GetPalette()),
              c.palette == 0 ? nullptr : block + 40);
    EXPECT_EQ(image.GetBits(0), block + 40 + c.palette);
    EXPECT_EQ(image.GetBits(1), image.GetBits(0) + c.stride);
    EXPECT_EQ(image.GetBits(2), image.GetBits(0) + 2 * c.stride);
  }
}

TEST(Create, PaletteAndRowsAreZeroWhateverTheMemoryHeld) {
  for (std::uint32_t bpp : {1u, 4u, 8u, 24u}) {
    for (std::uint32_t width = 1; width <= 40; ++width) {
      CxImage image;
      for (int turn = 0; turn < 2; ++turn) {
        std::uint8_t* const block = image.Create(width, 7, bpp, 0);
        ASSERT_NE(block, nullptr);
        const std::uint32_t size = image.GetSize();
        for (std::uint32_t i = 40; i < size; ++i) {
          ASSERT_EQ(block[i], 0) << "byte " << i << " at " << bpp << " bits, width " << width;
        }
        std::memset(block + 40, 0xFF, size - 40);  // for the next one to find
      }
    }
  }
}

TEST(Create, PixelCountTimesDepthBeyond32BitsFails) {
  const struct {
    std::uint32_t width, height, bpp;
  } kCases[] = {
      {65536, 8192, 8},                        // 2^29 x 8 = 2^32
      {65536, 65535, 8},                       // nearly 2^35
      {32768, 32768, 4},                       // 2^30 x 4 = 2^32
      {16384, 16384, 24},                      // 2^28 x 24 > 2^32
      {0x7FFFFFFF, 2, 4},                      // nearly 2^34
      {0xFFFFFFFF, 1, 24}, {32768, 32768, 3},  // 4 bits: 2^32; times 3 it would fit
      {15000, 15000, 16},                      // 24 bits: 5.4 x 10^9; times 16 it would fit
  };
  for (const auto& c : kCases) {
    CxImage image;
    ASSERT_NE(image.Create(4, 4, 8, 0), nullptr);
    EXPECT_EQ(image.Create(c.width, c.height, c.bpp, 0), nullptr)
        << c.width << " x " << c.height << " x " << c.bpp;
    EXPECT_FALSE(image.IsValid());
    EXPECT_STREQ(image.GetLastError(), kTooLarge);
  }
}

TEST(Create, SizeTestMissesAPixelCountThatWrapsIsKept) {
  // The text tells that it was the allocation that refused, not the test on the size.
  const struct {
    std::uint32_t width, height, bpp;
  } kCases[] = {
      {65536, 65536, 8},            // 2^32 pixels wrap to 0, and 0 / 8 = 0
      {0x7FFFFFFF, 0x7FFFFFFF, 1},  // 2^62 - 2^32 + 1 wrap to 1
      {1, 0x7FFFFFFF, 1},           // nothing wraps, but rows of 4 bytes make 2^33
  };
  for (const auto& c : kCases) {
    CxImage image;
    EXPECT_EQ(image.Create(c.width, c.height, c.bpp, 0), nullptr) << c.width << " x " << c.height;
    EXPECT_FALSE(image.IsValid());
    EXPECT_STREQ(image.GetLastError(), kNoMemory) << c.width << " x " << c.height;
  }

  // 65536 x 65537 wraps to 65536, and at 1 bit the rows do fit: 8192 x 65537 bytes.
  CxImage image;
  ASSERT_NE(image.Create(65536, 65537, 1, 0), nullptr);
  EXPECT_EQ(image.GetSize(), 40u + 8u + 8192u * 65537u);
  image.SetPixelIndex(65535, 65536, 1);
  EXPECT_EQ(image.GetPixelIndex(65535, 65536), 1);
}

TEST(Create, WithoutMemoryFails) {
  CxImage image;
  ASSERT_NE(image.Create(4, 4, 8, 0), nullptr);
  const std::uint8_t* block = nullptr;
  {
    const MemoryIsShort guard;
    block = image.Create(16384, 8192, 8, 0);
  }
  EXPECT_EQ(block, nullptr);
  EXPECT_FALSE(image.IsValid());
  EXPECT_EQ(image.GetBits(0), nullptr);
  EXPECT_STREQ(image.GetLastError(), kNoMemory);
}

TEST(Create, SizeThatFailsLeavesTheOldSizesIsKept) {
  const struct {
    std::uint32_t width, height, bpp;
  } kCases[] = {{0, 5, 24}, {5, 0, 24}, {65536, 8192, 8}, {16384, 16384, 24}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(testing::Message() << c.width << " x " << c.height << " x " << c.bpp);
    CxImage image;
    ASSERT_NE(image.Create(9, 3, 4, 0), nullptr);
    EXPECT_EQ(image.Create(c.width, c.height, c.bpp, 0), nullptr);
    EXPECT_EQ(image.GetWidth(), 9u);
    EXPECT_EQ(image.GetHeight(), 3u);
    EXPECT_EQ(image.GetEffWidth(), 8u);
    EXPECT_EQ(image.GetNumColors(), 16u);
    EXPECT_EQ(image.GetSize(), 40u + 64u + 24u);
  }
}

TEST(Create, SizesWithoutMemoryStayIsKept) {
  CxImage image;
  ASSERT_NE(image.Create(9, 3, 4, 0), nullptr);
  {
    const MemoryIsShort guard;
    image.Create(16384, 8192, 8, 0);
  }
  ASSERT_FALSE(image.IsValid());
  EXPECT_EQ(image.GetWidth(), 16384u);
  EXPECT_EQ(image.GetHeight(), 8192u);
  EXPECT_EQ(image.GetEffWidth(), 16384u);
  EXPECT_EQ(image.GetNumColors(), 256u);
  EXPECT_EQ(image.GetSize(), 40u + 1024u + 16384u * 8192u);
}

TEST(Create, ErrorTextOutlivesALaterSuccess) {
  CxImage image;
  image.Create(0, 1, 8, 0);
  ASSERT_NE(image.Create(1, 1, 8, 0), nullptr);
  EXPECT_STREQ(image.GetLastError(), kZeroSize);
}

TEST(CreateFromArray, NullArrayAndOtherDepthsFailWithoutATextAndLeaveTheImage) {
  const std::uint8_t array[64] = {};
  for (std::uint32_t bpp : {0u, 2u, 3u, 5u, 7u, 9u, 16u, 23u, 25u, 31u, 33u, 64u}) {
    IndexedImage image(8, {{1, 2}, {3, 4}});
    EXPECT_FALSE(image.CreateFromArray(array, 1, 1, bpp, 8, false)) << bpp;
    EXPECT_EQ(levelsOf(image), (Levels{{1, 2}, {3, 4}})) << bpp;
    EXPECT_STREQ(image.GetLastError(), "");
  }
  IndexedImage image(8, {{1, 2}, {3, 4}});
  EXPECT_FALSE(image.CreateFromArray(nullptr, 1, 1, 8, 4, false));
  EXPECT_EQ(levelsOf(image), (Levels{{1, 2}, {3, 4}}));
  EXPECT_STREQ(image.GetLastError(), "");
}

TEST(CreateFromArray, FailedCreateLeavesItsTextAndAnEmptyImage) {
  const std::uint8_t array[4] = {};
  IndexedImage image(8, {{1}});
  EXPECT_FALSE(image.CreateFromArray(array, 0, 1, 8, 4, false));
  EXPECT_FALSE(image.IsValid());
  EXPECT_STREQ(image.GetLastError(), kZeroSize);
  EXPECT_FALSE(image.CreateFromArray(array, 65536, 8192, 8, 65536, false));
  EXPECT_FALSE(image.IsValid());
  EXPECT_STREQ(image.GetLastError(), kTooLarge);
}

TEST(CreateFromArray, PaletteBelow24BitsIsTheGrayRamp) {
  const std::uint8_t array[32] = {};
  const struct {
    std::uint32_t bpp;
    int step;
  } kCases[] = {{1, 255}, {4, 17}, {8, 1}};
  for (const auto& c : kCases) {
    CxImage image;
    ASSERT_TRUE(image.CreateFromArray(array, 4, 1, c.bpp, 4, false));
    for (std::uint32_t i = 0; i < image.GetNumColors(); ++i) {
      const int level = static_cast<int>(i) * c.step;
      EXPECT_EQ(image.GetPaletteColor(static_cast<std::uint8_t>(i)), rgb(level, level, level)) << i;
    }
  }
}

TEST(CreateFromArray, CopiesTheSmallerOfBothRowLengths) {
  // Five pixels of 8 bits: the image's own rows have 8 bytes.
  const struct {
    std::uint32_t bytesPerLine;
    std::vector<int> second;  // the second row of the image
  } kCases[] = {
      {10, {11, 12, 13, 14, 15, 16, 17, 18}},  // two more bytes are ignored
      {8, {9, 10, 11, 12, 13, 14, 15, 16}},    // the padding comes along
      {7, {8, 9, 10, 11, 12, 13, 14, 0}},     {5, {6, 7, 8, 9, 10, 0, 0, 0}},
      {2, {3, 4, 0, 0, 0, 0, 0, 0}},  // a row shorter than the image
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.bytesPerLine);
    std::vector<std::uint8_t> array(c.bytesPerLine * 2);  // exactly: no byte past it may be read
    for (std::size_t i = 0; i < array.size(); ++i) array[i] = static_cast<std::uint8_t>(i + 1);
    CxImage image;
    ASSERT_TRUE(image.CreateFromArray(array.data(), 5, 2, 8, c.bytesPerLine, false));
    EXPECT_EQ(image.GetEffWidth(), 8u);
    EXPECT_EQ(rowBytes(image, 1), c.second);
  }
}

TEST(CreateFromArray, FlipPutsTheFirstSourceRowLast) {
  const std::uint8_t array[] = {1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3};
  const struct {
    bool flip;
    Levels rows;
  } kCases[] = {
      {false, {{1, 1, 1, 1}, {2, 2, 2, 2}, {3, 3, 3, 3}}},
      {true, {{3, 3, 3, 3}, {2, 2, 2, 2}, {1, 1, 1, 1}}},
  };
  for (const auto& c : kCases) {
    CxImage image;
    ASSERT_TRUE(image.CreateFromArray(array, 4, 3, 8, 4, c.flip));
    EXPECT_EQ(levelsOf(image), c.rows);
  }
}

TEST(CreateFromArray, FlipsAtEveryDepth) {
  // Three rows of 3 bytes; the image's own rows have 4.
  const std::uint8_t array[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  const struct { std::uint32_t bpp, width; } kCases[] = {{1, 24}, {4, 6}, {8, 3}, {24, 1}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(testing::Message() << c.bpp << " bits");
    CxImage image;
    ASSERT_TRUE(image.CreateFromArray(array, c.width, 3, c.bpp, 3, true));
    EXPECT_EQ(rowBytes(image, 0), (std::vector<int>{7, 8, 9, 0}));
    EXPECT_EQ(rowBytes(image, 1), (std::vector<int>{4, 5, 6, 0}));
    EXPECT_EQ(rowBytes(image, 2), (std::vector<int>{1, 2, 3, 0}));
  }
}

TEST(CreateFromArray, PackedDepthsAreCopiedByteByByte) {
  const std::uint8_t array[] = {0xA5, 0x80};
  CxImage bits;
  ASSERT_TRUE(bits.CreateFromArray(array, 9, 1, 1, 2, false));
  EXPECT_EQ(levelsOf(bits), (Levels{{1, 0, 1, 0, 0, 1, 0, 1, 1}}));
  CxImage nibbles;
  ASSERT_TRUE(nibbles.CreateFromArray(array, 3, 1, 4, 2, false));
  EXPECT_EQ(levelsOf(nibbles), (Levels{{10, 5, 8}}));
}

TEST(CreateFromArray, Of32BitsEveryFourthByteIsDropped) {
  // Two rows of two pixels, one byte between the rows; the image's rows have 2 x 3 bytes of 8.
  const std::uint8_t array[] = {1, 2, 3, 99, 4, 5, 6, 99, 77, 7, 8, 9, 99, 10, 11, 12, 99};
  for (bool flip : {false, true}) {
    CxImage image;
    ASSERT_TRUE(image.CreateFromArray(array, 2, 2, 32, 9, flip));
    EXPECT_EQ(image.GetNumColors(), 0u);
    EXPECT_EQ(image.GetEffWidth(), 8u);
    EXPECT_EQ(rowBytes(image, flip ? 1 : 0), (std::vector<int>{1, 2, 3, 4, 5, 6, 0, 0}));
    EXPECT_EQ(rowBytes(image, flip ? 0 : 1), (std::vector<int>{7, 8, 9, 10, 11, 12, 0, 0}));
  }
}

TEST(CreateFromArray, Of32BitsRowsHaveAllPixelsHoweverCloseTheyLie) {
  // Two rows of two pixels: each reads eight bytes, also where the next row begins before that.
  const struct {
    std::uint32_t bytesPerLine;
    std::vector<int> second;  // the second row of the image
  } kCases[] = {
      {8, {9, 10, 11, 13, 14, 15, 0, 0}},
      {7, {8, 9, 10, 12, 13, 14, 0, 0}},
      {3, {4, 5, 6, 8, 9, 10, 0, 0}},
      {0, {1, 2, 3, 5, 6, 7, 0, 0}},
  };
  for (const auto& c : kCases) {
    std::vector<std::uint8_t> array(c.bytesPerLine + 8);  // exactly: no byte past it may be read
    for (std::size_t i = 0; i < array.size(); ++i) array[i] = static_cast<std::uint8_t>(i + 1);
    CxImage image;
    ASSERT_TRUE(image.CreateFromArray(array.data(), 2, 2, 32, c.bytesPerLine, false));
    EXPECT_EQ(rowBytes(image, 0), (std::vector<int>{1, 2, 3, 5, 6, 7, 0, 0})) << c.bytesPerLine;
    EXPECT_EQ(rowBytes(image, 1), c.second) << c.bytesPerLine;
  }
}

TEST(CreateFromArray, Of24BitsTheBytesAreCopied) {
  const std::uint8_t array[] = {1, 2, 3, 4, 5, 6};
  CxImage image;
  ASSERT_TRUE(image.CreateFromArray(array, 2, 1, 24, 6, false));
  EXPECT_EQ(rowBytes(image, 0), (std::vector<int>{1, 2, 3, 4, 5, 6, 0, 0}));
}

TEST(CreateFromArray, LaterWritesToTheArrayDoNotShow) {
  std::uint8_t array[] = {1, 2, 3, 4};
  CxImage image;
  ASSERT_TRUE(image.CreateFromArray(array, 4, 1, 8, 4, false));
  array[0] = 200;
  EXPECT_EQ(levelsOf(image), (Levels{{1, 2, 3, 4}}));
}

TEST(Destroy, EmptiesTheImage) {
  IndexedImage image(8, {{1, 2, 3}});
  EXPECT_TRUE(image.Destroy());
  EXPECT_FALSE(image.IsValid());
  EXPECT_EQ(image.GetBits(0), nullptr);
  EXPECT_EQ(image.GetPalette(), nullptr);
  EXPECT_EQ(image.GetPixelIndex(0, 0), 0);
  EXPECT_TRUE(image.Destroy());
}

TEST(Destroy, OldSizesStayIsKept) {
  IndexedImage image(8, {{1, 2, 3}});
  image.Destroy();
  EXPECT_EQ(image.GetWidth(), 3u);
  EXPECT_EQ(image.GetHeight(), 1u);
  EXPECT_EQ(image.GetEffWidth(), 4u);
  EXPECT_EQ(image.GetNumColors(), 256u);
}

TEST(Transfer, MovesTheBlockAndEmptiesTheSource) {
  for (bool frames : {false, true}) {
    IndexedImage from(8, {{1, 2, 3}, {4, 5, 6}});
    const std::uint8_t* const bits = from.GetBits(0);
    IndexedImage to(8, {{9}});  // its block is released
    EXPECT_TRUE(to.Transfer(from, frames));
    EXPECT_EQ(to.GetBits(0), bits) << "the block changes its owner without a copy";
    EXPECT_EQ(levelsOf(to), (Levels{{1, 2, 3}, {4, 5, 6}}));
    EXPECT_EQ(to.GetEffWidth(), 4u);

    EXPECT_FALSE(from.IsValid());
    EXPECT_EQ(from.GetWidth(), 0u);
    EXPECT_EQ(from.GetHeight(), 0u);
    EXPECT_EQ(from.GetEffWidth(), 0u);
    EXPECT_EQ(from.GetNumColors(), 0u);
    EXPECT_EQ(from.GetSize(), 0u);
  }
}

/// Lets GetNearestIndex find `colour` at entry 1 and then makes all of the palette black: from now
/// on only the cache gives 1 for it.
void remember(CxImage& image, tagRGBQUAD colour) {
  image.Create(1, 1, 1, 0);
  image.SetPaletteColor(1, colour.rgbRed, colour.rgbGreen, colour.rgbBlue, colour.rgbReserved);
  ASSERT_EQ(image.GetNearestIndex(colour), 1);
  image.SetPaletteColor(1, 0, 0, 0, 0);
}

TEST(Transfer, MovesTextAndCachedColour) {
  constexpr tagRGBQUAD kOld = rgb(10, 20, 30);
  constexpr tagRGBQUAD kMoved = rgb(40, 50, 60);
  CxImage to;
  to.Create(0, 1, 8, 0);  // leaves its text
  remember(to, kOld);
  CxImage from;
  from.Create(65536, 8192, 8, 0);  // another text
  remember(from, kMoved);

  to.Transfer(from, true);

  EXPECT_STREQ(to.GetLastError(), kTooLarge);
  EXPECT_EQ(to.GetNearestIndex(kMoved), 1);
  EXPECT_EQ(to.GetNearestIndex(kOld), 0) << "its own is gone";
  EXPECT_STREQ(from.GetLastError(), "");
  from.Create(1, 1, 1, 0);
  EXPECT_EQ(from.GetNearestIndex(kMoved), 0) << "the source has none left";
}

TEST(Transfer, OfAnImageWithoutTextAndCachedColourClearsThoseOfTheTarget) {
  constexpr tagRGBQUAD kOld = rgb(10, 20, 30);
  CxImage to;
  to.Create(0, 1, 8, 0);
  remember(to, kOld);
  CxImage from;
  from.Create(1, 1, 1, 0);
  to.Transfer(from, true);
  EXPECT_STREQ(to.GetLastError(), "");
  EXPECT_EQ(to.GetNearestIndex(kOld), 0);
}

TEST(Transfer, OntoItselfEmptiesTheImage) {
  IndexedImage image(8, {{1, 2, 3}});
  EXPECT_TRUE(image.Transfer(image, true));
  EXPECT_FALSE(image.IsValid());
  EXPECT_EQ(image.GetWidth(), 0u);
  EXPECT_EQ(image.GetSize(), 0u);
}

TEST(Transfer, OfAnEmptyImageEmptiesTheTargetAndBringsItsText) {
  CxImage from;
  from.Create(0, 0, 8, 0);
  IndexedImage to(8, {{9}});
  EXPECT_TRUE(to.Transfer(from, true));
  EXPECT_FALSE(to.IsValid());
  EXPECT_STREQ(to.GetLastError(), kZeroSize);
  EXPECT_STREQ(from.GetLastError(), "");
}

TEST(CopyInfo, FillsAnEmptyImage) {
  CxImage source;
  source.Create(0, 1, 8, 0);
  source.Create(5, 1, 8, 0);
  CxImage image;
  image.CopyInfo(source);
  EXPECT_FALSE(image.IsValid());
  EXPECT_EQ(image.GetEffWidth(), 8u);
  EXPECT_STREQ(image.GetLastError(), kZeroSize);
  EXPECT_EQ(image.GetBits(0), nullptr);
  EXPECT_EQ(image.GetPixelIndex(-1, 0), 0);
}

TEST(CopyInfo, LeavesAValidImage) {
  CxImage source;
  source.Create(0, 1, 8, 0);
  source.Create(5, 1, 8, 0);
  IndexedImage image(8, {{1, 2}});
  image.CopyInfo(source);
  EXPECT_EQ(image.GetEffWidth(), 4u);
  EXPECT_STREQ(image.GetLastError(), "");
  EXPECT_EQ(levelsOf(image), (Levels{{1, 2}}));
}

TEST(GetBits, EndsWithTheLastRow) {
  IndexedImage image(8, {{1}, {2}, {3}});
  EXPECT_EQ(image.GetBits(2), image.GetBits(0) + 8);
  EXPECT_EQ(image.GetBits(3), nullptr);
  EXPECT_EQ(image.GetBits(0xFFFFFFFF), nullptr);
}

}  // namespace
