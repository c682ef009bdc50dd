// The two records of the packed device-independent bitmap that CxImage keeps its pixels in.
#ifndef TARVO_IMAGE_BITMAP_HEADER_H_
#define TARVO_IMAGE_BITMAP_HEADER_H_

#include <cstdint>

/// A palette entry or colour value.
struct tagRGBQUAD {
  std::uint8_t rgbBlue;
  std::uint8_t rgbGreen;
  std::uint8_t rgbRed;
  std::uint8_t rgbReserved;

  /// Equal in all four bytes.
  friend bool operator==(const tagRGBQUAD&, const tagRGBQUAD&) = default;
};
static_assert(sizeof(tagRGBQUAD) == 4);

/// The published 40-byte bitmap header.
struct BITMAPINFOHEADER {
  std::uint32_t biSize;
  std::int32_t biWidth;   ///< pixels
  std::int32_t biHeight;  ///< rows
  std::uint16_t biPlanes;
  std::uint16_t biBitCount;  ///< bits per pixel
  std::uint32_t biCompression;
  std::uint32_t biSizeImage;  ///< bytes of pixel data
  std::int32_t biXPelsPerMeter;
  std::int32_t biYPelsPerMeter;
  std::uint32_t biClrUsed;       ///< palette entries
  std::uint32_t biClrImportant;  ///< when not 0, limits the nearest-colour search
};
static_assert(sizeof(BITMAPINFOHEADER) == 40);

#endif  // TARVO_IMAGE_BITMAP_HEADER_H_
