// Byte kernels against the plain way, at every width around each vector length.
#include "kernels/bytes.h"

#include <algorithm>
#include <array>

#include "every_target.h"
#include "pages.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

class ByteRows : public EveryTarget {
 protected:
  /// Calls `kernel(row, count, result)` for rows of many widths, wherever a vector may begin;
  /// `expected` makes of the row what `kernel` must write.
  static void expectOnEveryRow(auto expected, auto kernel) {
    for (int width = 0; width <= 300; ++width) {
      const Bytes row = pagesOf(std::max(width, 1), 1).front().pixels.px;
      const Bytes source(row.begin(), row.begin() + width);
      GuardedBytes result(source.size(), source.size() % 5);
      kernel(ShiftedRow(source, source.size() % 64).data(), source.size(), result.data());
      Bytes wanted = source;
      expected(wanted);
      ASSERT_EQ(result.content(), wanted) << "width " << width;
      ASSERT_TRUE(result.guardsAreWhole()) << "width " << width;
    }
  }
};
TARVO_ON_EVERY_TARGET(ByteRows);

TEST_P(ByteRows, AreLookedUp) {
  std::array<std::uint8_t, 256> table;
  for (std::size_t i = 0; i < table.size(); ++i) table[i] = static_cast<std::uint8_t>(i * 7 + 3);
  expectOnEveryRow(
      [&](Bytes& row) {
        for (std::uint8_t& level : row) level = table[level];
      },
      [&](const std::uint8_t* row, std::size_t count, std::uint8_t* to) {
        kernels::lookUp(row, count, table.data(), to);
      });
}

TEST_P(ByteRows, AreLookedUpInPlaceInATableThatBeginsAnywhere) {
  for (std::size_t shift = 0; shift < 17; ++shift) {
    Bytes levels(256);
    for (std::size_t i = 0; i < levels.size(); ++i) levels[i] = static_cast<std::uint8_t>(i ^ 0x5A);
    const ShiftedRow table(levels, shift);
    expectOnEveryRow(
        [&](Bytes& row) {
          for (std::uint8_t& level : row) level ^= 0x5A;
        },
        [&](const std::uint8_t* row, std::size_t count, std::uint8_t* to) {
          std::copy_n(row, count, to);
          kernels::lookUp(to, count, table.data(), to);
        });
  }
}

TEST_P(ByteRows, AreInvertedInPlace) {
  expectOnEveryRow(
      [](Bytes& row) {
        for (std::uint8_t& level : row) level = static_cast<std::uint8_t>(255 - level);
      },
      [](const std::uint8_t* row, std::size_t count, std::uint8_t* to) {
        std::copy_n(row, count, to);
        kernels::invert(to, count);
      });
}

TEST_P(ByteRows, AreReversed) {
  expectOnEveryRow([](Bytes& row) { std::reverse(row.begin(), row.end()); },
                   [](const std::uint8_t* row, std::size_t count, std::uint8_t* to) {
                     kernels::reverse(row, count, to);
                   });
}

TEST_P(ByteRows, OnesAreWidenedAndThenInverted) {
  for (const std::uint8_t inversion : Bytes{0x00, 0xFF}) {
    const auto ones = [](const std::uint8_t* row, std::size_t count) {
      Bytes low(row, row + count);
      for (std::uint8_t& level : low) level = level % 3;
      return ShiftedRow(low, count % 64);
    };
    expectOnEveryRow(
        [&](Bytes& row) {
          for (std::uint8_t& level : row) {
            const int value = level % 3 == 1 ? 255 : level % 3;
            level = static_cast<std::uint8_t>(value ^ inversion);
          }
        },
        [&](const std::uint8_t* row, std::size_t count, std::uint8_t* to) {
          kernels::widenOnes(ones(row, count).data(), count, inversion, to);
        });
  }
}

TEST_P(ByteRows, AreCountedByLevel) {
  for (int width = 1; width <= 300; ++width) {
    for (const NamedPage& page : pagesOf(width, 3)) {
      std::array<std::int64_t, 257> expected{};
      expected[7] = 5;    // what is there already stays
      expected[256] = 9;  // and so does what lies behind
      std::array<std::int64_t, 257> counts = expected;
      for (const std::uint8_t level : page.pixels.px) ++expected[level];
      kernels::countLevels(page.pixels.px.data(), page.pixels.px.size(), counts.data());
      ASSERT_EQ(counts, expected) << page.name << ", width " << width;
    }
  }
}

/// Counted in pieces of 16 MiB: a few bytes more than two of them.
TEST(Levels, OfManyBytesAreCounted) {
  const Bytes line = pagesOf(1009, 1).front().pixels.px;
  Bytes levels((2U << 24U) + 11);
  std::array<std::int64_t, 256> expected{};
  for (std::size_t i = 0; i < levels.size(); ++i) ++expected[levels[i] = line[i % line.size()]];
  std::array<std::int64_t, 256> counts{};
  kernels::countLevels(levels.data(), levels.size(), counts.data());
  EXPECT_EQ(counts, expected);
}

}  // namespace
