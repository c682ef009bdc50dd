// Operations that change pixel values without moving pixels.
#include <algorithm>
#include <array>

#include "image/cximage.h"
#include "kernels/bits.h"
#include "kernels/bytes.h"

bool CxImage::Light(std::int32_t brightness, std::int32_t contrast) {
  if (dib == nullptr) return false;
  const float slope = static_cast<float>(std::int64_t{contrast} + 100) / 100.0f;
  const float offset = static_cast<float>(std::int64_t{brightness} + 128);
  std::array<std::uint8_t, 256> table;
  for (int i = 0; i < 256; ++i) {
    const float level = static_cast<float>(i - 128) * slope + offset + 0.5f;
    table[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(std::clamp(level, 0.0f, 255.0f));
  }
  return Lut(table.data());
}

bool CxImage::Lut(const std::uint8_t* table) {
  if (dib == nullptr || table == nullptr) return false;
  for (std::uint32_t y = 0; y < GetHeight(); ++y) {
    if (header.biBitCount == 8) {
      std::uint8_t* row = GetBits(y);
      kernels::lookUp(row, GetWidth(), table, row);
      continue;
    }
    for (std::int32_t x = 0; x < header.biWidth; ++x) {
      BlindSetPixelIndex(x, y, table[BlindGetPixelIndex(x, y)]);
    }
  }
  return true;
}

void CxImage::Negative() {
  if (dib == nullptr) return;
  kernels::invert(GetBits(0), header.biSizeImage);
}

bool CxImage::IncreaseBpp(std::uint32_t bpp) {
  if (dib == nullptr) return false;
  if (bpp != 4 && bpp != 8 && bpp != 24) return false;
  if (header.biBitCount >= bpp) return header.biBitCount == bpp;

  CxImage wider;
  if (!CreateLike(wider, GetWidth(), GetHeight(), bpp)) {
    CopyLastError(wider);
    return false;
  }
  wider.SetPalette(GetPalette(), GetNumColors());
  for (std::int32_t y = 0; y < header.biHeight; ++y) {
    if (header.biBitCount == 1 && bpp == 8) {
      const auto row = static_cast<std::uint32_t>(y);
      kernels::unpackBits(GetBits(row), GetWidth(), wider.GetBits(row));
      continue;
    }
    for (std::int32_t x = 0; x < header.biWidth; ++x) {
      if (bpp == 24) {
        wider.BlindSetPixelColor(x, y, BlindGetPixelColor(x, y, true), true);
      } else {
        wider.BlindSetPixelIndex(x, y, BlindGetPixelIndex(x, y));
      }
    }
  }
  Transfer(wider, true);
  return true;
}
