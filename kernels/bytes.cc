#include "kernels/bytes.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/bytes.cc"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kernels {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<std::uint8_t>;

/// The entries of a table of 256 at a vector of bytes: the lower four bits look into each sixteenth
/// of the table, the upper four choose between the sixteen that are found.
HWY_INLINE hn::Vec<Bytes> Entries(const std::uint8_t* table, hn::Vec<Bytes> v) {
  constexpr std::size_t kParts = 16;
  const Bytes d;
  const auto lower = hn::And(v, hn::Set(d, std::uint8_t{0x0F}));
  hn::Vec<Bytes> found[kParts];
  for (std::size_t part = 0; part < kParts; ++part) {
    found[part] = hn::TableLookupBytes(hn::LoadDup128(d, table + 16 * part), lower);
  }
  for (std::size_t left = kParts / 2; left > 0; left /= 2) {
    const auto isOdd = hn::TestBit(v, hn::Set(d, static_cast<std::uint8_t>(0x80 / left)));
    for (std::size_t i = 0; i < left; ++i) {
      found[i] = hn::IfThenElse(isOdd, found[2 * i + 1], found[2 * i]);
    }
  }
  return found[0];
}

void LookUp(const std::uint8_t* from, std::size_t count, const std::uint8_t* table,
            std::uint8_t* to) {
  const Bytes d;
  const std::size_t lanes = hn::Lanes(d);
  std::size_t i = 0;
  if (lanes > 16) {  // shorter vectors gain nothing
    for (; i + lanes <= count; i += lanes) {
      hn::StoreU(Entries(table, hn::LoadU(d, from + i)), d, to + i);
    }
  }
  // One load a byte; eight bytes come in with one.
  for (; i + 8 <= count; i += 8) {
    std::uint64_t eight;
    std::memcpy(&eight, from + i, sizeof(eight));
    std::uint64_t entries = 0;
    for (int shift = 0; shift < 64; shift += 8) {
      entries |= std::uint64_t{table[(eight >> shift) & 0xFF]} << shift;
    }
    std::memcpy(to + i, &entries, sizeof(entries));
  }
  for (; i < count; ++i) to[i] = table[from[i]];
}

void Invert(std::uint8_t* bytes, std::size_t count) {
  const Bytes d;
  const std::size_t lanes = hn::Lanes(d);
  std::size_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    hn::StoreU(hn::Not(hn::LoadU(d, bytes + i)), d, bytes + i);
  }
  for (; i < count; ++i) bytes[i] = static_cast<std::uint8_t>(~bytes[i]);
}

void Reverse(const std::uint8_t* from, std::size_t count, std::uint8_t* to) {
  const hn::FixedTag<std::uint8_t, 16> d;
  alignas(16) static constexpr std::uint8_t kReverse[16] = {15, 14, 13, 12, 11, 10, 9, 8,
                                                            7,  6,  5,  4,  3,  2,  1, 0};
  const auto order = hn::Load(d, kReverse);
  std::size_t i = 0;
  for (; i + 16 <= count; i += 16) {
    hn::StoreU(hn::TableLookupBytes(hn::LoadU(d, from + count - 16 - i), order), d, to + i);
  }
  for (; i < count; ++i) to[i] = from[count - 1 - i];
}

void WidenOnes(const std::uint8_t* from, std::size_t count, std::uint8_t inversion,
               std::uint8_t* to) {
  const Bytes d;
  const std::size_t lanes = hn::Lanes(d);
  const auto one = hn::Set(d, std::uint8_t{1});
  const auto inverted = hn::Set(d, inversion);
  std::size_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    const auto v = hn::LoadU(d, from + i);
    const auto widened = hn::Or(v, hn::VecFromMask(d, hn::Eq(v, one)));
    hn::StoreU(hn::Xor(widened, inverted), d, to + i);
  }
  for (; i < count; ++i) {
    to[i] = static_cast<std::uint8_t>((from[i] == 1 ? 255 : from[i]) ^ inversion);
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kernels {

HWY_EXPORT(LookUp);
HWY_EXPORT(Invert);
HWY_EXPORT(Reverse);
HWY_EXPORT(WidenOnes);

void lookUp(const std::uint8_t* from, std::size_t count, const std::uint8_t* table,
            std::uint8_t* to) {
  HWY_DYNAMIC_DISPATCH(LookUp)(from, count, table, to);
}

void invert(std::uint8_t* bytes, std::size_t count) { HWY_DYNAMIC_DISPATCH(Invert)(bytes, count); }

void reverse(const std::uint8_t* from, std::size_t count, std::uint8_t* to) {
  HWY_DYNAMIC_DISPATCH(Reverse)(from, count, to);
}

void widenOnes(const std::uint8_t* from, std::size_t count, std::uint8_t inversion,
               std::uint8_t* to) {
  HWY_DYNAMIC_DISPATCH(WidenOnes)(from, count, inversion, to);
}

// Bound by loads, one a byte, which vectors do not help with: eight bytes come in with one load.
void countLevels(const std::uint8_t* bytes, std::size_t count, std::int64_t counts[256]) {
  // Eight counters a level: a page of few levels would else wait for its last increment each time.
  constexpr std::size_t kTables = 8;
  constexpr std::size_t kMost = std::size_t{1} << 24;  // far from where 32 bits overflow
  for (std::size_t begin = 0; begin < count; begin += kMost) {
    const std::size_t end = count - begin < kMost ? count : begin + kMost;
    std::uint32_t tables[kTables][256] = {};
    std::size_t i = begin;
    for (; i + 8 <= end; i += 8) {
      std::uint64_t eight;
      std::memcpy(&eight, bytes + i, sizeof(eight));
      for (std::size_t k = 0; k < kTables; ++k) ++tables[k][(eight >> (8 * k)) & 0xFF];
    }
    for (; i < end; ++i) ++tables[0][bytes[i]];
    for (std::size_t level = 0; level < 256; ++level) {
      for (const auto& table : tables) counts[level] += table[level];
    }
  }
}

}  // namespace kernels
#endif  // HWY_ONCE
