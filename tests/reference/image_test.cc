#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "reference/anti_wrinkle.h"
#include "reference/blank_lines.h"
#include "reference/geometry.h"
#include "reference/image8.h"
#include "reference/tone.h"

namespace reference {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

Image8 imageOf(int width, int height, const std::vector<std::uint8_t>& pixels) {
  return imageFromLines(pixels, width, height, width).value();
}

/// The image of the given size whose byte at (x, y) is 10 y + x + 1.
Image8 numbered(int width, int height) {
  Image8 image = blankImage(width, height, grayPalette());
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) image.at(x, y) = static_cast<std::uint8_t>(10 * y + x + 1);
  }
  return image;
}

TEST(Image8, RowsArePaddedToFourBytesOfZero) {
  EXPECT_THAT(imageOf(5, 1, {1, 2, 3, 4, 5}).bytes, ElementsAre(1, 2, 3, 4, 5, 0, 0, 0));
}

TEST(Image8, BytesBeyondTheWidthReachThePadding) {
  // Lines of 7 bytes for a page 3 wide: 4 of them fit the padded row.
  const auto image = imageFromLines({1, 2, 3, 4, 5, 6, 7, 11, 12, 13, 14, 15, 16, 17}, 3, 2, 7);
  EXPECT_THAT(image->bytes, ElementsAre(1, 2, 3, 4, 11, 12, 13, 14));
}

TEST(Image8, ASideOfZeroOrTooManyBitsMakeNoImage) {
  EXPECT_FALSE(imageCanExist(0, 5));
  EXPECT_FALSE(imageCanExist(5, 0));
  EXPECT_TRUE(imageCanExist(1, 536870911));  // 8 x 2^29 bits no longer fit 32
  EXPECT_FALSE(imageCanExist(1, 536870912));
}

TEST(Image8, TheNearestEntryIsTheLowestOfEquals) {
  EXPECT_EQ(nearestEntry(grayPalette(), {255, 255, 255, 0}), 255);
  EXPECT_EQ(nearestEntry(twoLevelPalette(), {255, 255, 255, 0}), 1);
  EXPECT_EQ(nearestEntry(twoLevelPalette(), {100, 100, 100, 0}), 0);
  EXPECT_EQ(nearestEntry(twoLevelPalette(), {200, 200, 200, 0}), 1);
}

struct LightCase {
  int brightness;
  int contrast;
  std::size_t level;
  int expected;
};

TEST(Tone, LightHasItsWorkedValues) {
  const LightCase cases[] = {
      {0, 0, 0, 0},        {0, 0, 77, 77},       {0, 0, 255, 255},   {0, -100, 0, 128},
      {0, -100, 255, 128}, {-128, -100, 200, 0}, {200, 0, 55, 255},  {200, 0, 56, 255},
      {200, 0, 54, 254},   {0, 100, 0, 0},  // -256 + 128 + 0.5 is below 0
      {0, 100, 128, 128},  {0, 100, 191, 254},   {0, 100, 192, 255}, {-500, 0, 255, 0},
      {500, 0, 0, 255},    {100, 0, 0, 100},     {0, 50, 129, 130},  // 1.5 + 128 + 0.5
      {0, 50, 128, 128},
  };
  for (const LightCase& c : cases) {
    EXPECT_EQ(lightTable(c.brightness, c.contrast)[c.level], c.expected)
        << c.brightness << ", " << c.contrast << " at " << c.level;
  }
}

TEST(Tone, LightLeavesThePaddingAlone) {
  EXPECT_THAT(light(imageOf(3, 1, {0, 100, 255}), 100, 0).bytes, ElementsAre(100, 200, 255, 0));
}

TEST(Tone, NegativeTurnsThePaddingToo) {
  const Image8 image = imageOf(3, 1, {0, 1, 255});
  EXPECT_THAT(negative(image).bytes, ElementsAre(255, 254, 0, 255));
  EXPECT_EQ(negative(negative(image)), image);
}

TEST(Geometry, RotatingTwiceRestores) {
  const Image8 image = numbered(5, 3);
  EXPECT_THAT(rotate180(imageOf(3, 2, {1, 2, 3, 4, 5, 6})).bytes,
              ElementsAre(6, 5, 4, 0, 3, 2, 1, 0));
  EXPECT_EQ(rotate180(rotate180(image)), image);
}

TEST(Geometry, MirrorReversesTheWidthAndLeavesThePaddingZero) {
  EXPECT_THAT(mirror(imageFromLines({1, 2, 3, 9}, 3, 1, 4).value()).bytes, ElementsAre(3, 2, 1, 0));
}

TEST(Geometry, ExpandPutsTheSourceAboveTheBottomRows) {
  const Image8 source = numbered(10, 10);
  const Image8 image = expand(source, 2, 1, 3, 4, {255, 255, 255, 0}).value();
  EXPECT_EQ(image.width, 15);
  EXPECT_EQ(image.height, 15);
  EXPECT_EQ(image.at(2, 4), source.at(0, 0));
  EXPECT_EQ(image.at(11, 13), source.at(9, 9));
  for (const auto& [x, y] : {std::pair(1, 4), {2, 3}, {12, 13}, {11, 14}, {15, 0}}) {
    EXPECT_EQ(image.at(x, y), 255) << x << ", " << y;
  }
}

TEST(Geometry, ExpandByNothingCopiesAndByLessFails) {
  const Image8 image = numbered(4, 2);
  EXPECT_EQ(expand(image, 0, 0, 0, 0, {}), image);
  EXPECT_EQ(expand(image, -1, 0, 0, 0, {}), std::nullopt);
}

TEST(AntiWrinkle, BarsHaveTheirWorkedThickness) {
  EXPECT_EQ(horizontalBarDots(), 12U);
  const std::uint32_t expected[] = {12, 24, 35, 47, 59};
  for (int level = 1; level <= 5; ++level) {
    EXPECT_EQ(verticalBarDots(level), expected[level - 1]) << level;
  }
}

struct CanvasCase {
  const char* name;
  std::uint32_t width;  // before the bars
  std::uint32_t height;
};

TEST(AntiWrinkle, CanvasesHaveTheirWorkedSizes) {
  const CanvasCase cases[] = {
      {"A4", 2362, 3248},
      {"Letter", 2480, 3035},
      {"Tattoo_A5", 2362, 1394},
      {"Tattoo_A6", 1181, 1394},
  };
  for (const CanvasCase& c : cases) {
    const Canvas canvas = canvasOf(c.name, 2).value();
    EXPECT_EQ(canvas.width, c.width + 48) << c.name;
    EXPECT_EQ(canvas.height, c.height + 24) << c.name;
  }
  EXPECT_FALSE(canvasOf("a4", 2).has_value());
}

TEST(AntiWrinkle, AnA4PageAtLevelOne) {
  Log log;
  const Image8 framed = antiWrinkleFrame(blankImage(2000, 3000, grayPalette()), "A4", 1, log);
  ASSERT_EQ(framed.width, 2386);
  ASSERT_EQ(framed.height, 3272);
  EXPECT_EQ(framed.at(193, 136), 0);
  EXPECT_EQ(framed.at(192, 136), 255);
  EXPECT_THAT(log.lines(),
              ElementsAre("DEBUG:EnableAntiWrink: AntiWrinkle level: 1, line_v: 12 points, "
                          "line_h: 12 points.",
                          "DEBUG:EnableAntiWrink: Page size is A4, CanvasWidth: 2386, "
                          "CanvasHeight: 3272",
                          "DEBUG:EnableAntiWrink: Image width is less than canvas width, "
                          "exPoints: 193",
                          "DEBUG:EnableAntiWrink: Image height is less than canvas height, "
                          "eyPoints: 136",
                          "DEBUG:EnableAntiWrink: Image expanded successfully.",
                          "DEBUG:EnableAntiWrink: Drawing left line. point(0, 0, 12, 3272)",
                          "DEBUG:EnableAntiWrink: Drawing top line. point(0, 0, 2386, 12)",
                          "DEBUG:EnableAntiWrink: Drawing right line. point(2374, 0, 2386, 3272)",
                          "DEBUG:EnableAntiWrink: Drawing bottom line. "
                          "point(0, 3260, 2386, 3272)"));
}

TEST(AntiWrinkle, BarsOfALargerImageAreCentredInIt) {
  Log log;
  const Image8 image = blankImage(1205 + 10, 1418 + 4, grayPalette());
  const Image8 framed = antiWrinkleFrame(image, "Tattoo_A6", 1, log);
  ASSERT_EQ(framed.width, 1215);
  EXPECT_EQ(framed.at(4, 700), 0);
  EXPECT_EQ(framed.at(5, 700), 255);
  EXPECT_EQ(framed.at(16, 700), 255);
  EXPECT_EQ(framed.at(17, 700), 0);
  EXPECT_EQ(framed.at(600, 1), 0);
  EXPECT_EQ(framed.at(600, 2), 255);
}

TEST(AntiWrinkle, AnUnlistedPageGetsLogLinesOnly) {
  // The bars without rows leave the column counter where it was: 0 at first, then the top bar's.
  Log log;
  const Image8 image = numbered(10, 6);
  EXPECT_EQ(antiWrinkleFrame(image, "a4", 1, log), image);
  EXPECT_THAT(log.lines(),
              ElementsAre(HasSubstr("level: 1"), HasSubstr("offset.x: 5"), HasSubstr("offset.y: 3"),
                          HasSubstr("left line. point(5, 3, 0, 3)"),
                          HasSubstr("top line. point(5, 3, 5, 15)"),
                          HasSubstr("right line. point(-7, 3, 5, 3)"),
                          HasSubstr("bottom line. point(5, -9, 5, 3)")));
}

TEST(BlankLines, HundredBlankHundredInkHundredBlank) {
  constexpr std::uint64_t kBytes = 4;
  std::vector<std::uint8_t> page(300 * kBytes, 0);
  for (std::size_t i = 100 * kBytes; i < 200 * kBytes; ++i) page[i] = 1;
  EXPECT_EQ(blankLinesFromFront(page, kBytes, 300, 0, kBytes), 99U);
  EXPECT_EQ(blankLinesFromBack(page, kBytes, 300, 0, kBytes), 200U);
}

TEST(BlankLines, TheFirstLineIsNeverLookedAt) {
  const std::vector<std::uint8_t> page = {1, 0, 1};
  EXPECT_EQ(blankLinesFromFront(page, 1, 3, 0, 1), 1U);
}

TEST(BlankLines, TheLinePastTheEndIsBlank) {
  EXPECT_EQ(blankLinesFromFront({1, 0}, 1, 2, 0, 1), 2U);
  EXPECT_EQ(blankLinesFromFront({7}, 1, 1, 0, 1), 1U);
}

TEST(BlankLines, SkippedBytesAreNotInkUnlessTheyExceedTheLine) {
  const std::vector<std::uint8_t> page = {0, 9, 0, 9};
  EXPECT_EQ(blankLinesFromBack(page, 2, 2, 1, 2), 0U);
  EXPECT_EQ(blankLinesFromBack(page, 2, 2, 2, 2), 0U);
  EXPECT_EQ(blankLinesFromBack(page, 2, 2, 3, 2), 2U);
}

}  // namespace
}  // namespace reference
