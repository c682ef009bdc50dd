// Packing and unpacking against the plain way, bit by bit.
#include "kernels/bits.h"

#include "every_target.h"
#include "pages.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

class Bits : public EveryTarget {};
TARVO_ON_EVERY_TARGET(Bits);

Bytes packedPlainly(const Bytes& row, auto isSet, bool padding) {
  Bytes bits((row.size() + 7) / 8);
  for (std::size_t x = 0; x < bits.size() * 8; ++x) {
    const bool set = x < row.size() ? isSet(x) : padding;
    if (set) bits[x / 8] = static_cast<std::uint8_t>(bits[x / 8] | 0x80 >> (x % 8));
  }
  return bits;
}

/// Rows of every width around each vector length, of every kind of page.
std::vector<Bytes> rows() {
  std::vector<Bytes> all = {Bytes{}};
  for (int width = 1; width <= 300; ++width) {
    for (const NamedPage& page : pagesOf(width, 1)) {
      all.push_back(page.pixels.px);
      for (std::uint8_t& level : all.back()) level = level < 128 ? 0 : level;
      all.push_back(page.pixels.px);
    }
  }
  return all;
}

/// At all the places that a vector may begin at.
ShiftedRow<std::uint8_t> shifted(const Bytes& row) { return {row, row.size() % 64}; }

TEST_P(Bits, ZerosBecomeOnesAndPaddingIsSet) {
  for (const Bytes& row : rows()) {
    GuardedBytes bits((row.size() + 7) / 8, row.size() % 5);
    kernels::packZeros(shifted(row).data(), row.size(), bits.data());
    ASSERT_EQ(bits.content(), packedPlainly(
                                  row, [&](std::size_t x) { return row[x] == 0; }, true))
        << "width " << row.size();
    ASSERT_TRUE(bits.guardsAreWhole()) << "width " << row.size();
  }
}

TEST_P(Bits, LevelsAboveTheirThresholdBecomeOnes) {
  for (const std::uint8_t threshold : Bytes{0, 64, 127, 128, 129, 254, 255}) {
    const std::uint8_t thresholds[4] = {threshold, 0, 200, 255};
    for (const Bytes& row : rows()) {
      GuardedBytes bits((row.size() + 7) / 8, row.size() % 5);
      kernels::packAbove(shifted(row).data(), row.size(), thresholds, bits.data());
      ASSERT_EQ(bits.content(),
                packedPlainly(
                    row, [&](std::size_t x) { return row[x] > thresholds[x % 4]; }, false))
          << "width " << row.size() << ", threshold " << int{threshold};
      ASSERT_TRUE(bits.guardsAreWhole()) << "width " << row.size();
    }
  }
}

TEST_P(Bits, CanBePackedInPlace) {
  const std::uint8_t above0[4] = {};
  for (const Bytes& row : rows()) {
    Bytes inPlace = row;
    kernels::packAbove(inPlace.data(), row.size(), above0, inPlace.data());
    inPlace.resize((row.size() + 7) / 8);
    ASSERT_EQ(inPlace, packedPlainly(
                           row, [&](std::size_t x) { return row[x] != 0; }, false))
        << "width " << row.size();
  }
}

TEST_P(Bits, AreSpreadToBytes) {
  for (const Bytes& row : rows()) {
    const Bytes bits = packedPlainly(
        row, [&](std::size_t x) { return row[x] > 128; }, true);
    Bytes expected;
    for (const std::uint8_t level : row) expected.push_back(level > 128);
    GuardedBytes bytes(row.size(), row.size() % 5);
    kernels::unpackBits(shifted(bits).data(), row.size(), bytes.data());
    ASSERT_EQ(bytes.content(), expected) << "width " << row.size();
    ASSERT_TRUE(bytes.guardsAreWhole()) << "width " << row.size();
  }
}

}  // namespace
