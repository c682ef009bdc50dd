// The scalar mathematics, to the last bit where it is left to itself.
#include "enhance/lumo_math.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kSmallest = std::numeric_limits<float>::denorm_min();
constexpr int kLeast = std::numeric_limits<int>::min();

TEST(MyAbs, DropsTheSign) {
  EXPECT_EQ(myabs(2.5F), 2.5F);
  EXPECT_EQ(myabs(-2.5F), 2.5F);
  EXPECT_EQ(myabs(-kInfinity), kInfinity);
  EXPECT_TRUE(std::isnan(myabs(kNan)));
}

TEST(MyAbs, MinusZeroStaysIsKept) { EXPECT_TRUE(std::signbit(myabs(-0.0F))); }

TEST(MySqrt, KnownValues) {
  const struct {
    float x, root;
    const char* why;
  } kCases[] = {
      {4.0F, 2.0F, "2, then (2 + 4 / 2) / 2 = 2"},
      {0.0F, 0.0F, ""},
      {-0.0F, 0.0F, ""},
      {-1.0F, -1.0F, "the error value"},
      {-kInfinity, -1.0F, "the error value"},
      {100.0F, 10.0F, ""},
      {65025.0F, 255.0F, ""},
      {2.0F, 0x1.6a09e6p+0F, "1.4142135"},
  };
  for (const auto& c : kCases) EXPECT_EQ(my_sqrt(c.x), c.root) << c.x << ": " << c.why;
}

TEST(MySqrt, GuessBeforeTheLastStepIsKept) {
  // The step after each of these would be nearer: 0.5, 1.7320508, 2.5066283 (= 0x1.40d932p+1).
  EXPECT_EQ(my_sqrt(0.25F), 0x1.000002p-1F);
  EXPECT_EQ(my_sqrt(3.0F), 0x1.bb67bp+0F);
  EXPECT_EQ(my_sqrt(6.2831855F), 0x1.40d934p+1F);
}

TEST(MySqrt, ToleranceIsAbsoluteIsKept) {
  // Steps below 1e-6 end the search, however small the root is: halving from 1 stops near 2e-6.
  EXPECT_EQ(my_sqrt(1e-10F), 0x1.531c2p-17F);   // 1.01e-5 for 1e-5
  EXPECT_EQ(my_sqrt(1e-14F), 0x1.003c08p-19F);  // 1.9e-6 for 1e-7
  EXPECT_EQ(my_sqrt(2 * kSmallest), 0x1p-19F);  // 1.9e-6 for 5.3e-23
}

TEST(MySqrt, NotANumberOrNoFiniteStepGivesNotANumber) {
  EXPECT_TRUE(std::isnan(my_sqrt(kNan)));
  EXPECT_TRUE(std::isnan(my_sqrt(-kNan)));
  EXPECT_TRUE(std::isnan(my_sqrt(kInfinity)));  // infinity / infinity
  EXPECT_TRUE(std::isnan(my_sqrt(kSmallest)));  // half of it is 0, and then infinity - infinity
}

TEST(MySqrt, EndsOnNumbersOfEverySize) {
  for (int exponent = -140; exponent <= 127; ++exponent) {
    for (float mantissa : {1.0F, 1.1F, 1.3333334F, 1.7F, 1.9999999F}) {
      const float x = std::ldexp(mantissa, exponent);
      const float root = my_sqrt(x);
      EXPECT_GE(root, 0.0F) << x;
      if (exponent < 0) continue;
      // From 1 on the last step, shorter than 1e-6, is all that is missing, but for rounding.
      const float exact = std::sqrt(x);
      EXPECT_NEAR(root, exact, 1e-6F + exact * 1.2e-7F) << x;
    }
  }
}

TEST(MyExp, KnownValues) {
  const struct {
    float x, power;
    const char* why;
  } kCases[] = {
      {0.0F, 1.0F, "the first term is 0 and ends the series"},
      {-0.0F, 1.0F, ""},
      {1.0F, 0x1.5bf0aap+1F, "2.718282"},
      {0.5F, 0x1.a6129ap+0F, "1.6487213"},
      {2.0F, 0x1.d8e64ep+2F, "7.3890567"},
      {1e-7F, 0x1.000002p+0F, "the term below 1e-6 is still added: 1 + 1e-7"},
      {1e-8F, 1.0F, "1 + 1e-8 is 1"},
      {kInfinity, kInfinity, ""},
      {-kInfinity, 0.0F, "1 / infinity"},
  };
  for (const auto& c : kCases) EXPECT_EQ(my_exp(c.x), c.power) << c.x << ": " << c.why;
  EXPECT_TRUE(std::isnan(my_exp(kNan)));
}

TEST(MyExp, NegativeArgumentIsTheReciprocalInDouble) {
  for (float x = 0.001F; x < 90.0F; x *= 1.37F) {
    EXPECT_EQ(my_exp(-x), static_cast<float>(1.0 / static_cast<double>(my_exp(x)))) << x;
  }
}

TEST(MyExp, EndsAfter20TermsIsKept) {
  // 1 + x + ... + x^20 / 20!
  const struct {
    float x, power;
  } kCases[] = {
      {8.0F, 0x1.7495b8p+11F},    // 2980.679 for 2980.958
      {10.0F, 0x1.579decp+14F},   // 21991 for 22026
      {20.0F, 0x1.02afb4p+28F},   // 2.71e8 for 4.85e8
      {50.0F, 0x1.6c07a2p+52F},   // 6.4e15 for 5.2e21
      {100.0F, 0x1.15af14p+72F},  // 5.1e21 for 2.7e43
      {-20.0F, 0x1.faaeep-29F},   // 3.7e-9 for 2.1e-9
  };
  for (const auto& c : kCases) EXPECT_EQ(my_exp(c.x), c.power) << c.x;
}

TEST(MyExp, LastTermIsComparedInDoublePrecision) {
  // The eighth term is 9.99999997e-07, the single-precision number nearest to 1e-06 and the least
  // bit below it: it ends the series. A ninth would make the sum 0x1.f3fcecp+0.
  EXPECT_EQ(my_exp(0x1.56bc7ap-1F), 0x1.f3fceap+0F);
}

TEST(MyLn, KnownValues) {
  const struct {
    float x, logarithm;
    const char* why;
  } kCases[] = {
      {1.0F, 0.0F, "(1 - 1) / 2 = 0, and the first step leaves it"},
      {0.0F, -1.0F, "the error value"},
      {-0.0F, -1.0F, "the error value"},
      {-2.0F, -1.0F, "the error value"},
      {-kInfinity, -1.0F, "the error value"},
      {2.0F, 0x1.62e43p-1F, "0.6931472"},
      {0.5F, -0x1.62e432p-1F, "-0.6931472"},
      {2.7182817F, 1.0F, ""},
      {10.0F, 0x1.26bb1cp+1F, "2.3025851"},
  };
  for (const auto& c : kCases) EXPECT_EQ(my_ln(c.x), c.logarithm) << c.x << ": " << c.why;
}

TEST(MyLn, StepIsDividedByTheArgumentIsKept) {
  // From -0.998 the first step of ln(0.001) goes to about -367, and each of the next ones up by
  // about 1.
  EXPECT_EQ(my_ln(0.001F), -0x1.ba18ep+2F);       // -6.907768 for -6.907755
  EXPECT_EQ(my_ln(1.0F / 255), -0x1.62a412p+2F);  // -5.541264 for -5.5412635
  EXPECT_EQ(my_ln(1e-6F), -0x1.bb899ep+3F);       // -13.8605 for -13.8155
  // So far down that adding 1 changes nothing: the second step is the last.
  EXPECT_EQ(my_ln(1e-8F), -0x1.18ab74p+25F);  // -36787944 for -18.4
  EXPECT_EQ(my_ln(1e-12F), -0x1.569d4ap+38F);
}

TEST(MyLn, ShortExponentialMakesLargeLogarithmsTooLargeIsKept) {
  EXPECT_EQ(my_ln(1e6F), 0x1.bb899cp+3F);   // 13.8605 for 13.8155
  EXPECT_EQ(my_ln(1e10F), 0x1.899c0cp+4F);  // 24.6 for 23.03
  EXPECT_EQ(my_ln(1e30F), 0x1.0591ap+8F);   // 261.6 for 69.1
}

TEST(MyLn, NotANumberOrNoFiniteStepGivesNotANumber) {
  EXPECT_TRUE(std::isnan(my_ln(kNan)));
  EXPECT_TRUE(std::isnan(my_ln(kInfinity)));  // infinity / infinity
  EXPECT_TRUE(std::isnan(my_ln(kSmallest)));  // steps to minus infinity and cannot come back
}

TEST(MyLn, StepsThatGoInACircleEnd) {
  // Beyond 16 neighbouring values are 1.9e-6 apart, so steps to and fro between two of them never
  // come below 1e-6. From 7714754 on that happens, and near 0; either of the two is an answer.
  const struct {
    float x, low, high;
  } kCases[] = {
      {7714754.0F, 16.0000153F, 16.0000172F}, {7838459.5F, 16.0170212F, 16.0170231F},
      {8157595.5F, 16.0597115F, 16.0597134F}, {10130616.0F, 16.2921333F, 16.2921352F},
      {9.85e-8F, -16.2944336F, -16.2944317F}, {5.05e-8F, -17.019268F, -17.0192661F},
  };
  for (const auto& c : kCases) {
    const float y = my_ln(c.x);
    EXPECT_TRUE(y == c.low || y == c.high) << "ln(" << c.x << ") = " << y;
  }
}

TEST(MyPow, KnownValues) {
  const struct {
    float x, y, power;
    const char* why;
  } kCases[] = {
      {0.0F, 0.0F, 1.0F, ""},
      {0.0F, 2.0F, 0.0F, ""},
      {0.0F, 0.85F, 0.0F, ""},
      {0.0F, kInfinity, 0.0F, ""},
      {0.0F, -1.0F, -1.0F, "the error value"},
      {0.0F, kNan, -1.0F, "the error value"},
      {-0.0F, 2.0F, 0.0F, "minus 0 is 0"},
      {-2.0F, 0.5F, -1.0F, "the error value: not a whole power"},
      {-2.0F, kNan, -1.0F, "the error value"},
      {-2.0F, 1e10F, -1.0F, "the error value: 1e10 has no int, so it counts as a fraction"},
      {1.0F, 0.7F, 1.0F, "e to the power 0.7 x 0"},
      {5.0F, 0.0F, 1.0F, "e to the power 0"},
      {10.0F, 2.0F, 100.0F, ""},
      {2.0F, -1.0F, 0.5F, ""},
      {2.0F, 0.5F, 0x1.6a09e8p+0F, "1.4142137"},
      {0.5F, 0.7F, 0x1.3b2c46p-1F, "0.6155722"},
      {2.0F, 10.0F, 0x1.fffe5cp+9F, "1023.987, 10 x 0.693 being far along the series"},
  };
  for (const auto& c : kCases) EXPECT_EQ(my_pow(c.x, c.y), c.power) << c.x << '^' << c.y << c.why;
  EXPECT_TRUE(std::isnan(my_pow(kNan, 2.0F)));
}

TEST(MyPow, NegativeBaseToAWholePowerIsExpOfMinusThePowerIsKept) {
  // The logarithm of a negative number is the error value -1.
  EXPECT_EQ(my_pow(-2.0F, 2.0F), my_exp(-2.0F));
  EXPECT_EQ(my_pow(-2.0F, 3.0F), my_exp(-3.0F));
  EXPECT_EQ(my_pow(-7.0F, 3.0F), my_exp(-3.0F));
  EXPECT_EQ(my_pow(-2.0F, -1.0F), my_exp(1.0F));
}

TEST(MyRound, HalvesGoAwayFromZero) {
  const struct {
    float x;
    int rounded;
  } kCases[] = {{2.5F, 3},  {-2.5F, -3},  {-0.4F, 0}, {0.4F, 0},  {0.5F, 1},     {-0.5F, -1},
                {1.49F, 1}, {-1.49F, -1}, {1.5F, 2},  {-0.0F, 0}, {254.5F, 255}, {254.49F, 254}};
  for (const auto& c : kCases) EXPECT_EQ(my_round(c.x), c.rounded) << c.x;
}

TEST(MyRound, SumIsRoundedToSinglePrecisionFirstIsKept) {
  EXPECT_EQ(my_round(0x1.fffffep-2F), 1);    // 0.49999997 + 0.5 is 1 in single precision
  EXPECT_EQ(my_round(8388609.0F), 8388610);  // 2^23 + 1.5 has no single; the even neighbour
}

TEST(MyRound, WhatAnIntCannotHoldIsTheLeastInt) {
  for (float x : {kNan, kInfinity, -kInfinity, 3e9F, -3e9F, 2147483648.0F}) {
    EXPECT_EQ(my_round(x), kLeast) << x;
    EXPECT_EQ(truncateToInt(x), kLeast) << x;
  }
}

TEST(TruncateToInt, GoesTowardZero) {
  const struct {
    float x;
    int truncated;
  } kCases[] = {{2.9F, 2},
                {-2.9F, -2},
                {-0.9F, 0},
                {2147483520.0F, 2147483520},  // the largest single below 2^31
                {-2147483648.0F, kLeast}};
  for (const auto& c : kCases) EXPECT_EQ(truncateToInt(c.x), c.truncated) << c.x;
}

TEST(MyClamp, HoldsTheValueBetweenItsBounds) {
  const struct {
    int value, low, high, clamped;
  } kCases[] = {{5, 0, 255, 5},     {-3, 0, 255, 0}, {300, 0, 255, 255}, {255, 0, 255, 255},
                {254, 0, 255, 254}, {0, 0, 255, 0},  {3, 7, 7, 7}};
  for (const auto& c : kCases) EXPECT_EQ(myClamp(c.value, c.low, c.high), c.clamped) << c.value;
}

TEST(MyClamp, LowIsTestedFirst) {
  EXPECT_EQ(myClamp(5, 10, 0), 10);
  EXPECT_EQ(myClamp(20, 10, 0), 0);
}

TEST(IsWithinBounds, IncludesZeroAndExcludesTheSize) {
  const struct {
    int x, y;
    bool inside;
  } kCases[] = {{0, 0, true},   {4, 2, true},   {5, 0, false},      {0, 3, false},
                {-1, 0, false}, {0, -1, false}, {kLeast, 0, false}, {0, kLeast, false}};
  for (const auto& c : kCases) EXPECT_EQ(isWithinBounds(c.x, c.y, 5, 3), c.inside) << c.x << c.y;
  EXPECT_TRUE(isWithinBounds(0, 0, 1, 1));
  EXPECT_FALSE(isWithinBounds(0, 0, 0, 1));
  EXPECT_FALSE(isWithinBounds(0, 0, 1, 0));
}

}  // namespace
