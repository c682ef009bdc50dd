// What an operation that makes its result in a temporary keeps of the old image beside its pixels:
// the text of an earlier failure and the nearest colour that was found last.
#include <gtest/gtest.h>

#include "test_image.h"

namespace {

constexpr char kZeroSize[] = "CxImage::Create : width and height must be greater than zero";

constexpr tagRGBQUAD kCached = rgb(10, 20, 30);
constexpr std::uint8_t kCachedIndex = 1;

/// An image of 3 x 2 pixels that failed before, and once had kCached in its palette. Now all of its
/// palette is black: where a search for kCached gives entry 0, the cache gives kCachedIndex.
struct UsedImage : CxImage {
  explicit UsedImage(std::uint32_t bpp) {
    Create(0, 0, 1, 0);
    Create(1, 1, 1, 0);
    SetPaletteColor(kCachedIndex, 10, 20, 30, 0);
    GetNearestIndex(kCached);
    Create(3, 2, bpp, 0);
  }
};

/// Whether the image still has kCached in its cache. Gives it another, black palette, since those
/// of 24 bits have none to look into.
bool knowsCachedColour(CxImage& image) {
  image.Create(1, 1, 1, 0);
  return image.GetNearestIndex(kCached) == kCachedIndex;
}

const struct {
  const char* name;
  std::uint32_t bpp;
  void (*run)(CxImage&);
} kRebuilding[] = {
    {"Rotate180", 8, [](CxImage& image) { image.Rotate180(nullptr); }},
    {"Mirror", 8, [](CxImage& image) { image.Mirror(); }},
    {"Expand at 1 bit", 1, [](CxImage& image) { image.Expand(1, 1, 1, 1, kCached); }},
    {"Expand at 4 bits", 4, [](CxImage& image) { image.Expand(1, 1, 1, 1, kCached); }},
    {"Expand at 8 bits", 8, [](CxImage& image) { image.Expand(1, 1, 1, 1, kCached); }},
    // At 24 bits no entry is looked for, whatever the colour.
    {"Expand at 24 bits", 24, [](CxImage& image) { image.Expand(1, 1, 1, 1, rgb(7, 8, 9)); }},
    {"MakeCenter", 8, [](CxImage& image) { image.MakeCenter(5); }},
    {"IncreaseBpp to 4", 1, [](CxImage& image) { image.IncreaseBpp(4); }},
    {"IncreaseBpp to 8", 4, [](CxImage& image) { image.IncreaseBpp(8); }},
    {"IncreaseBpp to 24", 8, [](CxImage& image) { image.IncreaseBpp(24); }},
    {"Dither, threshold", 8, [](CxImage& image) { image.Dither(0); }},
    {"Dither, ordered", 8, [](CxImage& image) { image.Dither(1); }},
    {"Dither, diffused", 8, [](CxImage& image) { image.Dither(2); }},
    {"Dither at 4 bits", 4, [](CxImage& image) { image.Dither(2); }},
    {"Dither, computed", 24, [](CxImage& image) { image.Dither(7); }},
};

TEST(Rebuilding, TextOfAnEarlierFailureStays) {
  for (const auto& c : kRebuilding) {
    UsedImage image(c.bpp);
    c.run(image);
    EXPECT_TRUE(image.IsValid()) << c.name;
    EXPECT_STREQ(image.GetLastError(), kZeroSize) << c.name;
  }
}

TEST(Rebuilding, CachedColourStaysIsKept) {
  for (const auto& c : kRebuilding) {
    UsedImage image(c.bpp);
    c.run(image);
    EXPECT_TRUE(knowsCachedColour(image)) << c.name;
  }
}

TEST(Rebuilding, ADestinationGetsTextAndCachedColourToo) {
  UsedImage image(8);
  CxImage destination;
  EXPECT_TRUE(image.Rotate180(&destination));
  EXPECT_STREQ(destination.GetLastError(), kZeroSize);
  EXPECT_TRUE(knowsCachedColour(destination));
  EXPECT_STREQ(image.GetLastError(), kZeroSize) << "the source keeps them";
  EXPECT_TRUE(knowsCachedColour(image)) << "the source keeps them";
}

TEST(Rebuilding, FailureKeepsTheCachedColour) {
  // 65536 x 65536 pixels are refused, at each of these depths.
  UsedImage expanded(8);
  EXPECT_FALSE(expanded.Expand(65533, 65534, 0, 0, rgb(7, 8, 9)));
  EXPECT_TRUE(expanded.IsValid());
  EXPECT_TRUE(knowsCachedColour(expanded)) << "nothing is looked for on a canvas that is not there";
}

}  // namespace
