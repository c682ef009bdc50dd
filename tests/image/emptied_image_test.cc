// An image that was emptied still knows its sizes, but has no pixels: what could look at the first
// must not touch the second.
#include <gtest/gtest.h>

#include <array>

#include "test_image.h"

namespace {

struct EmptiedImage : IndexedImage {
  explicit EmptiedImage(std::uint32_t bpp) : IndexedImage(bpp, uniformLevels(3, 2, 1)) {
    Destroy();
  }
};

constexpr std::array<std::uint8_t, 256> kTable = {};

const struct {
  const char* name;
  bool (*run)(CxImage&);
} kFailing[] = {
    {"Rotate180", [](CxImage& image) { return image.Rotate180(nullptr); }},
    {"Expand", [](CxImage& image) { return image.Expand(1, 1, 1, 1, rgb(1, 2, 3)); }},
    {"Light", [](CxImage& image) { return image.Light(10, 10); }},
    {"Lut", [](CxImage& image) { return image.Lut(kTable.data()); }},
    {"IncreaseBpp to 4", [](CxImage& image) { return image.IncreaseBpp(4); }},
    {"IncreaseBpp to 8", [](CxImage& image) { return image.IncreaseBpp(8); }},
    {"IncreaseBpp to 24", [](CxImage& image) { return image.IncreaseBpp(24); }},
    {"Dither, threshold", [](CxImage& image) { return image.Dither(0); }},
    {"Dither, diffused", [](CxImage& image) { return image.Dither(2); }},
    {"Dither, computed", [](CxImage& image) { return image.Dither(7); }},
};

const struct {
  const char* name;
  void (*run)(CxImage&);
} kWithoutEffect[] = {
    {"Mirror", [](CxImage& image) { image.Mirror(); }},
    {"MakeCenter", [](CxImage& image) { image.MakeCenter(9); }},
    {"DrawLine", [](CxImage& image) { image.DrawLine(0, 2, 0, 1, 1); }},
    {"Negative", [](CxImage& image) { image.Negative(); }},
    {"SetGrayPalette", [](CxImage& image) { image.SetGrayPalette(); }},
    {"SetPaletteColor", [](CxImage& image) { image.SetPaletteColor(1, 2, 3, 4, 5); }},
    {"SetPixelIndex", [](CxImage& image) { image.SetPixelIndex(1, 1, 1); }},
    {"GetPixelIndex", [](CxImage& image) { image.GetPixelIndex(1, 1); }},
};

TEST(EmptiedImage, StillHasItsSizes) {
  const EmptiedImage image(8);
  EXPECT_FALSE(image.IsValid());
  EXPECT_EQ(image.GetWidth(), 3U);
  EXPECT_EQ(image.GetHeight(), 2U);
}

TEST(EmptiedImage, StaysEmptyWhateverIsAskedOfIt) {
  for (const std::uint32_t bpp : {1U, 4U, 8U, 24U}) {
    for (const auto& c : kFailing) {
      EmptiedImage image(bpp);
      EXPECT_FALSE(c.run(image)) << c.name << " at " << bpp << " bits";
      EXPECT_FALSE(image.IsValid()) << c.name << " at " << bpp << " bits";
      EXPECT_EQ(image.GetWidth(), 3U) << c.name << " at " << bpp << " bits";
    }
    for (const auto& c : kWithoutEffect) {
      EmptiedImage image(bpp);
      c.run(image);
      EXPECT_FALSE(image.IsValid()) << c.name << " at " << bpp << " bits";
      EXPECT_EQ(image.GetWidth(), 3U) << c.name << " at " << bpp << " bits";
    }
  }
}

TEST(EmptiedImage, LeavesTheDestinationOfARotation) {
  EmptiedImage image(8);
  IndexedImage destination(8, {{1, 2}});
  EXPECT_FALSE(image.Rotate180(&destination));
  EXPECT_EQ(levelsOf(destination), (Levels{{1, 2}}));
}

}  // namespace
