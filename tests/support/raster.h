// Makes pages and writes them as CUPS raster files.
#ifndef TARVO_TESTS_SUPPORT_RASTER_H_
#define TARVO_TESTS_SUPPORT_RASTER_H_

#include <cups/raster.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace support {

struct Page {
  cups_page_header2_t header{};
  std::vector<std::uint8_t> pixels;  ///< cupsBytesPerLine x cupsHeight bytes; fewer: cut short
};

/// A header of 8 bits per pixel in the K colour space, one copy, `width` bytes a line.
cups_page_header2_t grayHeader(unsigned width, unsigned height, unsigned dpi = 203);

enum class Drawing {
  Blank,     ///< all 0
  Full,      ///< all 255
  Gradient,  ///< 0 at the left edge to 255 at the right, shifted a little from row to row
  Random,    ///< every byte from 0 to 255, from the seed alone
  Text,      ///< strokes of 255 with gray edges on 0
};

/// `count` rows of `bytesPerLine` bytes; every byte is drawn, those beyond a page's width too.
std::vector<std::uint8_t> draw(Drawing drawing, unsigned bytesPerLine, unsigned rows,
                               std::uint32_t seed = 1);

Page grayPage(unsigned width, unsigned height, Drawing drawing, std::uint32_t seed = 1,
              unsigned dpi = 203);

/// Gives each line of the page `bytesPerLine` bytes, the new ones drawn at random from `seed`.
void padLines(Page& page, unsigned bytesPerLine, std::uint32_t seed = 1);

enum class Packing { Uncompressed, Compressed };

/// The pages as a raster file, written by libcups. Throws when libcups refuses a page.
std::string rasterFile(const std::vector<Page>& pages, Packing packing = Packing::Uncompressed);

/// The pages as an uncompressed raster file written byte by byte, for headers that libcups would
/// refuse to write.
std::string uncheckedRasterFile(const std::vector<Page>& pages);

struct RasterCloser {
  void operator()(cups_raster_t* raster) const { cupsRasterClose(raster); }
};
using RasterStream = std::unique_ptr<cups_raster_t, RasterCloser>;

/// Opens a raster file for reading by libcups; null when it is none. `left` is the file, and then
/// what libcups has not taken of it: it must live as long as the stream.
RasterStream openRaster(std::string_view& left);

}  // namespace support

#endif  // TARVO_TESTS_SUPPORT_RASTER_H_
