// The passes of the blur and the sharpening, alone, against their definition.
#include "kernels/blur.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>

#include "enhance/gaussian.h"
#include "every_target.h"
#include "pages.h"

namespace {

using kernels::kBlurRows;
using kernels::kBlurRowsRead;
using kernels::kBlurTaps;

using Bytes = std::vector<std::uint8_t>;
using Floats = std::vector<float>;
using Taps = std::array<double, kBlurTaps>;

/// Taps of every shape: one alone, a few, a bell, all alike, the steps between, and no numbers.
constexpr double kSigmas[] = {1e-300,
                              1e-150,
                              0.05,
                              0.2,
                              0.3,
                              0.5,
                              0.7,
                              1.0,
                              2.0,
                              3.0,
                              -3.0,
                              5.0,
                              50.0,
                              1e6,
                              1e300,
                              0.0,
                              std::numeric_limits<double>::infinity(),
                              std::numeric_limits<double>::quiet_NaN()};

Taps tapsOf(double sigma) {
  Taps taps;
  generateGaussianKernel1D(kBlurTaps, sigma, taps.data());
  return taps;
}

Floats noise(std::size_t count, unsigned seed) {
  std::minstd_rand random(seed);
  Floats levels(count);
  for (float& level : levels) level = static_cast<float>(random() / 7 % 256);
  return levels;
}

/// `level(k)` is the level under tap k. A sum that is not a number has a low byte of 0.
float blurredPlainly(const Taps& taps, auto level) {
  double sum = 0.0;
  for (std::size_t k = 0; k < kBlurTaps; ++k) sum = static_cast<double>(level(k)) * taps[k] + sum;
  return std::isnan(sum) ? 0.0F : std::trunc(static_cast<float>(sum) + 0.5F);
}

/// Around the lengths of all vectors, and around those of stretches of rows.
std::vector<std::size_t> counts() {
  std::vector<std::size_t> all;
  for (std::size_t count = 0; count <= 70; ++count) all.push_back(count);
  for (const std::size_t stretch : {256U, 512U}) {
    for (std::size_t count = stretch - 17; count <= stretch + 17; ++count) all.push_back(count);
  }
  return all;
}

class BlurPasses : public EveryTarget {};
TARVO_ON_EVERY_TARGET(BlurPasses);

TEST_P(BlurPasses, LevelsBecomeFloats) {
  for (const std::size_t count : counts()) {
    Bytes levels(count);
    for (std::size_t i = 0; i < count; ++i) levels[i] = static_cast<std::uint8_t>(i * 37);
    GuardedFloats result(count, count % 5);
    kernels::toFloats(ShiftedRow(levels, count % 64).data(), count, result.data());
    ASSERT_EQ(result.content(), Floats(levels.begin(), levels.end())) << count;
    ASSERT_TRUE(result.guardsAreWhole()) << count;
  }
}

TEST_P(BlurPasses, AlongARow) {
  for (const double sigma : kSigmas) {
    const Taps taps = tapsOf(sigma);
    for (const std::size_t count : counts()) {
      const Floats levels = noise(count + kBlurTaps - 1, static_cast<unsigned>(count) + 1);
      Floats expected(count);
      for (std::size_t i = 0; i < count; ++i) {
        expected[i] = blurredPlainly(taps, [&](std::size_t k) { return levels[i + k]; });
      }
      GuardedFloats result(count, count % 5);
      kernels::blurAlong(ShiftedRow(levels, count % 16).data(), taps.data(), count, result.data());
      ASSERT_EQ(result.content(), expected) << "sigma " << sigma << ", count " << count;
      ASSERT_TRUE(result.guardsAreWhole()) << "sigma " << sigma << ", count " << count;
    }
  }
}

TEST_P(BlurPasses, AcrossRows) {
  for (const double sigma : {3.0, 0.3, std::numeric_limits<double>::quiet_NaN()}) {
    const Taps taps = tapsOf(sigma);
    for (const std::size_t count : counts()) {
      // The first six rows are one, as at an image's upper edge.
      std::vector<ShiftedRow<float>> rows;
      const float* from[kBlurRowsRead];
      for (std::size_t k = 0; k < kBlurRowsRead; ++k) {
        const auto seed = static_cast<unsigned>(std::max<std::size_t>(k, 5));
        rows.emplace_back(noise(count, seed), (count + seed) % 16);
      }
      for (std::size_t k = 0; k < kBlurRowsRead; ++k) {
        from[k] = rows[std::max<std::size_t>(k, 5)].data();
      }
      std::vector<GuardedFloats> results(kBlurRows, GuardedFloats(count, count % 5));
      float* to[kBlurRows];
      for (std::size_t r = 0; r < kBlurRows; ++r) to[r] = results[r].data();
      kernels::blurAcross(from, taps.data(), count, to);
      for (std::size_t r = 0; r < kBlurRows; ++r) {
        Floats expected(count);
        for (std::size_t i = 0; i < count; ++i) {
          expected[i] = blurredPlainly(taps, [&](std::size_t k) { return from[r + k][i]; });
        }
        ASSERT_EQ(results[r].content(), expected)
            << "sigma " << sigma << ", count " << count << ", row " << r;
        ASSERT_TRUE(results[r].guardsAreWhole()) << "count " << count << ", row " << r;
      }
    }
  }
}

/// From -32385 to 32640, the farthest that the weights may lead; halves are rounded up, and the
/// sums of odd levels with 0.499999, which lie just below, are rounded down.
TEST_P(BlurPasses, SharpeningSaturates) {
  constexpr struct {
    float alpha, beta;
  } kWeights[] = {{4.0F, -3.0F},    {0.0F, 1.0F},   {1.0F, 0.0F},     {0.5F, 0.0F},
                  {0.5F, -0.5F},    {-1.5F, 0.5F},  {100.0F, -28.0F}, {-100.0F, 28.0F},
                  {128.0F, 0.0F},   {0.0F, 128.0F}, {1.0F, -127.0F},  {64.0F, 64.0F},
                  {0.499999F, 0.0F}};
  for (const auto& weights : kWeights) {
    for (const std::size_t count : counts()) {
      const Floats random = noise(count, static_cast<unsigned>(count) + 9);
      const Bytes levels(random.begin(), random.end());
      const Floats blurred = noise(count, static_cast<unsigned>(count) + 10);
      Bytes expected(count);
      for (std::size_t i = 0; i < count; ++i) {
        const float sum = random[i] * weights.alpha + blurred[i] * weights.beta;
        const auto rounded = static_cast<int>(sum >= 0.0F ? sum + 0.5F : sum - 0.5F);
        expected[i] = static_cast<std::uint8_t>(std::clamp(rounded, 0, 255));
      }
      GuardedBytes result(count, count % 5);
      kernels::sharpenRow(ShiftedRow(levels, count % 64).data(),
                          ShiftedRow(blurred, count % 16).data(), count, weights.alpha,
                          weights.beta, result.data());
      ASSERT_EQ(result.content(), expected)
          << weights.alpha << ", " << weights.beta << ", count " << count;
      ASSERT_TRUE(result.guardsAreWhole()) << "count " << count;
    }
  }
}

TEST(FloatRow, BeginsWhereACacheLineDoes) {
  kernels::FloatRow row;
  row.resize(0);
  EXPECT_EQ(row.data(), nullptr);
  for (const std::size_t count : {1U, 15U, 16U, 17U, 1000U}) {
    row.resize(count);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(row.data()) % 64, 0U) << count;
  }
}

}  // namespace
