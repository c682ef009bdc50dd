// Rows of bytes to rows of bits and back. The leftmost pixel is the most significant bit.
//
// Every kernel of this folder works on rows of bytes and knows nothing else: pointers, counts and
// strides in bytes unless said otherwise. Kernels test nothing and allocate nothing that a caller
// could see. Unless said otherwise rows may have any alignment, source and result must not overlap,
// exactly the named bytes of the result are written and no byte outside the named ones is read.
#ifndef TARVO_KERNELS_BITS_H_
#define TARVO_KERNELS_BITS_H_

#include <cstddef>
#include <cstdint>

namespace kernels {

/// Sets the bits of the zero bytes among the `width` bytes at `row` and clears those of the others;
/// padding bits of the last byte are 1. Writes (width + 7) / 8 bytes.
void packZeros(const std::uint8_t* row, std::size_t width, std::uint8_t* bits);

/// Sets the bits of the bytes above a threshold; padding bits are 0. The threshold of column x is
/// thresholds[x % 4]. Writes (width + 7) / 8 bytes. `bits` may lie at or before
/// `row` in the same buffer.
void packAbove(const std::uint8_t* row, std::size_t width, const std::uint8_t thresholds[4],
               std::uint8_t* bits);

/// Spreads `width` bits to bytes of 0 and 1.
void unpackBits(const std::uint8_t* bits, std::size_t width, std::uint8_t* row);

}  // namespace kernels

#endif  // TARVO_KERNELS_BITS_H_
