// The six-tap error diffusion.
#include "enhance/error_diffusion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

#include "test_lumo.h"

namespace {

Picture diffused(const Levels& levels, int threshold) {
  return dotsOf(edf_cus(grayImage(levels), threshold));
}

/// The definition, dot by dot.
Picture model(const Levels& levels, int threshold) {
  constexpr struct {
    int dx, dy;
    float weight;
  } kTaps[] = {{1, 0, 0.505786F},  {2, 0, -0.052926F}, {-2, 1, 0.226194F},
               {-1, 1, 0.128835F}, {0, 1, 0.243191F},  {1, 1, -0.111078F}};
  const int width = static_cast<int>(levels.front().size());
  const int height = static_cast<int>(levels.size());
  const auto cell = [width](int x, int y) { return static_cast<std::size_t>(y * width + x); };
  std::vector<float> errors(cell(0, height), 0.0F);
  Picture picture(levels.size(), std::string(levels.front().size(), '#'));
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const auto row = static_cast<std::size_t>(y);
      const auto column = static_cast<std::size_t>(x);
      const float value = errors[cell(x, y)] + static_cast<float>(levels[row][column]);
      float error = value;
      if (value > static_cast<float>(threshold)) {
        picture[row][column] = '.';
        float relief = 0.0F;
        if (x >= 1 && y >= 1 && x < width - 1 && y < height - 1) {
          if (picture[row][column - 1] == '#') relief += 0.1427F;
          if (picture[row - 1][column] == '#') relief += 0.1427F;
        }
        error = value - 255.0F * (1.0F - relief);
      }
      for (const auto& tap : kTaps) {
        const int toX = x + tap.dx;
        const int toY = y + tap.dy;
        if (toX < 0 || toX >= width || toY >= height) continue;
        errors[cell(toX, toY)] = error * tap.weight + errors[cell(toX, toY)];
      }
    }
  }
  return picture;
}

TEST(EdfCus, ThresholdItselfIsBlack) {
  for (int threshold : {0, 1, 128, 254}) {
    EXPECT_TRUE(samePicture(diffused({{threshold}}, threshold), {"#"})) << threshold;
    EXPECT_TRUE(samePicture(diffused({{threshold + 1}}, threshold), {"."})) << threshold;
  }
}

TEST(EdfCus, BlackStaysBlackAndWhiteStaysWhite) {
  EXPECT_TRUE(samePicture(diffused(uniformLevels(7, 4, 0), 128), Picture(4, "#######")));
  EXPECT_TRUE(samePicture(diffused(uniformLevels(7, 4, 255), 128), Picture(4, ".......")));
}

// A black dot of level 200 at (2, 0) under threshold 200 carries 200; all else is 0 and stays
// black, so every dot passes on exactly what it received. What arrives, per unit of error:
//   row 0: right a = 0.505786; two right -0.052926 + a x a = 0.202893
//   row 1: 0.226194 two left; 0.128835 + 0.226194 a = 0.243241 ...
// A probe comes out white when its own level lifts it above 200.
TEST(EdfCus, OnePixelSpreadsByTheWeightTable) {
  constexpr int kThreshold = 200;
  constexpr double kA = 0.505786;   // (+1, 0)
  constexpr double kB = -0.052926;  // (+2, 0)
  constexpr double kRow0[] = {0, 0, 1, kA, kB + kA * kA};
  // What row 0 sends straight down, each dot by (-2, +1), (-1, +1), (0, +1), (+1, +1).
  constexpr double kDown[] = {
      0.226194 * kRow0[2],
      0.128835 * kRow0[2] + 0.226194 * kRow0[3],
      0.243191 * kRow0[2] + 0.128835 * kRow0[3] + 0.226194 * kRow0[4],
      -0.111078 * kRow0[2] + 0.243191 * kRow0[3] + 0.128835 * kRow0[4],
      -0.111078 * kRow0[3] + 0.243191 * kRow0[4],
  };
  // And what it passes along row 1.
  double row1[5];
  for (int x = 0; x < 5; ++x) {
    row1[x] = kDown[x] + (x >= 1 ? kA * row1[x - 1] : 0) + (x >= 2 ? kB * row1[x - 2] : 0);
  }
  const struct {
    std::size_t x, y;
    double arrives;
    double about;  // the same, worked out by hand to six places
  } kProbes[] = {
      {3, 0, kRow0[3], 0.505786},
      {4, 0, kRow0[4], 0.202894},
      {0, 1, row1[0], 0.226194},
      {1, 1, row1[1], 0.357647},
      {2, 1, row1[2], 0.523168},
      {3, 1, row1[3], 0.283747},
      {4, 1, row1[4], 0.108986},
      {0, 0, 0, 0},
      {1, 0, 0, 0},
  };
  for (const auto& probe : kProbes) {
    EXPECT_NEAR(probe.arrives, probe.about, 1.5e-6);
    const int black = static_cast<int>(std::floor(kThreshold - probe.arrives * 200));
    Levels levels = uniformLevels(5, 2, 0);
    levels[0][2] = 200;
    levels[probe.y][probe.x] = black;
    EXPECT_EQ(diffused(levels, kThreshold)[probe.y][probe.x], '#')
        << black << " at (" << probe.x << ", " << probe.y << ")";
    levels[probe.y][probe.x] = black + 1;
    EXPECT_EQ(diffused(levels, kThreshold)[probe.y][probe.x], '.')
        << black + 1 << " at (" << probe.x << ", " << probe.y << ")";
  }
}

TEST(EdfCus, SomeOfEachErrorIsDroppedIsKept) {
  // The weights add up to 0.940002, so a black field of level 1 settles at 1 / 0.059998 = 16.67
  // instead of growing until a dot turns white.
  EXPECT_TRUE(
      samePicture(diffused(uniformLevels(200, 200, 1), 17), Picture(200, std::string(200, '#'))));
  EXPECT_FALSE(
      samePicture(diffused(uniformLevels(200, 200, 1), 16), Picture(200, std::string(200, '#'))));
}

// The centre of 3 x 3 is the one interior pixel; it has level 200 and is white (threshold 128), its
// neighbours are 0 or 255 and carry no error. The dot to its right shows what it passes on.
TEST(EdfCus, BlackNeighboursLowerTheCostOfAWhitePixel) {
  const struct {
    int left, above;
    int black;  // the largest level at (2, 1) that stays black
    const char* why;
  } kCases[] = {
      {255, 255, 155, "200 - 255 = -55; x 0.505786 = -27.82; 155 - 27.82 = 127.18"},
      {0, 255, 137, "200 - 255 x 0.8573 = -18.61; -9.41; 137 - 9.41 = 127.59"},
      {255, 0, 137, "the same for the pixel above"},
      {0, 0, 119, "200 - 255 x 0.7146 = 17.78; 8.99; 119 + 8.99 = 127.99"},
  };
  for (const auto& c : kCases) {
    Levels levels = {{0, c.above, 0}, {c.left, 200, c.black}, {0, 0, 0}};
    EXPECT_EQ(diffused(levels, 128)[1][1], '.');
    EXPECT_EQ(diffused(levels, 128)[1][2], '#') << c.why;
    levels[1][2] = c.black + 1;
    EXPECT_EQ(diffused(levels, 128)[1][2], '.') << c.why;
  }
}

TEST(EdfCus, BorderPixelsNeverGetTheRelief) {
  // A white pixel of 200 with black around it; its right neighbour turns between 155 and 156 when
  // it carries 200 - 255 = -55 (155 - 27.82 = 127.18).
  const struct {
    const char* where;
    std::size_t x, y;
  } kCases[] = {{"first row", 1, 0}, {"first column", 0, 1}, {"last row", 1, 2}};
  for (const auto& c : kCases) {
    Levels levels = uniformLevels(3, 3, 0);
    levels[c.y][c.x] = 200;
    levels[c.y][c.x + 1] = 155;
    EXPECT_EQ(diffused(levels, 128)[c.y][c.x], '.') << c.where;
    EXPECT_EQ(diffused(levels, 128)[c.y][c.x + 1], '#') << c.where;
    levels[c.y][c.x + 1] = 156;
    EXPECT_EQ(diffused(levels, 128)[c.y][c.x + 1], '.') << c.where;
  }

  // The last column shows in the row below: (0, 2) gets 0.226194 x -55 = -12.44 and passes
  // 0.505786 of it to (1, 2), which has 0.128835 x -55 = -7.09 already: -13.38 in all.
  Levels levels = uniformLevels(3, 3, 0);
  levels[1][2] = 200;
  levels[2][1] = 141;  // 127.62
  EXPECT_EQ(diffused(levels, 128)[2][1], '#');
  levels[2][1] = 142;  // 128.62
  EXPECT_EQ(diffused(levels, 128)[2][1], '.');
}

TEST(EdfCus, OnePixelWideDiffusesOnlyDown) {
  // 100, black: 0.243191 x 100 = 24.32 down. 103 + 24.32 = 127.32, 104 + 24.32 = 128.32.
  EXPECT_TRUE(samePicture(diffused({{100}, {103}}, 128), {"#", "#"}));
  EXPECT_TRUE(samePicture(diffused({{100}, {104}}, 128), {"#", "."}));
  // Two rows down comes only what the middle passes on: 0 + 24.32, then 5.91.
  EXPECT_TRUE(samePicture(diffused({{100}, {0}, {122}}, 128), {"#", "#", "#"}));  // 127.91
  EXPECT_TRUE(samePicture(diffused({{100}, {0}, {123}}, 128), {"#", "#", "."}));  // 128.91
}

TEST(EdfCus, OneRowDiffusesToTheTwoOnTheRight) {
  // 100, black: 50.58 to the next one, -5.29 to the one after it.
  EXPECT_TRUE(samePicture(diffused({{100, 77}}, 128), {"##"}));  // 127.58
  EXPECT_TRUE(samePicture(diffused({{100, 78}}, 128), {"#."}));  // 128.58
  // With 0 between: 0.202893 x 100 = 20.29.
  EXPECT_TRUE(samePicture(diffused({{100, 0, 107}}, 128), {"###"}));  // 127.29
  EXPECT_TRUE(samePicture(diffused({{100, 0, 108}}, 128), {"##."}));  // 128.29
}

TEST(EdfCus, ThresholdMinus1OnBlack) {
  // 0 > -1: white, and on the border it carries -255. To its right -255 x 0.505786 = -128.98,
  // black; then -255 x -0.052926 - 128.98 x 0.505786 = 13.50 - 65.23 = -51.74, black.
  EXPECT_TRUE(samePicture(diffused({{0, 0, 0}}, -1), {".##"}));
  // The right neighbour needs 128 to be above -1 again: -0.98.
  EXPECT_TRUE(samePicture(diffused({{0, 127}}, -1), {".#"}));
  EXPECT_TRUE(samePicture(diffused({{0, 128}}, -1), {".."}));
}

TEST(EdfCus, ThresholdOf255NeedsCarriedErrorForWhite) {
  // 255 is not above 255: black, and carries 255. The next one has 255 + 128.98.
  EXPECT_TRUE(samePicture(diffused({{255}}, 255), {"#"}));
  EXPECT_TRUE(samePicture(diffused({{255, 255}}, 255), {"#."}));
  EXPECT_TRUE(samePicture(diffused({{255, 126}}, 255), {"##"}));  // 254.98
  EXPECT_TRUE(samePicture(diffused({{255, 127}}, 255), {"#."}));  // 255.98
  EXPECT_TRUE(samePicture(diffused({{200, 200, 0}}, 1000), {"###"}));
}

TEST(EdfCus, AnyIntIsAThreshold) {
  const Levels levels = noiseLevels(6, 4, 1);
  EXPECT_TRUE(samePicture(diffused(levels, std::numeric_limits<int>::max()), Picture(4, "######")));
  EXPECT_TRUE(samePicture(diffused(levels, std::numeric_limits<int>::min()), Picture(4, "......")));
}

TEST(EdfCus, EachSmallSizeFollowsTheDefinition) {
  for (int width = 1; width <= 9; ++width) {
    for (int height = 1; height <= 6; ++height) {
      const Levels levels = noiseLevels(width, height, static_cast<unsigned>(width * 10 + height));
      for (int threshold : {-1, 0, 64, 128, 200, 255, 300}) {
        EXPECT_TRUE(samePicture(diffused(levels, threshold), model(levels, threshold)))
            << width << " x " << height << ", threshold " << threshold;
      }
    }
  }
  for (int level = 1; level < 255; level += 23) {
    const Levels levels = uniformLevels(67, 31, level);
    EXPECT_TRUE(samePicture(diffused(levels, 128), model(levels, 128))) << "level " << level;
  }
}

// Where the sum of what was carried lies at the threshold but for its last bit, one dot tells in
// which order it was added up, and that every product was rounded before.
TEST(EdfCus, SharesAreAddedInTheOrderOfTheScan) {
  const struct {
    const char* name;
    Levels levels;
    std::size_t x, y;  // the dot, which is black
  } kCases[] = {
      {"two to the left before left",
       {{177, 102, 255, 82, 128, 5, 58, 193},
        {145, 171, 119, 233, 146, 16, 118, 217},
        {205, 86, 174, 35, 243, 81, 138, 109}},
       7,
       2},
      {"from the left in the row above",
       {{241, 54, 100, 246, 140, 99, 7, 248},
        {128, 101, 139, 61, 88, 77, 118, 38},
        {85, 28, 242, 115, 82, 16, 58, 105}},
       4,
       1},
  };
  for (const auto& c : kCases) {
    const Picture picture = diffused(c.levels, 0);
    EXPECT_EQ(picture[c.y][c.x], '#') << c.name;
    EXPECT_TRUE(samePicture(picture, model(c.levels, 0))) << c.name;
  }
}

TEST(EdfCus, ResultIsGrayOfTheSameSizeAndTheInputStays) {
  const unsigned char pixels[] = {10, 200, 30, 1, 1, 1, 1, 1, 1};
  const LumoImage image(3, 1, LUMO_IMG_BGR, pixels);  // one byte per pixel is read
  const LumoImage result = edf_cus(image, 128);
  EXPECT_EQ(result.color, LUMO_IMG_GRAY);
  EXPECT_EQ(result.channels, 1);
  EXPECT_EQ(result.width, 3);
  EXPECT_EQ(result.height, 1);
  EXPECT_TRUE(samePicture(dotsOf(result), {"#.#"}));
  EXPECT_EQ(bytesOf(image), (std::vector<int>{10, 200, 30, 1, 1, 1, 1, 1, 1}));
}

TEST(EdfCus, NoPixelsAreNoWork) {
  for (const auto& [width, height] : {std::pair{0, 3}, {3, 0}, {0, 0}, {-2, -3}}) {
    const LumoImage result = edf_cus(LumoImage(width, height, LUMO_IMG_GRAY), 128);
    EXPECT_EQ(result.width, width);
    EXPECT_EQ(result.height, height);
  }
}

}  // namespace
