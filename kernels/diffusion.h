// Error diffusion in 8-bit levels with the published kernels.
#ifndef TARVO_KERNELS_DIFFUSION_H_
#define TARVO_KERNELS_DIFFUSION_H_

#include <cstddef>
#include <cstdint>

namespace kernels {

enum class Diffusion {
  kFloydSteinberg,
  kBurkes,
  kStucki,
  kJarvisJudiceNinke,
  kSierra,
  kStevensonArce,
};

/// Diffuses `height` rows of `width` levels, `stride` bytes apart, to rows of bits, `bitsStride`
/// bytes apart: a pixel that with its carried error is above 128 becomes 1 (white) and owes
/// 255 - level, any other 0 and passes on its level. Each share of an error is truncated to a whole
/// level and each sum clamped to 0..255 at once, in the order of the scan: rows from the top, left
/// to right. Shares that would leave the image are dropped. Writes (width + 7) / 8 bytes a row,
/// padding bits are 0. Throws std::bad_alloc; needs memory for about 40 rows.
/// REQUIRES: width > 0.
void diffuseErrors(Diffusion kernel, const std::uint8_t* levels, std::size_t stride,
                   std::size_t width, std::size_t height, std::uint8_t* bits,
                   std::size_t bitsStride);

}  // namespace kernels

#endif  // TARVO_KERNELS_DIFFUSION_H_
