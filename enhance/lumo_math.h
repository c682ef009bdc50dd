// The enhancement chain's own scalar mathematics.
//
// The filters use these and never the platform's library, so that a page gives the same dots
// everywhere: the order and the precision of every step below are part of the results.
#ifndef TARVO_ENHANCE_LUMO_MATH_H_
#define TARVO_ENHANCE_LUMO_MATH_H_

#include <cstdint>

/// |x|; a not-a-number comes back as it is.
float myabs(float x);

/// Square root by Newton's iteration to an absolute tolerance of 1e-6; -1 for a negative `x`.
/// Quirk: guess-before-last. The guess before the last step is returned. A not-a-number, or an
/// infinite `x`, gives not-a-number.
float my_sqrt(float x);

/// e to the power `x` by at most 20 terms of its series after the leading 1.
/// Quirk: short-exponential. For large `x` the result falls far short.
float my_exp(float x);

/// Natural logarithm by a fixed-point iteration on my_exp to an absolute tolerance of 1e-6; -1 for
/// x <= 0. Quirk: logarithm-step. A not-a-number, or an infinite `x`, gives not-a-number. Arguments
/// whose steps never settle (some large ones, some near 0) give one of the values they circle
/// through.
float my_ln(float x);

/// `x` to the power `y`: 0 to the power 0 is 1, 0 to a negative power -1, a negative `x` to a
/// fractional power -1. Quirk: negative-base. A negative `x` to a whole power gives my_exp(-y).
float my_pow(float x, float y);

/// `x` truncated toward zero; what an int can't hold (a not-a-number, too) gives the least int.
int truncateToInt(float x);

/// `x` rounded half away from zero, as an int; bounds as in truncateToInt.
int my_round(float x);

/// `low` when value < low, `high` when value >= high, else `value`.
template <typename T>
constexpr T myClamp(T value, T low, T high) {
  if (value < low) return low;
  return value < high ? value : high;
}

/// Whether 0 <= x < width and 0 <= y < height.
constexpr bool isWithinBounds(int x, int y, int width, int height) {
  return x >= 0 && x < width && y >= 0 && y < height;
}

#endif  // TARVO_ENHANCE_LUMO_MATH_H_
