// Palette entries and the search for the nearest one.
#include <gtest/gtest.h>

#include <algorithm>

#include "test_image.h"

namespace {

/// A row of pixels with the first entries of the palette set.
struct PaletteImage : CxImage {
  PaletteImage(std::uint32_t bpp, const std::vector<tagRGBQUAD>& entries) {
    Create(1, 1, bpp, 0);
    SetPalette(entries.data(), static_cast<std::uint32_t>(entries.size()));
  }
};

constexpr tagRGBQUAD kBlack = rgb(0, 0, 0);
constexpr tagRGBQUAD kWhite = rgb(255, 255, 255);

TEST(PaletteColor, EndsWithThePalette) {
  // The pixels follow the palette in the block: no entry of theirs is taken for a colour.
  for (const std::uint32_t bpp : {1u, 4u}) {
    CxImage image;
    image.Create(64, 1, bpp, 0);
    std::fill_n(image.GetBits(0), image.GetEffWidth(), std::uint8_t{0xAA});
    const auto end = static_cast<std::uint8_t>(image.GetNumColors());
    EXPECT_EQ(image.GetPaletteColor(end), rgb(0, 0, 0));
    image.SetPaletteColor(end, 1, 2, 3, 4);
    EXPECT_EQ(rowBytes(image, 0), std::vector<int>(image.GetEffWidth(), 0xAA));
  }
}

TEST(Colour, IsEqualInAllFourBytes) {
  const tagRGBQUAD colour = rgb(1, 2, 3, 4);
  EXPECT_TRUE(colour == rgb(1, 2, 3, 4));
  EXPECT_FALSE(colour == rgb(9, 2, 3, 4));
  EXPECT_FALSE(colour == rgb(1, 9, 3, 4));
  EXPECT_FALSE(colour == rgb(1, 2, 9, 4));
  EXPECT_FALSE(colour == rgb(1, 2, 3, 9));
}

TEST(SetPaletteColor, TakesRedFirstAndStoresBlueFirst) {
  CxImage image;
  image.Create(1, 1, 8, 0);
  image.SetPaletteColor(7, 10, 20, 30, 40);
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(image.GetPalette()) + 7 * 4;
  EXPECT_EQ(bytes[0], 30);  // blue
  EXPECT_EQ(bytes[1], 20);  // green
  EXPECT_EQ(bytes[2], 10);  // red
  EXPECT_EQ(bytes[3], 40);
  EXPECT_EQ(image.GetPaletteColor(7), rgb(10, 20, 30, 40));
  EXPECT_EQ(image.GetPaletteColor(6), kBlack);
  EXPECT_EQ(image.GetPaletteColor(8), kBlack);
}

TEST(SetPaletteColor, IndexBeyondThePaletteDoesNothing) {
  const struct {
    std::uint32_t bpp;
    std::uint8_t index;
  } kCases[] = {{1, 2}, {1, 255}, {4, 16}, {4, 255}, {24, 0}, {24, 255}};
  for (const auto& c : kCases) {
    CxImage image;
    image.Create(9, 2, c.bpp, 0);
    const std::vector<int> before = blockBytes(image);
    image.SetPaletteColor(c.index, 255, 255, 255, 255);
    EXPECT_EQ(blockBytes(image), before) << c.bpp << " bits, entry " << int{c.index};
    EXPECT_EQ(image.GetPaletteColor(c.index), kBlack);
  }
}

TEST(GetPalette, IsNullWithoutAPalette) {
  CxImage image;
  image.Create(1, 1, 24, 0);
  EXPECT_EQ(image.GetPalette(), nullptr);
  EXPECT_EQ(image.GetPaletteSize(), 0u);
}

TEST(SetPalette, EntriesBeyondTheCountKeepTheirValue) {
  PaletteImage image(4, {rgb(1, 1, 1), rgb(2, 2, 2), rgb(3, 3, 3)});
  const tagRGBQUAD entries[] = {rgb(10, 11, 12, 13), rgb(20, 21, 22, 23)};
  image.SetPalette(entries, 2);
  EXPECT_EQ(image.GetPaletteColor(0), rgb(10, 11, 12, 13));
  EXPECT_EQ(image.GetPaletteColor(1), rgb(20, 21, 22, 23));
  EXPECT_EQ(image.GetPaletteColor(2), rgb(3, 3, 3));
}

TEST(SetPalette, TakesNoMoreThanFits) {
  const std::vector<tagRGBQUAD> entries(256, rgb(9, 9, 9, 9));
  CxImage image;
  image.Create(8, 2, 1, 0);
  image.SetPalette(entries.data(), 256);
  EXPECT_EQ(image.GetPaletteColor(1), rgb(9, 9, 9, 9));
  EXPECT_EQ(rowBytes(image, 0), (std::vector<int>{0, 0, 0, 0})) << "the rows follow the palette";
}

TEST(SetPalette, BadInputsDoNothing) {
  const tagRGBQUAD entry = rgb(9, 9, 9);
  PaletteImage image(1, {rgb(1, 2, 3)});
  image.SetPalette(nullptr, 2);
  image.SetPalette(&entry, 0);
  EXPECT_EQ(image.GetPaletteColor(0), rgb(1, 2, 3));

  CxImage colours;
  colours.Create(1, 1, 24, 0);
  colours.SetPalette(&entry, 1);
  EXPECT_EQ(rowBytes(colours, 0), (std::vector<int>{0, 0, 0, 0}));

  CxImage empty;
  empty.SetPalette(&entry, 1);
  EXPECT_FALSE(empty.IsValid());
}

TEST(SetGrayPalette, StepsAreEvenAndReservedStays) {
  const struct {
    std::uint32_t bpp;
    int colors;
    int step;  // 255 / (colors - 1)
  } kCases[] = {{1, 2, 255}, {4, 16, 17}, {8, 256, 1}};
  for (const auto& c : kCases) {
    CxImage image;
    image.Create(1, 1, c.bpp, 0);
    for (int i = 0; i < c.colors; ++i) {
      image.SetPaletteColor(static_cast<std::uint8_t>(i), 1, 2, 3,
                            static_cast<std::uint8_t>(7 * i));
    }
    image.SetGrayPalette();
    for (int i = 0; i < c.colors; ++i) {
      const int level = i * c.step;
      EXPECT_EQ(image.GetPaletteColor(static_cast<std::uint8_t>(i)),
                rgb(level, level, level, 7 * i))
          << c.bpp << " bits, entry " << i;
    }
  }
}

TEST(SetGrayPalette, DoesNothingAt24Bits) {
  CxImage image;
  image.Create(2, 2, 24, 0);
  image.SetGrayPalette();
  EXPECT_EQ(rowBytes(image, 0), (std::vector<int>{0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(GetNearestIndex, TakesTheSmallestSquaredDistance) {
  const struct {
    const char* why;
    tagRGBQUAD colour;
    int index;
  } kCases[] = {
      {"3 x 100^2 = 30000 to black, 3 x 155^2 = 72075 to white", rgb(100, 100, 100), 0},
      {"3 x 200^2 = 120000 to black, 3 x 55^2 = 9075 to white", rgb(200, 200, 200), 1},
      {"3 x 127^2 to black, 3 x 128^2 to white", rgb(127, 127, 127), 0},
      {"3 x 128^2 to black, 3 x 127^2 to white", rgb(128, 128, 128), 1},
      {"255^2 to black, 2 x 255^2 to white", rgb(255, 0, 0), 0},
      {"2 x 255^2 to black, 255^2 to white", rgb(0, 255, 255), 1},
  };
  PaletteImage image(1, {kBlack, kWhite});
  for (const auto& c : kCases) EXPECT_EQ(image.GetNearestIndex(c.colour), c.index) << c.why;
}

TEST(GetNearestIndex, EachChannelCounts) {
  PaletteImage image(4, {rgb(200, 0, 0), rgb(0, 200, 0), rgb(0, 0, 200), rgb(255, 255, 255)});
  EXPECT_EQ(image.GetNearestIndex(rgb(100, 20, 20)), 0);
  EXPECT_EQ(image.GetNearestIndex(rgb(20, 100, 20)), 1);
  EXPECT_EQ(image.GetNearestIndex(rgb(20, 20, 100)), 2);
}

TEST(GetNearestIndex, OnEqualDistancesTheLowestIndexWins) {
  // 127 from both ends.
  PaletteImage image(1, {rgb(254, 254, 254), kBlack});
  EXPECT_EQ(image.GetNearestIndex(rgb(127, 127, 127)), 0);
  PaletteImage swapped(1, {kBlack, rgb(254, 254, 254)});
  EXPECT_EQ(swapped.GetNearestIndex(rgb(127, 127, 127)), 0);
  PaletteImage twice(4, {kBlack, kWhite, kWhite});
  EXPECT_EQ(twice.GetNearestIndex(kWhite), 1);
}

TEST(GetNearestIndex, FarthestColourStillHasAnEntry) {
  // 3 x 255^2 = 195075 is the largest distance there is.
  PaletteImage image(1, {kBlack, kBlack});
  EXPECT_EQ(image.GetNearestIndex(kWhite), 0);
  PaletteImage far(1, {kWhite, kWhite});
  EXPECT_EQ(far.GetNearestIndex(kBlack), 0);
}

TEST(GetNearestIndex, ReservedByteHasNoPartInTheDistance) {
  PaletteImage image(1, {rgb(10, 10, 10, 255), rgb(20, 20, 20, 0)});
  EXPECT_EQ(image.GetNearestIndex(rgb(10, 10, 10, 0)), 0);
  EXPECT_EQ(image.GetNearestIndex(rgb(20, 20, 20, 255)), 1);
}

TEST(GetNearestIndex, GrayRampGivesTheLevelBack) {
  IndexedImage image(8, {{0}});
  for (int level = 0; level < 256; ++level) {
    EXPECT_EQ(image.GetNearestIndex(rgb(level, level, level)), level);
  }
}

TEST(GetNearestIndex, WithoutAPaletteIsZero) {
  CxImage colours;
  colours.Create(1, 1, 24, 0);
  EXPECT_EQ(colours.GetNearestIndex(kWhite), 0);
}

TEST(GetNearestIndex, LastAnswerOutlivesAPaletteChangeIsKept) {
  PaletteImage image(1, {kBlack, kWhite});
  ASSERT_EQ(image.GetNearestIndex(kWhite), 1);
  image.SetPaletteColor(0, 255, 255, 255, 0);
  image.SetPaletteColor(1, 0, 0, 0, 0);
  EXPECT_EQ(image.GetNearestIndex(kWhite), 1) << "the cache still answers";
  EXPECT_EQ(image.GetNearestIndex(kBlack), 1) << "another colour is searched";
  EXPECT_EQ(image.GetNearestIndex(kWhite), 0) << "and took the only place in the cache";
}

TEST(GetNearestIndex, CacheHoldsColoursThatNoEntryIsToo) {
  PaletteImage image(1, {kBlack, kWhite});
  ASSERT_EQ(image.GetNearestIndex(rgb(200, 200, 200)), 1);
  image.SetPaletteColor(0, 200, 200, 200, 0);
  EXPECT_EQ(image.GetNearestIndex(rgb(200, 200, 200)), 1) << "the cache still answers";
}

TEST(GetNearestIndex, IsZeroWithoutAPaletteWhateverTheCacheHolds) {
  PaletteImage image(1, {kBlack, kWhite});
  ASSERT_EQ(image.GetNearestIndex(kWhite), 1);
  image.Destroy();
  EXPECT_EQ(image.GetNearestIndex(kWhite), 0) << "empty";
  image.Create(1, 1, 24, 0);
  EXPECT_EQ(image.GetNearestIndex(kWhite), 0) << "24 bits";
  image.Create(1, 1, 1, 0);  // both entries black
  EXPECT_EQ(image.GetNearestIndex(kWhite), 1) << "and the cache is as it was";
}

TEST(GetNearestIndex, CacheIsNotFilledAt24Bits) {
  const struct {
    const char* what;
    void (*use)(CxImage&);
  } kCases[] = {
      {"search", [](CxImage& image) { image.GetNearestIndex(kWhite); }},
      {"pixel", [](CxImage& image) { image.BlindSetPixelColor(0, 0, kWhite, false); }},
  };
  for (const auto& c : kCases) {
    CxImage image;
    image.Create(1, 1, 24, 0);
    c.use(image);
    image.Create(1, 1, 1, 0);
    image.SetPaletteColor(1, 255, 255, 255, 0);
    EXPECT_EQ(image.GetNearestIndex(kWhite), 1) << c.what;
  }
}

TEST(GetNearestIndex, CacheComparesAllFourBytes) {
  PaletteImage image(1, {kBlack, kWhite});
  ASSERT_EQ(image.GetNearestIndex(rgb(255, 255, 255, 0)), 1);
  image.SetPaletteColor(0, 255, 255, 255, 0);
  EXPECT_EQ(image.GetNearestIndex(rgb(255, 255, 255, 1)), 0) << "not the cached colour";
}

TEST(GetNearestIndex, CacheSurvivesCreateIsKept) {
  PaletteImage image(1, {kBlack, kWhite});
  ASSERT_EQ(image.GetNearestIndex(kWhite), 1);
  image.Create(1, 1, 1, 0);  // both entries black now
  EXPECT_EQ(image.GetNearestIndex(kWhite), 1);
}

TEST(GetNearestIndex, CacheComesAlongWithTheInfoIsKept) {
  PaletteImage source(1, {kBlack, kWhite});
  ASSERT_EQ(source.GetNearestIndex(kWhite), 1);
  CxImage image;
  image.CopyInfo(source);
  image.Create(1, 1, 1, 0);
  EXPECT_EQ(image.GetNearestIndex(kWhite), 1);
}

}  // namespace
