#include "hostile_job.h"

#include <cstring>
#include <string_view>

#include "jobs/compared_job.h"
#include "jobs/good_job.h"

namespace hostile {

namespace {

using support::Packing;
using support::Page;

template <typename T>
std::string bytesOf(const T& value) {
  std::string bytes(sizeof value, '\0');
  std::memcpy(bytes.data(), &value, sizeof value);
  return bytes;
}

/// The good page's pixels as libcups compresses them: each row once; sixteen times 255, and sixteen
/// bytes (257 - 16 = 241) as they stand.
std::string compressedPixels(const Page& page) {
  return std::string("\0\x0F\xFF\0\xF1", 5) +
         std::string(page.pixels.begin() + 16, page.pixels.end());
}

bool isCompressed(const std::string& raster) { return raster.compare(0, 4, "2SaR") == 0; }

/// The colour order as a number: what came need not be one that there is.
unsigned orderOf(const cups_page_header2_t& header) {
  unsigned order = 0;
  std::memcpy(&order, &header.cupsColorOrder, sizeof order);
  return order;
}

/// Whether libcups, which counts rows in 32 bits, finds all rows of a page in planes.
bool hasAllRows(const cups_page_header2_t& header) {
  return orderOf(header) != unsigned{CUPS_ORDER_PLANAR} ||
         header.cupsHeight * header.cupsNumColors >= header.cupsHeight;
}

}  // namespace

std::string rasterOf(const cups_page_header2_t& header, Packing packing) {
  const Page good = jobs::goodPage();
  const bool compressed = packing == Packing::Compressed;
  const std::uint32_t sync = compressed ? CUPS_RASTER_SYNCv2 : CUPS_RASTER_SYNC;
  const std::string pixels =
      compressed ? compressedPixels(good) : std::string(good.pixels.begin(), good.pixels.end());
  return bytesOf(sync) + bytesOf(header) + pixels + bytesOf(good.header) + pixels;
}

std::vector<Page> pagesOf(const std::string& raster) {
  std::string_view left = raster;
  const support::RasterStream stream = support::openRaster(left);
  std::vector<Page> pages;
  Page page;
  while (stream != nullptr && cupsRasterReadHeader2(stream.get(), &page.header) != 0) {
    const std::uint64_t lineBytes = page.header.cupsBytesPerLine;
    const std::uint64_t size = lineBytes * page.header.cupsHeight;
    // libcups needs a line of memory for compressed pages, and finds no page without.
    if (isCompressed(raster) && lineBytes >= kAddressSpaceBytes) break;
    page.pixels.clear();
    pages.push_back(page);
    if (size >= kAddressSpaceBytes || page.header.cupsBitsPerPixel != 8) break;
    std::vector<std::uint8_t> pixels(size);
    const bool whole =
        cupsRasterReadPixels(stream.get(), pixels.data(), static_cast<unsigned>(size)) == size;
    if (whole && hasAllRows(page.header)) pages.back().pixels = std::move(pixels);
  }
  return pages;
}

std::string whatIsWrong(const std::string& raster) {
  jobs::ComparedJob job;
  job.choices = {{"PaperType", "LabelGaps"}, {"GapsHeight", "3"},     {"Origin", "Rotation180"},
                 {"PrintSpeed", "4"},        {"Darkness", "8"},       {"MediaMethod", "Direct"},
                 {"PostAction", "TearOff"},  {"HalftoneType", "None"}};
  job.pages = pagesOf(raster);
  job.addressSpaceLimitBytes = kAddressSpaceBytes;
  return jobs::difference(job, raster);
}

}  // namespace hostile
