// Error diffusion in the image's own 8-bit levels.
#include <algorithm>
#include <span>

#include "image/cximage.h"

namespace {

constexpr int kWhiteAbove = 128;

/// A share of the error for the pixel at (x + dx, y + dy).
struct Tap {
  int dx;
  int dy;
  int weight;
};

/// Weights in the order in which they are applied; they add up to the divisor. Each sum is clamped
/// at once, so the order is part of the result.
struct Kernel {
  int divisor;
  std::span<const Tap> taps;
};

constexpr Tap kFloydSteinberg[] = {{1, 0, 7}, {-1, 1, 3}, {0, 1, 5}, {1, 1, 1}};

constexpr Tap kBurkes[] = {{1, 0, 8}, {2, 0, 4}, {-2, 1, 2}, {-1, 1, 4},
                           {0, 1, 8}, {1, 1, 4}, {2, 1, 2}};

constexpr Tap kStucki[] = {{1, 0, 8}, {2, 0, 4},  {-2, 1, 2}, {-1, 1, 4}, {0, 1, 8}, {1, 1, 4},
                           {2, 1, 2}, {-2, 2, 1}, {-1, 2, 2}, {0, 2, 4},  {1, 2, 2}, {2, 2, 1}};

constexpr Tap kJarvisJudiceNinke[] = {{1, 0, 7},  {2, 0, 5}, {-2, 1, 3}, {-1, 1, 5},
                                      {0, 1, 7},  {1, 1, 5}, {2, 1, 3},  {-2, 2, 1},
                                      {-1, 2, 3}, {0, 2, 5}, {1, 2, 3},  {2, 2, 1}};

constexpr Tap kSierra[] = {{1, 0, 5}, {2, 0, 3}, {-2, 1, 2}, {-1, 1, 4}, {0, 1, 5},
                           {1, 1, 4}, {2, 1, 2}, {-1, 2, 2}, {0, 2, 3},  {1, 2, 2}};

constexpr Tap kStevensonArce[] = {{2, 0, 32}, {-3, 1, 12}, {-1, 1, 26}, {1, 1, 30},
                                  {3, 1, 16}, {-2, 2, 12}, {0, 2, 26},  {2, 2, 12},
                                  {-3, 3, 5}, {-1, 3, 12}, {1, 3, 12},  {3, 3, 5}};

Kernel kernelOf(std::int64_t method) {
  switch (method) {
    case 2:
      return {32, kBurkes};
    case 3:
      return {42, kStucki};
    case 4:
      return {48, kJarvisJudiceNinke};
    case 5:
      return {32, kSierra};
    case 6:
      return {200, kStevensonArce};
    default:
      return {16, kFloydSteinberg};
  }
}

}  // namespace

void CxImage::DitherErrorDiffusion(std::int64_t method, CxImage& result) {
  const Kernel kernel = kernelOf(method);
  for (std::int32_t y = 0; y < header.biHeight; ++y) {
    for (std::int32_t x = 0; x < header.biWidth; ++x) {
      const int level = BlindGetPixelIndex(x, y);
      const bool white = level > kWhiteAbove;
      if (white) result.BlindSetPixelIndex(x, y, 1);
      const int error = white ? level - 255 : level;
      for (const Tap& tap : kernel.taps) {
        const std::int64_t tx = std::int64_t{x} + tap.dx;
        const std::int64_t ty = std::int64_t{y} + tap.dy;
        if (!Contains(tx, ty)) continue;  // dropped, not handed to another pixel
        const int sum = BlindGetPixelIndex(tx, ty) + error * tap.weight / kernel.divisor;
        BlindSetPixelIndex(tx, ty, static_cast<std::uint8_t>(std::clamp(sum, 0, 255)));
      }
    }
  }
}
