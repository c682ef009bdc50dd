#pragma once

#include <cstdint>
#include <vector>

#include "reference/gray.h"
#include "reference/image8.h"

namespace reference {

// Each function gives one byte for each pixel: 0 black, 1 white.

/// White above level 128.
Gray fixedThreshold(const Gray& levels);

/// Ordered dither with the fixed 4 x 4 matrix.
Gray orderedFixed(const Gray& levels);

/// Ordered dither with the computed 4 x 4 matrix.
Gray orderedComputed(const Gray& levels);

/// The 256 entries of the computed matrix, of which the first 16 are used.
std::vector<std::uint8_t> computedMatrix();

/// One neighbour's part of a pixel's error.
struct Neighbour {
  int dx;
  int dy;
  std::int64_t weight;
};

/// The neighbours in the order in which they are served, and the divisor of their weights.
struct DiffusionKernel {
  std::int64_t divisor;
  std::vector<Neighbour> neighbours;
};

/// Burkes (method 2), Stucki (3), Jarvis, Judice and Ninke (4), Sierra (5), Stevenson and Arce (6),
/// Floyd and Steinberg (any other number).
DiffusionKernel diffusionKernel(std::int64_t method);

/// Error diffusion on the levels themselves: each share is cut and each sum clamped to 0..255.
Gray diffuse(const Gray& levels, const DiffusionKernel& kernel);

/// The method of that number: 0 fixed threshold, 1 fixed matrix, 2 to 6 the kernels above, 7
/// computed matrix, any other number Floyd and Steinberg.
Gray dither(const Gray& levels, std::int64_t method);

/// The rows of a two-level image at one bit a pixel, the leftmost in the highest bit, each row
/// padded with zeros to a multiple of four bytes.
std::vector<std::uint8_t> oneBitRows(const Gray& two_levels);

/// An 8-bit page image dithered and brought back to 8 bits: indices 0 and 1, zero padding, the
/// two-level palette.
Image8 ditheredImage(const Image8& image, std::int64_t method);

}  // namespace reference
