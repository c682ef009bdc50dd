// A printer that remembers what it was given to print, with its protected members in the open.
#ifndef TARVO_TESTS_PRINTER_TEST_PRINTER_H_
#define TARVO_TESTS_PRINTER_TEST_PRINTER_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "printer/tarvo_printer.h"

using Bytes = std::vector<std::uint8_t>;

struct Printed {
  Bytes rows;  ///< height x bytesPerLine bytes
  unsigned long bytesPerLine = 0;
  unsigned long height = 0;
  unsigned long width = 0;
};

class TestPrinter : public TarvoPrinter {
 public:
  using TarvoPrinter::antiWrinkle_;
  using TarvoPrinter::cximage_;
  using TarvoPrinter::ditheredImage_;
  using TarvoPrinter::halftoneType_;
  using TarvoPrinter::imagePath_;
  using TarvoPrinter::pimage_;
  using TarvoPrinter::resolution_;
  using TarvoPrinter::useLumoDithering_;

  std::vector<Printed> printed;

 protected:
  int doPrintImage(const unsigned char* data, unsigned long bytesPerLine, unsigned long height,
                   unsigned long width) override {
    printed.push_back({Bytes(data, data + bytesPerLine * height), bytesPerLine, height, width});
    return 0;
  }
};

/// An 8-bit image with the gray palette; `pixels` row by row with no gap.
inline void fill(CxImage& image, unsigned width, unsigned height, const Bytes& pixels) {
  image.CreateFromArray(pixels.data(), width, height, 8, width, false);
}

/// The indices of `image`, row by row with no gap.
inline Bytes pixelsOf(const CxImage& image) {
  Bytes pixels;
  for (std::int64_t y = 0; y < image.GetHeight(); ++y) {
    for (std::int64_t x = 0; x < image.GetWidth(); ++x) pixels.push_back(image.GetPixelIndex(x, y));
  }
  return pixels;
}

inline std::string text(const Bytes& bytes) { return std::string(bytes.begin(), bytes.end()); }

#endif  // TARVO_TESTS_PRINTER_TEST_PRINTER_H_
