// Copies between an image and a plain buffer, and packing to one bit a pixel.
#include <algorithm>
#include <cstring>

#include "common/log.h"
#include "kernels/bits.h"
#include "kernels/bytes.h"
#include "printer/tarvo_printer.h"

namespace {

/// Calls `copyRow(row, count, out)` for the pixels that lie side by side in a row of `image`, and
/// `copyPixel(index, out)` for all others: those of other depths than 8, and those outside the
/// image.
template <typename CopyRow, typename CopyPixel>
void copyRows(CxImage& image, unsigned char* out, int width, int height, int stride,
              CopyRow copyRow, CopyPixel copyPixel) {
  constexpr std::uint32_t kColorsOf8Bits = 256;
  const bool bytes = image.IsValid() && image.GetNumColors() == kColorsOf8Bits;
  const std::int64_t rows = bytes ? image.GetHeight() : 0;
  const std::int64_t inside = std::clamp<std::int64_t>(image.GetWidth(), 0, std::max(width, 0));
  for (std::int64_t y = 0; y < height; ++y) {
    unsigned char* to = out + y * stride;
    std::int64_t x = 0;
    if (y < rows && inside > 0) {
      copyRow(image.GetBits(static_cast<std::uint32_t>(y)), static_cast<std::size_t>(inside), to);
      x = inside;
    }
    for (; x < width; ++x) copyPixel(image.GetPixelIndex(x, y), to + x);
  }
}

}  // namespace

void TarvoPrinter::copyPixels(CxImage& image, unsigned char* out, int width, int height,
                              int stride) {
  copyRows(
      image, out, width, height, stride,
      [](const unsigned char* row, std::size_t count, unsigned char* to) {
        std::memcpy(to, row, count);
      },
      [](unsigned char index, unsigned char* to) { *to = index; });
}

void TarvoPrinter::copyProcessedPixels(CxImage* image, unsigned char* out, int width, int height,
                                       int stride) {
  // Quirk: twice-negative. With negative printing the image is inverted already; the copy is
  // inverted once more.
  const unsigned char inversion = isNegativePrint() ? 0xFF : 0x00;
  const auto widen = [inversion](const unsigned char* row, std::size_t count, unsigned char* to) {
    kernels::widenOnes(row, count, inversion, to);
  };
  copyRows(*image, out, width, height, stride, widen,
           [widen](unsigned char index, unsigned char* to) { widen(&index, 1, to); });
}

int TarvoPrinter::GrayToMono(int bytesPerLine, int height, unsigned char* buffer) {
  const auto skip = static_cast<int>(skipRightPixels_);
  int pixels = bytesPerLine;
  if (skipRightPixels_ != 0 && skipRightPixels_ < static_cast<std::uint64_t>(bytesPerLine)) {
    pixels = bytesPerLine - skip;
  }
  tarvoLogCommon(0, "GrayToMono, bpl(%d), h(%d), skipPixels(%d), wb(%d)", bytesPerLine, height,
                 skip, pixels);

  constexpr unsigned char kAboveZero[4] = {0, 0, 0, 0};
  const auto count = static_cast<std::size_t>(std::max(pixels, 0));
  std::int64_t out = 0;
  for (std::int64_t y = 0; y < height; ++y) {
    // In place: the packed end never passes the byte that is read.
    kernels::packAbove(buffer + y * bytesPerLine, count, kAboveZero, buffer + out);
    out += static_cast<std::int64_t>((count + 7) / 8);
  }
  return static_cast<int>(out);
}
