// What each dithering method does, written out dot by dot from its definition, for the tests to
// compare with.
#ifndef TARVO_TESTS_IMAGE_DITHER_MODEL_H_
#define TARVO_TESTS_IMAGE_DITHER_MODEL_H_

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "test_image.h"

struct Kernel {
  const char* name;
  int method;
  int divisor;
  /// Rows y, y + 1, y + 2, y + 3; columns x - 3 .. x + 3. The dot itself is in column 3 of row 0.
  std::array<std::array<int, 7>, 4> weights;

  constexpr int weight(int dx, int dy) const {
    return weights[static_cast<std::size_t>(dy)][static_cast<std::size_t>(dx + 3)];
  }
};

constexpr Kernel kKernels[] = {
    {"Burkes", 2, 32, {{{0, 0, 0, 0, 8, 4, 0}, {0, 2, 4, 8, 4, 2, 0}, {}, {}}}},
    {"Stucki", 3, 42, {{{0, 0, 0, 0, 8, 4, 0}, {0, 2, 4, 8, 4, 2, 0}, {0, 1, 2, 4, 2, 1, 0}, {}}}},
    {"Jarvis-Judice-Ninke",
     4,
     48,
     {{{0, 0, 0, 0, 7, 5, 0}, {0, 3, 5, 7, 5, 3, 0}, {0, 1, 3, 5, 3, 1, 0}, {}}}},
    {"Sierra", 5, 32, {{{0, 0, 0, 0, 5, 3, 0}, {0, 2, 4, 5, 4, 2, 0}, {0, 0, 2, 3, 2, 0, 0}, {}}}},
    {"Stevenson-Arce",
     6,
     200,
     {{{0, 0, 0, 0, 0, 32, 0},
       {12, 0, 26, 0, 30, 0, 16},
       {0, 12, 0, 26, 0, 12, 0},
       {5, 0, 12, 0, 12, 0, 5}}}},
    {"Floyd-Steinberg", 8, 16, {{{0, 0, 0, 0, 7, 0, 0}, {0, 0, 3, 5, 1, 0, 0}, {}, {}}}},
};

constexpr bool weightsAddUpToTheDivisor(const Kernel& kernel) {
  int sum = 0;
  for (const auto& row : kernel.weights) {
    for (int weight : row) sum += weight;
  }
  return sum == kernel.divisor;
}
static_assert(std::all_of(std::begin(kKernels), std::end(kKernels), weightsAddUpToTheDivisor));

inline const Kernel& kernelOf(int method) {
  for (const Kernel& kernel : kKernels) {
    if (kernel.method == method) return kernel;
  }
  return kKernels[5];
}

/// A sum is clamped to 0..255 and stored in its pixel, which keeps the bits of `mostLevel`.
inline Picture diffused(Levels levels, const Kernel& kernel, int mostLevel = 255) {
  const int width = static_cast<int>(levels.front().size());
  const int height = static_cast<int>(levels.size());
  Picture picture(levels.size(), std::string(levels.front().size(), '.'));
  const auto at = [&levels](int x, int y) -> int& {
    return levels[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)];
  };
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const bool white = at(x, y) > 128;
      const int error = white ? at(x, y) - 255 : at(x, y);
      if (!white) picture[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] = '#';
      for (int dy = 0; dy <= 3; ++dy) {
        for (int dx = -3; dx <= 3; ++dx) {
          const bool inside = x + dx >= 0 && x + dx < width && y + dy < height;
          if (kernel.weight(dx, dy) == 0 || !inside) continue;
          int& level = at(x + dx, y + dy);
          level = std::clamp(level + error * kernel.weight(dx, dy) / kernel.divisor, 0, 255) &
                  mostLevel;
        }
      }
    }
  }
  return picture;
}

/// White where the matrix, row y mod 4, column x mod 4, lets the level through.
template <typename IsWhite>
Picture ordered(const Levels& levels, const int (&matrix)[4][4], IsWhite isWhite) {
  return pictureOf(
      static_cast<int>(levels.front().size()), static_cast<int>(levels.size()), [&](int x, int y) {
        return !isWhite(levels[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)],
                        matrix[y % 4][x % 4]);
      });
}

constexpr int kFixedMatrix[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};

constexpr int kComputedMatrix[4][4] = {
    {0, 192, 48, 240}, {128, 64, 176, 112}, {32, 224, 16, 208}, {160, 96, 144, 80}};

inline Picture orderedFixed(const Levels& levels) {
  return ordered(levels, kFixedMatrix,
                 [](int level, int cell) { return level == 255 || cell < level * 16 / 255; });
}

inline Picture orderedComputed(const Levels& levels) {
  return ordered(levels, kComputedMatrix, [](int level, int cell) { return level > cell; });
}

inline Picture threshold(const Levels& levels) {
  constexpr int kAnyCell[4][4] = {};
  return ordered(levels, kAnyCell, [](int level, int) { return level > 128; });
}

/// What Dither(method) is to make of `levels` of at most `mostLevel`.
inline Picture ditheredByModel(const Levels& levels, std::int64_t method, int mostLevel = 255) {
  switch (method) {
    case 0:
      return threshold(levels);
    case 1:
      return orderedFixed(levels);
    case 7:
      return orderedComputed(levels);
    default:
      return diffused(levels, kernelOf(static_cast<int>(method)), mostLevel);
  }
}

/// The dots that Dither(method) makes of `levels` of `bpp` bits.
inline Picture dithered(const Levels& levels, std::int64_t method, std::uint32_t bpp = 8) {
  IndexedImage image(bpp, levels);
  EXPECT_TRUE(image.Dither(method));
  return dotsOf(image);
}

#endif  // TARVO_TESTS_IMAGE_DITHER_MODEL_H_
