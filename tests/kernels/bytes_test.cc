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
  /// Calls `kernel(row, result)` for rows of many widths; `result` is what it must write.
  static void expectOnEveryRow(auto expected, auto kernel) {
    for (int width = 0; width <= 300; ++width) {
      const Bytes row = pagesOf(std::max(width, 1), 1).front().pixels.px;
      const Bytes source(row.begin(), row.begin() + width);
      GuardedBytes result(source.size());
      kernel(source, result.data());
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
      [&](const Bytes& row, std::uint8_t* to) {
        kernels::lookUp(row.data(), row.size(), table.data(), to);
      });
}

TEST_P(ByteRows, AreInvertedInPlace) {
  expectOnEveryRow(
      [](Bytes& row) {
        for (std::uint8_t& level : row) level = static_cast<std::uint8_t>(255 - level);
      },
      [](const Bytes& row, std::uint8_t* to) {
        std::copy(row.begin(), row.end(), to);
        kernels::invert(to, row.size());
      });
}

TEST_P(ByteRows, AreReversed) {
  expectOnEveryRow(
      [](Bytes& row) { std::reverse(row.begin(), row.end()); },
      [](const Bytes& row, std::uint8_t* to) { kernels::reverse(row.data(), row.size(), to); });
}

TEST_P(ByteRows, OnesAreWidenedAndThenInverted) {
  for (const std::uint8_t inversion : Bytes{0x00, 0xFF}) {
    const auto ones = [](const Bytes& row) {
      Bytes low = row;
      for (std::uint8_t& level : low) level = level % 3;
      return low;
    };
    expectOnEveryRow(
        [&](Bytes& row) {
          for (std::uint8_t& level : row) {
            const int value = level % 3 == 1 ? 255 : level % 3;
            level = static_cast<std::uint8_t>(value ^ inversion);
          }
        },
        [&](const Bytes& row, std::uint8_t* to) {
          kernels::widenOnes(ones(row).data(), row.size(), inversion, to);
        });
  }
}

TEST_P(ByteRows, AreCountedByLevel) {
  for (int width = 1; width <= 300; ++width) {
    for (const NamedPage& page : pagesOf(width, 3)) {
      std::array<std::int64_t, 256> expected{};
      expected[7] = 5;  // what is there already stays
      std::array<std::int64_t, 256> counts = expected;
      for (const std::uint8_t level : page.pixels.px) ++expected[level];
      kernels::countLevels(page.pixels.px.data(), page.pixels.px.size(), counts.data());
      ASSERT_EQ(counts, expected) << page.name << ", width " << width;
    }
  }
}

}  // namespace
