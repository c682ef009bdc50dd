#include "tspl/picture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "png_file.h"
#include "streams.h"
#include "temporary_folder.h"

namespace {

using test::Bytes;
using test::kDots;
using test::kPreamble;
using test::PageOf;

// The pixels of a picture from (left, top) on: ink '#', paper '.', the label's edge '+', the table
// that it lies on ' ', ink beside the label '!', anything else '?'.
std::vector<std::string> Art(const test::PngFile& png, std::uint32_t left, std::uint32_t top,
                             std::uint32_t width, std::uint32_t height) {
  std::vector<std::string> art;
  for (std::uint32_t y = top; y < top + height; ++y) {
    std::string line;
    for (std::uint32_t x = left; x < left + width; ++x) {
      switch (png.At(x, y)) {
        case 0x000000:
          line += '#';
          break;
        case 0xFFFFFF:
          line += '.';
          break;
        case 0x808080:
          line += '+';
          break;
        case 0xD8D8D8:
          line += ' ';
          break;
        case 0xE00000:
          line += '!';
          break;
        default:
          line += '?';
      }
    }
    art.push_back(line);
  }
  return art;
}

// Draws the only page of a stream.
class Picture : public ::testing::Test {
 protected:
  std::string Write(const std::string& page, std::optional<int> dpi = std::nullopt) {
    bytes_ = kPreamble + page;
    const tspl::Stream stream = tspl::Read(Bytes(bytes_));
    EXPECT_FALSE(stream.malformed) << stream.malformed->expected;
    const auto label = tspl::MeasureLabel(stream.pages.at(0), dpi);
    std::FILE* file = std::fopen(folder_.File("page.png").c_str(), "wb");
    const std::string error = tspl::WritePicture(stream.pages.at(0), label.value(), file);
    std::fclose(file);
    return error;
  }

  test::PngFile Draw(const std::string& page, std::optional<int> dpi = std::nullopt) {
    EXPECT_EQ(Write(page, dpi), "");
    return test::ReadPng(folder_.File("page.png"));
  }

  test::TemporaryFolder folder_;
  std::string bytes_;
};

TEST_F(Picture, ShowsEveryDotOnALabelWithAnEdge) {
  const test::PngFile png = Draw(PageOf("1.0 mm, 0.5 mm", 1, 4, kDots));
  ASSERT_EQ(png.width, 16U + 8 + 16);
  ASSERT_EQ(png.height, 16U + 4 + 16);
  EXPECT_EQ(Art(png, 14, 14, 12, 8), (std::vector<std::string>{
                                         "            ",
                                         " ++++++++++ ",
                                         " +#######.+ ",
                                         " +#......#+ ",
                                         " +#......#+ ",
                                         " +########+ ",
                                         " ++++++++++ ",
                                         "            ",
                                     }));
}

TEST_F(Picture, IsAllTableAroundTheLabel) {
  const test::PngFile png = Draw(PageOf("1.0 mm, 0.5 mm", 1, 4, kDots));
  for (std::uint32_t y = 0; y < png.height; ++y) {
    for (std::uint32_t x = 0; x < png.width; ++x) {
      const bool at_label = x >= 15 && x < 16 + 8 + 1 && y >= 15 && y < 16 + 4 + 1;
      EXPECT_EQ(png.At(x, y) == 0xD8D8D8, !at_label) << x << ", " << y;
    }
  }
}

TEST_F(Picture, ShowsATurnedPageAsItComesOut) {
  const test::PngFile png = Draw(PageOf("1.0 mm, 0.5 mm", 1, 4, kDots, true));
  EXPECT_EQ(Art(png, 14, 14, 12, 8), (std::vector<std::string>{
                                         "            ",
                                         " ++++++++++ ",
                                         " +########+ ",
                                         " +#......#+ ",
                                         " +#......#+ ",
                                         " +.#######+ ",
                                         " ++++++++++ ",
                                         "            ",
                                     }));
}

// A page of 5 x 2 dots at 203 dpi is 0.6 x 0.3 mm. The last three bits of a row are no dots of the
// page; the filter fills them with paper.
TEST_F(Picture, TheFillOfARowLiesBesideTheLabel) {
  const std::vector<std::string> upright = {
      " +++++++    ",
      " +.#.#.+    ",
      " +#...#+    ",
      " +++++++    ",
  };
  const std::string dots = "\xAF\x77";  // 10101 111, 01110 111
  const test::PngFile png = Draw(PageOf("0.6 mm, 0.3 mm", 1, 2, dots));
  ASSERT_EQ(png.width, 16U + 5 + 16);
  EXPECT_EQ(Art(png, 14, 15, 12, 4), upright);

  const std::vector<std::string> turned = {
      " +++++++    ",
      " +#...#+    ",
      " +.#.#.+    ",
      " +++++++    ",
  };
  const test::PngFile turned_png = Draw(PageOf("0.6 mm, 0.3 mm", 1, 2, dots, true));
  ASSERT_EQ(turned_png.width, 16U + 5 + 16);
  EXPECT_EQ(Art(turned_png, 14, 15, 12, 4), turned);
}

TEST_F(Picture, InkBesideTheLabelIsRed) {
  const std::string dots = "\xA8\x77";  // 10101 000, 01110 111
  EXPECT_EQ(Art(Draw(PageOf("0.6 mm, 0.3 mm", 1, 2, dots)), 14, 15, 12, 4),
            (std::vector<std::string>{
                " +++++++    ",
                " +.#.#.!!!  ",
                " +#...#+    ",
                " +++++++    ",
            }));
  // Turned, the row goes on to the left of the label.
  EXPECT_EQ(Art(Draw(PageOf("0.6 mm, 0.3 mm", 1, 2, dots, true)), 11, 15, 12, 4),
            (std::vector<std::string>{
                "    +++++++ ",
                "    +#...#+ ",
                "  !!!.#.#.+ ",
                "    +++++++ ",
            }));
}

TEST_F(Picture, GrowsToShowEveryDotBesideTheLabel) {
  // 40 x 30 dots of ink on a label of 8 x 4: 32 dots beyond its right side, 26 beyond its lower
  // one, and a pixel of table behind them.
  const std::string page = PageOf("1.0 mm, 0.5 mm", 5, 30, std::string(150, '\0'));
  const test::PngFile png = Draw(page, 203);
  ASSERT_EQ(png.width, 16U + 40 + 1);
  ASSERT_EQ(png.height, 16U + 30 + 1);
  for (std::uint32_t y = 16; y < 16 + 30; ++y) {
    const std::string row = Art(png, 16, y, 41, 1)[0];
    EXPECT_EQ(row, (y < 20 ? "########" : "!!!!!!!!") + std::string(32, '!') + " ");
  }
  const test::PngFile turned =
      Draw(PageOf("1.0 mm, 0.5 mm", 5, 30, std::string(150, '\0'), true), 203);
  ASSERT_EQ(turned.width, png.width);
  ASSERT_EQ(turned.height, png.height);
  for (std::uint32_t y = 0; y < png.height; ++y) {
    const std::string row = Art(png, 0, y, png.width, 1)[0];
    EXPECT_EQ(Art(turned, 0, png.height - 1 - y, png.width, 1)[0],
              std::string(row.rbegin(), row.rend()));
  }
}

TEST_F(Picture, ALabelLargerThanItsDotsIsPaper) {
  const test::PngFile png = Draw(PageOf("1.0 mm, 0.5 mm", 1, 2, std::string("\x00\x7E", 2)), 300);
  // 1.0 mm are 11.8 dots at 300 dpi, 0.5 mm are 5.9.
  EXPECT_EQ(Art(png, 15, 15, 14, 8), (std::vector<std::string>{
                                         "++++++++++++++",
                                         "+########....+",
                                         "+#......#....+",
                                         "+............+",
                                         "+............+",
                                         "+............+",
                                         "+............+",
                                         "++++++++++++++",
                                     }));
}

TEST_F(Picture, SaysHowManyDotsAMetreHolds) {
  const struct {
    std::string page;
    std::optional<int> dpi;
    std::uint32_t x;
    std::uint32_t y;
  } kCases[] = {
      // 203 / 0.0254 = 7992.1, 300 / 0.0254 = 11811.02, 600 / 0.0254 = 23622.05
      {PageOf("75.1 mm, 0.5 mm", 75, 4, std::string(300, '\0')), std::nullopt, 7992, 7992},
      {PageOf("50.8 mm, 0.3 mm", 75, 4, std::string(300, '\0')), std::nullopt, 11811, 11811},
      {PageOf("25.4 mm, 0.2 mm", 75, 4, std::string(300, '\0')), std::nullopt, 23622, 23622},
      {PageOf("50.8 mm, 5.0 mm", 75, 40, std::string(3000, '\0')), std::nullopt, 11811, 7992},
      {PageOf("75.1 mm, 0.5 mm", 75, 4, std::string(300, '\0')), 1000, 39370, 39370},
      // No height for 100 rows: no resolution.
      {PageOf("50.8 mm, 0.0 mm", 75, 100, std::string(7500, '\0')), std::nullopt, 0, 0},
  };
  for (const auto& c : kCases) {
    const test::PngFile png = Draw(c.page, c.dpi);
    EXPECT_EQ(png.pixels_per_metre_x, c.x) << c.page.substr(0, 24);
    EXPECT_EQ(png.pixels_per_metre_y, c.y) << c.page.substr(0, 24);
  }
}

TEST_F(Picture, AWrongSizeIsRefusedRatherThanDrawnForHours) {
  const std::string dot("\x7F");
  EXPECT_EQ(Write(PageOf("100000000000.0 mm, 1.0 mm", 1, 1, dot), 203),
            "a label of 799212598425 x 8 dots is too large to draw");
  EXPECT_EQ(Write(PageOf("1.0 mm, 100000000000.0 mm", 1, 1, dot), 203),
            "a label of 8 x 799212598425 dots is too large to draw");
  // Each side may be drawn, but not both: 79921 x 79921 dots.
  EXPECT_EQ(Write(PageOf("10000.0 mm, 10000.0 mm", 1, 1, dot), 203),
            "a label of 79921 x 79921 dots is too large to draw");
  // Without a resolution to mislead it, the label is what its dots make it.
  EXPECT_EQ(Write(PageOf("100000000000.0 mm, 100000000000.0 mm", 1, 1, dot)), "");
}

TEST_F(Picture, ALongPageIsDrawnUpToAMillionPixels) {
  // 999968 x 25.4 / 203 = 125119.1 mm, and a row more is 125119.3 mm.
  const test::PngFile png =
      Draw(PageOf("1.0 mm, 125119.1 mm", 1, 999968, std::string(999968, '\x7F')));
  ASSERT_EQ(png.height, 1000000U);
  EXPECT_EQ(Art(png, 15, 16 + 999968 - 1, 10, 2),
            (std::vector<std::string>{"+#.......+", "++++++++++"}));
  EXPECT_EQ(Write(PageOf("1.0 mm, 125119.3 mm", 1, 999969, std::string(999969, '\x7F'))),
            "a label of 8 x 999969 dots is too large to draw");
}

TEST_F(Picture, AFullDiskIsReported) {
  // Dots without any order, which no compression makes small: 512 x 600, 64.1 mm by 75.1 mm.
  std::mt19937 generator(1);
  std::string noise(std::size_t{64} * 600, '\0');
  for (char& byte : noise) byte = static_cast<char>(generator());
  // One picture fails when the last of it leaves the buffer, the other while it is being made.
  const struct {
    std::string page;
    const char* error;  // of drawing, or else of closing
  } kCases[] = {
      {PageOf("1.0 mm, 0.5 mm", 1, 4, kDots), ""},
      {PageOf("64.1 mm, 75.1 mm", 64, 600, noise), "No space left on device"},
  };
  for (const auto& c : kCases) {
    bytes_ = kPreamble + c.page;
    const tspl::Stream stream = tspl::Read(Bytes(bytes_));
    const auto label = tspl::MeasureLabel(stream.pages.at(0), std::nullopt);
    std::FILE* full = std::fopen("/dev/full", "wb");
    ASSERT_NE(full, nullptr);
    EXPECT_EQ(tspl::WritePicture(stream.pages.at(0), label.value(), full), c.error);
    EXPECT_EQ(std::fclose(full) != 0, c.error[0] == '\0');
  }
}

TEST_F(Picture, IsNotDrawnOnWhenThereIsAnObjection) {
  bytes_ = kPreamble + PageOf("1.0 mm, 0.5 mm", 1, 4, kDots);
  const tspl::Stream stream = tspl::Read(Bytes(bytes_));
  const auto label = tspl::MeasureLabel(stream.pages.at(0), std::nullopt);
  // 16 + 4 + 16 rows, and once behind them.
  for (int objected = 0; objected <= 37; ++objected) {
    int asked = 0;
    std::FILE* file = std::fopen(folder_.File("page.png").c_str(), "wb");
    const std::string error = tspl::WritePicture(stream.pages.at(0), label.value(), file, [&] {
      return std::string(asked++ == objected ? "enough" : "");
    });
    std::fclose(file);
    EXPECT_EQ(error, objected < 37 ? "enough" : "");
    EXPECT_EQ(asked, std::min(objected + 1, 37));
  }
}

}  // namespace
