// The palette and the search for the nearest colour in it.
#include <algorithm>
#include <cstring>

#include "image/cximage.h"

namespace {

std::int32_t squaredDistance(tagRGBQUAD a, tagRGBQUAD b) {
  const std::int32_t blue = a.rgbBlue - b.rgbBlue;
  const std::int32_t green = a.rgbGreen - b.rgbGreen;
  const std::int32_t red = a.rgbRed - b.rgbRed;
  return blue * blue + green * green + red * red;
}

}  // namespace

tagRGBQUAD* CxImage::GetPalette() const {
  if (dib == nullptr || header.biClrUsed == 0) return nullptr;
  // The block begins at malloc's alignment and the header is 40 bytes long: aligned for an entry,
  // which is made of bytes anyway.
  return reinterpret_cast<tagRGBQUAD*>(dib + sizeof(BITMAPINFOHEADER));
}

std::uint32_t CxImage::GetPaletteSize() const {
  return header.biClrUsed * static_cast<std::uint32_t>(sizeof(tagRGBQUAD));
}

void CxImage::SetPalette(const tagRGBQUAD* entries, std::uint32_t count) {
  tagRGBQUAD* palette = GetPalette();
  if (entries == nullptr || palette == nullptr) return;
  std::memcpy(palette, entries, std::min(header.biClrUsed, count) * sizeof(tagRGBQUAD));
}

tagRGBQUAD CxImage::GetPaletteColor(std::uint8_t index) const {
  const tagRGBQUAD* palette = GetPalette();
  return palette != nullptr && index < header.biClrUsed ? palette[index] : tagRGBQUAD{};
}

void CxImage::SetPaletteColor(std::uint8_t index, std::uint8_t r, std::uint8_t g, std::uint8_t b,
                              std::uint8_t alpha) {
  tagRGBQUAD* palette = GetPalette();
  if (palette != nullptr && index < header.biClrUsed) palette[index] = {b, g, r, alpha};
}

void CxImage::SetGrayPalette() {
  tagRGBQUAD* palette = GetPalette();
  if (palette == nullptr) return;
  const std::uint32_t step = 255 / (header.biClrUsed - 1);
  for (std::uint32_t i = 0; i < header.biClrUsed; ++i) {
    const auto level = static_cast<std::uint8_t>(i * step);
    palette[i] = {level, level, level, palette[i].rgbReserved};
  }
}

std::uint8_t CxImage::GetNearestIndex(tagRGBQUAD colour) {
  const tagRGBQUAD* palette = GetPalette();
  if (palette == nullptr) return 0;
  // Quirk: nearest-colour-cache. Not cleared when the palette changes.
  if (info.lastColorValid && colour == info.lastColor) return info.lastColorIndex;
  info.lastColor = colour;
  info.lastColorValid = true;

  const std::uint32_t count = header.biClrImportant != 0 ? header.biClrImportant : header.biClrUsed;
  std::int32_t best = 200000;  // above any distance: three times 255 squared
  std::uint8_t bestIndex = 0;
  for (std::uint32_t j = 0; j < count && best != 0; ++j) {
    const std::int32_t distance = squaredDistance(palette[j], colour);
    if (distance < best) {
      best = distance;
      bestIndex = static_cast<std::uint8_t>(j);
    }
  }
  info.lastColorIndex = bestIndex;
  return bestIndex;
}
