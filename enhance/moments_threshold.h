// Moment-preserving bilevel threshold.
// W.-H. Tsai, "Moment-preserving thresholding: a new approach", Computer Vision, Graphics, and
// Image Processing 29 (1985), 377-393.
#ifndef TARVO_ENHANCE_MOMENTS_THRESHOLD_H_
#define TARVO_ENHANCE_MOMENTS_THRESHOLD_H_

#include "enhance/gray_rows.h"
#include "enhance/lumo_image.h"

/// The gray level, 0 to 255, at which a two-level image keeps the first three moments of the
/// histogram of `img` (read as one byte per pixel); 128 when the moment equations have no real and
/// finite solution (a uniform image, too), -1 when no level qualifies.
int thresh_global_moments(const LumoImage& img);

/// The same for an image of which only its rows are at hand.
int momentsThreshold(const GrayRows& image);

#endif  // TARVO_ENHANCE_MOMENTS_THRESHOLD_H_
