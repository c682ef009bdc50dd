#include "reference/dither.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>

namespace reference {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr std::int64_t kAllMethods[] = {0, 1, 2, 3, 4, 5, 6, 7, 8};

TEST(Dither, BlackStaysBlackAndWhiteWhite) {
  for (const std::int64_t method : kAllMethods) {
    EXPECT_THAT(dither(Gray(9, 5, 0), method).px, Each(0)) << method;
    EXPECT_THAT(dither(Gray(9, 5, 255), method).px, Each(1)) << method;
  }
}

TEST(Dither, TheFixedThresholdLiesAbove128) {
  EXPECT_THAT(dither(Gray(2, 1, std::vector<std::uint8_t>{128, 129}), 0).px, ElementsAre(0, 1));
}

TEST(Dither, TheFixedMatrixAtLevel128) {
  // 128 x 16 / 255 = 8: white where the matrix holds 0 to 7.
  EXPECT_THAT(dither(Gray(4, 4, 128), 1).px, ElementsAreArray({1, 0, 1, 0,  //
                                                               0, 1, 0, 1,  //
                                                               1, 0, 1, 0,  //
                                                               0, 1, 0, 1}));
}

TEST(Dither, TheComputedMatrixHasItsWorkedEntries) {
  const std::vector<std::uint8_t> matrix = computedMatrix();
  ASSERT_EQ(matrix.size(), 256U);
  EXPECT_THAT(std::vector<std::uint8_t>(matrix.begin(), matrix.begin() + 16),
              ElementsAreArray({0, 192, 48, 240,    //
                                128, 64, 176, 112,  //
                                32, 224, 16, 208,   //
                                160, 96, 144, 80}));
}

TEST(Dither, TheComputedMatrixAtLevel100) {
  // White at the entries 0, 16, 32, 48, 64, 80 and 96.
  EXPECT_THAT(dither(Gray(4, 4, 100), 7).px, ElementsAreArray({1, 0, 1, 0,  //
                                                               0, 1, 0, 0,  //
                                                               1, 0, 1, 0,  //
                                                               0, 1, 0, 1}));
}

TEST(Dither, EachKernelsWeightsAddUpToItsDivisor) {
  const std::int64_t divisors[] = {32, 42, 48, 32, 200, 16};
  for (const std::int64_t method : {2, 3, 4, 5, 6, 8}) {
    const DiffusionKernel kernel = diffusionKernel(method);
    const std::int64_t sum =
        std::accumulate(kernel.neighbours.begin(), kernel.neighbours.end(), std::int64_t{0},
                        [](std::int64_t so_far, const Neighbour& n) { return so_far + n.weight; });
    EXPECT_EQ(sum, kernel.divisor) << method;
    EXPECT_EQ(kernel.divisor, divisors[method == 8 ? 5 : method - 2]);
  }
}

TEST(Dither, SharesAreCutTowardZero) {
  // 100 is black. Of its error 7 / 16 is 43.75, cut to 43: 86 + 43 = 129 is white, 85 + 43 is not.
  EXPECT_THAT(dither(Gray(2, 1, std::vector<std::uint8_t>{100, 86}), 8).px, ElementsAre(0, 1));
  EXPECT_THAT(dither(Gray(2, 1, std::vector<std::uint8_t>{100, 85}), 8).px, ElementsAre(0, 0));
  // 200 is white with the error -55; 7 / 16 of it is -24.06, cut to -24.
  EXPECT_THAT(dither(Gray(2, 1, std::vector<std::uint8_t>{200, 153}), 8).px, ElementsAre(1, 1));
  EXPECT_THAT(dither(Gray(2, 1, std::vector<std::uint8_t>{200, 152}), 8).px, ElementsAre(1, 0));
}

TEST(Dither, AnErrorReachesTheThreeBelow) {
  // 100 at (1, 0): 18 below left, 31 below, 6 below right. The first row's last pixel takes 43 to
  // 43 and passes 43 x 3 / 16 = 8 below left, to 39, and 43 x 5 / 16 = 13 below, to 19.
  const auto below = [](std::uint8_t left, std::uint8_t middle, std::uint8_t right) {
    Gray image(3, 2);
    image.at(1, 0) = 100;
    image.at(0, 1) = left;
    image.at(1, 1) = middle;
    image.at(2, 1) = right;
    return dither(image, 8);
  };
  EXPECT_EQ(below(111, 0, 0).at(0, 1), 1);  // 111 + 18 = 129
  EXPECT_EQ(below(110, 0, 0).at(0, 1), 0);
  // After a first pixel of 18 with 18 x 7 / 16 = 7: 83 + 39 + 7 = 129.
  EXPECT_EQ(below(0, 83, 0).at(1, 1), 1);
  EXPECT_EQ(below(0, 82, 0).at(1, 1), 0);
}

TEST(Dither, ALonePixelHasNoNeighbours) { EXPECT_THAT(dither(Gray(1, 1, 200), 8).px, Each(1)); }

TEST(Dither, UnknownMethodsAreFloydAndSteinberg) {
  Gray ramp(16, 16);
  std::iota(ramp.px.begin(), ramp.px.end(), std::uint8_t{0});
  for (const std::int64_t method : {9, 100, -1}) {
    EXPECT_EQ(dither(ramp, method), dither(ramp, 8)) << method;
  }
}

TEST(Dither, TheMethodsDiffer) {
  Gray ramp(16, 16);
  std::iota(ramp.px.begin(), ramp.px.end(), std::uint8_t{0});
  for (const std::int64_t a : kAllMethods) {
    for (const std::int64_t b : kAllMethods) {
      if (a == b) continue;
      EXPECT_NE(dither(ramp, a), dither(ramp, b)) << a << " and " << b;
    }
  }
}

TEST(Dither, OneBitRowsArePaddedToFourBytes) {
  Gray bits(9, 1);
  bits.at(0, 0) = 1;
  bits.at(8, 0) = 1;
  EXPECT_THAT(oneBitRows(bits), ElementsAre(0x80, 0x80, 0, 0));
}

TEST(Dither, BackAtEightBitsTheImageHoldsZerosAndOnes) {
  const Image8 image = ditheredImage(imageFromLines({0, 200, 0, 9}, 3, 1, 4).value(), 0);
  EXPECT_THAT(image.bytes, ElementsAre(0, 1, 0, 0));
  EXPECT_EQ(image.palette, twoLevelPalette());
}

}  // namespace
}  // namespace reference
