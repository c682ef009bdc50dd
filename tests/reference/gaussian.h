#pragma once

#include <vector>

#include "reference/gray.h"

namespace reference {

// REQUIRES (all of this header): an odd ksize, the number of taps along one axis.

/// The ksize taps of a Gaussian, normalised to a sum of 1.
std::vector<double> gaussianKernel1D(int ksize, double sigma);

/// One pass of `kernel` along the rows (horizontal) or the columns; samples beyond the image
/// repeat the edge pixel; sums in double, rounded to bytes.
Gray convolve1D(const Gray& image, const std::vector<double>& kernel, bool horizontal);

/// The separable blur: rows first, then the columns of the rounded bytes.
Gray gaussianBlurSeparable(const Gray& image, int ksize, double sigma);

/// The ksize * ksize taps of a two-dimensional Gaussian, row by row, normalised to a sum of 1.
std::vector<double> gaussianKernel2D(int ksize, double sigma_x, double sigma_y);

/// The two-dimensional blur in one pass.
Gray gaussianBlur2D(const Gray& image, int ksize, double sigma_x, double sigma_y);

}  // namespace reference
