// LumoImage: the 8-bit image buffer of the enhancement chain.
#ifndef TARVO_ENHANCE_LUMO_IMAGE_H_
#define TARVO_ENHANCE_LUMO_IMAGE_H_

#include <cstddef>
#include <cstdint>

/// Colour layout of the pixels; the names give the order of a pixel's bytes.
enum LUMO_IMG_COLOR : std::int32_t {
  LUMO_IMG_GRAY = 0,
  LUMO_IMG_BGR = 1,
  LUMO_IMG_RGB = 2,
  LUMO_IMG_BGRA = 3,
  LUMO_IMG_RGBA = 4,
};

/// `width` x `height` pixels of 1 (gray), 3 or 4 bytes, rows one after another with no gap. The
/// image owns its bytes; copies are deep.
///
/// Only cvtGray looks at `channels`; every other function of this folder takes one byte per pixel.
/// Failed or impossible allocations (a negative size, too) throw std::bad_alloc or a class derived
/// from it.
class LumoImage {
 public:
  /// Copies `width` x `height` x channels bytes from `pixels`.
  LumoImage(int width, int height, LUMO_IMG_COLOR color, const unsigned char* pixels);

  /// Leaves the bytes uninitialised.
  LumoImage(int width, int height, LUMO_IMG_COLOR color);

  LumoImage(const LumoImage& other);

  /// Quirk: self-assignment. Assigning an image to itself keeps its size and loses its pixels.
  LumoImage& operator=(const LumoImage& other);

  ~LumoImage();

  /// Bytes of the buffer: width x height x channels, in 64 bits.
  std::int64_t SizeBytes() const;

  std::int32_t width = 0;     ///< pixels
  std::int32_t height = 0;    ///< rows
  std::int32_t channels = 4;  ///< bytes per pixel
  LUMO_IMG_COLOR color = LUMO_IMG_BGR;
  std::uint8_t* data = nullptr;  ///< owned
};

#endif  // TARVO_ENHANCE_LUMO_IMAGE_H_
