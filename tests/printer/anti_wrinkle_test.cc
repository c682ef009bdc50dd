#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "support/capture.h"
#include "support/differences.h"
#include "test_printer.h"

namespace {

const std::string kName = "DEBUG:EnableAntiWrink: ";

/// One bar: where it starts and where its counters end, which is what its log line tells.
struct Bar {
  long x;
  long y;
  long endX;
  long endY;
};

std::string barLine(const char* name, const Bar& bar) {
  char line[128];
  std::snprintf(line, sizeof line, "Drawing %s line. point(%ld, %ld, %ld, %ld)\n", name, bar.x,
                bar.y, bar.endX, bar.endY);
  return kName + line;
}

std::string barLines(const Bar& left, const Bar& top, const Bar& right, const Bar& bottom) {
  return barLine("left", left) + barLine("top", top) + barLine("right", right) +
         barLine("bottom", bottom);
}

std::string levelLine(int level, int lineV, int lineH) {
  return kName + "AntiWrinkle level: " + std::to_string(level) +
         ", line_v: " + std::to_string(lineV) + " points, line_h: " + std::to_string(lineH) +
         " points.\n";
}

std::string canvasLine(const std::string& name, int width, int height) {
  return kName + "Page size is " + name + ", CanvasWidth: " + std::to_string(width) +
         ", CanvasHeight: " + std::to_string(height) + "\n";
}

class AntiWrinkle : public testing::Test {
 protected:
  /// Frames an image of `width` x `height` bytes of `value`; gives the log.
  std::string frame(const char* pageSizeName, int level, unsigned width, unsigned height,
                    std::uint8_t value = 7) {
    fill(image_, width, height, Bytes(std::size_t{width} * height, value));
    std::snprintf(header_.cupsPageSizeName, sizeof header_.cupsPageSizeName, "%s", pageSizeName);
    printer_.setPageHeader(&header_);
    printer_.setAntiWrinkle(level);
    return support::standardErrorOf([&] { printer_.EnableAntiWrink(image_); });
  }

  /// Compares each pixel with a description: the bars on the page on its margins.
  void expectPicture(const std::vector<Bar>& bars, const Bar& page, std::uint8_t value,
                     std::uint8_t margin) {
    long wrong = 0;
    for (long y = 0; y < static_cast<long>(image_.GetHeight()); ++y) {
      for (long x = 0; x < static_cast<long>(image_.GetWidth()); ++x) {
        int expected = margin;
        if (x >= page.x && x < page.endX && y >= page.y && y < page.endY) expected = value;
        for (const Bar& bar : bars) {
          if (x >= bar.x && x < bar.endX && y >= bar.y && y < bar.endY) expected = 255;
        }
        const int actual = image_.GetPixelIndex(x, y);
        if (actual != expected && ++wrong <= 5) {
          ADD_FAILURE() << "(" << x << ", " << y << "): expected " << expected << ", is " << actual;
        }
      }
    }
    EXPECT_EQ(wrong, 0);
  }

  TestPrinter printer_;
  CxImage image_;
  cups_page_header2_t header_{};
};

TEST_F(AntiWrinkle, ThicknessesOfTheLevelsAt300Dpi) {
  // line_h: (300 x 100 / 254 + 5) / 10 = (118 + 5) / 10 = 12
  // line_v of level n: (n x 100 x 300 / 254 + 5) / 10, divisions cut off
  const struct {
    int level;
    int lineV;
  } cases[] = {{1, 12}, {2, 24}, {3, 35}, {4, 47}, {5, 59}, {10, 118}};
  for (const auto& [level, lineV] : cases) {
    const std::string log = frame("Unknown", level, 4, 4);
    EXPECT_EQ(log.rfind(levelLine(level, lineV, 12), 0), 0U) << log;
  }
}

TEST_F(AntiWrinkle, ThicknessesFollowTheResolution) {
  // 203 dpi: (203 x 100 / 254 + 5) / 10 = (79 + 5) / 10 = 8; level 2: (2 x 100 x 203 / 254 + 5) /
  // 10 = (159 + 5) / 10 = 16
  printer_.resolution_ = 203;
  EXPECT_EQ(frame("Unknown", 2, 4, 4).rfind(levelLine(2, 16, 8), 0), 0U);
  // 600 dpi: (236 + 5) / 10 = 24; level 3: (3 x 100 x 600 / 254 + 5) / 10 = (708 + 5) / 10 = 71
  printer_.resolution_ = 600;
  EXPECT_EQ(frame("Unknown", 3, 4, 4).rfind(levelLine(3, 71, 24), 0), 0U);
}

TEST_F(AntiWrinkle, HalfADotIsRoundedUp) {
  // 140 dpi: 140 x 100 / 254 = 55, so (55 + 5) / 10 = 6, where 54 would give 5.
  printer_.resolution_ = 140;
  EXPECT_EQ(frame("Unknown", 1, 4, 4).rfind(levelLine(1, 6, 6), 0), 0U);
  // 137 dpi: 137 x 100 / 254 = 53, (53 + 5) / 10 = 5.
  printer_.resolution_ = 137;
  EXPECT_EQ(frame("Unknown", 1, 4, 4).rfind(levelLine(1, 5, 5), 0), 0U);
}

TEST_F(AntiWrinkle, CanvasOfEachPaperSize) {
  // Content in dots at 300 dpi, (300 x m / 254 + 5) / 10 for m hundredths of a millimetre:
  // 20000 -> 2362, 27500 -> 3248, 21000 -> 2480, 25700 -> 3035, 11800 -> 1394, 10000 -> 1181.
  // Two bars are added each way: level 2 gives 2 x 24 = 48 across and 2 x 12 = 24 down.
  const struct {
    const char* name;
    int width;
    int height;
  } cases[] = {{"A4", 2362 + 48, 3248 + 24},          // 2410 x 3272
               {"Letter", 2480 + 48, 3035 + 24},      // 2528 x 3059
               {"Tattoo_A5", 2362 + 48, 1394 + 24},   // 2410 x 1418
               {"Tattoo_A6", 1181 + 48, 1394 + 24}};  // 1229 x 1418
  for (const auto& [name, width, height] : cases) {
    // An image of just that size: nothing is enlarged and no offset is needed.
    const std::string log =
        frame(name, 2, static_cast<unsigned>(width), static_cast<unsigned>(height));
    EXPECT_EQ(support::firstDifference(
                  levelLine(2, 24, 12) + canvasLine(name, width, height) +
                      barLines({0, 0, 24, height}, {0, 0, width, 12},
                               {width - 24, 0, width, height}, {0, height - 12, width, height}),
                  log),
              "")
        << name;
    EXPECT_EQ(image_.GetWidth(), static_cast<unsigned>(width));
    EXPECT_EQ(image_.GetHeight(), static_cast<unsigned>(height));
  }
}

TEST_F(AntiWrinkle, CanvasToTheHundredthOfAMillimetre) {
  // At 2540 dpi a hundredth is a dot: (2540 x m / 254 + 5) / 10 = m. Level 200 gives bars of 20000
  // across, so wide that no canvas can be made; its size is told before that.
  printer_.resolution_ = 2540;
  const struct {
    const char* name;
    int width;
    int height;
  } cases[] = {{"A4", 20000, 27500},
               {"Letter", 21000, 25700},
               {"Tattoo_A5", 20000, 11800},
               {"Tattoo_A6", 10000, 11800}};
  for (const auto& [name, width, height] : cases) {
    const std::string log = frame(name, 200, 2, 2);
    const std::string start =
        levelLine(200, 20000, 100) + canvasLine(name, width + 2 * 20000, height + 2 * 100);
    EXPECT_EQ(support::firstDifference(start, log.substr(0, start.size())), "") << name;
  }
}

TEST_F(AntiWrinkle, Level1OnA4PageOf2000x3000) {
  // Canvas 2362 + 24 = 2386 by 3248 + 24 = 3272; margins (2386 - 2000) / 2 = 193 and
  // (3272 - 3000) / 2 = 136.
  const std::string log = frame("A4", 1, 2000, 3000);
  EXPECT_EQ(support::firstDifference(
                levelLine(1, 12, 12) + canvasLine("A4", 2386, 3272) + kName +
                    "Image width is less than canvas width, exPoints: 193\n" + kName +
                    "Image height is less than canvas height, eyPoints: 136\n" + kName +
                    "Image expanded successfully.\n" +
                    barLines({0, 0, 12, 3272}, {0, 0, 2386, 12}, {2374, 0, 2386, 3272},
                             {0, 3260, 2386, 3272}),
                log),
            "");
  EXPECT_EQ(image_.GetWidth(), 2386U);
  EXPECT_EQ(image_.GetHeight(), 3272U);
  // White around the page; in the gray palette of this image that is index 255, like the bars.
  expectPicture({{0, 0, 12, 3272}, {2374, 0, 2386, 3272}, {0, 0, 2386, 12}, {0, 3260, 2386, 3272}},
                {193, 136, 2193, 3136}, 7, 255);
}

class AntiWrinkleMargin : public AntiWrinkle {
 protected:
  AntiWrinkleMargin() { fill(image_, 1101, 1000, Bytes(std::size_t{1101} * 1000, 0)); }

  /// Frames the page for Tattoo_A6: canvas 1181 + 24 = 1205 by 1394 + 24 = 1418, margins
  /// (1205 - 1101) / 2 = 52 and 418 / 2 = 209, which are to have the index `white`.
  void expectMargin(std::uint8_t white) {
    std::strcpy(header_.cupsPageSizeName, "Tattoo_A6");
    printer_.setPageHeader(&header_);
    printer_.setAntiWrinkle(1);
    support::standardErrorOf([&] { printer_.EnableAntiWrink(image_); });
    ASSERT_EQ(image_.GetWidth(), 1205U);
    ASSERT_EQ(image_.GetHeight(), 1418U);
    expectPicture(
        {{0, 0, 12, 1418}, {1193, 0, 1205, 1418}, {0, 0, 1205, 12}, {0, 1406, 1205, 1418}},
        {52, 209, 1153, 1209}, 0, white);
  }
};

TEST_F(AntiWrinkleMargin, IsWhiteInTheImagesOwnPalette) {
  // A halftoned page has black, white and then black only: white is index 1, the bars stay 255.
  ASSERT_TRUE(image_.Dither(0));
  ASSERT_TRUE(image_.IncreaseBpp(8));
  expectMargin(1);
}

TEST_F(AntiWrinkleMargin, IsWhiteNotWhatIsNearlyWhite) {
  std::vector<tagRGBQUAD> palette(256);
  palette[11] = {254, 255, 255, 0};
  palette[12] = {255, 254, 255, 0};
  palette[13] = {255, 255, 254, 0};
  palette[14] = {255, 255, 255, 0};
  image_.SetPalette(palette.data(), 256);
  expectMargin(14);
}

TEST_F(AntiWrinkle, LargerImageIsNotCroppedAndTheFrameIsCentredInIt) {
  // Tattoo_A6 at level 1: canvas 1205 x 1418. Offsets (1300 - 1205) / 2 = 47 and
  // (1500 - 1418) / 2 = 41.
  const std::string log = frame("Tattoo_A6", 1, 1300, 1500);
  const Bar left{47, 41, 59, 1459}, top{47, 41, 1252, 53}, right{1240, 41, 1252, 1459},
      bottom{47, 1447, 1252, 1459};
  EXPECT_EQ(support::firstDifference(
                levelLine(1, 12, 12) + canvasLine("Tattoo_A6", 1205, 1418) + kName +
                    "Image width is greater than canvas width, offset.x: 47\n" + kName +
                    "Image height is greater than canvas height, offset.y: 41\n" +
                    barLines(left, top, right, bottom),
                log),
            "");
  EXPECT_EQ(image_.GetWidth(), 1300U);
  EXPECT_EQ(image_.GetHeight(), 1500U);
  expectPicture({left, top, right, bottom}, {0, 0, 1300, 1500}, 7, 0);
}

TEST_F(AntiWrinkle, WiderButLowerThanTheCanvas) {
  // Tattoo_A6 at level 1 on 1301 x 1400: offset.x (1301 - 1205) / 2 = 48, margin (1418 - 1400) / 2
  // = 9 above and below.
  const std::string log = frame("Tattoo_A6", 1, 1301, 1400);
  const Bar left{48, 0, 60, 1418}, top{48, 0, 1253, 12}, right{1241, 0, 1253, 1418},
      bottom{48, 1406, 1253, 1418};
  EXPECT_EQ(
      support::firstDifference(levelLine(1, 12, 12) + canvasLine("Tattoo_A6", 1205, 1418) + kName +
                                   "Image height is less than canvas height, eyPoints: 9\n" +
                                   kName + "Image expanded successfully.\n" + kName +
                                   "Image width is greater than canvas width, offset.x: 48\n" +
                                   barLines(left, top, right, bottom),
                               log),
      "");
  EXPECT_EQ(image_.GetWidth(), 1301U);
  EXPECT_EQ(image_.GetHeight(), 1418U);
  expectPicture({left, top, right, bottom}, {0, 9, 1301, 1409}, 7, 255);
}

TEST_F(AntiWrinkle, OddDifferenceLosesTheLastColumnAndRowOfTheFrameIsKept) {
  // Canvas 1205 x 1418 on 1100 x 1411: margins 105 / 2 = 52 and 7 / 2 = 3, so the image ends at
  // 1204 x 1417, one dot short each way.
  const std::string log = frame("Tattoo_A6", 1, 1100, 1411);
  const Bar left{0, 0, 12, 1418}, top{0, 0, 1205, 12}, right{1193, 0, 1205, 1418},
      bottom{0, 1406, 1205, 1418};
  EXPECT_EQ(support::firstDifference(
                levelLine(1, 12, 12) + canvasLine("Tattoo_A6", 1205, 1418) + kName +
                    "Image width is less than canvas width, exPoints: 52\n" + kName +
                    "Image height is less than canvas height, eyPoints: 3\n" + kName +
                    "Image expanded successfully.\n" + barLines(left, top, right, bottom),
                log),
            "");
  ASSERT_EQ(image_.GetWidth(), 1204U);
  ASSERT_EQ(image_.GetHeight(), 1417U);
  expectPicture({left, top, right, bottom}, {52, 3, 1152, 1414}, 7, 255);
}

TEST_F(AntiWrinkle, OneDotShortIsNotEnlarged) {
  // Both differences are 1, halves 0: the lines are logged, nothing is expanded.
  const std::string log = frame("Tattoo_A6", 1, 1204, 1417);
  EXPECT_EQ(
      support::firstDifference(levelLine(1, 12, 12) + canvasLine("Tattoo_A6", 1205, 1418) + kName +
                                   "Image width is less than canvas width, exPoints: 0\n" + kName +
                                   "Image height is less than canvas height, eyPoints: 0\n" +
                                   barLines({0, 0, 12, 1418}, {0, 0, 1205, 12},
                                            {1193, 0, 1205, 1418}, {0, 1406, 1205, 1418}),
                               log),
      "");
  EXPECT_EQ(image_.GetWidth(), 1204U);
  EXPECT_EQ(image_.GetHeight(), 1417U);
}

TEST_F(AntiWrinkle, UnknownPaperSizeDrawsNothing) {
  // Canvas 0 x 0: offsets are half the image. The left and right bars have no rows, so the counter
  // of x keeps what the bar before left in it: 0 at first, then the start of the top bar. The top
  // and bottom bars have rows of no dots.
  for (const char* name : {"a4", "A4 ", "A5", "letter", "Tattoo_A6x", "Custom", ""}) {
    const std::string log = frame(name, 1, 101, 50);
    EXPECT_EQ(support::firstDifference(
                  levelLine(1, 12, 12) + kName +
                      "Image width is greater than canvas width, offset.x: 50\n" + kName +
                      "Image height is greater than canvas height, offset.y: 25\n" +
                      barLines({50, 25, 0, 25}, {50, 25, 50, 37}, {50 - 12, 25, 50, 25},
                               {50, 25 - 12, 50, 25}),
                  log),
              "")
        << name;
    EXPECT_EQ(image_.GetWidth(), 101U);
    EXPECT_EQ(image_.GetHeight(), 50U);
    EXPECT_EQ(pixelsOf(image_), Bytes(std::size_t{101} * 50, 7)) << name;
  }
}

TEST_F(AntiWrinkle, NeedsAnImageAndAPageHeader) {
  const std::string refused = kName + "Image or pageHdr_ is not valid, returning.\n";
  printer_.setAntiWrinkle(1);
  printer_.setPageHeader(&header_);
  CxImage empty;
  EXPECT_EQ(support::standardErrorOf([&] { printer_.EnableAntiWrink(empty); }), refused);

  printer_.setPageHeader(nullptr);
  fill(image_, 2, 2, {1, 2, 3, 4});
  EXPECT_EQ(support::standardErrorOf([&] { printer_.EnableAntiWrink(image_); }), refused);
  EXPECT_EQ(pixelsOf(image_), (Bytes{1, 2, 3, 4}));
}

TEST_F(AntiWrinkle, ExpansionThatFailsLeavesTheImage) {
  // At 3000 dpi A4 has (3000 x 20000 / 254 + 5) / 10 = 23622 by 32480 dots: 767 million, times 8
  // bits more than 32 bits hold, which Create refuses. line_h: (1181 + 5) / 10 = 118.
  printer_.resolution_ = 3000;
  const std::string log = frame("A4", 1, 2, 2);
  // Canvas 23622 + 236 = 23858 by 32480 + 236 = 32716; margins 23856 / 2 and 32714 / 2.
  EXPECT_EQ(support::firstDifference(
                levelLine(1, 118, 118) + canvasLine("A4", 23858, 32716) + kName +
                    "Image width is less than canvas width, exPoints: 11928\n" + kName +
                    "Image height is less than canvas height, eyPoints: 16357\n" + kName +
                    "Failed to expand image, returning.\n",
                log),
            "");
  EXPECT_EQ(image_.GetWidth(), 2U);
  EXPECT_EQ(pixelsOf(image_), Bytes(4, 7));
}

}  // namespace
