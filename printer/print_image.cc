// The road of one page: measure, dump, process, dump, print.
#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>

#include "common/log.h"
#include "common/text.h"
#include "printer/blank_lines.h"
#include "printer/tarvo_printer.h"

namespace {

constexpr std::uint8_t kTopEdge = 2;
constexpr std::uint8_t kBottomEdge = 8;

struct Unmapper {
  std::size_t size = 0;
  void operator()(unsigned char* block) const { munmap(block, size); }
};

using Block = std::unique_ptr<unsigned char, Unmapper>;

/// A block that proves that the memory is there. Nothing reads or writes it: mapped by itself, not
/// made of what other blocks have left, it costs no more than its addresses.
Block untouched(std::size_t count, std::size_t size) {
  if (size != 0 && count > std::numeric_limits<std::size_t>::max() / size) return {};
  const std::size_t bytes = std::max<std::size_t>(count * size, 1);
  void* block = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (block == MAP_FAILED) return {};
  return {static_cast<unsigned char*>(block), Unmapper{bytes}};
}

}  // namespace

void TarvoPrinter::printImage(const unsigned char* data, unsigned long bytesPerLine,
                              unsigned long height, unsigned long width) {
  tarvoLogCommon(0,
                 "printImage: Start processing image, input width: %zu, height: %zu, bytes per "
                 "line: %zu",
                 std::size_t{width}, std::size_t{height}, std::size_t{bytesPerLine});
  Block scratch = untouched(height, bytesPerLine);
  Block result;
  if (scratch == nullptr) {
    tarvoLogCommon(3,
                   "printImage: Memory allocation failed, unable to process image, exiting "
                   "processing");
  } else {
    const std::size_t size = std::size_t{bytesPerLine} * height;
    tarvoLogCommon(0, "printImage: Memory allocated successfully, size: %zu bytes", size);
    const BlankEdges blank = measureBlankEdges(data, bytesPerLine, height, width);

    dumpImage("/var/spool/cups/tmp/origin_%d-%d-%d_%d_%d_%d_%ld.bmp",
              "printImage: Saving original image, file path will be generated based on time", data,
              bytesPerLine, height, width);

    // The result goes from pimage_ to the printer; no one reads a copy of it.
    result = untouched(2, size);
    if (result == nullptr) {
      tarvoLogCommon(3,
                     "printImage: Memory allocation for processing result failed, unable to "
                     "continue processing");
    } else {
      // Quirk: half-the-size. The buffer has twice the bytes that are logged.
      tarvoLogCommon(
          0, "printImage: Memory for processing result allocated successfully, size: %zu bytes",
          size);
      processPage(halftoneType_, data, static_cast<int>(bytesPerLine), static_cast<int>(width),
                  static_cast<int>(height), nullptr);
      logProcessedPage(blank, result.get(), bytesPerLine, height, width);
      printProcessedImage();
    }
  }

  if (scratch != nullptr) {
    scratch.reset();
    // Quirk: null-address. Logged after the pointer was cleared.
    tarvoLogCommon(0, "printImage: Freed the allocated memory, address: %p",
                   static_cast<void*>(scratch.get()));
  }
  if (result != nullptr) {
    char address[32];
    std::snprintf(address, sizeof(address), "%p", static_cast<void*>(result.get()));
    result.reset();
    tarvoLogCommon(0, "printImage: Freed the memory for processing result, address: %s", address);
  }
  tarvoLogCommon(0, "printImage: Image processing completed");
}

TarvoPrinter::BlankEdges TarvoPrinter::measureBlankEdges(const unsigned char* data,
                                                         unsigned long bytesPerLine,
                                                         unsigned long height,
                                                         unsigned long width) const {
  BlankEdges blank = {0, 0};
  // Quirk: width-as-stride. The counters step by the width, which for these pages is the line
  // length.
  if ((removeBlankEdges_ & kBottomEdge) != 0) {
    blank.bottom =
        tarvoImageCountBlankLinesFromBack(data, bytesPerLine, height, getSkipRightPixels(), width);
    tarvoLogCommon(0,
                   "printImage: Removal of bottom blank edges detected, number of bottom blank "
                   "lines: %zu",
                   std::size_t{blank.bottom});
  }
  if ((removeBlankEdges_ & kTopEdge) != 0) {
    blank.top =
        tarvoImageCountBlankLinesFromFront(data, bytesPerLine, height, getSkipRightPixels(), width);
    tarvoLogCommon(
        0, "printImage: Removal of top blank edges detected, number of top blank lines: %zu",
        std::size_t{blank.top});
  }
  return blank;
}

void TarvoPrinter::logProcessedPage(const BlankEdges& blank, const unsigned char* result,
                                    unsigned long bytesPerLine, unsigned long height,
                                    unsigned long width) const {
  // Quirk: blank-edges-logged. What was measured reaches the log alone; the whole page is printed.
  const unsigned char* adjusted = result;
  unsigned long adjustedHeight = height;
  if (blank.bottom > blank.top) {
    adjustedHeight = blank.bottom - blank.top;
    adjusted = result + blank.top * bytesPerLine;
    tarvoLogCommon(0, "printImage: Adjusted image height to %zu, pointer offset by %zu bytes",
                   std::size_t{adjustedHeight}, std::size_t{blank.top} * bytesPerLine);
  }
  // Quirk: swapped-sizes. "width" shows the bytes per line, and the other way round.
  tarvoLogCommon(0,
                 "printImage: Processed image information - pointer address: %lu, width: %zu, "
                 "height: %zu, bytes per line: %zu, number of top blank lines: %zu, number of "
                 "bottom blank lines: %zu, adjusted height: %zu",
                 static_cast<unsigned long>(reinterpret_cast<std::uintptr_t>(adjusted)),
                 std::size_t{bytesPerLine}, std::size_t{height}, std::size_t{width},
                 std::size_t{blank.top}, std::size_t{blank.bottom}, std::size_t{adjustedHeight});
}

void TarvoPrinter::dumpImage(const char* pathTemplate, const char* announcement,
                             const unsigned char* data, unsigned long bytesPerLine,
                             unsigned long height, unsigned long width) {
  tarvoStrCpy(imagePath_, pathTemplate, sizeof(imagePath_));
  tarvoLogCommon(0, "%s", announcement);
  if (data != nullptr && keepPages_) saveImage(data, bytesPerLine, height, width, 8);
}

void TarvoPrinter::printProcessedImage() {
  // Emptied by a failed CreateFromArray, or left at one bit a pixel by a failed IncreaseBpp: as
  // good as none.
  constexpr std::uint32_t kColorsOf8Bits = 256;
  const bool printable =
      pimage_ != nullptr && pimage_->IsValid() && pimage_->GetNumColors() == kColorsOf8Bits;
  CxImage* image = printable ? pimage_ : nullptr;
  const unsigned char* pixels = image != nullptr ? image->GetBits(0) : nullptr;
  const unsigned long rowBytes = image != nullptr ? image->GetEffWidth() : 0;
  const unsigned long rows = image != nullptr ? image->GetHeight() : 0;
  const unsigned long dots = image != nullptr ? image->GetWidth() : 0;

  dumpImage("/var/spool/cups/tmp/dithered_%d-%d-%d_%d_%d_%d_%ld.bmp",
            "printImage: Saving processed image, file path will be generated based on time", pixels,
            rowBytes, rows, dots);
  tarvoLogCommon(0, "printImage: Starting to print the processed image");
  if (image != nullptr) {
    doPrintImage(pixels, rowBytes, rows, dots);
  } else {
    tarvoLogCommon(3, "printImage: pimage is NULL, unable to print the image");
  }
}
