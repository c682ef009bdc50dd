// Dumps of the pages as BMP files.
#include <algorithm>
#include <array>
#include <cstring>
#include <ctime>
#include <memory>
#include <span>
#include <vector>

#include "common/whole_file.h"
#include "printer/tarvo_printer.h"

namespace {

constexpr std::size_t kHeaderBytes = 54;
constexpr std::size_t kGrayPaletteBytes = 1024;

/// Dumps that this process has begun, those whose file could not be created included.
std::int64_t page_index = 0;

void put16(unsigned char* at, std::uint32_t value) {
  at[0] = static_cast<unsigned char>(value);
  at[1] = static_cast<unsigned char>(value >> 8);
}

void put32(unsigned char* at, std::uint32_t value) {
  put16(at, value);
  put16(at + 2, value >> 16);
}

std::array<unsigned char, kHeaderBytes> bmpHeader(std::uint32_t width, std::uint32_t height,
                                                  std::uint32_t rowBytes, bool gray) {
  const std::uint32_t pixelsAt = gray ? 1078 : 62;
  const std::uint32_t imageBytes = rowBytes * height;
  std::array<unsigned char, kHeaderBytes> header{};
  std::memcpy(header.data(), "BM", 2);
  put32(&header[2], pixelsAt + imageBytes);
  put32(&header[10], pixelsAt);
  put32(&header[14], 40);
  put32(&header[18], width);
  put32(&header[22], height);
  put16(&header[26], 1);
  put16(&header[28], gray ? 8 : 1);
  put32(&header[34], imageBytes);
  put32(&header[46], gray ? 256 : 0);
  put32(&header[50], gray ? 256 : 0);
  return header;
}

void write(std::FILE* file, std::span<const unsigned char> bytes) {
  std::fwrite(bytes.data(), 1, bytes.size(), file);
}

void writeGrayPalette(std::FILE* file) {
  std::array<unsigned char, kGrayPaletteBytes> palette{};
  for (std::size_t i = 0; i < 256; ++i) {
    std::fill_n(&palette[i * 4], 3, static_cast<unsigned char>(i));
  }
  write(file, palette);
}

/// Rows of one bit a pixel, from the last to the first: a BMP reader shows the first at the top.
void writeMonoRows(std::FILE* file, const unsigned char* data, unsigned long bytesPerLine,
                   unsigned long height, std::uint32_t rowBytes) {
  std::vector<unsigned char> row(rowBytes);
  for (unsigned long y = height; y-- > 0;) {
    const unsigned char* source = data + y * bytesPerLine;
    std::fill(row.begin(), row.end(), static_cast<unsigned char>(0));
    // The bits past the end of the source row are 1. What does not fit the row is left out.
    const unsigned long bits = (bytesPerLine + 7) / 8 * 8;
    for (unsigned long x = 0; x < std::min<unsigned long>(bits, rowBytes * 8ul); ++x) {
      if (x >= bytesPerLine || source[x] == 0) {
        row[x / 8] = static_cast<unsigned char>(row[x / 8] | 0x80 >> (x % 8));
      }
    }
    write(file, row);
  }
}

}  // namespace

void TarvoPrinter::saveImage(const unsigned char* data, unsigned long bytesPerLine,
                             unsigned long height, unsigned long width,
                             unsigned short bitsPerPixel) {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char name[sizeof(imagePath_) + 128];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"  // the template is the printer's own
  std::snprintf(name, sizeof(name), imagePath_, local.tm_year + 1900, local.tm_mon + 1,
                local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
                static_cast<long>(page_index));
#pragma GCC diagnostic pop
  ++page_index;

  const bool gray = bitsPerPixel == 8;
  const auto width32 = static_cast<std::uint32_t>(width);
  const auto height32 = static_cast<std::uint32_t>(height);
  const std::uint32_t rowBytes = ((gray ? width32 : (width32 + 7) / 8) + 3) / 4 * 4;
  const std::uint64_t pixels = std::uint64_t{gray ? width : rowBytes} * height;
  WholeFile dump(name, kHeaderBytes + (gray ? kGrayPaletteBytes : 0) + pixels);
  if (std::FILE* file = dump.stream()) {
    write(file, bmpHeader(width32, height32, rowBytes, gray));
    if (gray) {
      // Quirk: dump-as-in-memory. Neither padded nor reordered: readers show the page upside down,
      // and sheared when its width is not a multiple of 4.
      writeGrayPalette(file);
      write(file, {data, static_cast<std::size_t>(width) * height});
    } else {
      // Quirk: bits-without-palette. Any other depth is one of 1 bit whose colours are left out.
      if (bitsPerPixel == 1) {
        constexpr std::array<unsigned char, 8> kBlackAndWhite = {0, 0, 0, 0, 255, 255, 255, 0};
        write(file, kBlackAndWhite);
      }
      writeMonoRows(file, data, bytesPerLine, height, rowBytes);
    }
    if (dump.keep()) return;
  }
  std::fprintf(stderr, "TarvoPrinter::saveImage: unable to open the file %s\n", name);
}
