#include "reference/scalar_math.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace reference {
namespace {

constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

TEST(ScalarMath, SquareRootHasItsWorkedValues) {
  EXPECT_EQ(my_sqrt(4.0F), 2.0F);
  EXPECT_EQ(my_sqrt(0.0F), 0.0F);
  EXPECT_EQ(my_sqrt(-1.0F), -1.0F);
}

TEST(ScalarMath, TheGuessBeforeTheLastStepIsReturned) {
  // 0.125, 1.0625, 0.6489, 0.5171, 0.50028, 0.50000006, 0.5: the last step changes less than 1e-6.
  EXPECT_EQ(my_sqrt(0.25F), 0.50000006F);
  // -0.6, -1.79525, -1.45959, -1.38892, -1.386298, -1.38629448, -1.38629436.
  EXPECT_EQ(my_ln(0.25F), -1.38629448F);
}

TEST(ScalarMath, TheLogarithmsStepDividesByItsArgument) {
  // Divided by the power instead, the steps would end at -0.693147182, the nearest float.
  EXPECT_EQ(my_ln(0.5F), -0.693147242F);
}

TEST(ScalarMath, WhatIsNotANumberEndsTheIterations) {
  EXPECT_TRUE(std::isnan(my_sqrt(kNotANumber)));
  EXPECT_TRUE(std::isnan(my_sqrt(kInfinity)));
  EXPECT_TRUE(std::isnan(my_ln(kNotANumber)));
  EXPECT_TRUE(std::isnan(my_ln(kInfinity)));
  // Half of the smallest float is 0, the first step infinite, the difference of the next two none.
  EXPECT_TRUE(std::isnan(my_sqrt(std::numeric_limits<float>::denorm_min())));
  EXPECT_TRUE(std::isnan(my_ln(std::numeric_limits<float>::denorm_min())));
}

TEST(ScalarMath, ExponentialHasItsWorkedValues) {
  EXPECT_EQ(my_exp(0.0F), 1.0F);
  for (const float x : {0.5F, 1.0F, 3.0F, 12.5F}) {
    EXPECT_EQ(my_exp(-x), static_cast<float>(1.0 / static_cast<double>(my_exp(x)))) << x;
  }
  EXPECT_NEAR(my_exp(1.0F), 2.7182818F, 1e-6F);
}

TEST(ScalarMath, TheSeriesIsCutAfterTwentyTerms) {
  // The true value at 100 is 2.7e43, beyond a float; the first 21 terms come to about 5.3e21.
  double sum = 1;
  double term = 1;
  for (int n = 1; n <= 20; ++n) {
    term *= 100.0 / n;
    sum += term;
  }
  EXPECT_NEAR(static_cast<double>(my_exp(100.0F)) / sum, 1.0, 1e-5);
}

TEST(ScalarMath, LogarithmHasItsWorkedValues) {
  EXPECT_EQ(my_ln(1.0F), 0.0F);
  EXPECT_EQ(my_ln(0.0F), -1.0F);
  EXPECT_EQ(my_ln(-2.0F), -1.0F);
  EXPECT_NEAR(my_ln(2.7182818F), 1.0F, 2e-6F);
  EXPECT_NEAR(my_ln(0.00390625F), -5.5451775F, 2e-6F);
}

TEST(ScalarMath, PowerHasItsWorkedValues) {
  EXPECT_EQ(my_pow(0, 0), 1.0F);
  EXPECT_EQ(my_pow(0, 2), 0.0F);
  EXPECT_EQ(my_pow(0, -1), -1.0F);
  EXPECT_EQ(my_pow(0, kNotANumber), -1.0F);
  EXPECT_EQ(my_pow(-2, 0.5F), -1.0F);
  EXPECT_NEAR(my_pow(0.25F, 0.5F), 0.5F, 1e-6F);
}

TEST(ScalarMath, ANegativeBaseWithAWholeExponentIsNotASignedPower) {
  // The logarithm of a negative number is -1, so the power is e to the -2.
  EXPECT_EQ(my_pow(-2, 2), my_exp(-2.0F));
}

TEST(ScalarMath, RoundsHalfAwayFromZero) {
  EXPECT_EQ(my_round(2.5F), 3);
  EXPECT_EQ(my_round(-2.5F), -3);
  EXPECT_EQ(my_round(-0.4F), 0);
}

TEST(ScalarMath, ClampsToBothEnds) {
  EXPECT_EQ(my_clamp(5, 0, 255), 5);
  EXPECT_EQ(my_clamp(-3, 0, 255), 0);
  EXPECT_EQ(my_clamp(300, 0, 255), 255);
  EXPECT_EQ(my_clamp(255, 0, 255), 255);
}

}  // namespace
}  // namespace reference
