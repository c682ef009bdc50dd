// Rows of bytes to rows of bytes.
#ifndef TARVO_KERNELS_BYTES_H_
#define TARVO_KERNELS_BYTES_H_

#include <cstddef>
#include <cstdint>

namespace kernels {

/// Replaces each of `count` bytes by its entry in the 256-byte `table`. `to` may be `from`, but the
/// table may not lie among the bytes that are written.
void lookUp(const std::uint8_t* from, std::size_t count, const std::uint8_t* table,
            std::uint8_t* to);

/// Inverts every bit of `count` bytes in place.
void invert(std::uint8_t* bytes, std::size_t count);

/// Copies `count` bytes in reverse order.
void reverse(const std::uint8_t* from, std::size_t count, std::uint8_t* to);

/// Copies `count` bytes, each 1 as 255, and then all XORed with `inversion`.
void widenOnes(const std::uint8_t* from, std::size_t count, std::uint8_t inversion,
               std::uint8_t* to);

/// Adds the number of bytes of each value to counts[value].
void countLevels(const std::uint8_t* bytes, std::size_t count, std::int64_t counts[256]);

}  // namespace kernels

#endif  // TARVO_KERNELS_BYTES_H_
