// CxImage: a palettised raster image in memory.
#ifndef TARVO_IMAGE_CXIMAGE_H_
#define TARVO_IMAGE_CXIMAGE_H_

#include <cstddef>
#include <cstdint>

#include "image/bitmap_header.h"

/// What an image knows of itself besides its bitmap header; copied as one unit.
struct ImageInfo {
  std::uint32_t effWidth;   ///< bytes from one pixel row to the next, a multiple of 4
  std::uint8_t* bits;       ///< first byte of pixel row 0; stale while the image is empty
  std::uint32_t imageType;  ///< a tag given to Create and passed on; nothing interprets it
  char lastError[256];      ///< NUL-terminated text of the last failure
  tagRGBQUAD lastColor;     ///< with the next two, the one-entry cache of GetNearestIndex
  std::uint8_t lastColorIndex;
  bool lastColorValid;
};

/// An uncompressed device-independent bitmap of 1, 4, 8 or 24 bits per pixel.
///
/// One owned block holds a copy of the bitmap header, the palette (2, 16, 256 or no entries) and
/// the pixel rows, each padded to a multiple of 4 bytes. Row 0 is the first row in memory; the
/// class gives rows no up or down of its own, and the page pipeline keeps the top line of the page
/// there. Pixels of 1, 4 and 8 bits are palette indices, the leftmost pixel in the most
/// significant bits; pixels of 24 bits are blue, green, red bytes.
///
/// An image is empty (no block) or valid. On an empty image all operations but the Blind ones,
/// which test nothing, return their neutral value (0, null, false, a zero colour) and touch no
/// memory. Nothing throws, but error diffusion in Dither: std::bad_alloc, with the image as it was,
/// when there is no memory for the rows that it works on, about 40 of a byte a pixel. The block is
/// released when the image is emptied, overwritten or destroyed.
class CxImage {
 public:
  /// An empty image, every field zero.
  CxImage() = default;
  ~CxImage() { Destroy(); }
  CxImage(const CxImage&) = delete;
  CxImage& operator=(const CxImage&) = delete;

  // Storage (cximage.cc)

  /// Makes a zero-filled image of `width` x `height` pixels, replacing the previous content. `bpp`
  /// is raised to a depth that exists (1, 4, 8, 24; more than 24 gives 24). The palette is all
  /// zero. Returns the block; null, an empty image and a reason in GetLastError() when a size is
  /// 0, the pixel count times the depth exceeds 32 bits, or there is no memory.
  std::uint8_t* Create(std::uint32_t width, std::uint32_t height, std::uint32_t bpp,
                       std::uint32_t imageType);

  /// Makes an image from `height` rows at `array`, `bytesPerLine` bytes apart, of 1, 4, 8, 24 or 32
  /// bits per pixel (of 32, every fourth byte is dropped). Below 24 bits the palette is the gray
  /// ramp. Of each row the smaller of `bytesPerLine` and the image's own row length is copied.
  /// `flipImage` puts the first source row last. Returns false for a null `array`, another depth
  /// (both leave the image as it is) or a failed Create.
  bool CreateFromArray(const std::uint8_t* array, std::uint32_t width, std::uint32_t height,
                       std::uint32_t bitsPerPixel, std::uint32_t bytesPerLine, bool flipImage);

  /// Releases the block; header and info keep their values. Always true.
  bool Destroy();

  /// Takes over the content of `from`, which is empty and all zero afterwards; this image's own
  /// content is released, so that an image which is moved to itself is emptied. `transferFrames` is
  /// ignored. Always true.
  bool Transfer(CxImage& from, bool transferFrames);

  /// Copies the info block of `src`, but only into an empty image.
  void CopyInfo(const CxImage& src);

  bool IsValid() const { return dib != nullptr; }

  /// Text of the last failure, empty if there was none. Owned by the image.
  const char* GetLastError() const { return info.lastError; }

  std::uint32_t GetWidth() { return static_cast<std::uint32_t>(header.biWidth); }
  std::uint32_t GetWidth() const { return static_cast<std::uint32_t>(header.biWidth); }
  std::uint32_t GetHeight() { return static_cast<std::uint32_t>(header.biHeight); }
  std::uint32_t GetHeight() const { return static_cast<std::uint32_t>(header.biHeight); }

  /// Bytes from one pixel row to the next.
  std::uint32_t GetEffWidth() const { return info.effWidth; }

  /// Palette entries of the image's depth: 2, 16, 256, or 0 for 24 bits per pixel.
  std::uint32_t GetNumColors() const { return header.biClrUsed; }

  /// First byte of pixel row `row`; null on an empty image or past the last row.
  std::uint8_t* GetBits(std::uint32_t row);

  /// Bytes of the whole block: header, palette and pixel rows.
  std::uint32_t GetSize() const;

  // Palette (cximage_palette.cc)

  /// Entry 0; null on an empty image or one without a palette.
  tagRGBQUAD* GetPalette() const;
  std::uint32_t GetPaletteSize() const;  ///< bytes

  /// Copies the first `count` of `entries`, as many as fit; later entries keep their value.
  void SetPalette(const tagRGBQUAD* entries, std::uint32_t count);

  tagRGBQUAD GetPaletteColor(std::uint8_t index) const;

  /// Note the order: red, green, blue, against the stored blue, green, red.
  void SetPaletteColor(std::uint8_t index, std::uint8_t r, std::uint8_t g, std::uint8_t b,
                       std::uint8_t alpha);

  /// Spreads gray levels evenly from 0 to 255 over the palette.
  void SetGrayPalette();

  /// Index of the palette entry nearest to `colour` (squared distance; the lowest index wins).
  /// Quirk: nearest-colour-cache. The last answer is kept, and given again for the same colour
  /// even after the palette changed.
  std::uint8_t GetNearestIndex(tagRGBQUAD colour);

  // Pixels (cximage_pixel.cc). x counts pixels from the left, y rows from row 0. The Blind forms
  // test nothing: REQUIRES a valid image and a position inside it.

  /// The palette index at (x, y); always 0 at 24 bits per pixel.
  /// Quirk: outside-pixel. Outside the image it is the first byte of the pixel data.
  std::uint8_t GetPixelIndex(std::int64_t x, std::int64_t y) const;

  /// Stores the low bits of `index`; nothing outside the image or at 24 bits per pixel.
  void SetPixelIndex(std::int64_t x, std::int64_t y, std::uint8_t index);

  std::uint8_t BlindGetPixelIndex(std::int64_t x, std::int64_t y) const;
  void BlindSetPixelIndex(std::int64_t x, std::int64_t y, std::uint8_t index);

  /// The colour at (x, y), through the palette where there is one. `getAlpha` is ignored.
  tagRGBQUAD BlindGetPixelColor(std::int64_t x, std::int64_t y, bool getAlpha) const;

  /// Stores `colour`, or the nearest palette index. `setAlpha` is ignored.
  void BlindSetPixelColor(std::int64_t x, std::int64_t y, tagRGBQUAD colour, bool setAlpha);

  // Geometry (cximage_geometry.cc). The results of Rotate180, Mirror and MakeCenter have 8 bits per
  // pixel; they are meant for images of that depth. When a result can't be made, an empty image
  // with the reason takes its place.

  /// Turns the image by 180 degrees into `dst`, or in place when `dst` is null. False only on an
  /// empty image.
  bool Rotate180(CxImage* dst);

  /// Mirrors each row left to right, byte by byte.
  void Mirror();

  /// Adds margins, in pixels, filled with `canvasColor`. The `bottom` margin becomes the first rows
  /// in memory, the `top` margin the last. False on an empty image, a negative margin, or when the
  /// new image can't be made (then with a reason); the image is unchanged then.
  bool Expand(std::int64_t left, std::int64_t top, std::int64_t right, std::int64_t bottom,
              tagRGBQUAD canvasColor);

  /// Widens the image to `width` pixels of value 0 and centres the old content in it; does nothing
  /// when the image is already that wide.
  void MakeCenter(std::int32_t width);

  /// Draws a Bresenham line of `index`, both end points included; what lies outside the image is
  /// left out. Note the order of the arguments: both x, then both y.
  void DrawLine(std::int32_t startX, std::int32_t endX, std::int32_t startY, std::int32_t endY,
                std::uint8_t index);

  // Tone (cximage_tone.cc). These work on palette indices; the palette stays as it is.

  /// Brightness and contrast: level i becomes (i - 128) * (contrast + 100) / 100 + brightness +
  /// 128, rounded and clamped to 0..255. False on an empty image.
  bool Light(std::int32_t brightness, std::int32_t contrast);

  /// Replaces each index by its entry in the 256-byte `table`. False on an empty image or null.
  /// REQUIRES: the table lies outside the pixel rows, which are changed while it is read.
  bool Lut(const std::uint8_t* table);

  /// Inverts every bit of the pixel data, row padding included.
  void Negative();

  /// Rebuilds the image at `bpp` bits per pixel: 4, 8 (indices and palette kept) or 24 (colours).
  /// True when the image has, or already had, that depth; false, and unchanged, for a smaller or
  /// another depth, an empty image, or when the new image can't be made.
  bool IncreaseBpp(std::uint32_t bpp);

  // Dithering (cximage_dither.cc, cximage_error_diffusion.cc)

  /// Turns an image of 8-bit gray levels (index = level, the palette is not looked at) into 1 bit
  /// per pixel: 0 black, 1 white. True also when the image has 1 bit per pixel already; false on an
  /// empty image or when the result can't be made (then unchanged).
  ///
  /// Methods: 0 threshold (level > 128 is white), 1 ordered with a fixed 4x4 matrix, error
  /// diffusion with the published kernels of 2 Burkes, 3 Stucki, 4 Jarvis-Judice-Ninke, 5 Sierra
  /// (three rows), 6 Stevenson-Arce, 7 ordered with a computed 4x4 matrix, any other number
  /// Floyd-Steinberg. Rows are always scanned left to right.
  bool Dither(std::int64_t method);

 private:
  /// Sets the pixels of `result` whose level is above their entry in the 4x4 `thresholds`.
  void DitherByThresholds(const std::uint8_t* thresholds, CxImage& result) const;
  void DitherErrorDiffusion(std::int64_t method, CxImage& result) const;

  bool Contains(std::int64_t x, std::int64_t y) const {
    return x >= 0 && x < header.biWidth && y >= 0 && y < header.biHeight;
  }

  /// Makes `temporary`, which must be empty, an image with this one's info and another size and
  /// depth. False when it can't be made.
  bool CreateLike(CxImage& temporary, std::uint32_t width, std::uint32_t height,
                  std::uint32_t bpp) const;

  /// Takes over the failure text of `other`.
  void CopyLastError(const CxImage& other);

  BITMAPINFOHEADER header = {};
  ImageInfo info = {};
  std::uint8_t* dib = nullptr;  ///< owned; null exactly when the image is empty
};

#endif  // TARVO_IMAGE_CXIMAGE_H_
