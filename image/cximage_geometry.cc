// Operations that move pixels. Each but DrawLine builds its result in a temporary, which is then
// moved in.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "common/text.h"
#include "image/cximage.h"
#include "kernels/bytes.h"

bool CxImage::Rotate180(CxImage* dst) {
  if (dib == nullptr) return false;
  CxImage turned;
  if (CreateLike(turned, GetWidth(), GetHeight(), 8)) {
    turned.SetPalette(GetPalette(), GetNumColors());
    for (std::int32_t y = 0; y < header.biHeight; ++y) {
      if (header.biBitCount == 8) {
        const auto row = static_cast<std::uint32_t>(y);
        kernels::reverse(GetBits(row), GetWidth(), turned.GetBits(GetHeight() - 1 - row));
        continue;
      }
      for (std::int32_t x = 0; x < header.biWidth; ++x) {
        turned.SetPixelIndex(header.biWidth - x - 1, header.biHeight - y - 1,
                             BlindGetPixelIndex(x, y));
      }
    }
  }
  (dst != nullptr ? *dst : *this).Transfer(turned, true);
  return true;
}

void CxImage::Mirror() {
  if (dib == nullptr) return;
  CxImage mirrored;
  if (CreateLike(mirrored, GetWidth(), GetHeight(), 8)) {
    mirrored.SetPalette(GetPalette(), GetNumColors());
    // Bytes, not pixels: exact for the 8-bit pages that are mirrored. At other depths the two row
    // lengths differ, and only bytes that both rows have are moved.
    const std::int64_t last =
        header.biBitCount == 24 ? (std::int64_t{header.biWidth} - 1) * 3 : header.biWidth - 1;
    const std::int64_t end = std::min<std::int64_t>(last + 1, mirrored.info.effWidth);
    for (std::uint32_t y = 0; y < GetHeight(); ++y) {
      const std::uint8_t* source = GetBits(y);
      std::uint8_t* destination = mirrored.GetBits(y);
      if (header.biBitCount == 8) {
        kernels::reverse(source, GetWidth(), destination);
        continue;
      }
      for (std::int64_t i = 0; i < end; ++i) {
        if (last - i < info.effWidth) destination[i] = source[last - i];
      }
    }
  }
  Transfer(mirrored, true);
}

bool CxImage::Expand(std::int64_t left, std::int64_t top, std::int64_t right, std::int64_t bottom,
                     tagRGBQUAD canvasColor) {
  if (dib == nullptr || left < 0 || top < 0 || right < 0 || bottom < 0) return false;

  constexpr std::int64_t kMost = std::numeric_limits<std::uint32_t>::max();
  const std::int64_t largestMargin = std::max({left, top, right, bottom});
  // Margins whose sums could overflow are not added up: a margin beyond the limit stands for both
  // sizes, which it makes fail the test below.
  const bool canAdd = largestMargin <= kMost;
  const std::int64_t newWidth = canAdd ? header.biWidth + left + right : largestMargin;
  const std::int64_t newHeight = canAdd ? header.biHeight + bottom + top : largestMargin;
  if (newWidth > kMost || newHeight > kMost) {
    tarvoStrCpy(info.lastError, "CXIMAGE_MAX_MEMORY exceeded", sizeof(info.lastError));
    return false;
  }

  CxImage canvas;
  if (!CreateLike(canvas, static_cast<std::uint32_t>(newWidth),
                  static_cast<std::uint32_t>(newHeight), header.biBitCount)) {
    CopyLastError(canvas);
    return false;
  }
  canvas.SetPalette(GetPalette(), header.biClrUsed);
  const std::uint8_t index = canvas.GetNearestIndex(canvasColor);

  if (header.biBitCount < 8) {
    for (std::int64_t y = 0; y < canvas.header.biHeight; ++y) {
      for (std::int64_t x = 0; x < canvas.header.biWidth; ++x) {
        const bool inside = Contains(x - left, y - bottom);
        canvas.SetPixelIndex(x, y, inside ? GetPixelIndex(x - left, y - bottom) : index);
      }
    }
  } else {
    if (header.biBitCount == 8) {
      std::memset(canvas.GetBits(0), index, canvas.header.biSizeImage);
    } else {
      for (std::int64_t y = 0; y < canvas.header.biHeight; ++y) {
        for (std::int64_t x = 0; x < canvas.header.biWidth; ++x) {
          canvas.BlindSetPixelColor(x, y, canvasColor, false);
        }
      }
    }
    const auto pixelBytes = static_cast<std::size_t>(header.biBitCount / 8);
    for (std::uint32_t y = 0; y < GetHeight(); ++y) {
      std::memcpy(canvas.GetBits(y + static_cast<std::uint32_t>(bottom)) +
                      static_cast<std::size_t>(left) * pixelBytes,
                  GetBits(y), pixelBytes * GetWidth());
    }
  }
  Transfer(canvas, true);
  return true;
}

void CxImage::MakeCenter(std::int32_t width) {
  if (dib == nullptr || header.biWidth >= width) return;
  CxImage centred;
  if (CreateLike(centred, static_cast<std::uint32_t>(width), GetHeight(), 8)) {
    centred.SetPalette(GetPalette(), GetNumColors());
    // In 64 bits: the width of a 1- or 4-bit image can be so large that it is below 0 here.
    const std::int64_t dx = (std::int64_t{width} - header.biWidth) / 2;
    for (std::int32_t y = 0; y < header.biHeight; ++y) {
      for (std::int32_t x = 0; x < header.biWidth; ++x) {
        centred.SetPixelIndex(x + dx, y, BlindGetPixelIndex(x, y));
      }
    }
  }
  Transfer(centred, true);
}

void CxImage::DrawLine(std::int32_t startX, std::int32_t endX, std::int32_t startY,
                       std::int32_t endY, std::uint8_t index) {
  if (dib == nullptr) return;
  const std::int64_t deltaX = std::llabs(std::int64_t{endX} - startX);
  const std::int64_t deltaY = std::llabs(std::int64_t{endY} - startY);
  const std::int64_t stepX = endX >= startX ? 1 : -1;
  const std::int64_t stepY = endY >= startY ? 1 : -1;
  const bool alongX = deltaX >= deltaY;
  const std::int64_t denominator = alongX ? deltaX : deltaY;
  const std::int64_t increment = alongX ? deltaY : deltaX;

  std::int64_t x = startX;
  std::int64_t y = startY;
  std::int64_t numerator = denominator / 2;
  for (std::int64_t i = 0; i <= denominator; ++i) {
    SetPixelIndex(x, y, index);
    numerator += increment;
    const bool overflow = numerator >= denominator;
    if (overflow) numerator -= denominator;
    if (alongX || overflow) x += stepX;
    if (!alongX || overflow) y += stepY;
  }
}
