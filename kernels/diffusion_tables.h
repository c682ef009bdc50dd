// The published kernels of error diffusion as tables: a new kernel is a new table here, its name in
// `Diffusion` and its line in diffuseErrors.
#ifndef TARVO_KERNELS_DIFFUSION_TABLES_H_
#define TARVO_KERNELS_DIFFUSION_TABLES_H_

#include <array>
#include <cstddef>
#include <cstdint>

namespace kernels {

/// A share of weight / divisor of the error for the pixel at (x + dx, y + dy).
struct Tap {
  int dx;
  int dy;
  int weight;
};

/// No tap may point back: dy > 0, or dy == 0 and dx > 0. Weights add up to the divisor.
template <std::size_t kTaps>
struct DiffusionTable {
  int divisor;
  std::array<Tap, kTaps> taps;
};

inline constexpr DiffusionTable<4> kFloydSteinberg = {
    16, {{{1, 0, 7}, {-1, 1, 3}, {0, 1, 5}, {1, 1, 1}}}};

inline constexpr DiffusionTable<7> kBurkes = {
    32, {{{1, 0, 8}, {2, 0, 4}, {-2, 1, 2}, {-1, 1, 4}, {0, 1, 8}, {1, 1, 4}, {2, 1, 2}}}};

inline constexpr DiffusionTable<12> kStucki = {42,
                                               {{{1, 0, 8},
                                                 {2, 0, 4},
                                                 {-2, 1, 2},
                                                 {-1, 1, 4},
                                                 {0, 1, 8},
                                                 {1, 1, 4},
                                                 {2, 1, 2},
                                                 {-2, 2, 1},
                                                 {-1, 2, 2},
                                                 {0, 2, 4},
                                                 {1, 2, 2},
                                                 {2, 2, 1}}}};

inline constexpr DiffusionTable<12> kJarvisJudiceNinke = {48,
                                                          {{{1, 0, 7},
                                                            {2, 0, 5},
                                                            {-2, 1, 3},
                                                            {-1, 1, 5},
                                                            {0, 1, 7},
                                                            {1, 1, 5},
                                                            {2, 1, 3},
                                                            {-2, 2, 1},
                                                            {-1, 2, 3},
                                                            {0, 2, 5},
                                                            {1, 2, 3},
                                                            {2, 2, 1}}}};

inline constexpr DiffusionTable<10> kSierra = {32,
                                               {{{1, 0, 5},
                                                 {2, 0, 3},
                                                 {-2, 1, 2},
                                                 {-1, 1, 4},
                                                 {0, 1, 5},
                                                 {1, 1, 4},
                                                 {2, 1, 2},
                                                 {-1, 2, 2},
                                                 {0, 2, 3},
                                                 {1, 2, 2}}}};

inline constexpr DiffusionTable<12> kStevensonArce = {200,
                                                      {{{2, 0, 32},
                                                        {-3, 1, 12},
                                                        {-1, 1, 26},
                                                        {1, 1, 30},
                                                        {3, 1, 16},
                                                        {-2, 2, 12},
                                                        {0, 2, 26},
                                                        {2, 2, 12},
                                                        {-3, 3, 5},
                                                        {-1, 3, 12},
                                                        {1, 3, 12},
                                                        {3, 3, 5}}}};

/// What the engine needs to know of a table, worked out from it.
template <const auto& kTable>
struct DiffusionShape {
  /// Rows below its own that an error reaches.
  static constexpr int rows() {
    int most = 0;
    for (const Tap& tap : kTable.taps) most = tap.dy > most ? tap.dy : most;
    return most;
  }

  /// Columns to either side that an error reaches in the row `dy` below.
  static constexpr int reach(int dy) {
    int most = 0;
    for (const Tap& tap : kTable.taps) {
      const int distance = tap.dx < 0 ? -tap.dx : tap.dx;
      if (tap.dy == dy && distance > most) most = distance;
    }
    return most;
  }

  /// Columns to either side in which a row must wait for the row above: none in its own row, where
  /// shares are added when their pixel's turn comes.
  static constexpr int window(int dy) { return dy == 0 ? 0 : reach(dy); }

  static constexpr int widestReach() {
    int most = 0;
    for (int dy = 0; dy <= rows(); ++dy) most = reach(dy) > most ? reach(dy) : most;
    return most;
  }

  /// How many columns each row must be behind the one above, so that what a pixel gets from `dy`
  /// rows above is complete before what it gets from the next row begins.
  static constexpr int lag() {
    int most = 0;
    for (int dy = 0; dy < rows(); ++dy) {
      const int needed = window(dy) + window(dy + 1) + 1;
      most = needed > most ? needed : most;
    }
    return most;
  }

  /// Steps from when a pixel's sum is complete in the row above to when it is needed `dy` rows
  /// above its own.
  static constexpr int delay(int dy) { return lag() - window(dy) - window(dy + 1); }

  /// The distinct weights; unused entries are 0.
  static constexpr auto weights() {
    std::array<int, kTable.taps.size()> distinct{};
    std::size_t count = 0;
    for (const Tap& tap : kTable.taps) {
      bool known = false;
      for (std::size_t i = 0; i < count; ++i) known = known || distinct[i] == tap.weight;
      if (!known) distinct[count++] = tap.weight;
    }
    return distinct;
  }

  static constexpr std::size_t weightCount() {
    std::size_t count = 0;
    for (const int weight : weights()) count += weight != 0 ? 1 : 0;
    return count;
  }

  static constexpr std::size_t indexOfWeight(int weight) {
    std::size_t i = 0;
    while (weights()[i] != weight) ++i;
    return i;
  }

  /// Just above 65536 * weight / divisor: e * factor / 65536 is e * weight / divisor, truncated,
  /// for every error from 0 to 128.
  static constexpr std::uint16_t factor(std::size_t weightIndex) {
    return static_cast<std::uint16_t>(65536 * weights()[weightIndex] / kTable.divisor + 1);
  }

  static constexpr bool factorsAreExact() {
    for (std::size_t i = 0; i < weightCount(); ++i) {
      for (std::uint32_t error = 0; error <= 128; ++error) {
        const std::uint32_t exact = error * static_cast<std::uint32_t>(weights()[i]) /
                                    static_cast<std::uint32_t>(kTable.divisor);
        if (((error * factor(i)) >> 16) != exact) return false;
      }
    }
    return true;
  }
  static_assert(factorsAreExact());
};

}  // namespace kernels

#endif  // TARVO_KERNELS_DIFFUSION_TABLES_H_
