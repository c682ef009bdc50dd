// The frame of all dithering methods, the threshold and the two ordered methods.
#include <array>

#include "image/cximage.h"
#include "kernels/bits.h"

namespace {

constexpr std::size_t kOrder = 4;

/// A pixel is white when its level is above the entry at its position modulo 4. Row by row.
using Thresholds = std::array<std::array<std::uint8_t, kOrder>, kOrder>;

constexpr std::uint8_t kWhiteAbove = 128;

constexpr Thresholds sameEverywhere(std::uint8_t threshold) {
  Thresholds thresholds{};
  for (auto& row : thresholds) row.fill(threshold);
  return thresholds;
}

/// A pixel is white when its level, scaled to 0..16, is above its entry in the fixed matrix; only
/// level 255 scales to 16, which is above all.
constexpr Thresholds fixedMatrix() {
  constexpr int kMatrix[kOrder][kOrder] = {
      {0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};
  Thresholds thresholds{};
  for (std::size_t y = 0; y < kOrder; ++y) {
    for (std::size_t x = 0; x < kOrder; ++x) {
      int black = 254;
      while (black * 16 / 255 > kMatrix[y][x]) --black;
      thresholds[y][x] = static_cast<std::uint8_t>(black);
    }
  }
  return thresholds;
}

/// The computed matrix: bits of the two coordinates, interleaved.
constexpr Thresholds computedMatrix() {
  Thresholds thresholds{};
  for (std::size_t y = 0; y < kOrder; ++y) {
    for (std::size_t x = 0; x < kOrder; ++x) {
      std::size_t a = y;
      std::size_t b = x;
      std::size_t entry = 0;
      for (std::size_t bit = 0; bit < kOrder; ++bit, a >>= 1, b >>= 1) {
        entry = ((entry * 2) | ((a ^ b) & 1)) * 2 | (b & 1);
      }
      thresholds[y][x] = static_cast<std::uint8_t>(entry);
    }
  }
  return thresholds;
}

constexpr Thresholds kThreshold = sameEverywhere(kWhiteAbove);
constexpr Thresholds kOrderedFixed = fixedMatrix();
constexpr Thresholds kOrderedComputed = computedMatrix();

}  // namespace

bool CxImage::Dither(std::int64_t method) {
  if (dib == nullptr) return false;
  if (header.biBitCount == 1) return true;

  CxImage result;
  if (!CreateLike(result, GetWidth(), GetHeight(), 1)) {
    CopyLastError(result);
    return false;
  }
  switch (method) {
    case 0:
      DitherByThresholds(&kThreshold[0][0], result);
      break;
    case 1:
      DitherByThresholds(&kOrderedFixed[0][0], result);
      break;
    case 7:
      DitherByThresholds(&kOrderedComputed[0][0], result);
      break;
    default:
      DitherErrorDiffusion(method, result);
      break;
  }
  result.SetPaletteColor(0, 0, 0, 0, 0);
  result.SetPaletteColor(1, 255, 255, 255, 0);
  Transfer(result, true);
  return true;
}

void CxImage::DitherByThresholds(const std::uint8_t* thresholds, CxImage& result) const {
  for (std::uint32_t y = 0; y < GetHeight(); ++y) {
    const std::uint8_t* row = thresholds + y % kOrder * kOrder;
    if (header.biBitCount == 8) {
      kernels::packAbove(info.bits + std::size_t{y} * info.effWidth, GetWidth(), row,
                         result.GetBits(y));
      continue;
    }
    for (std::uint32_t x = 0; x < GetWidth(); ++x) {
      if (BlindGetPixelIndex(x, y) > row[x % kOrder]) result.BlindSetPixelIndex(x, y, 1);
    }
  }
}
