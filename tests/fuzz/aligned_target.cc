// Raster of any bytes through the filter that stands before, on models of any size: pages that are
// whole go on as they are to be, what is too large ends the job, and what goes on can be read.
#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "align/page_alignment.h"
#include "fuzz/filter_run.h"
#include "fuzz/finding.h"
#include "fuzz/job_case.h"
#include "fuzz/raster_bytes.h"
#include "fuzz/target.h"
#include "support/ppd_text.h"

namespace {

constexpr std::uint64_t kMostBytes = 1U << 20U;
/// The address sanitizer ends a program that asks for more, which the filter would survive.
constexpr std::uint64_t kMostRowBytes = 1U << 27U;
constexpr std::uint64_t kRowCost = 32;               ///< a row is read and written by itself
constexpr std::uint64_t kMostPaperRows = 1U << 17U;  ///< more are never made up for
constexpr double kMostPageBytes = 1U << 28U;         ///< larger ones never go on
constexpr unsigned kMostCopies = 9999;

/// The models: the largest sheet in points, none where nothing is known of it.
struct Model {
  unsigned shorter, longer;
};
constexpr Model kModels[] = {{0, 0}, {288, 432}, {9, 18}};

struct Page {
  cups_page_header2_t header;
  std::vector<std::uint8_t> pixels;
};

std::string ppdOf(const Model& model) {
  if (model.longer == 0) return "";
  const auto width = static_cast<float>(model.shorter), length = static_cast<float>(model.longer);
  return support::PpdText().pageSize("Small", 1, 1).pageSize("Largest", length, width).text();
}

/// Whether the filter has to refuse the page: it is larger than twice the model's largest sheet, or
/// than any page may be.
bool isTooLarge(const cups_page_header2_t& header, std::uint64_t rows, const Model& model) {
  const std::uint32_t passed = PageAlignment(header).header().cupsBytesPerLine;
  if (static_cast<double>(rows) * std::max(passed, header.cupsBytesPerLine) > kMostPageBytes) {
    return true;
  }
  const std::uint64_t across = header.HWResolution[0], down = header.HWResolution[1];
  if (across == 0 || down == 0 || model.longer == 0) return false;
  const auto fits = [&](std::uint64_t widthPoints, std::uint64_t heightPoints) {
    return header.cupsWidth * std::uint64_t{72} <= 2 * widthPoints * across &&
           header.cupsHeight * std::uint64_t{72} <= 2 * heightPoints * down;
  };
  return !fits(model.shorter, model.longer) && !fits(model.longer, model.shorter);
}

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

struct Pages {
  std::vector<Page> whole;         ///< those behind one that is not whole are left out
  bool endsAtTooLargeOne = false;  ///< one that is not admitted follows on them
};

Pages pagesOf(const std::string& raster, const Model& model) {
  Pages pages;
  fuzz::RasterReader reader(raster);
  while (reader.next()) {
    const cups_page_header2_t& header = reader.header();
    pages.endsAtTooLargeOne = isTooLarge(header, reader.rows(), model);
    if (pages.endsAtTooLargeOne) break;
    const std::uint64_t size = std::uint64_t{header.cupsBytesPerLine} * header.cupsHeight;
    Page page{header, reader.pixels(kMostBytes)};
    if (page.pixels.size() < size || size == 0) break;
    pages.whole.push_back(std::move(page));
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
  result.header.NumCopies = std::min(page.header.NumCopies, kMostCopies);
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
  const std::uint8_t how = input.byte();
  job.fromStandardInput = (how & 1) != 0;
  const Model& model = kModels[how / 2 % std::size(kModels)];
  job.ppd = ppdOf(model);
  job.raster = fuzz::drawRaster(input);
  if (!isShort(job.raster)) return -1;
  const fuzz::AlignedRun run = fuzz::runAligned(job);
  fuzz::require(run.status == 0 || run.status == 1, "an exit status that is none of the filter's");

  const Pages pages = pagesOf(job.raster, model);
  const std::vector<Page> passed = pagesOf(run.output, Model{}).whole;
  fuzz::require(passed.size() >= pages.whole.size(), "a whole page that does not go on");
  if (pages.endsAtTooLargeOne) {
    fuzz::require(run.status == 1, "a page that is too large does not fail the job");
    fuzz::require(run.error.find(" is too large: ") != std::string::npos, "it is not said");
    fuzz::require(passed.size() == pages.whole.size(), "a page that is too large goes on");
  }
  for (std::size_t i = 0; i < pages.whole.size(); ++i) {
    const Page expected = aligned(pages.whole[i]);
    fuzz::require(expected.header.cupsWidth == passed[i].header.cupsWidth &&
                      expected.header.cupsHeight == passed[i].header.cupsHeight,
                  "a page of another size");
    fuzz::require(passed[i].header.NumCopies <= kMostCopies, "a page of too many copies");
    fuzz::require(expected.pixels == passed[i].pixels, "a page of other pixels");
  }
  return 0;
}
