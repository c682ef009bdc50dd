#include "support/raster.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <stdexcept>
#include <string_view>

namespace support {

namespace {

/// Letters of 5 x 7 cells, each cell three dots, the outer dots of a stroke gray.
void drawText(std::vector<std::uint8_t>& pixels, unsigned bytesPerLine, unsigned rows,
              std::mt19937& random) {
  constexpr unsigned kCell = 3;
  const unsigned columns = bytesPerLine / kCell + 1;
  for (unsigned row = 0; row < rows; row += kCell) {
    const bool betweenLines = row / kCell % 10 >= 7;
    for (unsigned column = 0; column < columns; ++column) {
      const bool ink = !betweenLines && column % 6 != 5 && random() % 3 != 0;
      if (!ink) continue;
      const auto edge = static_cast<std::uint8_t>(96 + random() % 128);
      for (unsigned y = row; y < std::min(row + kCell, rows); ++y) {
        for (unsigned x = column * kCell; x < std::min(column * kCell + kCell, bytesPerLine); ++x) {
          const bool middle = y == row + 1 || x == column * kCell + 1;
          pixels[std::size_t{y} * bytesPerLine + x] = middle ? 255 : edge;
        }
      }
    }
  }
}

/// A file in memory, whose content can be read back when libcups has written to it.
class MemoryFile {
 public:
  MemoryFile() : descriptor_(::memfd_create("raster", MFD_CLOEXEC)) {
    if (descriptor_ < 0) throw std::runtime_error("no memory file");
  }
  ~MemoryFile() { ::close(descriptor_); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  int descriptor() const { return descriptor_; }

  std::string content() const {
    std::string bytes(static_cast<std::size_t>(::lseek(descriptor_, 0, SEEK_END)), '\0');
    for (std::size_t done = 0; done < bytes.size();) {
      const ssize_t count =
          ::pread(descriptor_, bytes.data() + done, bytes.size() - done, static_cast<off_t>(done));
      if (count <= 0) throw std::runtime_error("can't read the memory file");
      done += static_cast<std::size_t>(count);
    }
    return bytes;
  }

 private:
  int descriptor_;
};

ssize_t readLeft(void* context, unsigned char* bytes, std::size_t size) {
  std::string_view& left = *static_cast<std::string_view*>(context);
  const std::size_t count = std::min(size, left.size());
  std::memcpy(bytes, left.data(), count);
  left.remove_prefix(count);
  return static_cast<ssize_t>(count);
}

}  // namespace

cups_page_header2_t grayHeader(unsigned width, unsigned height, unsigned dpi) {
  cups_page_header2_t header{};
  header.HWResolution[0] = dpi;
  header.HWResolution[1] = dpi;
  header.NumCopies = 1;
  header.cupsWidth = width;
  header.cupsHeight = height;
  header.cupsBitsPerColor = 8;
  header.cupsBitsPerPixel = 8;
  header.cupsBytesPerLine = width;
  header.cupsColorOrder = CUPS_ORDER_CHUNKED;
  header.cupsColorSpace = CUPS_CSPACE_K;
  header.cupsNumColors = 1;
  header.PageSize[0] = width * 72 / dpi;
  header.PageSize[1] = height * 72 / dpi;
  return header;
}

std::vector<std::uint8_t> draw(Drawing drawing, unsigned bytesPerLine, unsigned rows,
                               std::uint32_t seed) {
  std::vector<std::uint8_t> pixels(std::size_t{bytesPerLine} * rows);
  std::mt19937 random(seed);
  switch (drawing) {
    case Drawing::Blank:
      break;
    case Drawing::Full:
      std::fill(pixels.begin(), pixels.end(), std::uint8_t{255});
      break;
    case Drawing::Gradient:
      for (std::size_t i = 0; i < pixels.size(); ++i) {
        const std::size_t x = i % bytesPerLine;
        const std::size_t y = i / bytesPerLine;
        const std::size_t span = bytesPerLine > 1 ? bytesPerLine - 1 : 1;
        pixels[i] = static_cast<std::uint8_t>((x * 255 / span + y * 7 + seed - 1) % 256);
      }
      break;
    case Drawing::Random:
      for (std::uint8_t& pixel : pixels) pixel = static_cast<std::uint8_t>(random() >> 8U);
      break;
    case Drawing::Text:
      drawText(pixels, bytesPerLine, rows, random);
      break;
  }
  return pixels;
}

Page grayPage(unsigned width, unsigned height, Drawing drawing, std::uint32_t seed, unsigned dpi) {
  return {grayHeader(width, height, dpi), draw(drawing, width, height, seed)};
}

void padLines(Page& page, unsigned bytesPerLine, std::uint32_t seed) {
  const unsigned old = page.header.cupsBytesPerLine;
  const unsigned rows = page.header.cupsHeight;
  std::vector<std::uint8_t> padded = draw(Drawing::Random, bytesPerLine, rows, seed);
  for (std::size_t row = 0; row < rows; ++row) {
    std::copy_n(page.pixels.data() + row * old, old, padded.data() + row * bytesPerLine);
  }
  page.pixels = std::move(padded);
  page.header.cupsBytesPerLine = bytesPerLine;
}

std::string rasterFile(const std::vector<Page>& pages, Packing packing) {
  const MemoryFile file;
  cups_raster_t* raster = cupsRasterOpen(file.descriptor(), packing == Packing::Compressed
                                                                ? CUPS_RASTER_WRITE_COMPRESSED
                                                                : CUPS_RASTER_WRITE);
  if (raster == nullptr) throw std::runtime_error("cupsRasterOpen failed");
  for (const Page& page : pages) {
    cups_page_header2_t header = page.header;
    std::vector<std::uint8_t> pixels = page.pixels;
    const auto size = static_cast<unsigned>(pixels.size());
    if (cupsRasterWriteHeader2(raster, &header) == 0 ||
        (size > 0 && cupsRasterWritePixels(raster, pixels.data(), size) != size)) {
      cupsRasterClose(raster);
      throw std::runtime_error("libcups refuses to write the page");
    }
  }
  cupsRasterClose(raster);
  return file.content();
}

std::string uncheckedRasterFile(const std::vector<Page>& pages) {
  // The sync word of an uncompressed file in this machine's byte order, then headers and pixels.
  const std::uint32_t sync = CUPS_RASTER_SYNC;
  std::string bytes(sizeof sync, '\0');
  std::memcpy(bytes.data(), &sync, sizeof sync);
  for (const Page& page : pages) {
    std::string header(sizeof page.header, '\0');
    std::memcpy(header.data(), &page.header, sizeof page.header);
    bytes += header;
    bytes.append(page.pixels.begin(), page.pixels.end());
  }
  return bytes;
}

RasterStream openRaster(std::string_view& left) {
  return RasterStream(cupsRasterOpenIO(readLeft, &left, CUPS_RASTER_READ));
}

}  // namespace support
