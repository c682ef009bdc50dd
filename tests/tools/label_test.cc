#include "tspl/label.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

tspl::Page PageOf(std::int64_t width_tenths, std::int64_t height_tenths, std::uint32_t width_bytes,
                  std::uint32_t height_dots, const std::vector<std::uint8_t>& data) {
  tspl::Page page{};
  page.width_tenths_mm = width_tenths;
  page.height_tenths_mm = height_tenths;
  page.bitmap = tspl::Bitmap{0, width_bytes, height_dots, data};
  return page;
}

TEST(Label, ItsResolutionIsTheOneThatMakesSizeOutOfTheDots) {
  const struct {
    const char* what;
    std::int64_t width_tenths;
    std::int64_t height_tenths;
    std::uint32_t width_bytes;
    std::uint32_t height_dots;
    double dpi_x;
    double dpi_y;
    std::uint64_t label_width;
  } kCases[] = {
      // 600 x 25.4 / 203 = 75.07, 400 x 25.4 / 203 = 50.05
      {"600 x 400 dots", 751, 500, 75, 400, 203, 203, 600},
      // 4 x 6 inch: 812 dots are 101.5 bytes, so that four dots of a row are no dots of the page
      {"812 x 1218 dots", 1016, 1524, 102, 1218, 203, 203, 812},
      {"1200 x 1800 dots", 1016, 1524, 150, 1800, 300, 300, 1200},
      {"2400 x 3600 dots", 1016, 1524, 300, 3600, 600, 600, 2400},
      // A4: 2480 x 25.4 / 300 = 209.97, 3508 x 25.4 / 300 = 297.01
      {"2480 x 3508 dots", 2100, 2970, 310, 3508, 300, 300, 2480},
      {"203 x 203 dots", 254, 254, 26, 203, 203, 203, 203},
      // 5 x 25.4 / 203 = 0.63 and 0.6 mm are 4.80 dots: 4 would be 0.5, 6 would be 0.75
      {"5 x 5 dots", 6, 6, 1, 5, 203, 203, 5},
      // 814 to 816 dots at 600 dpi are 34.5 mm
      {"a label as large as its bitmap where SIZE leaves that open", 345, 345, 102, 815, 600, 600,
       816},
      {"one dot at 600 dpi, which is 0.04 mm", 0, 0, 1, 1, 600, 600, 1},
      {"254 x 254 dots in an inch", 254, 254, 32, 254, 254, 254, 254},
      {"600 dots at 300 dpi by 400 at 203", 508, 500, 75, 400, 300, 203, 600},
      // 56 dots and 100 dots in an inch each
      {"a bitmap that is not of this SIZE", 254, 254, 7, 100, 56, 100, 56},
      {"8 dots in 100 m", 1000000, 1000000, 1, 1, 8 * 254.0 / 1000000, 254.0 / 1000000, 8},
      {"100 dots on no height", 508, 0, 75, 100, 300, 0, 600},
  };
  for (const auto& c : kCases) {
    const std::vector<std::uint8_t> data(std::size_t{c.width_bytes} * c.height_dots);
    const auto label = tspl::MeasureLabel(
        PageOf(c.width_tenths, c.height_tenths, c.width_bytes, c.height_dots, data), std::nullopt);
    ASSERT_TRUE(label) << c.what;
    EXPECT_EQ(label->dpi_x, c.dpi_x) << c.what;
    EXPECT_EQ(label->dpi_y, c.dpi_y) << c.what;
    EXPECT_EQ(label->width_dots, c.label_width) << c.what;
    EXPECT_EQ(label->height_dots, c.height_dots) << c.what;
  }
}

// Square pages, whose SIZE is a single-precision number with one decimal, small ones and such where
// that precision shows: no dot of a page may lie beyond its label.
TEST(Label, HoldsEveryDotOfItsPage) {
  const std::vector<std::uint8_t> data(1);
  std::vector<std::uint32_t> sides;
  for (std::uint32_t dots = 1; dots <= 5000; ++dots) sides.push_back(dots);
  for (std::uint32_t dots = 10000000; dots <= 10001000; ++dots) sides.push_back(dots);
  for (const int dpi : {203, 300, 600}) {
    for (const std::uint32_t dots : sides) {
      const auto side_mm = static_cast<float>(dots * 25.4 / dpi);
      char size[32];
      std::snprintf(size, sizeof size, "%.1f", static_cast<double>(side_mm));
      std::string digits = size;
      digits.erase(digits.size() - 2, 1);
      const std::int64_t tenths = std::stoll(digits);
      const std::uint32_t bytes = (dots + 7) / 8;
      const auto label =
          tspl::MeasureLabel(PageOf(tenths, tenths, bytes, dots, data), std::nullopt);
      ASSERT_TRUE(label);
      ASSERT_EQ(label->dpi_x, label->dpi_y) << dots << " dots at " << dpi << " dpi";
      ASSERT_GE(label->width_dots, dots) << dots << " dots at " << dpi << " dpi";
      ASSERT_LE(label->width_dots, bytes * 8) << dots << " dots at " << dpi << " dpi";
      ASSERT_EQ(label->height_dots, dots);
      // Small pages fit several resolutions; large ones only their own.
      if (dots >= 1000) {
        ASSERT_EQ(label->dpi_x, dpi) << dots << " dots at " << dpi << " dpi";
      }
    }
  }
}

TEST(Label, TakesAGivenResolution) {
  const struct {
    const char* what;
    int dpi;
    std::uint64_t label_width;
    std::uint64_t label_height;
  } kCases[] = {
      // 75.1 x 50.0 mm; the bitmap has 600 x 400 dots
      {"its own", 203, 600, 400},
      {"75.1 x 300 / 25.4 = 887.01, 50 x 300 / 25.4 = 590.55", 300, 887, 591},
      {"75.1 x 1 / 25.4 = 2.96, 50 / 25.4 = 1.97", 1, 3, 2},
  };
  const std::vector<std::uint8_t> data(30000);
  for (const auto& c : kCases) {
    const auto label = tspl::MeasureLabel(PageOf(751, 500, 75, 400, data), c.dpi);
    ASSERT_TRUE(label);
    EXPECT_EQ(label->dpi_x, c.dpi);
    EXPECT_EQ(label->dpi_y, c.dpi);
    EXPECT_EQ(label->width_dots, c.label_width) << c.what;
    EXPECT_EQ(label->height_dots, c.label_height) << c.what;
  }
}

TEST(Label, IsNeverWithoutADot) {
  const std::vector<std::uint8_t> data(1);
  const auto label = tspl::MeasureLabel(PageOf(0, 0, 1, 1, data), 1);
  ASSERT_TRUE(label);
  EXPECT_EQ(label->width_dots, 1U);
  EXPECT_EQ(label->height_dots, 1U);
}

TEST(Label, APageWithoutDotsHasNone) {
  tspl::Page no_bitmap{};
  EXPECT_FALSE(tspl::MeasureLabel(no_bitmap, std::nullopt));
  EXPECT_FALSE(tspl::MeasureLabel(PageOf(100, 100, 0, 2147483647, {}), std::nullopt));
  EXPECT_FALSE(tspl::MeasureLabel(PageOf(100, 100, 2147483647, 0, {}), 203));
}

}  // namespace
