// Gaussian kernels and the two blurs.
#include "enhance/gaussian.h"

#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <numeric>

#include "test_lumo.h"

namespace {

std::vector<double> kernel1D(int ksize, double sigma) {
  std::vector<double> kernel(static_cast<std::size_t>(ksize));
  generateGaussianKernel1D(ksize, sigma, kernel.data());
  return kernel;
}

std::vector<double> kernel2D(int ksize, double sigmaX, double sigmaY) {
  std::vector<double> kernel(static_cast<std::size_t>(ksize * ksize));
  generateGaussianKernel(ksize, sigmaX, sigmaY, kernel.data());
  return kernel;
}

void expectTaps(const std::vector<double>& kernel, const std::vector<double>& expected) {
  ASSERT_EQ(kernel.size(), expected.size());
  for (std::size_t i = 0; i < kernel.size(); ++i) {
    EXPECT_NEAR(kernel[i], expected[i], 6e-7) << "tap " << i;  // six places, and the chain's exp
  }
}

Levels transposed(const Levels& levels) {
  Levels result(levels.front().size(), std::vector<int>(levels.size()));
  for (std::size_t y = 0; y < levels.size(); ++y) {
    for (std::size_t x = 0; x < levels[y].size(); ++x) result[x][y] = levels[y][x];
  }
  return result;
}

TEST(GaussianKernel1D, ElevenTapsOfSigma3) {
  expectTaps(kernel1D(11, 3.0), {0.035483, 0.058501, 0.086310, 0.113945, 0.134610, 0.142300,
                                 0.134610, 0.113945, 0.086310, 0.058501, 0.035483});
}

TEST(GaussianKernel1D, SmallKernels) {
  expectTaps(kernel1D(1, 3.0), {1.0});
  // exp(-1/2) = 0.606531 on both sides of 1, the sum 2.213061
  expectTaps(kernel1D(3, 1.0), {0.274069, 0.451863, 0.274069});
  expectTaps(kernel1D(5, 3.0), {0.178203, 0.210522, 0.222549, 0.210522, 0.178203});
}

TEST(GaussianKernel1D, IsSymmetricAndAddsUpTo1) {
  for (int ksize = 1; ksize <= 31; ksize += 2) {
    for (double sigma : {0.3, 1.0, 3.0, 50.0}) {
      const std::vector<double> kernel = kernel1D(ksize, sigma);
      EXPECT_NEAR(std::accumulate(kernel.begin(), kernel.end(), 0.0), 1.0, 1e-14);
      EXPECT_EQ(kernel, std::vector<double>(kernel.rbegin(), kernel.rend()));
    }
  }
}

TEST(GaussianKernel2D, ThreeByThree) {
  // exp(-1/2) = 0.606531 beside the centre, exp(-1) = 0.367879 in the corners, the sum 4.897640.
  expectTaps(kernel2D(3, 1.0, 1.0), {0.075114, 0.123841, 0.075114, 0.123841, 0.204180, 0.123841,
                                     0.075114, 0.123841, 0.075114});
  expectTaps(kernel2D(1, 1.0, 1.0), {1.0});
}

TEST(GaussianKernel2D, SigmaXActsAlongARow) {
  // Along a row exp(-1/8) = 0.882497, along a column exp(-2) = 0.135335.
  expectTaps(kernel2D(3, 2.0, 0.5), {0.033994, 0.038520, 0.033994, 0.251181, 0.284625, 0.251181,
                                     0.033994, 0.038520, 0.033994});
}

TEST(GaussianKernel2D, AddsUpTo1) {
  for (int ksize = 1; ksize <= 15; ksize += 2) {
    const std::vector<double> kernel = kernel2D(ksize, 3.0, 1.5);
    EXPECT_NEAR(std::accumulate(kernel.begin(), kernel.end(), 0.0), 1.0, 1e-14) << ksize;
  }
}

TEST(Convolve1D, RepeatsTheEdgePixel) {
  const double kernel[] = {0.25, 0.5, 0.25};
  // 0.25 x 0 + 0.5 x 0 + 0.25 x 100 = 25; 0 + 50 + 50 = 100; 25 + 100 + 50 = 175
  const Levels row = {{0, 100, 200}};
  EXPECT_EQ(levelsOf(convolve1D(grayImage(row), kernel, 3, true)), (Levels{{25, 100, 175}}));
  EXPECT_EQ(levelsOf(convolve1D(grayImage(transposed(row)), kernel, 3, false)),
            (Levels{{25}, {100}, {175}}));
}

TEST(Convolve1D, EachPassLeavesTheOtherDirection) {
  const double kernel[] = {0.25, 0.5, 0.25};
  const Levels levels = {{0, 0, 0}, {100, 100, 100}};
  EXPECT_EQ(levelsOf(convolve1D(grayImage(levels), kernel, 3, true)), levels);
  EXPECT_EQ(levelsOf(convolve1D(grayImage(transposed(levels)), kernel, 3, false)),
            transposed(levels));
}

TEST(Convolve1D, TapsAreNotTurnedRound) {
  const double before[] = {1, 0, 0};  // takes the pixel to the left, or above
  EXPECT_EQ(levelsOf(convolve1D(grayImage({{1, 2, 3}}), before, 3, true)), (Levels{{1, 1, 2}}));
  EXPECT_EQ(levelsOf(convolve1D(grayImage({{1}, {2}, {3}}), before, 3, false)),
            (Levels{{1}, {1}, {2}}));
}

TEST(Convolve1D, KernelWiderThanTheImage) {
  const double kernel[] = {0.1, 0.1, 0.1, 0.4, 0.1, 0.1, 0.1};
  // x = 0: three on the left and itself are 10: 0.7 x 10 + 0.3 x 110 = 40; x = 1: 0.3 x 10 + 77 =
  // 80
  EXPECT_EQ(levelsOf(convolve1D(grayImage({{10, 110}}), kernel, 7, true)), (Levels{{40, 80}}));
}

TEST(Convolve1D, HalvesAreRoundedUp) {
  const double kernel[] = {0.5};
  EXPECT_EQ(levelsOf(convolve1D(grayImage({{4, 5, 7, 255}}), kernel, 1, true)),
            (Levels{{2, 3, 4, 128}}));
}

TEST(Convolve1D, ResultIsNotClampedIsKept) {
  const double twice[] = {2.0};
  EXPECT_EQ(levelsOf(convolve1D(grayImage({{200}}), twice, 1, true)),
            (Levels{{144}}));  // 400 - 256
  const double minus[] = {-1.0};
  EXPECT_EQ(levelsOf(convolve1D(grayImage({{1}}), minus, 1, false)), (Levels{{255}}));
}

TEST(Convolve1D, SumsAreMadeInDoublePrecisionAndAscend) {
  const struct {
    double kernel[3];
    int middle;
    const char* why;
  } kCases[] = {
      {{16777216, 1, -16777216}, 3, "50331651 is no single-precision number: 4"},
      {{1e17, -1e17, 1}, 3, "from the other end 3 - 3e17 is -3e17: 0"},
      {{1, 1e17, -1e17}, 0, "3 + 3e17 is 3e17"},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(levelsOf(convolve1D(grayImage({{3, 3, 3}}), c.kernel, 3, true))[0][1], c.middle)
        << "along the row: " << c.why;
    EXPECT_EQ(levelsOf(convolve1D(grayImage({{3}, {3}, {3}}), c.kernel, 3, false))[1][0], c.middle)
        << "along the column: " << c.why;
  }
}

TEST(Convolve1D, KeepsLayoutAndInput) {
  const unsigned char pixels[] = {0, 100, 200, 7, 8, 9};
  const LumoImage image(2, 1, LUMO_IMG_BGR, pixels);
  const double kernel[] = {0.25, 0.5, 0.25};
  const LumoImage result = convolve1D(image, kernel, 3, true);
  EXPECT_EQ(result.color, LUMO_IMG_BGR);
  // One byte per pixel: two bytes are filtered (25, 75), the others come along.
  EXPECT_EQ(bytesOf(result), (std::vector<int>{25, 75, 200, 7, 8, 9}));
  EXPECT_EQ(bytesOf(image), (std::vector<int>{0, 100, 200, 7, 8, 9}));
}

TEST(Convolve1D, OnePixelWideImageIsOnlyMultipliedByTheSum) {
  const std::vector<double> kernel = kernel1D(11, 3.0);
  Levels column;
  for (int level = 0; level < 256; ++level) column.push_back({level});
  EXPECT_EQ(levelsOf(convolve1D(grayImage(column), kernel.data(), 11, true)), column);
}

TEST(GaussianBlur, UniformImagePassesUnchanged) {
  for (int level = 0; level < 256; ++level) {
    const Levels levels = uniformLevels(5, 4, level);
    EXPECT_EQ(levelsOf(enh_gaussian_filter_fast(grayImage(levels), 11, 3.0)), levels);
    EXPECT_EQ(levelsOf(enh_gaussian_filter(grayImage(levels), 5, 3.0, 1.0)), levels);
  }
}

TEST(GaussianBlur, OneWhitePixelShowsTheKernel) {
  // 255 x 0.178203, 0.210522, 0.222549 = 45.4, 53.7, 56.7 along the row; one row, so the second
  // pass adds up the same values.
  EXPECT_EQ(levelsOf(enh_gaussian_filter_fast(grayImage({{0, 0, 0, 255, 0, 0, 0}}), 5, 3.0)),
            (Levels{{0, 45, 54, 57, 54, 45, 0}}));
  EXPECT_EQ(
      levelsOf(enh_gaussian_filter_fast(grayImage(transposed({{0, 0, 0, 255, 0, 0, 0}})), 5, 3.0)),
      transposed({{0, 45, 54, 57, 54, 45, 0}}));
  // 255 x 0.075114, 0.123841, 0.204180 = 19.2, 31.6, 52.1
  EXPECT_EQ(levelsOf(enh_gaussian_filter(grayImage({{0, 0, 0}, {0, 255, 0}, {0, 0, 0}}), 3, 1, 1)),
            (Levels{{19, 32, 19}, {32, 52, 32}, {19, 32, 19}}));
  // 255 x 0.033994, 0.038520, 0.251181, 0.284625 = 8.7, 9.8, 64.1, 72.6
  EXPECT_EQ(
      levelsOf(enh_gaussian_filter(grayImage({{0, 0, 0}, {0, 255, 0}, {0, 0, 0}}), 3, 2, 0.5)),
      (Levels{{9, 10, 9}, {64, 73, 64}, {9, 10, 9}}));
}

TEST(GaussianBlur, SeparableRoundsBetweenRowsAndColumns) {
  bool orderMatters = false;
  for (unsigned seed = 0; seed < 20; ++seed) {
    for (int ksize : {1, 3, 5, 11}) {
      const LumoImage image = grayImage(noiseLevels(9, 7, seed));
      const std::vector<double> kernel = kernel1D(ksize, 3.0);
      const LumoImage rows = convolve1D(image, kernel.data(), ksize, true);
      const LumoImage columns = convolve1D(image, kernel.data(), ksize, false);
      const Levels rowsFirst = levelsOf(convolve1D(rows, kernel.data(), ksize, false));
      const Levels columnsFirst = levelsOf(convolve1D(columns, kernel.data(), ksize, true));
      EXPECT_EQ(levelsOf(enh_gaussian_filter_fast(image, ksize, 3.0)), rowsFirst);
      orderMatters = orderMatters || rowsFirst != columnsFirst;
    }
  }
  EXPECT_TRUE(orderMatters) << "images that tell the order apart";
}

TEST(GaussianBlur, TwoDimensionalIsRoundedOnce) {
  for (int ksize : {1, 3, 5}) {
    const Levels levels = noiseLevels(6, 5, 3);
    const std::vector<double> kernel = kernel2D(ksize, 1.3, 0.8);
    const int half = ksize / 2;
    Levels expected = levels;
    for (int y = 0; y < 5; ++y) {
      for (int x = 0; x < 6; ++x) {
        double sum = 0;
        for (int dy = -half; dy <= half; ++dy) {
          for (int dx = -half; dx <= half; ++dx) {
            const auto column = static_cast<std::size_t>(std::clamp(x + dx, 0, 5));
            const auto row = static_cast<std::size_t>(std::clamp(y + dy, 0, 4));
            sum += levels[row][column] *
                   kernel[static_cast<std::size_t>((dy + half) * ksize + dx + half)];
          }
        }
        expected[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] =
            static_cast<int>(static_cast<float>(sum) + 0.5F);
      }
    }
    EXPECT_EQ(levelsOf(enh_gaussian_filter(grayImage(levels), ksize, 1.3, 0.8)), expected) << ksize;
  }
}

// Sums that lie so near the middle between two levels that their last bit decides. In the middle of
// these images every tap meets one pixel.
TEST(GaussianBlur, TwoDimensionalSumsAreMadeInDoublePrecisionRowByRow) {
  const struct {
    Levels levels;
    double sigmaX, sigmaY;
    int middle;
    const char* why;
  } kCases[] = {
      {{{80, 113, 24}, {189, 206, 185}, {14, 59, 58}},
       3.697,
       0.806,
       128,
       "rows or columns from the other end, or columns first: 129"},
      {{{146, 114, 245}, {50, 118, 115}, {232, 99, 28}},
       1.3,
       0.8,
       117,
       "narrowed to single precision after each row: 118"},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(levelsOf(enh_gaussian_filter(grayImage(c.levels), 3, c.sigmaX, c.sigmaY))[1][1],
              c.middle)
        << c.why;
  }
}

TEST(GaussianBlur, SeparableSumsAscend) {
  const Levels row = {{210, 13, 85, 124, 214, 37, 254, 131, 4, 12, 243}};
  const std::vector<double> kernel = kernel1D(11, 2.222077);
  // From the other end, or by pairs of like taps, 129.
  EXPECT_EQ(levelsOf(enh_gaussian_filter_fast(grayImage(row), 11, 2.222077))[0][5], 128);
  EXPECT_EQ(levelsOf(enh_gaussian_filter_fast(grayImage(transposed(row)), 11, 2.222077))[5][0],
            128);
  EXPECT_EQ(levelsOf(convolve1D(grayImage(row), kernel.data(), 11, true))[0][5], 128);
}

TEST(GaussianBlur, SeparableKeepsTheLayoutAndTheBytesBehindThePixels) {
  const unsigned char bytes[] = {10, 10, 7, 8, 9, 6};
  for (int ksize : {5, 11}) {
    const LumoImage result =
        enh_gaussian_filter_fast(LumoImage(2, 1, LUMO_IMG_RGB, bytes), ksize, 3.0);
    EXPECT_EQ(result.color, LUMO_IMG_RGB) << ksize;
    EXPECT_EQ(result.channels, 3) << ksize;
    EXPECT_EQ(bytesOf(result), (std::vector<int>{10, 10, 7, 8, 9, 6})) << ksize;
  }
}

TEST(GaussianBlur, SizesOfMinus2OrBelowHaveNoTaps) {
  const LumoImage image = grayImage(noiseLevels(4, 3, 1));
  for (int ksize : {-2, -3, -4, -5, -11}) {
    EXPECT_THROW(enh_gaussian_filter_fast(image, ksize, 3.0), std::bad_array_new_length) << ksize;
    EXPECT_EQ(levelsOf(enh_gaussian_filter(image, ksize, 3.0, 3.0)), uniformLevels(4, 3, 0))
        << ksize;
  }
  for (int ksize : {-1, 1}) {
    EXPECT_EQ(levelsOf(enh_gaussian_filter(image, ksize, 3.0, 3.0)), levelsOf(image)) << ksize;
  }
  EXPECT_THROW(enh_gaussian_filter(image, std::numeric_limits<int>::min(), 3.0, 3.0),
               std::bad_array_new_length);
}

TEST(GaussianBlur, TwoDimensionalOfEvenSizeLeansUpAndLeft) {
  // Size 2 writes three rows of three taps at every second place: the rows lie over one another.
  // So wide a bell is flat, and only the first 2 x 2 taps are made to add up to 1: a quarter each.
  // What follows keeps its height of 1 / (2 pi 1000 1000), next to nothing.
  //   row above: 1/4 1/4 1/4,  own row: 1/4 1/4 0,  row below: 0 0 0
  // A column of one pixel meets each row of taps at once: 3/4 above, 1/2 here.
  EXPECT_EQ(levelsOf(enh_gaussian_filter(grayImage({{40}, {80}, {200}}), 2, 1000, 1000)),
            (Levels{{50}, {70}, {160}}));  // 30 + 20, 30 + 40, 60 + 100
  // A row meets each of its pixels through the columns of the taps of both rows above and here:
  // left 1/2, here 1/2, right 1/4.
  EXPECT_EQ(levelsOf(enh_gaussian_filter(grayImage({{40, 80, 120}}), 2, 1000, 1000)),
            (Levels{{60, 90, 130}}));
}

TEST(GaussianBlur, TwoDimensionalResultIsGray) {
  const unsigned char pixels[] = {10, 10, 9, 9, 9, 9};
  const LumoImage result = enh_gaussian_filter(LumoImage(2, 1, LUMO_IMG_RGB, pixels), 3, 1, 1);
  EXPECT_EQ(result.color, LUMO_IMG_GRAY);
  EXPECT_EQ(bytesOf(result), (std::vector<int>{10, 10}));
}

TEST(GaussianBlur, NoPixelsAreNoWork) {
  for (const auto& [width, height] : {std::pair{0, 3}, {3, 0}, {0, 0}}) {
    const LumoImage image(width, height, LUMO_IMG_GRAY);
    EXPECT_EQ(enh_gaussian_filter_fast(image, 11, 3.0).height, height);
    EXPECT_EQ(enh_gaussian_filter(image, 3, 1, 1).width, width);
  }
}

}  // namespace
