// Gaussian blur, separable and two-dimensional. Images are read as one byte per pixel; samples
// beyond the edge repeat the edge pixel. `ksize` is the number of taps along one axis, not a
// radius. The two blurs throw std::bad_alloc, or a class derived from it, where memory is lacking.
#ifndef TARVO_ENHANCE_GAUSSIAN_H_
#define TARVO_ENHANCE_GAUSSIAN_H_

#include "enhance/lumo_image.h"

/// Fills `kernel` with `ksize` taps that add up to 1. `sigma` is in pixels.
/// REQUIRES: ksize odd and positive; room for `ksize` doubles.
void generateGaussianKernel1D(int ksize, double sigma, double* kernel);

/// One pass along the rows or the columns, rounded to bytes but not clamped.
/// REQUIRES: ksize odd and positive.
LumoImage convolve1D(const LumoImage& src, const double* kernel, int ksize, bool horizontal);

/// Separable blur: the rows first, then the columns of the rounded result. A `ksize` of -2 or below
/// throws std::bad_array_new_length. REQUIRES: ksize odd and positive.
LumoImage enh_gaussian_filter_fast(const LumoImage& src, int ksize, double sigma);

/// Fills `kernel` with `ksize` x `ksize` taps, row by row, that add up to 1; `sigmaX` acts along a
/// row, `sigmaY` along a column. REQUIRES: ksize odd and positive; room for ksize x ksize doubles.
void generateGaussianKernel(int ksize, double sigmaX, double sigmaY, double* kernel);

/// Two-dimensional blur, rounded once; LUMO_IMG_GRAY. A `ksize` of -2 or below has no taps: every
/// byte becomes 0. REQUIRES: ksize odd and positive.
LumoImage enh_gaussian_filter(const LumoImage& src, int ksize, double sigmaX, double sigmaY);

#endif  // TARVO_ENHANCE_GAUSSIAN_H_
