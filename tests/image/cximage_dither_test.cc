// The frame that all dithering methods share, the threshold and the two ordered dithers.
#include <gtest/gtest.h>

#include <limits>
#include <new>

#include "common/halftone_type.h"
#include "dither_model.h"

namespace {

constexpr std::int64_t kAllMethods[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 100, -1};

TEST(Dither, OfAnEmptyImageFails) {
  for (std::int64_t method : kAllMethods) {
    CxImage image;
    EXPECT_FALSE(image.Dither(method));
    EXPECT_FALSE(image.IsValid());
  }
}

TEST(Dither, OfA1BitImageLeavesItAsItIs) {
  for (std::int64_t method : kAllMethods) {
    IndexedImage image(1, {{1, 0, 1}, {0, 0, 1}});
    image.SetPaletteColor(0, 1, 2, 3, 4);  // not reset to black either
    const std::vector<int> before = blockBytes(image);
    const std::uint8_t* const bits = image.GetBits(0);
    EXPECT_TRUE(image.Dither(method));
    EXPECT_EQ(blockBytes(image), before);
    EXPECT_EQ(image.GetBits(0), bits);
  }
}

TEST(Dither, OfA24BitImageIsAllBlack) {
  for (std::int64_t method : kAllMethods) {
    CxImage image;
    image.Create(5, 2, 24, 0);
    std::fill(image.GetBits(0), image.GetBits(0) + 2 * image.GetEffWidth(), std::uint8_t{255});
    EXPECT_TRUE(image.Dither(method));
    EXPECT_TRUE(samePicture(dotsOf(image), {"#####", "#####"})) << method;
  }
}

TEST(Dither, ResultIs1BitWithBlackAndWhite) {
  for (std::int64_t method : kAllMethods) {
    IndexedImage image(8, noiseLevels(11, 3, 5));
    image.SetPaletteColor(0, 9, 9, 9, 9);
    EXPECT_TRUE(image.Dither(method));
    EXPECT_EQ(image.GetWidth(), 11u);
    EXPECT_EQ(image.GetHeight(), 3u);
    EXPECT_EQ(image.GetNumColors(), 2u);
    EXPECT_EQ(image.GetEffWidth(), 4u);
    EXPECT_EQ(image.GetPaletteColor(0), rgb(0, 0, 0));
    EXPECT_EQ(image.GetPaletteColor(1), rgb(255, 255, 255));
  }
}

TEST(Dither, PaddingBitsAreZero) {
  for (std::int64_t method : kAllMethods) {
    for (int width = 1; width <= 33; ++width) {
      IndexedImage image(8, uniformLevels(width, 2, 255));
      EXPECT_TRUE(image.Dither(method));
      for (std::uint32_t y = 0; y < 2; ++y) {
        const std::vector<int> bytes = rowBytes(image, y);
        for (int bit = 0; bit < static_cast<int>(bytes.size()) * 8; ++bit) {
          const int value = bytes[static_cast<std::size_t>(bit / 8)] >> (7 - bit % 8) & 1;
          ASSERT_EQ(value, bit < width ? 1 : 0) << "width " << width << ", bit " << bit;
        }
      }
    }
  }
}

TEST(Dither, PaddingBitsAreZeroOf4BitImagesToo) {
  // Level 15 is above the entry 0 of the computed matrix alone, at columns 0 and 4. Eight pixels
  // fill the four bytes of a source row, so what follows the last is the first of the next row.
  IndexedImage image(4, uniformLevels(8, 2, 15));
  EXPECT_TRUE(image.Dither(7));
  EXPECT_EQ(rowBytes(image, 0), (std::vector<int>{0x88, 0, 0, 0}));
  EXPECT_EQ(rowBytes(image, 1), (std::vector<int>{0, 0, 0, 0}));
}

TEST(Dither, IndicesOfA4BitImageAreItsLevels) {
  // None is above 15 of 255: by most methods all of it is black.
  Levels aroundTheMiddle = uniformLevels(21, 9, 7);
  for (std::size_t y = 0; y < aroundTheMiddle.size(); ++y) {
    for (std::size_t x = y % 2; x < aroundTheMiddle[y].size(); x += 2) aroundTheMiddle[y][x] = 8;
  }
  const struct {
    const char* what;
    Levels levels;
  } kCases[] = {
      {"one pixel", {{15}}},
      {"the highest index", uniformLevels(64, 20, 15)},
      {"7 and 8", aroundTheMiddle},
      {"all indices", noiseLevels(45, 18, 11, 16)},
  };
  for (const auto& c : kCases) {
    for (std::int64_t method : kAllMethods) {
      EXPECT_TRUE(samePicture(dithered(c.levels, method, 4), ditheredByModel(c.levels, method, 15)))
          << c.what << ", method " << method;
    }
  }
}

TEST(Dither, BlackStaysBlackAndWhiteStaysWhite) {
  const struct { int width, height; } kSizes[] = {{1, 1}, {1, 7}, {7, 1}, {3, 3}, {8, 4}, {17, 9}};
  for (std::int64_t method : kAllMethods) {
    for (const auto& size : kSizes) {
      const auto all = [&size](char dot) {
        return Picture(static_cast<std::size_t>(size.height),
                       std::string(static_cast<std::size_t>(size.width), dot));
      };
      const Levels black = uniformLevels(size.width, size.height, 0);
      const Levels white = uniformLevels(size.width, size.height, 255);
      EXPECT_TRUE(samePicture(dithered(black, method), all('#'))) << "method " << method;
      EXPECT_TRUE(samePicture(dithered(white, method), all('.'))) << "method " << method;
    }
  }
}

TEST(Dither, PaletteIsNotLookedAt) {
  for (std::int64_t method : kAllMethods) {
    const Levels levels = noiseLevels(9, 5, 6);
    IndexedImage image(8, levels);
    for (int i = 0; i < 256; ++i) image.SetPaletteColor(static_cast<std::uint8_t>(i), 1, 2, 3, 4);
    EXPECT_TRUE(image.Dither(method));
    EXPECT_TRUE(samePicture(dotsOf(image), dithered(levels, method))) << method;
  }
}

TEST(Dither, WithoutMemoryFailsWithTheReasonAndLeavesTheImage) {
  for (std::int64_t method : {0, 1, 2, 7}) {
    CxImage image;  // its 1-bit result has 2 MiB
    ASSERT_NE(image.Create(4096, 4096, 8, 0), nullptr);
    image.SetPixelIndex(4095, 4095, 77);
    bool done = true;
    {
      const MemoryIsShort guard;
      done = image.Dither(method);
    }
    EXPECT_FALSE(done);
    EXPECT_STREQ(image.GetLastError(), "CxImage::Create can't allocate memory");
    EXPECT_EQ(image.GetNumColors(), 256u);
    EXPECT_EQ(image.GetPixelIndex(4095, 4095), 77);
  }
}

TEST(Dither, DiffusionWithoutMemoryForItsRowsThrowsAndLeavesTheImage) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the sanitizer ends a process that has no memory";
#endif
  constexpr std::uint32_t kWidth = 100000;  // sixteen rows are more than 1 MiB
  for (std::int64_t method : kAllMethods) {
    SCOPED_TRACE(method);
    CxImage image;
    ASSERT_NE(image.Create(kWidth, 1, 8, 0), nullptr);
    image.SetPixelIndex(kWidth - 1, 0, 77);
    const std::vector<int> before = blockBytes(image);
    {
      CxImage small;  // leaves a block from which the 1-bit result can be made
      ASSERT_NE(small.Create(kWidth, 1, 1, 0), nullptr);
    }
    bool threw = false;
    {
      const MemoryIsShort guard;
      try {
        image.Dither(method);
      } catch (const std::bad_alloc&) {
        threw = true;
      }
    }
    const bool diffuses = method != 0 && method != 1 && method != 7;
    EXPECT_EQ(threw, diffuses);
    if (!diffuses) continue;
    EXPECT_EQ(blockBytes(image), before);
    EXPECT_STREQ(image.GetLastError(), "");
  }
}

TEST(DitherThreshold, Above128IsWhite) {
  EXPECT_TRUE(samePicture(dithered({{0, 1, 127, 128, 129, 130, 254, 255}}, 0), {"####...."}));
  for (int level = 0; level < 256; ++level) {
    EXPECT_TRUE(samePicture(dithered({{level}}, 0), {level > 128 ? "." : "#"})) << level;
  }
}

TEST(DitherOrderedFixed, Level128IsWhiteAtTheCells0To7) {
  // 128 x 16 / 255 = 8
  EXPECT_TRUE(samePicture(dithered(uniformLevels(8, 8, 128), 1), {
                                                                     ".#.#.#.#",
                                                                     "#.#.#.#.",
                                                                     ".#.#.#.#",
                                                                     "#.#.#.#.",
                                                                     ".#.#.#.#",
                                                                     "#.#.#.#.",
                                                                     ".#.#.#.#",
                                                                     "#.#.#.#.",
                                                                 }));
}

TEST(DitherOrderedFixed, WhiteCellsOfATileAreLevelTimes16Over255) {
  const struct {
    int level;
    int white;
  } kCases[] = {
      {0, 0},    {15, 0},    // 240 / 255 = 0
      {16, 1},               // 256 / 255 = 1
      {31, 1},   {32, 2},    // 496 / 255 = 1, 512 / 255 = 2
      {127, 7},  {128, 8},   // 2032 / 255 = 7, 2048 / 255 = 8
      {239, 14}, {240, 15},  // 3824 / 255 = 14, 3840 / 255 = 15
      {254, 15},             // 4064 / 255 = 15
      {255, 16},             // 16: one above the last cell, so every cell
  };
  for (const auto& c : kCases) {
    int white = 0;
    for (const std::string& row : dithered(uniformLevels(4, 4, c.level), 1)) {
      white += static_cast<int>(std::count(row.begin(), row.end(), '.'));
    }
    EXPECT_EQ(white, c.white) << "level " << c.level;
  }
}

TEST(DitherOrderedFixed, EachLevelOnEachCell) {
  for (int level = 0; level < 256; ++level) {
    const Levels levels = uniformLevels(9, 6, level);
    EXPECT_TRUE(samePicture(dithered(levels, 1), orderedFixed(levels))) << "level " << level;
  }
  const Levels noise = noiseLevels(33, 13, 7);
  EXPECT_TRUE(samePicture(dithered(noise, 1), orderedFixed(noise)));
}

TEST(DitherOrderedComputed, Level100IsWhiteAtTheCellsBelowIt) {
  // 0, 48 | 64 | 32, 16 | 96, 80
  EXPECT_TRUE(samePicture(dithered(uniformLevels(8, 4, 100), 7), {
                                                                     ".#.#.#.#",
                                                                     "#.###.##",
                                                                     ".#.#.#.#",
                                                                     "#.#.#.#.",
                                                                 }));
}

TEST(DitherOrderedComputed, AnyLevelAbove0IsWhiteAtTheFirstCell) {
  EXPECT_TRUE(samePicture(dithered(uniformLevels(5, 5, 0), 7),
                          {"#####", "#####", "#####", "#####", "#####"}));
  EXPECT_TRUE(samePicture(dithered(uniformLevels(5, 5, 1), 7),
                          {".###.", "#####", "#####", "#####", ".###."}));
}

TEST(DitherOrderedComputed, EachLevelOnEachCell) {
  for (int level = 0; level < 256; ++level) {
    const Levels levels = uniformLevels(9, 6, level);
    EXPECT_TRUE(samePicture(dithered(levels, 7), orderedComputed(levels))) << "level " << level;
  }
  const Levels noise = noiseLevels(33, 13, 8);
  EXPECT_TRUE(samePicture(dithered(noise, 7), orderedComputed(noise)));
}

TEST(Dither, HalftoneNamesRunOtherTechniquesIsKept) {
  const Levels levels = noiseLevels(23, 17, 9);
  const struct {
    DitherType type;
    const char* technique;
    Picture expected;
  } kPairs[] = {
      {None, "threshold", threshold(levels)},
      {FloydSteinberg, "ordered, fixed matrix", orderedFixed(levels)},
      {Ordered, "Burkes", diffused(levels, kernelOf(2))},
      {Burkes, "Stucki", diffused(levels, kernelOf(3))},
      {Stucki, "Jarvis-Judice-Ninke", diffused(levels, kernelOf(4))},
      {JarvisJudiceNinke, "Sierra", diffused(levels, kernelOf(5))},
      {Sierra, "Stevenson-Arce", diffused(levels, kernelOf(6))},
      {StevensonArce, "ordered, computed matrix", orderedComputed(levels)},
      {Tattoo, "Floyd-Steinberg", diffused(levels, kernelOf(8))},
      {Tattoo_X8, "Floyd-Steinberg", diffused(levels, kernelOf(8))},
  };
  for (const auto& pair : kPairs) {
    EXPECT_TRUE(samePicture(dithered(levels, pair.type), pair.expected))
        << tarvoHalftoneTypeToStr(pair.type) << " runs " << pair.technique;
  }
  for (std::size_t i = 0; i + 1 < std::size(kPairs) - 1; ++i) {
    EXPECT_FALSE(samePicture(kPairs[i].expected, kPairs[i + 1].expected))
        << "a page that tells the techniques apart";
  }
}

}  // namespace
