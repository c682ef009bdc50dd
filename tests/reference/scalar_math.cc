#include "reference/scalar_math.h"

#include <cmath>
#include <limits>

namespace reference {

namespace {

constexpr float kTolerance = 1e-6F;
constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();

}  // namespace

float my_abs(float x) { return 0 > x ? -x : x; }

float my_sqrt(float x) {
  if (0 > x) return -1.0F;
  if (x == 0) return 0.0F;
  float guess = x / 2.0F;
  while (true) {
    const float next = 0.5F * (guess + x / guess);
    const float difference = next - guess;
    if (std::isnan(next) || std::isnan(difference)) return kNotANumber;
    if (kTolerance > my_abs(difference)) return guess;
    guess = next;
  }
}

float my_exp(float x) {
  if (0 > x) {
    const float reciprocal = my_exp(-x);
    return static_cast<float>(1.0 / static_cast<double>(reciprocal));
  }
  float sum = 1.0F;
  float term = 1.0F;
  for (int n = 1; n <= 20; ++n) {
    term = (x / static_cast<float>(n)) * term;
    sum = term + sum;
    if (static_cast<double>(term) < 1e-06) break;
  }
  return sum;
}

float my_ln(float x) {
  if (x <= 0) return -1.0F;
  float y = (x - 1.0F) / (1.0F + x);
  while (true) {
    const float next = y - (my_exp(y) - x) / x;
    const float difference = next - y;
    if (std::isnan(next) || std::isnan(difference)) return kNotANumber;
    if (kTolerance > my_abs(difference)) return y;
    y = next;
  }
}

float my_pow(float x, float y) {
  if (x == 0) {
    if (y == 0) return 1.0F;
    return y > 0 ? 0.0F : -1.0F;
  }
  if (0 > x) {
    const float fraction = y - static_cast<float>(truncated(y));
    if (!(fraction == 0)) return -1.0F;
  }
  const float exponent = y * my_ln(x);
  return my_exp(exponent);
}

int truncated(float x) {
  const bool an_int_holds_it = x >= -2147483648.0F && x < 2147483648.0F;
  return an_int_holds_it ? static_cast<int>(x) : std::numeric_limits<int>::min();
}

int my_round(float x) {
  if (static_cast<double>(x) >= 0.0) return truncated(x + 0.5F);
  return truncated(x - 0.5F);
}

int my_clamp(int value, int low, int high) {
  if (value < low) return low;
  return value < high ? value : high;
}

}  // namespace reference
