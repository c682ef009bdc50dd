#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "enhance/tattoo.h"
#include "support/capture.h"
#include "support/differences.h"
#include "support/raster.h"
#include "test_printer.h"

namespace {

constexpr std::uint8_t kUntouched = 0xA5;

struct Result {
  long length = -1;
  Bytes out;
  std::string log;
};

/// Processes a page with the type set on the printer as well, as the filter does; `out` begins as
/// zeros and ends in a guard.
Result process(TestPrinter& printer, DitherType type, const Bytes& page, int stride, int width,
               int height) {
  printer.setHalftoneType(type);
  Result result;
  const std::size_t size = 2 * static_cast<std::size_t>(stride) * static_cast<std::size_t>(height);
  result.out.resize(size + 16, kUntouched);
  std::fill_n(result.out.begin(), size, std::uint8_t{0});
  result.log = support::standardErrorOf([&] {
    result.length =
        printer.PageProcess(type, page.data(), stride, width, height, result.out.data());
  });
  EXPECT_EQ(Bytes(result.out.begin() + static_cast<std::ptrdiff_t>(size), result.out.end()),
            Bytes(16, kUntouched))
      << "written past the end";
  result.out.resize(size);
  return result;
}

std::string lines(const std::vector<std::string>& messages) {
  std::string text;
  for (const std::string& message : messages) text += "DEBUG:PageProcess: " + message + "\n";
  return text;
}

/// Rows of `image`, `width` bytes each, as rows of the result: four-byte steps with zeros between.
Bytes inRowsOfFour(const Bytes& pixels, std::size_t width, std::size_t size) {
  const std::size_t step = (width + 3) / 4 * 4;
  Bytes rows(size, 0);
  for (std::size_t i = 0; i < pixels.size(); ++i) rows[i / width * step + i % width] = pixels[i];
  return rows;
}

// The route of CxImage::Dither

TEST(DitherRoute, NoneIsAThresholdAt128) {
  TestPrinter printer;
  const Bytes page = {0, 128, 129, 255, 127, 200, 1, 130};
  const Result result = process(printer, None, page, 4, 4, 2);
  EXPECT_EQ(result.length, 8);  // 2 rows of 4 bytes
  EXPECT_EQ(printer.pimage_, &printer.cximage_);
  EXPECT_EQ(pixelsOf(printer.cximage_), (Bytes{0, 0, 1, 1, 0, 1, 0, 1}));  // indices, not levels
  EXPECT_EQ(result.out, (Bytes{0, 0, 255, 255, 0, 255, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(support::firstDifference(
                lines({"Lumo dithering is disabled",
                       "Successfully created CxImage from array with stride 4",
                       "Applied default dithering and increased bit depth", "negativePrint_ 0",
                       "Filled the output buffer with processed pixels, length: 8"}),
                result.log),
            "");
}

TEST(DitherRoute, EachTypeIsItsNumberAsMethodIsKept) {
  const Bytes page = support::draw(support::Drawing::Gradient, 32, 16);
  for (int type = 0; type < 8; ++type) {
    TestPrinter printer;
    process(printer, static_cast<DitherType>(type), page, 32, 32, 16);
    CxImage expected;
    fill(expected, 32, 16, page);
    ASSERT_TRUE(expected.Dither(type));
    EXPECT_EQ(support::firstDifference(text(pixelsOf(expected)), text(pixelsOf(printer.cximage_))),
              "")
        << tarvoHalftoneTypeToStr(static_cast<DitherType>(type));
  }
  // So that the comparison above says something: the name FloydSteinberg runs the ordered matrix.
  // Level 128 gives D = 128 x 16 / 255 = 8: white where the matrix (0 8 2 10) is below 8.
  TestPrinter printer;
  process(printer, FloydSteinberg, Bytes(4, 128), 4, 4, 1);
  EXPECT_EQ(pixelsOf(printer.cximage_), (Bytes{1, 0, 1, 0}));
}

TEST(DitherRoute, ArgumentIsTheMethodAndTheMemberTheRouteIsKept) {
  TestPrinter printer;
  printer.setHalftoneType(None);
  Bytes out(8);
  const Bytes page(4, 128);
  support::standardErrorOf(
      [&] { printer.PageProcess(FloydSteinberg, page.data(), 4, 4, 1, out.data()); });
  EXPECT_EQ(pixelsOf(printer.cximage_), (Bytes{1, 0, 1, 0}));  // the ordered matrix, see above
  EXPECT_EQ(printer.pimage_, &printer.cximage_);

  // The tattoo types as an argument alone: Floyd-Steinberg, the method of every other number.
  // 128: black, e = 128; right: 128 + 128 x 7 / 16 = 184: white, e = -71; 128 - 31 = 97: black,
  // e = 97; 128 + 42 = 170: white.
  support::standardErrorOf([&] { printer.PageProcess(Tattoo, page.data(), 4, 4, 1, out.data()); });
  EXPECT_EQ(pixelsOf(printer.cximage_), (Bytes{0, 1, 0, 1}));

  printer.setHalftoneType(Tattoo);
  const std::string log = support::standardErrorOf(
      [&] { printer.PageProcess(None, page.data(), 4, 4, 1, out.data()); });
  EXPECT_EQ(printer.pimage_, &printer.ditheredImage_);
  EXPECT_EQ(log.rfind("DEBUG:PageProcess: Lumo dithering is enabled\n", 0), 0U);
}

TEST(DitherRoute, RowsOfAnyWidthAreFourByteSteps) {
  for (int width = 1; width <= 9; ++width) {
    TestPrinter printer;
    const auto dots = static_cast<std::size_t>(width);
    const Bytes page = support::draw(support::Drawing::Random, static_cast<unsigned>(width), 3);
    const Result result = process(printer, None, page, width, width, 3);
    const int step = (width + 3) / 4 * 4;
    EXPECT_EQ(result.length, 3 * step) << width;
    Bytes expected(page.size());
    std::transform(page.begin(), page.end(), expected.begin(), [](std::uint8_t level) {
      return level > 128 ? std::uint8_t{255} : std::uint8_t{0};
    });
    // The buffer holds 2 x width x 3 bytes; a page one dot wide would need 3 rows of 4 bytes.
    const std::size_t size = 2 * dots * 3;
    EXPECT_EQ(result.out, static_cast<std::size_t>(3 * step) <= size
                              ? inRowsOfFour(expected, dots, size)
                              : Bytes(size, 0))
        << width;
  }
}

TEST(DitherRoute, BytesBeyondTheWidthAreNotLookedAt) {
  TestPrinter printer;
  const Bytes page = {255, 0, 255, 99, 99, 99, 0, 255, 0, 99, 99, 99};
  const Result result = process(printer, None, page, 6, 3, 2);
  EXPECT_EQ(pixelsOf(printer.cximage_), (Bytes{1, 0, 1, 0, 1, 0}));
  EXPECT_EQ(result.length, 8);
}

TEST(DitherRoute, WhatIsMissingOfALineIs0) {
  const Bytes page = {255, 254, 253, 252, 251, 250};
  const struct {
    int stride;
    Bytes expected;
  } cases[] = {
      {0, {0, 0, 0, 0, 0, 0, 0, 0}}, {1, {1, 0, 0, 0, 1, 0, 0, 0}}, {3, {1, 1, 1, 0, 1, 1, 1, 0}}};
  for (const auto& [stride, expected] : cases) {
    TestPrinter printer;
    support::standardErrorOf([&, bytes = stride] {
      EXPECT_EQ(printer.PageProcess(None, page.data(), bytes, 4, 2, nullptr), 8);
    });
    EXPECT_EQ(pixelsOf(printer.cximage_), expected) << stride;
  }
}

// Tone, rotation, mirror

TEST(Tone, BrightnessTimesFiveAndContrastTimesTwo) {
  const struct {
    int brightness;
    int contrast;
    const char* line;  ///< empty: Light is not called
    Bytes expected;    ///< of levels 0, 100, 128, 129, 200, 255
  } cases[] = {
      {0, 0, "", {0, 0, 0, 1, 1, 1}},
      // 20 x 5 = 100: levels 100, 200, 228, 229, 255, 255
      {20, 0, "Adjusted brightness to 100 and contrast to 0", {0, 1, 1, 1, 1, 1}},
      // -37 x 5 = -185: all but 255 - 185 = 70 are 0
      {-37, 0, "Adjusted brightness to -185 and contrast to 0", {0, 0, 0, 0, 0, 0}},
      {100, 0, "Adjusted brightness to 500 and contrast to 0", {1, 1, 1, 1, 1, 1}},
      {-100, 0, "Adjusted brightness to -500 and contrast to 0", {0, 0, 0, 0, 0, 0}},
      // slope (100 + 100) / 100 = 2 about 128, as without it
      {0, 50, "Adjusted brightness to 0 and contrast to 100", {0, 0, 0, 1, 1, 1}},
      // slope (-200 + 100) / 100 = -1: 256 - level
      {0, -100, "Adjusted brightness to 0 and contrast to -200", {1, 1, 0, 0, 0, 0}},
      // slope 0, all at 128 + 5 = 133
      {1, -50, "Adjusted brightness to 5 and contrast to -100", {1, 1, 1, 1, 1, 1}},
  };
  const Bytes page = {0, 100, 128, 129, 200, 255};
  for (const auto& row : cases) {
    TestPrinter printer;
    printer.setBrightness(row.brightness);
    printer.setContrast(row.contrast);
    const Result result = process(printer, None, page, 6, 6, 1);
    EXPECT_EQ(pixelsOf(printer.cximage_), row.expected) << row.brightness << ", " << row.contrast;
    std::vector<std::string> expected = {"Lumo dithering is disabled",
                                         "Successfully created CxImage from array with stride 6"};
    if (*row.line != '\0') expected.emplace_back(row.line);
    expected.insert(expected.end(),
                    {"Applied default dithering and increased bit depth", "negativePrint_ 0",
                     "Filled the output buffer with processed pixels, length: 8"});
    EXPECT_EQ(support::firstDifference(lines(expected), result.log), "");
  }
}

TEST(Turning, RotationComesBeforeMirroringAndBothBeforeHalftoning) {
  const Bytes page = {255, 0,   0,  //
                      0,   255, 255};
  const struct {
    bool rotate;
    bool mirror;
    Bytes expected;
  } cases[] = {{false, false, {1, 0, 0, 0, 1, 1}},
               {false, true, {0, 0, 1, 1, 1, 0}},
               {true, false, {1, 1, 0, 0, 0, 1}},
               {true, true, {0, 1, 1, 1, 0, 0}}};
  for (const auto& row : cases) {
    TestPrinter printer;
    printer.setRotate180Print(row.rotate);
    printer.setMirrorPrint(row.mirror);
    const Result result = process(printer, None, page, 3, 3, 2);
    EXPECT_EQ(pixelsOf(printer.cximage_), row.expected);
    std::vector<std::string> expected = {"Lumo dithering is disabled",
                                         "Successfully created CxImage from array with stride 3"};
    if (row.rotate) expected.emplace_back("Rotated the image 180 degrees");
    if (row.mirror) expected.emplace_back("Mirrored the image");
    expected.insert(expected.end(),
                    {"Applied default dithering and increased bit depth", "negativePrint_ 0",
                     "Filled the output buffer with processed pixels, length: 8"});
    EXPECT_EQ(support::firstDifference(lines(expected), result.log), "");
  }
}

TEST(Turning, HalftonesSeeTheTurnedPage) {
  // Error diffusion is not symmetric: a page mirrored before is not a result mirrored after.
  const unsigned width = 24, height = 8;
  const Bytes page = support::draw(support::Drawing::Gradient, width, height);
  for (const DitherType type : {Ordered, Sierra, Tattoo, Tattoo_X8}) {
    TestPrinter turned;
    turned.setRotate180Print(true);
    turned.setMirrorPrint(true);
    process(turned, type, page, width, width, height);

    Bytes upsideDown;  // turned by 180 degrees and mirrored: the rows in reverse
    for (std::size_t y = height; y-- > 0;) {
      const auto row = page.begin() + static_cast<std::ptrdiff_t>(y * width);
      upsideDown.insert(upsideDown.end(), row, row + width);
    }
    TestPrinter plain;
    process(plain, type, upsideDown, width, width, height);
    EXPECT_EQ(
        support::firstDifference(text(pixelsOf(*plain.pimage_)), text(pixelsOf(*turned.pimage_))),
        "")
        << tarvoHalftoneTypeToStr(type);
  }
}

// Negative

TEST(Negative, OnTheDitherRouteEveryDotIsPrintedIsKept) {
  // Indices 0 and 1 become 255 and 254: neither is 0, so no bit of a bitmap is set: all ink.
  TestPrinter printer;
  printer.setNegativePrint(true);
  const Result result = process(printer, None, {0, 255, 0, 255}, 4, 4, 1);
  EXPECT_EQ(pixelsOf(printer.cximage_), (Bytes{255, 254, 255, 254}));
  // The copy is inverted once more: 255 - 255 = 0, 255 - 254 = 1.
  EXPECT_EQ(result.out, (Bytes{0, 1, 0, 1, 0, 0, 0, 0}));
  EXPECT_EQ(
      support::firstDifference(lines({"Lumo dithering is disabled",
                                      "Successfully created CxImage from array with stride 4",
                                      "Applied default dithering and increased bit depth",
                                      "negativePrint_ 1", "Inverting the image for negative print",
                                      "Filled the output buffer with processed pixels, length: 4"}),
                               result.log),
      "");
}

TEST(Negative, OnTheTattooRouteIsATrueInversion) {
  const Bytes page = support::draw(support::Drawing::Gradient, 16, 8);
  TestPrinter plain, negative;
  negative.setNegativePrint(true);
  const Result plainResult = process(plain, Tattoo, page, 16, 16, 8);
  const Result negativeResult = process(negative, Tattoo, page, 16, 16, 8);
  Bytes inverted = pixelsOf(plain.ditheredImage_);
  for (std::uint8_t& pixel : inverted) pixel = static_cast<std::uint8_t>(255 - pixel);
  EXPECT_EQ(support::firstDifference(text(inverted), text(pixelsOf(negative.ditheredImage_))), "");
  // Inverted twice, the buffer shows the page as without: not what is printed.
  EXPECT_EQ(plainResult.out, negativeResult.out);
}

// The tattoo route

TEST(TattooRoute, GoesThroughTheEnhancementChain) {
  for (const DitherType type : {Tattoo, Tattoo_X8}) {
    for (unsigned width = 1; width <= 9; ++width) {
      const unsigned height = 5;
      const Bytes page = support::draw(support::Drawing::Random, width, height, width);
      TestPrinter printer;
      const Result result = process(printer, type, page, static_cast<int>(width),
                                    static_cast<int>(width), static_cast<int>(height));
      LumoImage source(static_cast<int>(width), static_cast<int>(height), LUMO_IMG_GRAY,
                       page.data());
      const LumoImage chain =
          type == Tattoo ? lumoTattooDithering(source) : lumoTattooDitheringX8(source);
      const Bytes expected(chain.data, chain.data + std::size_t{width} * height);
      EXPECT_EQ(printer.pimage_, &printer.ditheredImage_);
      EXPECT_EQ(support::firstDifference(text(expected), text(pixelsOf(printer.ditheredImage_))),
                "")
          << tarvoHalftoneTypeToStr(type) << ", width " << width;

      const unsigned step = (width + 3) / 4 * 4;
      const std::string w = std::to_string(width), s = std::to_string(step);
      EXPECT_EQ(result.length, static_cast<long>(height * step));
      EXPECT_EQ(support::firstDifference(
                    lines({"Lumo dithering is enabled",
                           "Successfully created CxImage from array with stride " + w,
                           "Copied pixels to the output buffer for Lumo dithering, with stride " +
                               w + ", EffWidth " + s,
                           "Applied Lumo dithering with stride " + s + ", width " + w,
                           "Successfully created a new CxImage from Lumo dithered data",
                           "negativePrint_ 0",
                           "Filled the output buffer with processed pixels, length: " +
                               std::to_string(height * step)}),
                    result.log),
                "");
    }
  }
}

TEST(TattooRoute, DotsHaveTheGrayPalette) {
  TestPrinter printer;
  process(printer, Tattoo, Bytes(16, 200), 4, 4, 4);
  for (const int level : {0, 1, 128, 255}) {
    const tagRGBQUAD color =
        printer.ditheredImage_.GetPaletteColor(static_cast<std::uint8_t>(level));
    EXPECT_EQ(color.rgbRed, level);
    EXPECT_EQ(color.rgbGreen, level);
    EXPECT_EQ(color.rgbBlue, level);
  }
}

TEST(TattooRoute, LongerLinesAreReadBackToBackIsKept) {
  // Lines of 6 bytes, 4 dots each: the copies lie 6 bytes apart and are read 4 apart, with the
  // zeros of the buffer in between.
  const Bytes page = {10,  250, 30,  200, 1, 2,  //
                      220, 40,  180, 60,  3, 4,  //
                      90,  100, 110, 120, 5, 6};
  const Bytes readBack = {10, 250, 30, 200, 0, 0, 220, 40, 180, 60, 0, 0};
  for (const DitherType type : {Tattoo, Tattoo_X8}) {
    TestPrinter printer;
    process(printer, type, page, 6, 4, 3);
    LumoImage source(4, 3, LUMO_IMG_GRAY, readBack.data());
    const LumoImage chain =
        type == Tattoo ? lumoTattooDithering(source) : lumoTattooDitheringX8(source);
    EXPECT_EQ(support::firstDifference(text(Bytes(chain.data, chain.data + 12)),
                                       text(pixelsOf(printer.ditheredImage_))),
              "");
  }
}

TEST(TattooRoute, WithoutABufferThePageIsReadAsFromOneOfZeros) {
  const int height = 5;
  for (const DitherType type : {Tattoo, Tattoo_X8}) {
    for (const int width : {1, 3, 4, 9}) {
      for (int stride = 1; stride <= 6 * width; ++stride) {
        const Bytes page = support::draw(support::Drawing::Random,
                                         static_cast<unsigned>(std::max(stride, width)), height);
        TestPrinter with, without;
        with.setHalftoneType(type);
        without.setHalftoneType(type);
        Bytes out(std::size_t{2} * height * static_cast<std::size_t>(std::max(stride, width)), 0);
        long length = -1, length_without = -2;
        support::standardErrorOf([&] {
          length = with.PageProcess(type, page.data(), stride, width, height, out.data());
          length_without = without.PageProcess(type, page.data(), stride, width, height, nullptr);
        });
        EXPECT_EQ(support::firstDifference(text(pixelsOf(with.ditheredImage_)),
                                           text(pixelsOf(without.ditheredImage_))),
                  "")
            << tarvoHalftoneTypeToStr(type) << ", width " << width << ", stride " << stride;
        EXPECT_EQ(length, length_without);
      }
    }
  }
}

TEST(TattooRoute, BlankAndFullPagesComeOutAtOnce) {
  for (const DitherType type : {Tattoo, Tattoo_X8}) {
    for (const int level : {0, 255}) {
      TestPrinter printer;
      process(printer, type, Bytes(40 * 30, static_cast<std::uint8_t>(level)), 40, 40, 30);
      EXPECT_EQ(pixelsOf(printer.ditheredImage_), Bytes(40 * 30, static_cast<std::uint8_t>(level)))
          << tarvoHalftoneTypeToStr(type) << " of level " << level;
    }
  }
}

TEST(UseLumoDithering, EachPageSetsItAnew) {
  for (int type = 0; type < 10; ++type) {
    for (const bool before : {true, false}) {
      TestPrinter printer;
      printer.setUseLumoDithering(before);
      const Result result = process(printer, static_cast<DitherType>(type), Bytes(16, 99), 4, 4, 4);
      EXPECT_EQ(printer.getUseLumoDithering(), type >= 8) << type;
      EXPECT_EQ(result.log.rfind(type >= 8 ? "DEBUG:PageProcess: Lumo dithering is enabled\n"
                                           : "DEBUG:PageProcess: Lumo dithering is disabled\n",
                                 0),
                0U)
          << type;
    }
  }
}

// The frame

TEST(Frame, LengthGoesByTheHeightOfThePageIsKept) {
  // Tattoo_A6 at level 1 is 1205 x 1418; a page of 1001 x 900 grows to 1001 + 2 x 102 = 1205 by
  // 900 + 2 x 259 = 1418. Length: 900 rows of 1208 bytes.
  TestPrinter printer;
  cups_page_header2_t header{};
  std::strcpy(header.cupsPageSizeName, "Tattoo_A6");
  printer.setPageHeader(&header);
  printer.setAntiWrinkle(1);
  const Result result = process(printer, None, Bytes(std::size_t{1001} * 900, 0), 1001, 1001, 900);
  EXPECT_EQ(printer.pimage_->GetWidth(), 1205U);
  EXPECT_EQ(printer.pimage_->GetHeight(), 1418U);
  EXPECT_EQ(result.length, 900 * 1208);
  const std::string last =
      "DEBUG:PageProcess: Filled the output buffer with processed pixels, length: 1087200\n";
  EXPECT_EQ(result.log.substr(result.log.size() - last.size()), last);
  // 1418 x 1208 = 1712944 bytes fit in 2 x 1001 x 900 = 1801800.
  EXPECT_EQ(result.out[0], 255);                          // the frame
  EXPECT_EQ(result.out[12 * 1208 + 12], 255);             // white, index 1
  EXPECT_EQ(result.out[(259 + 12) * 1208 + 102 + 5], 0);  // the page
}

TEST(Frame, ImageThatDoesNotFitTheBufferIsNotCopied) {
  // 1205 less an even width is odd: the image becomes 1204 wide. 1418 rows of 1204 bytes, 1707272
  // in all, against 2 x 100 x 100, 2 x 800 x 800 = 1280000, and 2 x 924 x 924 = 1707552, which
  // fits.
  for (const int side : {100, 800, 924}) {
    TestPrinter printer;
    cups_page_header2_t header{};
    std::strcpy(header.cupsPageSizeName, "Tattoo_A6");
    printer.setPageHeader(&header);
    printer.setAntiWrinkle(1);
    const auto dots = static_cast<std::size_t>(side) * static_cast<std::size_t>(side);
    const Result result = process(printer, None, Bytes(dots, 255), side, side, side);
    EXPECT_EQ(printer.pimage_->GetWidth(), 1204U) << side;
    EXPECT_EQ(printer.pimage_->GetHeight(), 1418U) << side;
    EXPECT_EQ(result.length, side * 1204);
    EXPECT_EQ(result.out == Bytes(2 * dots, 0), side < 924) << side;
  }
}

TEST(Frame, ComesAfterTheNegative) {
  // The bars are 255 whatever the page is.
  TestPrinter printer;
  cups_page_header2_t header{};
  std::strcpy(header.cupsPageSizeName, "Tattoo_A6");
  printer.setPageHeader(&header);
  printer.setAntiWrinkle(1);
  printer.setNegativePrint(true);
  const Result result =
      process(printer, Tattoo, Bytes(std::size_t{1205} * 1418, 255), 1205, 1205, 1418);
  EXPECT_EQ(printer.pimage_->GetPixelIndex(0, 0), 255);
  EXPECT_EQ(printer.pimage_->GetPixelIndex(600, 700), 0);
  EXPECT_LT(result.log.find("Inverting the image"), result.log.find("EnableAntiWrink"));
}

TEST(Frame, LevelZeroDrawsNone) {
  TestPrinter printer;
  const Result result = process(printer, None, Bytes(16, 0), 4, 4, 4);
  EXPECT_EQ(result.log.find("EnableAntiWrink"), std::string::npos);
}

// Failure

TEST(Failure, PageThatCannotBeMadeIntoAnImage) {
  for (const DitherType type : {None, Sierra, Tattoo}) {
    TestPrinter printer;
    const Bytes page(4, 0);
    const std::string log = std::string("DEBUG:PageProcess: Lumo dithering is ") +
                            (type == Tattoo ? "enabled" : "disabled") +
                            "\nCRIT:cximage.CreateFromArray with grey failed!\n";
    for (const auto& [width, height] : {std::pair{0, 4}, {4, 0}, {0, 0}}) {
      const Result result = process(printer, type, page, 4, width, height);
      EXPECT_EQ(result.length, 0);
      EXPECT_EQ(result.log, log);
      EXPECT_EQ(printer.pimage_, nullptr);
    }
    Bytes out(8, kUntouched);
    printer.setHalftoneType(type);
    // A line or a page of 2 GiB and more, as an int.
    for (const auto& [stride, width, height] :
         {std::tuple{-4, 4, 1}, {4, -4, 1}, {4, 4, -1}, {-4, -4, -1}}) {
      EXPECT_EQ(support::standardErrorOf([&, bytes = stride, x = width, y = height] {
                  EXPECT_EQ(printer.PageProcess(type, page.data(), bytes, x, y, out.data()), 0);
                }),
                log);
    }
    EXPECT_EQ(support::standardErrorOf(
                  [&] { EXPECT_EQ(printer.PageProcess(type, nullptr, 4, 4, 1, out.data()), 0); }),
              log);
    EXPECT_EQ(out, Bytes(8, kUntouched));
  }
}

TEST(Failure, CurrentImageStaysTheEarlierOneIsKept) {
  TestPrinter printer;
  process(printer, Tattoo, Bytes(16, 255), 4, 4, 4);
  ASSERT_EQ(printer.pimage_, &printer.ditheredImage_);
  process(printer, None, Bytes(4, 0), 4, 4, 0);
  EXPECT_EQ(printer.pimage_, &printer.ditheredImage_);
  EXPECT_TRUE(printer.ditheredImage_.IsValid());

  process(printer, None, Bytes(16, 255), 4, 4, 4);
  ASSERT_EQ(printer.pimage_, &printer.cximage_);
  process(printer, None, Bytes(4, 0), 4, 4, 0);
  EXPECT_EQ(printer.pimage_, &printer.cximage_);
  EXPECT_FALSE(printer.cximage_.IsValid());
}

}  // namespace
