// Raster of any bytes through the filter that stands before: pages that are whole go on as they are
// to be, and what goes on can be read.
#include <string>
#include <vector>

#include "align/page_alignment.h"
#include "fuzz/filter_run.h"
#include "fuzz/finding.h"
#include "fuzz/job_case.h"
#include "fuzz/raster_bytes.h"
#include "fuzz/target.h"

namespace {

constexpr std::uint64_t kMostBytes = 1U << 20U;
/// The address sanitizer ends a program that asks for more, which the filter would survive.
constexpr std::uint64_t kMostRowBytes = 1U << 27U;
constexpr std::uint64_t kRowCost = 32;               ///< a row is read and written by itself
constexpr std::uint64_t kMostPaperRows = 1U << 17U;  ///< more are never made up for

struct Page {
  cups_page_header2_t header;
  std::vector<std::uint8_t> pixels;
};

/// Whether so little comes of the raster that it passes quickly: rows that are there, and the paper
/// that a page of this filter's is filled up with.
bool isShort(const std::string& raster) {
  fuzz::RasterReader reader(raster);
  std::uint64_t bytes = 0;
  while (reader.next()) {
    const std::uint64_t rows = reader.rows();
    const std::uint64_t size = reader.header().cupsBytesPerLine;
    if (size > kMostRowBytes) return false;
    for (std::uint64_t row = 0; row < rows && bytes <= kMostBytes; ++row) {
      if (reader.row(kMostBytes + 1)) {
        bytes += size + kRowCost;
        continue;
      }
      const bool filledUp = row > 0 && PageAlignment(reader.header()).isNeeded();
      const std::uint64_t paper = (rows - row) * (size + 7);
      return !filledUp || paper <= kMostBytes || rows - row > kMostPaperRows;
    }
    if (bytes > kMostBytes) return false;
  }
  return true;
}

/// The pages that are whole; those behind one that is not are left out.
std::vector<Page> wholePages(const std::string& raster) {
  std::vector<Page> pages;
  fuzz::RasterReader reader(raster);
  while (reader.next()) {
    const cups_page_header2_t& header = reader.header();
    const std::uint64_t size = std::uint64_t{header.cupsBytesPerLine} * header.cupsHeight;
    Page page{header, reader.pixels(kMostBytes)};
    if (page.pixels.size() < size || size == 0) break;
    pages.push_back(std::move(page));
  }
  return pages;
}

/// The page as it is to go on.
Page aligned(const Page& page) {
  const PageAlignment alignment(page.header);
  if (!alignment.isNeeded()) return page;
  Page result{alignment.header(), {}};
  const bool white = page.header.cupsColorSpace != CUPS_CSPACE_K;
  const std::size_t width = result.header.cupsBytesPerLine;
  result.pixels.assign(width * page.header.cupsHeight, 0);
  for (std::size_t y = 0; y < page.header.cupsHeight; ++y) {
    for (std::size_t x = 0; x < page.header.cupsWidth; ++x) {
      const std::uint8_t value = page.pixels[y * page.header.cupsBytesPerLine + x];
      result.pixels[y * width + x] = white ? static_cast<std::uint8_t>(255 - value) : value;
    }
  }
  return result;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzz::Watch watch;
  fuzz::Input input({data, size});
  fuzz::JobCase job;
  job.fromStandardInput = (input.byte() & 1) != 0;
  job.raster = fuzz::drawRaster(input);
  if (!isShort(job.raster)) return -1;
  const fuzz::AlignedRun run = fuzz::runAligned(job);
  fuzz::require(run.status == 0 || run.status == 1, "an exit status that is none of the filter's");

  const std::vector<Page> pages = wholePages(job.raster);
  const std::vector<Page> passed = wholePages(run.output);
  fuzz::require(passed.size() >= pages.size(), "a whole page that does not go on");
  for (std::size_t i = 0; i < pages.size(); ++i) {
    const Page expected = aligned(pages[i]);
    fuzz::require(expected.header.cupsWidth == passed[i].header.cupsWidth &&
                      expected.header.cupsHeight == passed[i].header.cupsHeight,
                  "a page of another size");
    fuzz::require(expected.pixels == passed[i].pixels, "a page of other pixels");
  }
  return 0;
}
