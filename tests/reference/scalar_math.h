#pragma once

namespace reference {

// The scalar routines of the tattoo chain. Every step is single precision unless it says double;
// none of them calls the platform's mathematics library.

/// -x when 0 > x, else x.
float my_abs(float x);

/// Square root by Newton's iteration from x / 2; the guess before the last step. -1 for x < 0.
/// Not-a-number when a step, or the difference of two, is not a number.
float my_sqrt(float x);

/// e to the x: the series cut after 20 terms, or after the first term below 1e-6.
float my_exp(float x);

/// Natural logarithm by fixed-point steps from (x - 1) / (1 + x); the value before the last step.
/// -1 for x <= 0; not-a-number as in my_sqrt.
float my_ln(float x);

/// x to the y as my_exp(y * my_ln(x)); 1, 0 or -1 for x = 0; -1 for a negative x with a y that is
/// not whole.
float my_pow(float x, float y);

/// Cut toward zero; the least int where no int holds it.
int truncated(float x);

/// Rounds half away from zero, bounds as in truncated.
int my_round(float x);

/// `low` when value < low, otherwise `value` when value < high, otherwise `high`.
int my_clamp(int value, int low, int high);

}  // namespace reference
