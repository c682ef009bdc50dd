// TarvoPrinter: the abstract printer. It turns gray pages into two-level images and writes every
// byte that is sent to the printer; a derived class speaks the printer's language.
#ifndef TARVO_PRINTER_TARVO_PRINTER_H_
#define TARVO_PRINTER_TARVO_PRINTER_H_

#include <cups/raster.h>

#include <cstdint>
#include <cstdio>
#include <vector>

#include "common/halftone_type.h"
#include "image/cximage.h"

class TarvoPrinter {
 public:
  /// Opaque data of the caller: stored and returned, never looked into.
  struct UserData;

  /// Writes to standard output only, until a stream is added to getOutputStreams().
  TarvoPrinter();

  /// Closes no stream.
  virtual ~TarvoPrinter();

  TarvoPrinter(const TarvoPrinter&) = delete;
  TarvoPrinter& operator=(const TarvoPrinter&) = delete;

  // The page (print_image.cc, page_process.cc)

  /// Processes and prints one page of 8-bit gray: `height` rows at `data`, `bytesPerLine` bytes
  /// apart, `width` dots each. Dumps the page before and after processing, then hands the processed
  /// image to doPrintImage. Failures are logged. Quirk: earlier-image. A page that can't be
  /// processed leaves the current image what it was, and that is printed, if it is still one of 8
  /// bits.
  void printImage(const unsigned char* data, unsigned long bytesPerLine, unsigned long height,
                  unsigned long width);

  /// Processes a page of `height` rows, `stride` bytes apart, `width` dots each: tone, rotation,
  /// mirror, halftone, negative, anti-wrinkle frame. The result is the printer's current image and
  /// is copied to `out` as far as `2 x stride x height` bytes, which `out` must have, hold it.
  /// `out` must be zero-filled: with `stride` above `width` the tattoo halftones read it.
  /// Quirk: method-and-route. `halftoneType` is the method of the plain halftones; whether it is a
  /// tattoo halftone instead, and which, setHalftoneType tells.
  /// Returns height x row length of the result in bytes, or 0 when it failed.
  long PageProcess(DitherType halftoneType, const unsigned char* data, int stride, int width,
                   int height, unsigned char* out);

  // Pixel copies (pixel_copies.cc)

  /// Copies the indices of `image` to `out`, one byte per pixel, rows `stride` bytes apart; bytes
  /// beyond `width` are left as they are.
  void copyPixels(CxImage& image, unsigned char* out, int width, int height, int stride);

  /// As copyPixels, with index 1 written as 255 and all bits inverted when negative printing is on.
  void copyProcessedPixels(CxImage* image, unsigned char* out, int width, int height, int stride);

  /// Packs `height` rows of `bytesPerLine` bytes at `buffer` to one bit per byte, in place and
  /// without gaps: a byte other than 0 gives a 1 bit, leftmost in the most significant bit. The
  /// bytes at the right that setSkipRightPixels names are dropped. Returns the packed bytes.
  /// Quirk: two-polarities. TSPL's own packing has the opposite polarity.
  int GrayToMono(int bytesPerLine, int height, unsigned char* buffer);

  // The anti-wrinkle frame (anti_wrinkle.cc)

  /// Puts `image` (8 bits per pixel) on a canvas of the page header's paper size and draws a frame
  /// around it. An unknown paper size leaves the image as it is.
  void EnableAntiWrink(CxImage& image);

  // Debug dumps (save_image.cc)

  /// Writes `height` rows of `width` pixels as a BMP file named by the template of imagePath_.
  /// 8 bits per pixel: the bytes as they lie in memory (quirk: dump-as-in-memory). Else: 1 bit per
  /// pixel from rows `bytesPerLine` bytes apart, a 0 byte white. The file appears under its name
  /// when it is whole. One that can't be, for lack of room or because something else is in its
  /// place, costs one line on standard error.
  void saveImage(const unsigned char* data, unsigned long bytesPerLine, unsigned long height,
                 unsigned long width, unsigned short bitsPerPixel);

  // Output (output.cc). Each writes the same bytes to every stream, in the order of the list; write
  // errors change nothing, as a printer that waits for the rest of a bitmap is better off with what
  // can still be written.

  void printBytes(const unsigned char* data, unsigned long length);
  void printStr(const char* text);
  void printByte(unsigned char byte);

  /// Returns the count of the write to the last stream; 0 when there is none.
  int printFormat(const char* format, ...) __attribute__((format(printf, 2, 3)));

  /// The errno of the first write to standard output that failed, 0 while none has.
  int getOutputError() const { return outputError_; }

  /// The streams that receive what is printed; not owned. The first is standard output.
  std::vector<std::FILE*>& getOutputStreams() { return outputStreams_; }

  // Settings. They stay until changed; values out of range are clamped where a range is given.

  void setBrightness(int brightness);  ///< -100..100
  int getBrightness() const { return brightness_; }
  void setContrast(int contrast);  ///< -100..100
  int getContrast() const { return contrast_; }
  void setPrintSpeed(const char* speed);  ///< `atoi` of the text, 1..15
  int getPrintSpeed() const { return printSpeed_; }
  void setPrintDensity(int density);  ///< 0..15
  int getPrintDensity() const { return printDensity_; }
  void setHalftoneType(DitherType type) { halftoneType_ = type; }
  DitherType getHalftoneType() const { return halftoneType_; }
  void setNegativePrint(bool negative) { negativePrint_ = negative; }
  bool isNegativePrint() const { return negativePrint_; }
  void setMirrorPrint(bool mirror) { mirrorPrint_ = mirror; }
  bool isMirrorPrint() const { return mirrorPrint_; }
  void setRotate180Print(bool rotate) { rotate180Print_ = rotate; }
  bool isRotate180Print() const { return rotate180Print_; }
  void setAntiWrinkle(int level) { antiWrinkle_ = level; }  ///< mm; 0 is no frame
  int getAntiWrinkle() const { return antiWrinkle_; }
  void setUseLumoDithering(bool use) { useLumoDithering_ = use; }  ///< each page sets it anew
  bool getUseLumoDithering() const { return useLumoDithering_; }
  void setMaxMediaWidth(int width) { maxMediaWidth_ = width; }
  int getMaxMediaWidth() const { return maxMediaWidth_; }
  void SetPrintWidth(long width) { printWidth_ = width; }
  long GetPrintWidth() const { return static_cast<long>(printWidth_); }
  void setVBarcodeOpt(int option) { vBarcodeOpt_ = option; }
  int getVBarcodeOpt() const { return vBarcodeOpt_; }
  void setRemoveBlankEdges(unsigned char edges) { removeBlankEdges_ = edges; }  ///< 2 top, 8 bottom
  unsigned char getRemoveBlankEdges() const { return removeBlankEdges_; }
  void setSkipRightPixels(unsigned long bytes) { skipRightPixels_ = bytes; }
  unsigned long getSkipRightPixels() const { return static_cast<unsigned long>(skipRightPixels_); }
  void setUserData(UserData* data) { userData_ = data; }
  UserData* getUserData() const { return userData_; }
  /// Not owned: the header must outlive the printing of its page.
  void setPageHeader(cups_page_header2_t* header) { pageHdr_ = header; }
  cups_page_header2_t* getPageHeader() const { return pageHdr_; }

  /// Whether printImage dumps its pages; it does unless told otherwise.
  void setKeepPages(bool keep) { keepPages_ = keep; }
  bool isKeepPages() const { return keepPages_; }

  /// A banner that names the maker, in hexadecimal. Never printed.
  const char* getCopyRight() const;

 protected:
  /// Turns a processed page into printer commands: `height` rows at `data`, `bytesPerLine` bytes
  /// apart, `width` dots of one byte each.
  virtual int doPrintImage(const unsigned char* data, unsigned long bytesPerLine,
                           unsigned long height, unsigned long width) = 0;

  CxImage cximage_;            ///< the page, halftoned in place by CxImage::Dither
  CxImage ditheredImage_;      ///< the page as the tattoo halftones give it
  CxImage* pimage_ = nullptr;  ///< the image processed last, one of the two above, or null
  char imagePath_[1024];       ///< template of the next dump's name: six ints and a long
  std::vector<std::FILE*> outputStreams_;   ///< not owned
  cups_page_header2_t* pageHdr_ = nullptr;  ///< not owned
  std::int32_t maxMediaWidth_ = 0;
  std::int64_t printWidth_ = 0;
  std::int32_t brightness_ = 0;
  std::int32_t vBarcodeOpt_ = 0;
  std::int32_t contrast_ = 0;
  std::int32_t printSpeed_ = 7;
  std::int32_t printDensity_ = 8;
  DitherType halftoneType_ = None;
  bool negativePrint_ = false;
  bool mirrorPrint_ = false;
  bool rotate180Print_ = false;
  std::int32_t antiWrinkle_ = 0;  ///< thickness of the frame's vertical bars, mm
  bool useLumoDithering_ = false;
  std::uint8_t removeBlankEdges_ = 0;
  std::uint64_t skipRightPixels_ = 0;  ///< bytes at the right that blank-line counting ignores
  UserData* userData_ = nullptr;       ///< not owned
  std::int32_t resolution_ = 300;      ///< dots per inch
  bool keepPages_ = true;

 private:
  /// What blank-line counting found: lines; 0 where it is off.
  struct BlankEdges {
    unsigned long top;
    unsigned long bottom;
  };

  // The steps of printImage.
  BlankEdges measureBlankEdges(const unsigned char* data, unsigned long bytesPerLine,
                               unsigned long height, unsigned long width) const;
  void logProcessedPage(const BlankEdges& blank, const unsigned char* result,
                        unsigned long bytesPerLine, unsigned long height,
                        unsigned long width) const;
  void dumpImage(const char* pathTemplate, const char* announcement, const unsigned char* data,
                 unsigned long bytesPerLine, unsigned long height, unsigned long width);
  void printProcessedImage();

  /// PageProcess, which leaves out the copy when `out` is null.
  long processPage(DitherType halftoneType, const unsigned char* data, int stride, int width,
                   int height, unsigned char* out);

  /// Keeps the reason when a write to standard output has just failed.
  void noteError(std::FILE* stream);

  /// The tattoo halftones of processPage: the page in cximage_ becomes ditheredImage_ and the
  /// current image. False when that image can't be made.
  bool ditherForTattoo(int stride, int width, int height, unsigned char* out);

  int outputError_ = 0;
};

#endif  // TARVO_PRINTER_TARVO_PRINTER_H_
