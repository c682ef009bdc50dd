// Packing of bytes to bits, for the kernels that end in bits. Included once for each target.

#if defined(TARVO_KERNELS_PACK_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef TARVO_KERNELS_PACK_INL_H_
#undef TARVO_KERNELS_PACK_INL_H_
#else
#define TARVO_KERNELS_PACK_INL_H_
#endif

#include <hwy/highway.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

HWY_BEFORE_NAMESPACE();
namespace kernels {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<std::uint8_t>;

/// Packs the bytes for which `isSet(tag, vector)` holds, the leftmost to the most significant bit;
/// padding bits are those of zero bytes.
template <class IsSet>
HWY_INLINE void Pack(const std::uint8_t* row, std::size_t width, std::uint8_t* bits, IsSet isSet) {
  // The order that puts the leftmost of eight bytes where the most significant bit is made.
  alignas(16) static constexpr std::uint8_t kReverseEights[16] = {7,  6,  5,  4,  3,  2,  1, 0,
                                                                  15, 14, 13, 12, 11, 10, 9, 8};
  const Bytes d;
  const auto reverse = hn::LoadDup128(d, kReverseEights);
  constexpr std::size_t kLanes = hn::MaxLanes(Bytes());
  const auto pack = [&](const std::uint8_t* from, std::uint8_t* to, std::size_t count) HWY_ATTR {
    // The test goes before the reversal: it may depend on the position.
    const auto set = hn::VecFromMask(d, isSet(d, hn::LoadU(d, from)));
    std::uint8_t packed[8];  // what StoreMaskBits may touch, however few the lanes
    hn::StoreMaskBits(d, hn::MaskFromVec(hn::TableLookupBytes(set, reverse)), packed);
    std::memcpy(to, packed, count);
  };
  std::size_t x = 0;
  for (; x + kLanes <= width; x += kLanes) pack(row + x, bits + x / 8, kLanes / 8);
  if (x == width) return;
  std::uint8_t rest[kLanes] = {};
  std::memcpy(rest, row + x, width - x);
  pack(rest, bits + x / 8, (width - x + 7) / 8);
}

}  // namespace HWY_NAMESPACE
}  // namespace kernels
HWY_AFTER_NAMESPACE();

#endif  // TARVO_KERNELS_PACK_INL_H_
