// The six error-diffusion kernels.
#include <gtest/gtest.h>

#include <limits>

#include "dither_model.h"

namespace {

/// The output at (x, y) when `levels` are dithered.
char dotAt(const Levels& levels, int method, std::size_t x, std::size_t y) {
  return dithered(levels, method)[y][x];
}

// One dot of a known error in a field that passes nothing on: beside a black dot (positive error)
// the field is 255, where every share is clamped away; beside a white one (negative error) it is 0.
// One other dot, the probe, is neither: it comes out white exactly when its level and its share
// together exceed 128. Two levels of the probe, 128 - share and 129 - share, pin the share.
void expectShare(const Kernel& kernel, int level, int dx, int dy, int share) {
  constexpr int kX = 3;
  Levels levels = uniformLevels(7, 4, level > 128 ? 0 : 255);
  levels[0][kX] = level;
  int& probe = levels[static_cast<std::size_t>(dy)][static_cast<std::size_t>(kX + dx)];
  const auto probeDot = [&] {
    return dotAt(levels, kernel.method, static_cast<std::size_t>(kX + dx),
                 static_cast<std::size_t>(dy));
  };
  probe = 128 - share;
  EXPECT_EQ(probeDot(), '#') << kernel.name << ": a dot of level " << level << " gives (" << dx
                             << ", " << dy << ") more than " << share;
  probe = 129 - share;
  EXPECT_EQ(probeDot(), '.') << kernel.name << ": a dot of level " << level << " gives (" << dx
                             << ", " << dy << ") less than " << share;
}

TEST(ErrorDiffusion, FloydSteinbergSharesOfLevel100) {
  // Black, error 100.
  const Kernel& kernel = kernelOf(8);
  expectShare(kernel, 100, 1, 0, 43);   // 700 / 16 = 43.75
  expectShare(kernel, 100, -1, 1, 18);  // 300 / 16 = 18.75
  expectShare(kernel, 100, 0, 1, 31);   // 500 / 16 = 31.25
  expectShare(kernel, 100, 1, 1, 6);    // 100 / 16 = 6.25
}

TEST(ErrorDiffusion, NegativeSharesAreTruncatedTowardZero) {
  // Level 200: white, error 200 - 255 = -55.
  const Kernel& kernel = kernelOf(8);
  expectShare(kernel, 200, 1, 0, -24);   // -385 / 16 = -24.06
  expectShare(kernel, 200, -1, 1, -10);  // -165 / 16 = -10.31
  expectShare(kernel, 200, 0, 1, -17);   // -275 / 16 = -17.19
  expectShare(kernel, 200, 1, 1, -3);    // -55 / 16 = -3.44
}

TEST(ErrorDiffusion, LargestErrorsOfEachKernel) {
  // Level 128 is black, error 128; level 129 white, error -126.
  const struct {
    int method;
    int dx, dy;
    int of128, of129;
  } kShares[] = {
      {2, 1, 0, 32, -31},  // 1024 / 32, -1008 / 32 = -31.5
      {2, 2, 0, 16, -15},  // 512 / 32, -504 / 32 = -15.75
      {2, -2, 1, 8, -7},   // 256 / 32, -252 / 32 = -7.9
      {2, -1, 1, 16, -15}, {2, 0, 1, 32, -31},
      {2, 1, 1, 16, -15},  {2, 2, 1, 8, -7},
      {3, 1, 0, 24, -24},                      // 1024 / 42 = 24.4, -1008 / 42 = -24
      {3, 2, 0, 12, -12},                      // 512 / 42 = 12.2, -504 / 42 = -12
      {3, -2, 1, 6, -6},                       // 256 / 42 = 6.1, -252 / 42 = -6
      {3, 0, 1, 24, -24},  {3, -2, 2, 3, -3},  // 128 / 42 = 3.05, -126 / 42 = -3
      {3, -1, 2, 6, -6},   {3, 0, 2, 12, -12},
      {4, 1, 0, 18, -18},                       // 896 / 48 = 18.7, -882 / 48 = -18.4
      {4, 2, 0, 13, -13},                       // 640 / 48 = 13.3, -630 / 48 = -13.1
      {4, -2, 1, 8, -7},                        // 384 / 48 = 8, -378 / 48 = -7.9
      {4, 0, 1, 18, -18},  {4, -2, 2, 2, -2},   // 128 / 48 = 2.7, -126 / 48 = -2.6
      {4, 0, 2, 13, -13},  {5, 1, 0, 20, -19},  // 640 / 32 = 20, -630 / 32 = -19.7
      {5, 2, 0, 12, -11},                       // 384 / 32 = 12, -378 / 32 = -11.8
      {5, -2, 1, 8, -7},   {5, 0, 1, 20, -19},
      {5, -2, 2, 0, 0},  // the third row is narrower
      {5, -1, 2, 8, -7},   {5, 0, 2, 12, -11},
      {6, 1, 0, 0, 0},                          // the neighbour itself gets nothing
      {6, 2, 0, 20, -20},                       // 4096 / 200 = 20.5, -4032 / 200 = -20.2
      {6, -3, 1, 7, -7},                        // 1536 / 200 = 7.7, -1512 / 200 = -7.6
      {6, -1, 1, 16, -16},                      // 3328 / 200 = 16.6, -3276 / 200 = -16.4
      {6, 0, 1, 0, 0},     {6, 1, 1, 19, -18},  // 3840 / 200 = 19.2, -3780 / 200 = -18.9
      {6, 3, 1, 10, -10},                       // 2048 / 200 = 10.2, -2016 / 200 = -10.1
      {6, -2, 2, 7, -7},   {6, 0, 2, 16, -16},
      {6, -3, 3, 3, -3},  // 640 / 200 = 3.2, -630 / 200 = -3.2
      {6, -1, 3, 7, -7},   {6, 1, 3, 7, -7},
      {6, 3, 3, 3, -3},    {8, 1, 0, 56, -55},  // 896 / 16 = 56, -882 / 16 = -55.1
      {8, 0, 1, 40, -39},                       // 640 / 16 = 40, -630 / 16 = -39.4
  };
  for (const auto& share : kShares) {
    const Kernel& kernel = kernelOf(share.method);
    expectShare(kernel, 128, share.dx, share.dy, share.of128);
    expectShare(kernel, 129, share.dx, share.dy, share.of129);
  }
}

// Every error that there is, on every dot of the window around it: the dots outside the kernel get
// 0, so they keep black at 128 and white at 129.
TEST(ErrorDiffusion, EachErrorOnEachNeighbour) {
  for (const Kernel& kernel : kKernels) {
    for (int level = 0; level < 256; ++level) {
      const int error = level > 128 ? level - 255 : level;
      for (int dy = 0; dy <= 3; ++dy) {
        for (int dx = dy == 0 ? 1 : -3; dx <= 3; ++dx) {
          expectShare(kernel, level, dx, dy, error * kernel.weight(dx, dy) / kernel.divisor);
        }
      }
      if (HasFailure()) return;
    }
  }
}

TEST(ErrorDiffusion, QuantisesAt128) {
  for (const Kernel& kernel : kKernels) {
    EXPECT_TRUE(samePicture(dithered({{128}}, kernel.method), {"#"})) << kernel.name;
    EXPECT_TRUE(samePicture(dithered({{129}}, kernel.method), {"."})) << kernel.name;
  }
}

TEST(ErrorDiffusion, OneWhitePixelTouchesNothingElse) {
  IndexedImage image(8, {{200}});
  EXPECT_TRUE(image.Dither(8));
  EXPECT_EQ(rowBytes(image, 0), (std::vector<int>{0x80, 0, 0, 0}));
}

TEST(ErrorDiffusion, SharesAreClampedOneByOne) {
  // Floyd-Steinberg. (0, 0): 128, black, error 128: +56 right, +40 below, +8 below right.
  // (1, 0): 80 + 56 = 136, white, error -119: -119 x 3 / 16 = -22 below left, -37 below.
  // (0, 1): 250 + 40 is held at 255, - 22 = 233, white, error -22: -154 / 16 = -9 to its right.
  // (1, 1): 158 + 8 - 37 - 9 = 120, black. Unclamped, (0, 1) would reach 268 and pass nothing on:
  // 129, white.
  EXPECT_TRUE(samePicture(dithered({{128, 80}, {250, 158}}, 8), {"#.", ".#"}));

  // The same at the dark end. (0, 0): 129, white, error -126: -55, -39, -7.
  // (1, 0): 170 - 55 = 115, black, error 115: +21 below left, +35 below.
  // (0, 1): 10 - 39 is held at 0, + 21 = 21, black, error 21: +9 to its right.
  // (1, 1): 92 - 7 + 35 + 9 = 129, white. Unclamped, (0, 1) would be -8 and pass -3 on: 117, black.
  EXPECT_TRUE(samePicture(dithered({{129, 170}, {10, 92}}, 8), {".#", "#."}));
}

TEST(ErrorDiffusion, FaintestTonesVanishIsKept) {
  // Where error x largest weight < divisor, every share is truncated to 0.
  const struct {
    int method;
    int faintest;
  } kCases[] = {
      {2, 3},  // 3 x 8 < 32
      {3, 5},  // 5 x 8 < 42
      {4, 6},  // 6 x 7 < 48
      {5, 6},  // 6 x 5 < 32
      {6, 6},  // 6 x 32 < 200
      {8, 2},  // 2 x 7 < 16
  };
  for (const auto& c : kCases) {
    const Levels dark = uniformLevels(40, 40, c.faintest);
    const Levels light = uniformLevels(40, 40, 255 - c.faintest);
    EXPECT_TRUE(samePicture(dithered(dark, c.method), Picture(40, std::string(40, '#'))));
    EXPECT_TRUE(samePicture(dithered(light, c.method), Picture(40, std::string(40, '.'))));
  }
}

TEST(ErrorDiffusion, ErrorsEndAtTheEdgesAndDoNotWrap) {
  // A black dot of error 128 at the right edge, then the first dot of the next row at 128: any
  // share would turn it white. It is 3 or more dots away, and beyond every kernel.
  for (const Kernel& kernel : kKernels) {
    EXPECT_TRUE(
        samePicture(dithered({{255, 255, 255, 255, 128}, {128, 255, 255, 255, 255}}, kernel.method),
                    {"....#", "#...."}))
        << kernel.name;
  }
}

TEST(ErrorDiffusion, RowsAreAlwaysScannedLeftToRight) {
  // Floyd-Steinberg along the second row, whose first row has no error to give:
  // 100 black (700 / 16 = +43), 143 white (-784 / 16 = -49), 51 black (357 / 16 = +22),
  // 122 black (854 / 16 = +53), 153 white. From the right it would be ".##.#".
  EXPECT_TRUE(
      samePicture(dithered({{0, 0, 0, 0, 0}, {100, 100, 100, 100, 100}}, 8), {"#####", "#.##."}));
}

TEST(ErrorDiffusion, OtherMethodNumbersAreFloydSteinberg) {
  const Levels levels = noiseLevels(19, 11, 10);
  const Picture expected = diffused(levels, kernelOf(8));
  for (std::int64_t method : {std::int64_t{8}, std::int64_t{9}, std::int64_t{100}, std::int64_t{-1},
                              std::int64_t{1} << 32, std::numeric_limits<std::int64_t>::min(),
                              std::numeric_limits<std::int64_t>::max()}) {
    EXPECT_TRUE(samePicture(dithered(levels, method), expected)) << method;
  }
}

TEST(ErrorDiffusion, EachSmallSizeFollowsTheWeightTable) {
  for (const Kernel& kernel : kKernels) {
    for (int width = 1; width <= 9; ++width) {
      for (int height = 1; height <= 6; ++height) {
        const Levels levels =
            noiseLevels(width, height, static_cast<unsigned>(width * 100 + height));
        EXPECT_TRUE(samePicture(dithered(levels, kernel.method), diffused(levels, kernel)))
            << kernel.name << ' ' << width << " x " << height;
      }
    }
    for (int level = 1; level < 255; level += 23) {
      const Levels levels = uniformLevels(67, 31, level);
      EXPECT_TRUE(samePicture(dithered(levels, kernel.method), diffused(levels, kernel)))
          << kernel.name << ", uniform level " << level;
    }
  }
}

}  // namespace
