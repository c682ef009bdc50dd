#include "reference/dither.h"

#include <algorithm>
#include <array>

namespace reference {

namespace {

constexpr std::uint8_t kBlack = 0;
constexpr std::uint8_t kWhite = 1;

constexpr std::array<std::array<int, 4>, 4> kFixedMatrix = {{
    {0, 8, 2, 10},
    {12, 4, 14, 6},
    {3, 11, 1, 9},
    {15, 7, 13, 5},
}};

}  // namespace

Gray fixedThreshold(const Gray& levels) {
  Gray out(levels.width, levels.height);
  for (std::size_t i = 0; i < levels.px.size(); ++i) {
    out.px[i] = levels.px[i] > 128 ? kWhite : kBlack;
  }
  return out;
}

Gray orderedFixed(const Gray& levels) {
  constexpr std::array<std::uint8_t, 2> kIntensities = {kBlack, kWhite};
  Gray out(levels.width, levels.height);
  for (int y = 0; y < levels.height; ++y) {
    for (int x = 0; x < levels.width; ++x) {
      const int d = (levels.at(x, y) * 16) / 255;
      const int remainder = d % 16;
      const auto base = static_cast<std::size_t>(d / 16);
      const int cell =
          kFixedMatrix[static_cast<std::size_t>(y % 4)][static_cast<std::size_t>(x % 4)];
      out.at(x, y) = cell < remainder ? kIntensities[base + 1] : kIntensities[base];
    }
  }
  return out;
}

std::vector<std::uint8_t> computedMatrix() {
  constexpr int kOrder = 4;
  std::vector<std::uint8_t> entries;
  for (int i = 0; i < (1 << (2 * kOrder)); ++i) {
    int a = i / kOrder;
    int b = i % kOrder;
    int d = 0;
    for (int n = 0; n < kOrder; ++n) {
      d = ((d * 2) | ((a ^ b) & 1)) * 2 | (b & 1);
      a >>= 1;
      b >>= 1;
    }
    entries.push_back(static_cast<std::uint8_t>(d));
  }
  return entries;
}

Gray orderedComputed(const Gray& levels) {
  const std::vector<std::uint8_t> matrix = computedMatrix();
  Gray out(levels.width, levels.height);
  for (int y = 0; y < levels.height; ++y) {
    for (int x = 0; x < levels.width; ++x) {
      const std::uint8_t entry = matrix[static_cast<std::size_t>((x % 4) + 4 * (y % 4))];
      out.at(x, y) = levels.at(x, y) > entry ? kWhite : kBlack;
    }
  }
  return out;
}

DiffusionKernel diffusionKernel(std::int64_t method) {
  switch (method) {
    case 2:
      return {32, {{1, 0, 8}, {2, 0, 4}, {-2, 1, 2}, {-1, 1, 4}, {0, 1, 8}, {1, 1, 4}, {2, 1, 2}}};
    case 3:
      return {42,
              {{1, 0, 8},
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
               {2, 2, 1}}};
    case 4:
      return {48,
              {{1, 0, 7},
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
               {2, 2, 1}}};
    case 5:
      return {32,
              {{1, 0, 5},
               {2, 0, 3},
               {-2, 1, 2},
               {-1, 1, 4},
               {0, 1, 5},
               {1, 1, 4},
               {2, 1, 2},
               {-1, 2, 2},
               {0, 2, 3},
               {1, 2, 2}}};
    case 6:
      return {200,
              {{2, 0, 32},
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
               {3, 3, 5}}};
    default:
      return {16, {{1, 0, 7}, {-1, 1, 3}, {0, 1, 5}, {1, 1, 1}}};
  }
}

Gray diffuse(const Gray& levels, const DiffusionKernel& kernel) {
  Gray work = levels;
  Gray out(levels.width, levels.height);
  for (int y = 0; y < levels.height; ++y) {
    for (int x = 0; x < levels.width; ++x) {
      const std::int64_t level = work.at(x, y);
      const bool white = level > 128;
      out.at(x, y) = white ? kWhite : kBlack;
      const std::int64_t error = white ? level - 255 : level;

      for (const Neighbour& n : kernel.neighbours) {
        const int xx = x + n.dx;
        const int yy = y + n.dy;
        if (xx < 0 || xx >= levels.width || yy < 0 || yy >= levels.height) continue;
        const std::int64_t sum = work.at(xx, yy) + (error * n.weight) / kernel.divisor;
        work.at(xx, yy) = static_cast<std::uint8_t>(std::clamp<std::int64_t>(sum, 0, 255));
      }
    }
  }
  return out;
}

Gray dither(const Gray& levels, std::int64_t method) {
  switch (method) {
    case 0:
      return fixedThreshold(levels);
    case 1:
      return orderedFixed(levels);
    case 7:
      return orderedComputed(levels);
    default:
      return diffuse(levels, diffusionKernel(method));
  }
}

std::vector<std::uint8_t> oneBitRows(const Gray& two_levels) {
  const std::size_t row_bytes = static_cast<std::size_t>((two_levels.width + 31) / 32 * 4);
  std::vector<std::uint8_t> rows(row_bytes * static_cast<std::size_t>(two_levels.height), 0);
  for (int y = 0; y < two_levels.height; ++y) {
    for (int x = 0; x < two_levels.width; ++x) {
      if (two_levels.at(x, y) == kBlack) continue;
      std::uint8_t& byte =
          rows[static_cast<std::size_t>(y) * row_bytes + static_cast<std::size_t>(x / 8)];
      byte = static_cast<std::uint8_t>(byte | (0x80 >> (x % 8)));
    }
  }
  return rows;
}

Image8 ditheredImage(const Image8& image, std::int64_t method) {
  const Gray two_levels = dither(pixelsOf(image), method);
  Image8 result = blankImage(image.width, image.height, twoLevelPalette());
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) result.at(x, y) = two_levels.at(x, y);
  }
  return result;
}

}  // namespace reference
