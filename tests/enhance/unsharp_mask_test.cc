// Weighted difference and unsharp mask.
#include "enhance/unsharp_mask.h"

#include <gtest/gtest.h>

#include "enhance/gaussian.h"
#include "test_lumo.h"

namespace {

TEST(AddWeighted, KnownValues) {
  const struct {
    int a, b;
    float w;
    int result;
    const char* why;
  } kCases[] = {
      {200, 100, 3.0F, 255, "200 x 4 - 100 x 3 = 500"},
      {50, 100, 3.0F, 0, "50 x 4 - 100 x 3 = -100"},
      {100, 100, 3.0F, 100, "400 - 300"},
      {110, 100, 3.0F, 140, "440 - 300"},
      {100, 110, 3.0F, 70, "400 - 330"},
      {100, 200, 0.0F, 100, "w 0 keeps a"},
      {100, 200, -1.0F, 200, "w -1 gives b"},
      {10, 5, 0.5F, 13, "15 - 2.5 = 12.5, rounded up"},
      {3, 10, 0.5F, 0, "4.5 - 5 = -0.5, rounded to -1, then clamped"},
      {255, 0, 0.0F, 255, ""},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(levelsOf(add_Weighted(grayImage({{c.a}}), grayImage({{c.b}}), c.w)),
              (Levels{{c.result}}))
        << c.why;
  }
}

TEST(AddWeighted, SizeAndLayoutAreThoseOfTheFirst) {
  const unsigned char bytes[] = {10, 20, 30};
  const LumoImage a(1, 1, LUMO_IMG_RGB, bytes);
  const LumoImage result = add_Weighted(a, grayImage({{5, 5}, {5, 5}}), 1.0F);
  EXPECT_EQ(result.color, LUMO_IMG_RGB);
  EXPECT_EQ(bytesOf(result), (std::vector<int>{15, 20, 30}));  // 20 - 5; one byte per pixel
}

TEST(AddWeighted, NoRowsAreNoWork) {
  const unsigned char bytes[] = {10, 20, 30, 40};
  const LumoImage a(-2, -2, LUMO_IMG_GRAY, bytes);  // 4 bytes in no row
  EXPECT_EQ(bytesOf(add_Weighted(a, a, 1.0F)), (std::vector<int>{10, 20, 30, 40}));
  EXPECT_EQ(bytesOf(add_Weighted(a, grayImage({{5, 5, 5, 5}}), 1.0F)),
            (std::vector<int>{10, 20, 30, 40}));
}

TEST(UnsharpMask, UniformImageStays) {
  for (int level = 0; level < 256; level += 5) {
    const Levels levels = uniformLevels(6, 4, level);
    EXPECT_EQ(levelsOf(enh_unsharp_mask(grayImage(levels), 300.0F, 11)), levels);
  }
}

TEST(UnsharpMask, AmountIsAPercentage) {
  const LumoImage image = grayImage(noiseLevels(13, 8, 1));
  const LumoImage blurred = enh_gaussian_filter_fast(image, 11, 3.0);
  for (float amount : {0.0F, 50.0F, 100.0F, 300.0F, -100.0F}) {
    EXPECT_EQ(levelsOf(enh_unsharp_mask(image, amount, 11)),
              levelsOf(add_Weighted(image, blurred, amount / 100.0F)))
        << amount;
  }
  EXPECT_EQ(levelsOf(enh_unsharp_mask(image, 0.0F, 11)), levelsOf(image));
}

TEST(UnsharpMask, OneDarkPixelOfAFlatRow) {
  // 5 taps of sigma 3: 0.178203, 0.210522, 0.222549. The blur of 100 with one 90 is
  // 100 - 10 x tap: 98, 98, 98, 98, 98; with w 3: 4 x 100 - 3 x 98 = 106, 4 x 90 - 294 = 66.
  EXPECT_EQ(levelsOf(enh_unsharp_mask(grayImage({{100, 100, 100, 90, 100, 100, 100}}), 300.0F, 5)),
            (Levels{{100, 106, 106, 66, 106, 106, 100}}));
}

TEST(UnsharpMask, SigmaIs3WhateverTheSizeIsKept) {
  const LumoImage image = grayImage(noiseLevels(15, 9, 2));
  for (int ksize : {1, 3, 5, 11, 21}) {
    const LumoImage blurred = enh_gaussian_filter_fast(image, ksize, 3.0);
    EXPECT_EQ(levelsOf(enh_unsharp_mask(image, 300.0F, ksize)),
              levelsOf(add_Weighted(image, blurred, 3.0F)))
        << ksize;
  }
  EXPECT_NE(levelsOf(enh_unsharp_mask(image, 300.0F, 5)),
            levelsOf(enh_unsharp_mask(image, 300.0F, 11)))
      << "only the reach differs";
}

TEST(UnsharpMask, LayoutStays) {
  const unsigned char bytes[] = {100, 100, 90, 100, 100, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
  const LumoImage image(5, 1, LUMO_IMG_RGB, bytes);
  // One byte per pixel; the bytes behind the pixels come along.
  const struct {
    int ksize;
    std::vector<int> result;
  } kCases[] = {
      {5, {106, 106, 66, 106, 106, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}},   // the blur is 98 everywhere
      {11, {103, 103, 63, 103, 103, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}},  // 99
  };
  for (const auto& c : kCases) {
    const LumoImage result = enh_unsharp_mask(image, 300.0F, c.ksize);
    EXPECT_EQ(result.color, LUMO_IMG_RGB) << c.ksize;
    EXPECT_EQ(result.channels, 3) << c.ksize;
    EXPECT_EQ(bytesOf(result), c.result) << c.ksize;
  }
}

TEST(UnsharpMask, InputIsUnchanged) {
  const Levels levels = noiseLevels(5, 5, 3);
  const LumoImage image = grayImage(levels);
  enh_unsharp_mask(image, 300.0F, 11);
  EXPECT_EQ(levelsOf(image), levels);
}

}  // namespace
