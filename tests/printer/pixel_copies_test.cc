#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "support/capture.h"
#include "support/differences.h"
#include "test_printer.h"

namespace {

constexpr std::uint8_t kUntouched = 0xA5;

TEST(CopyPixels, ValuesAsTheyAreAndNothingBeyondTheWidth) {
  TestPrinter printer;
  CxImage image;
  fill(image, 3, 2, {0, 1, 2, 127, 254, 255});
  Bytes out(2 * 5, kUntouched);
  printer.copyPixels(image, out.data(), 3, 2, 5);
  EXPECT_EQ(out, (Bytes{0, 1, 2, kUntouched, kUntouched, 127, 254, 255, kUntouched, kUntouched}));
}

TEST(CopyPixels, PartOfAnImage) {
  TestPrinter printer;
  CxImage image;
  fill(image, 3, 2, {10, 11, 12, 20, 21, 22});
  Bytes out(4, kUntouched);
  printer.copyPixels(image, out.data(), 2, 1, 2);
  EXPECT_EQ(out, (Bytes{10, 11, kUntouched, kUntouched}));
}

TEST(CopyPixels, OutsideTheImageIsItsFirstByteIsKept) {
  TestPrinter printer;
  CxImage image;
  fill(image, 2, 1, {77, 78});
  Bytes out(17, kUntouched);
  printer.copyPixels(image, out.data(), 4, 4, 4);
  EXPECT_EQ(out, (Bytes{77, 78, 77, 77, 77, 77, 77, 77,  //
                        77, 77, 77, 77, 77, 77, 77, 77, kUntouched}));
}

TEST(CopyPixels, IndicesOfImagesOfLessThanAByteAPixel) {
  TestPrinter printer;
  const Bytes page = {0,   255, 255, 0, 255, 0,   0,   0,   0,   255,  //
                      255, 0,   0,   0, 0,   255, 255, 255, 255, 255};
  CxImage image;
  fill(image, 10, 2, page);
  ASSERT_TRUE(image.Dither(0));
  ASSERT_EQ(image.GetNumColors(), 2U);
  const Bytes indices = {0, 1, 1, 0, 1, 0, 0, 0, 0, 1,  //
                         1, 0, 0, 0, 0, 1, 1, 1, 1, 1};
  Bytes out(20);
  printer.copyPixels(image, out.data(), 10, 2, 10);
  EXPECT_EQ(out, indices);
  printer.copyProcessedPixels(&image, out.data(), 10, 2, 10);
  EXPECT_EQ(out, page);
}

TEST(CopyPixels, NegativeAndEmptySizesCopyNothing) {
  TestPrinter printer;
  CxImage image;
  fill(image, 2, 1, {77, 78});
  for (const auto& [width, height] : {std::pair{0, 1}, {2, 0}, {-1, 1}, {2, -1}}) {
    Bytes out(4, kUntouched);
    printer.copyPixels(image, out.data(), width, height, 2);
    printer.copyProcessedPixels(&image, out.data(), width, height, 2);
    EXPECT_EQ(out, Bytes(4, kUntouched));
  }
}

TEST(CopyProcessedPixels, OneBecomes255AndNegativeInvertsAll) {
  for (int value = 0; value < 256; ++value) {
    TestPrinter printer;
    CxImage image;
    fill(image, 1, 1, {static_cast<std::uint8_t>(value)});
    const int plain = value == 1 ? 255 : value;
    Bytes out(2, kUntouched);
    printer.copyProcessedPixels(&image, out.data(), 1, 1, 1);
    EXPECT_EQ(out[0], plain) << value;
    printer.setNegativePrint(true);
    printer.copyProcessedPixels(&image, out.data(), 1, 1, 1);
    EXPECT_EQ(out[0], 255 - plain) << value;
    EXPECT_EQ(out[1], kUntouched);
  }
}

TEST(CopyProcessedPixels, OutsideTheImageIsItsFirstByteWidenedIsKept) {
  TestPrinter printer;
  CxImage image;
  fill(image, 2, 1, {1, 0});
  for (const bool negative : {false, true}) {
    printer.setNegativePrint(negative);
    const std::uint8_t one = negative ? 0 : 255, zero = negative ? 255 : 0;
    Bytes out(9, 0x55);
    printer.copyProcessedPixels(&image, out.data(), 4, 2, 4);
    EXPECT_EQ(out, (Bytes{one, zero, one, one, one, one, one, one, 0x55}));
  }
  CxImage empty;
  printer.setNegativePrint(false);
  Bytes out(2, 0x55);
  printer.copyProcessedPixels(&empty, out.data(), 2, 1, 2);
  EXPECT_EQ(out, (Bytes{0, 0}));
}

TEST(CopyProcessedPixels, TwoLevelImage) {
  TestPrinter printer;
  CxImage image;
  fill(image, 3, 2, {0, 1, 1, 1, 0, 1});
  Bytes out(2 * 4, kUntouched);
  printer.copyProcessedPixels(&image, out.data(), 3, 2, 4);
  EXPECT_EQ(out, (Bytes{0, 255, 255, kUntouched, 255, 0, 255, kUntouched}));
  printer.setNegativePrint(true);
  printer.copyProcessedPixels(&image, out.data(), 3, 2, 4);
  EXPECT_EQ(out, (Bytes{255, 0, 0, kUntouched, 0, 255, 0, kUntouched}));
}

TEST(CopyProcessedPixels, FrameLineStays255) {
  TestPrinter printer;
  CxImage image;
  fill(image, 2, 1, {255, 1});
  Bytes out(2);
  printer.copyProcessedPixels(&image, out.data(), 2, 1, 2);
  EXPECT_EQ(out, (Bytes{255, 255}));
  printer.setNegativePrint(true);
  printer.copyProcessedPixels(&image, out.data(), 2, 1, 2);
  EXPECT_EQ(out, (Bytes{0, 0}));
}

// Packing to one bit

struct Packing {
  const char* what;
  int bytesPerLine;
  int height;
  unsigned long skipRight;
  Bytes buffer;
  Bytes packed;
  const char* log;
};

TEST(GrayToMono, PacksInkAsOneInPlace) {
  const Packing cases[] = {
      {"one byte a row",
       8,
       2,
       0,
       {1, 0, 0, 0, 0, 0, 0, 255, 0, 9, 9, 0, 0, 0, 0, 0},
       {0x81, 0x60},
       "DEBUG:GrayToMono, bpl(8), h(2), skipPixels(0), wb(8)\n"},
      // Ten pixels: two bytes a row, the second holding pixels 8 and 9 in its two top bits.
      {"ten pixels",
       10,
       2,
       0,
       {0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1, 1},
       {0x00, 0x80, 0x80, 0xC0},
       "DEBUG:GrayToMono, bpl(10), h(2), skipPixels(0), wb(10)\n"},
      {"skipped bytes are dropped",
       10,
       2,
       2,
       {1, 0, 0, 0, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1},
       {0x80, 0x01},
       "DEBUG:GrayToMono, bpl(10), h(2), skipPixels(2), wb(8)\n"},
      {"a skip of one",
       9,
       2,
       1,
       {1, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 1, 1},
       {0x80, 0x01},
       "DEBUG:GrayToMono, bpl(9), h(2), skipPixels(1), wb(8)\n"},
      {"one byte left",
       10,
       1,
       9,
       {1, 1, 1, 1, 1, 1, 1, 1, 1, 1},
       {0x80},
       "DEBUG:GrayToMono, bpl(10), h(1), skipPixels(9), wb(1)\n"},
      // A skip that leaves nothing is ignored.
      {"skip as long as the line",
       4,
       1,
       4,
       {1, 1, 0, 1},
       {0xD0},
       "DEBUG:GrayToMono, bpl(4), h(1), skipPixels(4), wb(4)\n"},
      {"skip longer than the line",
       4,
       1,
       400,
       {1, 1, 0, 1},
       {0xD0},
       "DEBUG:GrayToMono, bpl(4), h(1), skipPixels(400), wb(4)\n"},
      // Two more than an int can tell from two.
      {"skip of more than 32 bits",
       4,
       1,
       (1UL << 32U) + 2,
       {1, 1, 0, 1},
       {0xD0},
       "DEBUG:GrayToMono, bpl(4), h(1), skipPixels(2), wb(4)\n"},
      {"no rows", 10, 0, 0, {7, 7}, {}, "DEBUG:GrayToMono, bpl(10), h(0), skipPixels(0), wb(10)\n"},
      {"no pixels", 0, 2, 0, {7, 7}, {}, "DEBUG:GrayToMono, bpl(0), h(2), skipPixels(0), wb(0)\n"},
      {"one pixel a row",
       1,
       3,
       0,
       {5, 0, 6},
       {0x80, 0x00, 0x80},
       "DEBUG:GrayToMono, bpl(1), h(3), skipPixels(0), wb(1)\n"},
  };
  for (const Packing& row : cases) {
    TestPrinter printer;
    printer.setSkipRightPixels(row.skipRight);
    Bytes buffer = row.buffer;
    int count = -1;
    const std::string log = support::standardErrorOf(
        [&] { count = printer.GrayToMono(row.bytesPerLine, row.height, buffer.data()); });
    EXPECT_EQ(count, static_cast<int>(row.packed.size())) << row.what;
    EXPECT_EQ(log, row.log) << row.what;
    Bytes expected = row.buffer;  // what is not overwritten stays
    std::copy(row.packed.begin(), row.packed.end(), expected.begin());
    EXPECT_EQ(support::firstDifference(text(expected), text(buffer)), "") << row.what;
  }
}

TEST(GrayToMono, PolarityIsTheOppositeOfTheBitmapsIsKept) {
  // Ink is a 1 here; in BITMAP it is a 0.
  TestPrinter printer;
  Bytes ink(8, 255), paper(8, 0);
  support::standardErrorOf([&] {
    printer.GrayToMono(8, 1, ink.data());
    printer.GrayToMono(8, 1, paper.data());
  });
  EXPECT_EQ(ink[0], 0xFF);
  EXPECT_EQ(paper[0], 0x00);
}

TEST(GrayToMono, EveryPixelHasItsBit) {
  for (int width = 1; width <= 20; ++width) {
    for (int x = 0; x < width; ++x) {
      TestPrinter printer;
      Bytes row(static_cast<std::size_t>(width), 0);
      row[static_cast<std::size_t>(x)] = 1;
      int count = 0;
      support::standardErrorOf([&] { count = printer.GrayToMono(width, 1, row.data()); });
      ASSERT_EQ(count, (width + 7) / 8);
      for (int byte = 0; byte < count; ++byte) {
        const int expected = byte == x / 8 ? 0x80 >> (x % 8) : 0;
        ASSERT_EQ(row[static_cast<std::size_t>(byte)], expected) << x << " of " << width;
      }
    }
  }
}

}  // namespace
