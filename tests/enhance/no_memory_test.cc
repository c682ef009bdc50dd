// Each block of memory that the enhancement asks for may be the one that can't be had.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <new>
#include <vector>

#include "enhance/error_diffusion.h"
#include "enhance/gaussian.h"
#include "enhance/gray.h"
#include "enhance/moments_threshold.h"
#include "enhance/tattoo.h"
#include "enhance/tone_curve.h"
#include "enhance/unsharp_mask.h"
#include "heap.h"
#include "test_lumo.h"

namespace {

struct Step {
  const char* name;
  int blocks;  ///< that it asks for at the least
  void (*run)(LumoImage& image);
};

/// Everything that hands out an image or works on one. What they hand out goes at once.
const Step kSteps[] = {
    {"image", 1, [](LumoImage&) { LumoImage(5, 4, LUMO_IMG_RGB); }},
    {"image of bytes", 1, [](LumoImage& image) { LumoImage(5, 4, LUMO_IMG_GRAY, image.data); }},
    {"copy", 1, [](LumoImage& image) { LumoImage copy(image); }},
    {"assignment", 2,
     [](LumoImage& image) {
       LumoImage copy(7, 7, LUMO_IMG_RGB);
       copy = image;
     }},
    {"gray", 1, [](LumoImage& image) { cvtGray(image); }},
    {"threshold", 0, [](LumoImage& image) { thresh_global_moments(image); }},
    {"tone curve", 0, [](LumoImage& image) { enh_piecewise_gamma(image, 64, 0.85F, 0.7F); }},
    {"one pass", 1,
     [](LumoImage& image) {
       const double kernel[] = {0.25, 0.5, 0.25};
       convolve1D(image, kernel, 3, true);
     }},
    {"blur of 5 taps", 3, [](LumoImage& image) { enh_gaussian_filter_fast(image, 5, 3.0); }},
    {"blur of 11 taps", 4, [](LumoImage& image) { enh_gaussian_filter_fast(image, 11, 3.0); }},
    {"two-dimensional blur", 2, [](LumoImage& image) { enh_gaussian_filter(image, 5, 3.0, 1.0); }},
    {"weighted sum", 1, [](LumoImage& image) { add_Weighted(image, image, 3.0F); }},
    {"unsharp mask of 5 taps", 4, [](LumoImage& image) { enh_unsharp_mask(image, 300.0F, 5); }},
    {"unsharp mask of 11 taps", 5, [](LumoImage& image) { enh_unsharp_mask(image, 300.0F, 11); }},
    {"error diffusion", 5, [](LumoImage& image) { edf_cus(image, 128); }},
    {"tattoo", 10, [](LumoImage& image) { lumoTattooDithering(image); }},
    {"tattoo x8", 10, [](LumoImage& image) { lumoTattooDitheringX8(image); }},
    {"tattoo of colours", 11,
     [](LumoImage&) {
       LumoImage colours(13, 9, LUMO_IMG_RGB);
       std::fill_n(colours.data, colours.SizeBytes(), std::uint8_t{90});
       lumoTattooDithering(colours);
     }},
};

struct Attempt {
  bool failed;     ///< a block could not be had
  bool threw;      ///< and that was told
  int blocksLeft;  ///< of those that had been had by then
};

Attempt attempt(const Step& step, LumoImage& image, int failing) {
  Attempt result{};
  const HeapWatch heap(failing);
  try {
    step.run(image);
  } catch (const std::bad_alloc&) {
    result.threw = true;
  }
  result.failed = heap.hasFailed();
  result.blocksLeft = heap.blocksLeft();
  return result;
}

TEST(NoMemory, IsThrownOnAndLeavesNothingBehind) {
  for (const Step& step : kSteps) {
    int failing = 1;
    for (;; ++failing) {
      LumoImage image = grayImage(noiseLevels(13, 9, 1));
      const Attempt attempted = attempt(step, image, failing);
      EXPECT_EQ(attempted.threw, attempted.failed) << step.name << ", block " << failing;
      // The exception itself is no block of operator new.
      EXPECT_EQ(attempted.blocksLeft, 0) << step.name << ", block " << failing;
      if (!attempted.failed) break;
    }
    EXPECT_GE(failing - 1, step.blocks) << step.name;
  }
}

TEST(NoMemory, ImageThatCouldNotBeAssignedIsStillThereAndEmptyHanded) {
  const LumoImage source = grayImage({{1, 2, 3}});
  LumoImage image(7, 5, LUMO_IMG_RGB);
  bool threw = false;
  {
    const HeapWatch heap(1);
    try {
      image = source;
    } catch (const std::bad_alloc&) {
      threw = true;
    }
  }
  EXPECT_TRUE(threw);
  EXPECT_EQ(image.data, nullptr) << "the bytes of before were given back already";
  image = source;
  EXPECT_EQ(bytesOf(image), (std::vector<int>{1, 2, 3})) << "another try";
}

}  // namespace
