// Sizes of buffers for several rows.
#ifndef TARVO_KERNELS_ROW_BYTES_H_
#define TARVO_KERNELS_ROW_BYTES_H_

#include <cstddef>
#include <cstdint>
#include <new>

namespace kernels {

/// Bytes of `rows` rows that are `stride` bytes apart. Throws std::bad_alloc where no memory holds
/// them: with 32-bit sizes the product of a page's width and a band's rows can wrap.
inline std::size_t rowBytes(std::size_t rows, std::size_t stride) {
  if (stride > std::size_t{PTRDIFF_MAX} / rows) throw std::bad_alloc();
  return rows * stride;
}

}  // namespace kernels

#endif  // TARVO_KERNELS_ROW_BYTES_H_
