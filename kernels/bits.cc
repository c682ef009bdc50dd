#include "kernels/bits.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/bits.cc"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernels/pack-inl.h"

HWY_BEFORE_NAMESPACE();
namespace kernels {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

void PackZeros(const std::uint8_t* row, std::size_t width, std::uint8_t* bits) {
  Pack(row, width, bits, [](Bytes d, auto v) HWY_ATTR { return hn::Eq(v, hn::Zero(d)); });
}

void PackAbove(const std::uint8_t* row, std::size_t width, const std::uint8_t* thresholds,
               std::uint8_t* bits) {
  const Bytes d;
  const hn::Repartition<std::uint32_t, Bytes> d32;
  std::uint32_t four;
  std::memcpy(&four, thresholds, sizeof(four));
  const auto limits = hn::BitCast(d, hn::Set(d32, four));
  Pack(row, width, bits, [limits](Bytes, auto v) HWY_ATTR { return hn::Gt(v, limits); });
}

void UnpackBits(const std::uint8_t* bits, std::size_t width, std::uint8_t* row) {
  // Sixteen bytes at a time: two bytes of bits, each repeated eight times, every copy asked for
  // another bit.
  const hn::FixedTag<std::uint8_t, 16> d;
  const hn::Repartition<std::uint16_t, decltype(d)> d16;
  alignas(16) static constexpr std::uint8_t kRepeat[16] = {0, 0, 0, 0, 0, 0, 0, 0,
                                                           1, 1, 1, 1, 1, 1, 1, 1};
  alignas(16) static constexpr std::uint8_t kBit[16] = {128, 64, 32, 16, 8, 4, 2, 1,
                                                        128, 64, 32, 16, 8, 4, 2, 1};
  const auto repeat = hn::Load(d, kRepeat);
  const auto bit = hn::Load(d, kBit);
  const auto one = hn::Set(d, std::uint8_t{1});
  const auto unpack = [&](const std::uint8_t* from) HWY_ATTR {
    std::uint16_t two;
    std::memcpy(&two, from, sizeof(two));
    const auto copies = hn::TableLookupBytes(hn::BitCast(d, hn::Set(d16, two)), repeat);
    return hn::And(hn::VecFromMask(d, hn::TestBit(copies, bit)), one);
  };
  std::size_t x = 0;
  for (; x + 16 <= width; x += 16) hn::StoreU(unpack(bits + x / 8), d, row + x);
  if (x == width) return;
  std::uint8_t rest[2] = {};
  std::uint8_t bytes[16];
  std::memcpy(rest, bits + x / 8, (width - x + 7) / 8);
  hn::StoreU(unpack(rest), d, bytes);
  std::memcpy(row + x, bytes, width - x);
}

}  // namespace HWY_NAMESPACE
}  // namespace kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kernels {

HWY_EXPORT(PackZeros);
HWY_EXPORT(PackAbove);
HWY_EXPORT(UnpackBits);

void packZeros(const std::uint8_t* row, std::size_t width, std::uint8_t* bits) {
  HWY_DYNAMIC_DISPATCH(PackZeros)(row, width, bits);
}

void packAbove(const std::uint8_t* row, std::size_t width, const std::uint8_t thresholds[4],
               std::uint8_t* bits) {
  HWY_DYNAMIC_DISPATCH(PackAbove)(row, width, thresholds, bits);
}

void unpackBits(const std::uint8_t* bits, std::size_t width, std::uint8_t* row) {
  HWY_DYNAMIC_DISPATCH(UnpackBits)(bits, width, row);
}

}  // namespace kernels
#endif  // HWY_ONCE
