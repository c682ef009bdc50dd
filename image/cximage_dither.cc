// The frame of all dithering methods, the threshold and the two ordered methods.
#include <array>

#include "image/cximage.h"

namespace {

constexpr std::uint8_t kWhiteAbove = 128;

constexpr std::size_t kOrder = 4;

constexpr std::uint8_t kFixedMatrix[kOrder][kOrder] = {
    {0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};

/// Thresholds of the computed 4x4 matrix: bits of the two coordinates, interleaved.
constexpr std::array<std::uint8_t, kOrder * kOrder> computedMatrix() {
  std::array<std::uint8_t, kOrder * kOrder> matrix{};
  for (std::size_t i = 0; i < matrix.size(); ++i) {
    std::size_t a = i / kOrder;
    std::size_t b = i % kOrder;
    std::size_t entry = 0;
    for (std::size_t bit = 0; bit < kOrder; ++bit, a >>= 1, b >>= 1) {
      entry = ((entry * 2) | ((a ^ b) & 1)) * 2 | (b & 1);
    }
    matrix[i] = static_cast<std::uint8_t>(entry);
  }
  return matrix;
}

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
      DitherThreshold(result);
      break;
    case 1:
      DitherOrderedFixed(result);
      break;
    case 7:
      DitherOrderedComputed(result);
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

/// Sets the pixels of `result` whose level satisfies `isWhite(level, x, y)`.
template <typename IsWhite>
void CxImage::DitherPoints(CxImage& result, IsWhite isWhite) const {
  for (std::int32_t y = 0; y < header.biHeight; ++y) {
    for (std::int32_t x = 0; x < header.biWidth; ++x) {
      if (isWhite(BlindGetPixelIndex(x, y), static_cast<std::size_t>(x),
                  static_cast<std::size_t>(y)))
        result.BlindSetPixelIndex(x, y, 1);
    }
  }
}

void CxImage::DitherThreshold(CxImage& result) const {
  DitherPoints(result, [](int level, std::size_t, std::size_t) { return level > kWhiteAbove; });
}

void CxImage::DitherOrderedFixed(CxImage& result) const {
  DitherPoints(result, [](int level, std::size_t x, std::size_t y) {
    const int scaled = level * 16 / 255;
    const int base = scaled / 16;  // 1 for level 255 alone: white everywhere
    return base == 1 || kFixedMatrix[y % kOrder][x % kOrder] < scaled % 16;
  });
}

void CxImage::DitherOrderedComputed(CxImage& result) const {
  static constexpr auto kMatrix = computedMatrix();
  DitherPoints(result, [](int level, std::size_t x, std::size_t y) {
    return level > kMatrix[x % kOrder + kOrder * (y % kOrder)];
  });
}
