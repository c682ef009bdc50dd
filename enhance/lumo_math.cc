#include "enhance/lumo_math.h"

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>

// Excess precision between the steps would change the results.
static_assert(FLT_EVAL_METHOD == 0, "float arithmetic must be evaluated in float");

namespace {

constexpr float kTolerance = 1e-6f;
constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();

}  // namespace

float myabs(float x) { return 0.0f > x ? -x : x; }

float my_sqrt(float x) {
  if (0.0f > x) return -1.0f;
  if (x == 0.0f) return 0.0f;
  float guess = x / 2.0f;
  for (;;) {
    const float next = 0.5f * (guess + x / guess);
    const float change = next - guess;
    if (std::isnan(change)) return kNotANumber;  // no tolerance would ever be met
    // Quirk: guess-before-last. The guess that the last step confirmed, not the one it made.
    if (kTolerance > myabs(change)) return guess;
    guess = next;
  }
}

float my_exp(float x) {
  if (0.0f > x) {
    return static_cast<float>(1.0 / static_cast<double>(my_exp(-x)));
  }
  float sum = 1.0f;
  float term = 1.0f;
  // Quirk: short-exponential. The series ends here although large arguments would need more terms.
  constexpr int kTerms = 20;
  for (int n = 1; n <= kTerms; ++n) {
    term = (x / static_cast<float>(n)) * term;
    sum = term + sum;
    if (static_cast<double>(term) < 1e-06) break;
  }
  return sum;
}

float my_ln(float x) {
  if (x <= 0.0f) return -1.0f;
  float y = (x - 1.0f) / (1.0f + x);
  float earlier = y;
  for (std::int64_t step = 1;; ++step) {
    // Quirk: logarithm-step. Divided by x, where Newton's step would divide by my_exp(y).
    const float next = y - (my_exp(y) - x) / x;
    const float change = next - y;
    if (std::isnan(change)) return kNotANumber;  // no tolerance would ever be met
    if (kTolerance > myabs(change)) return y;    // Quirk: guess-before-last.
    // Where neighbouring values of y are about as far apart as the tolerance, some arguments, large
    // ones and small ones, send the steps round in a circle: R. P. Brent's test (BIT 20, 1980) sees
    // it close.
    if (next == earlier) return y;
    if ((step & (step - 1)) == 0) earlier = next;
    y = next;
  }
}

float my_pow(float x, float y) {
  if (x == 0.0f) {
    if (y == 0.0f) return 1.0f;
    return y > 0.0f ? 0.0f : -1.0f;
  }
  if (0.0f > x) {
    const float fraction = y - static_cast<float>(truncateToInt(y));
    if (!(fraction == 0.0f)) return -1.0f;
    // Quirk: negative-base. Goes on with my_ln's -1 for a negative argument.
  }
  return my_exp(y * my_ln(x));
}

int truncateToInt(float x) {
  constexpr float kBound = 2147483648.0f;
  if (x >= -kBound && x < kBound) return static_cast<int>(x);
  return std::numeric_limits<int>::min();
}

int my_round(float x) { return truncateToInt(static_cast<double>(x) >= 0.0 ? x + 0.5f : x - 0.5f); }
