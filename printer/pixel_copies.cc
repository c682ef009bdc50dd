// Copies between an image and a plain buffer, and packing to one bit a pixel.
#include "common/log.h"
#include "printer/tarvo_printer.h"

void TarvoPrinter::copyPixels(CxImage& image, unsigned char* out, int width, int height,
                              int stride) {
  for (std::int64_t y = 0; y < height; ++y) {
    for (std::int64_t x = 0; x < width; ++x) {
      out[y * stride + x] = image.GetPixelIndex(x, y);
    }
  }
}

void TarvoPrinter::copyProcessedPixels(CxImage* image, unsigned char* out, int width, int height,
                                       int stride) {
  // Quirk: twice-negative. With negative printing the image is inverted already; the copy is
  // inverted once more.
  const unsigned char inversion = isNegativePrint() ? 0xFF : 0x00;
  for (std::int64_t y = 0; y < height; ++y) {
    for (std::int64_t x = 0; x < width; ++x) {
      unsigned char value = image->GetPixelIndex(x, y);
      if (value == 1) value = 255;
      out[y * stride + x] = value ^ inversion;
    }
  }
}

int TarvoPrinter::GrayToMono(int bytesPerLine, int height, unsigned char* buffer) {
  const auto skip = static_cast<int>(skipRightPixels_);
  int pixels = bytesPerLine;
  if (skipRightPixels_ != 0 && skipRightPixels_ < static_cast<std::uint64_t>(bytesPerLine)) {
    pixels = bytesPerLine - skip;
  }
  tarvoLogCommon(0, "GrayToMono, bpl(%d), h(%d), skipPixels(%d), wb(%d)", bytesPerLine, height,
                 skip, pixels);

  std::int64_t out = 0;
  for (std::int64_t y = 0; y < height; ++y) {
    const unsigned char* row = buffer + y * bytesPerLine;
    int packed = 0;
    for (int x = 0; x < pixels; ++x) {
      if (row[x] != 0) packed |= 0x80 >> (x % 8);
      if (x % 8 == 7 || x == pixels - 1) {
        // In place: the packed end never passes the byte that is read.
        buffer[out++] = static_cast<unsigned char>(packed);
        packed = 0;
      }
    }
  }
  return static_cast<int>(out);
}
