// Storage: creation, release and change of owner of the block.
#include "image/cximage.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "common/text.h"

namespace {

constexpr std::uint32_t kHeaderBytes = sizeof(BITMAPINFOHEADER);

std::uint32_t supportedDepth(std::uint32_t bpp) {
  if (bpp <= 1) return 1;
  if (bpp <= 4) return 4;
  if (bpp <= 8) return 8;
  return 24;
}

std::uint32_t colorsOfDepth(std::uint32_t bpp) { return bpp == 24 ? 0 : 1u << bpp; }

}  // namespace

std::uint8_t* CxImage::Create(std::uint32_t width, std::uint32_t height, std::uint32_t bpp,
                              std::uint32_t imageType) {
  Destroy();
  if (width == 0 || height == 0) {
    tarvoStrCpy(info.lastError, "CxImage::Create : width and height must be greater than zero",
                sizeof(info.lastError));
    return nullptr;
  }
  bpp = supportedDepth(bpp);

  // Quirk: size-test. 32-bit products that wrap: the test sees the multiplication by the depth
  // wrap, not that of width by height; the allocation below refuses what it lets through.
  const std::uint32_t pixels = width * height;
  const std::uint32_t bits = pixels * bpp;
  if (bits / 8 > 0x7FFFFFFF || bits / bpp != pixels) {
    tarvoStrCpy(info.lastError, "CXIMAGE_MAX_MEMORY exceeded", sizeof(info.lastError));
    return nullptr;
  }

  info.effWidth = ((bpp * width + 31) >> 5) << 2;
  info.imageType = imageType;
  header.biSize = kHeaderBytes;
  header.biWidth = static_cast<std::int32_t>(width);
  header.biHeight = static_cast<std::int32_t>(height);
  header.biPlanes = 1;
  header.biBitCount = static_cast<std::uint16_t>(bpp);
  header.biCompression = 0;
  header.biSizeImage = info.effWidth * height;
  header.biClrUsed = colorsOfDepth(bpp);

  const std::uint64_t rowBytes = (std::uint64_t{bpp} * width + 31) / 32 * 4;
  const std::uint64_t blockBytes = kHeaderBytes + GetPaletteSize() + rowBytes * height;
  // Zero-filled, so that row padding is 0 and a page always gives the same bytes.
  if (blockBytes <= std::numeric_limits<std::uint32_t>::max()) {
    dib = static_cast<std::uint8_t*>(std::calloc(1, static_cast<std::size_t>(blockBytes)));
  }
  if (dib == nullptr) {
    tarvoStrCpy(info.lastError, "CxImage::Create can't allocate memory", sizeof(info.lastError));
    return nullptr;
  }
  std::memcpy(dib, &header, kHeaderBytes);
  info.bits = GetBits(0);
  return dib;
}

bool CxImage::CreateFromArray(const std::uint8_t* array, std::uint32_t width, std::uint32_t height,
                              std::uint32_t bitsPerPixel, std::uint32_t bytesPerLine,
                              bool flipImage) {
  if (array == nullptr) return false;
  if (bitsPerPixel != 1 && bitsPerPixel != 4 && bitsPerPixel != 8 && bitsPerPixel != 24 &&
      bitsPerPixel != 32) {
    return false;
  }
  if (Create(width, height, bitsPerPixel, 0) == nullptr) return false;
  if (bitsPerPixel < 24) SetGrayPalette();

  const std::size_t copiedBytes = std::min(info.effWidth, bytesPerLine);
  for (std::uint32_t k = 0; k < height; ++k) {
    const std::uint8_t* source = array + std::size_t{k} * bytesPerLine;
    std::uint8_t* destination = GetBits(flipImage ? height - 1 - k : k);
    if (bitsPerPixel != 32) {
      std::memcpy(destination, source, copiedBytes);
      continue;
    }
    for (std::uint32_t x = 0; x < width; ++x, source += 4, destination += 3) {
      std::memcpy(destination, source, 3);
    }
  }
  return true;
}

bool CxImage::Destroy() {
  std::free(dib);
  dib = nullptr;
  return true;
}

bool CxImage::Transfer(CxImage& from, bool /*transferFrames*/) {
  Destroy();
  header = from.header;
  info = from.info;
  dib = from.dib;
  from.header = {};
  from.info = {};
  from.dib = nullptr;
  return true;
}

void CxImage::CopyInfo(const CxImage& src) {
  if (dib == nullptr) info = src.info;
}

std::uint32_t CxImage::GetSize() const {
  return header.biSize + header.biSizeImage + GetPaletteSize();
}

std::uint8_t* CxImage::GetBits(std::uint32_t row) {
  if (dib == nullptr || row >= GetHeight()) return nullptr;
  return dib + kHeaderBytes + GetPaletteSize() + std::size_t{row} * info.effWidth;
}

bool CxImage::CreateLike(CxImage& temporary, std::uint32_t width, std::uint32_t height,
                         std::uint32_t bpp) const {
  temporary.CopyInfo(*this);
  return temporary.Create(width, height, bpp, info.imageType) != nullptr;
}

void CxImage::CopyLastError(const CxImage& other) {
  std::memcpy(info.lastError, other.info.lastError, sizeof(info.lastError));
}
