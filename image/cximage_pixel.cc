// Access to single pixels.
#include "image/cximage.h"

std::uint8_t CxImage::BlindGetPixelIndex(std::int64_t x, std::int64_t y) const {
  const std::uint8_t byte = info.bits[y * info.effWidth + ((x * header.biBitCount) >> 3)];
  switch (header.biBitCount) {
    case 1:
      return (byte >> (7 - x % 8)) & 1;
    case 4:
      return (byte >> ((1 - x % 2) * 4)) & 15;
    case 8:
      return byte;
    default:
      return 0;
  }
}

void CxImage::BlindSetPixelIndex(std::int64_t x, std::int64_t y, std::uint8_t index) {
  std::uint8_t& byte = info.bits[y * info.effWidth + ((x * header.biBitCount) >> 3)];
  const auto store = [&byte](int mask, int value) {
    byte = static_cast<std::uint8_t>((byte & ~mask) | value);
  };
  switch (header.biBitCount) {
    case 1: {
      const int shift = static_cast<int>(7 - x % 8);
      store(1 << shift, (index & 1) << shift);
      break;
    }
    case 4: {
      const int shift = static_cast<int>((1 - x % 2) * 4);
      store(15 << shift, (index & 15) << shift);
      break;
    }
    case 8:
      byte = index;
      break;
    default:
      break;
  }
}

std::uint8_t CxImage::GetPixelIndex(std::int64_t x, std::int64_t y) const {
  if (dib == nullptr || header.biClrUsed == 0) return 0;
  // Quirk: outside-pixel. Not 0, but the byte that holds the first pixel.
  if (!Contains(x, y)) return info.bits[0];
  return BlindGetPixelIndex(x, y);
}

void CxImage::SetPixelIndex(std::int64_t x, std::int64_t y, std::uint8_t index) {
  if (dib == nullptr || header.biClrUsed == 0 || !Contains(x, y)) return;
  BlindSetPixelIndex(x, y, index);
}

tagRGBQUAD CxImage::BlindGetPixelColor(std::int64_t x, std::int64_t y, bool /*getAlpha*/) const {
  if (header.biClrUsed != 0) return GetPaletteColor(BlindGetPixelIndex(x, y));
  const std::uint8_t* pixel = info.bits + y * info.effWidth + 3 * x;
  return {pixel[0], pixel[1], pixel[2], 0};
}

void CxImage::BlindSetPixelColor(std::int64_t x, std::int64_t y, tagRGBQUAD colour,
                                 bool /*setAlpha*/) {
  if (header.biClrUsed != 0) {
    BlindSetPixelIndex(x, y, GetNearestIndex(colour));
    return;
  }
  std::uint8_t* pixel = info.bits + y * info.effWidth + 3 * x;
  pixel[0] = colour.rgbBlue;
  pixel[1] = colour.rgbGreen;
  pixel[2] = colour.rgbRed;
}
