#include "align/page_limits.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "align/page_alignment.h"

namespace {

/// The next filter holds all of a page. The longest label of the models has 30 MB at 300 dpi.
constexpr double kMostBytes = 256U << 20U;

/// How much longer and wider than the model's largest sheet a page may be.
constexpr double kMostSheets = 2;

constexpr double kPointsPerInch = 72;

constexpr unsigned kMostCopies = 9999;

}  // namespace

bool PageLimits::admit(unsigned page, const cups_page_header2_t& header, std::uint64_t rows) const {
  return fitsInMemory(page, header, rows) && fitsTheModel(page, header);
}

bool PageLimits::fitsInMemory(unsigned page, const cups_page_header2_t& header,
                              std::uint64_t rows) {
  const std::uint32_t passed = PageAlignment(header).header().cupsBytesPerLine;
  const double bytes = static_cast<double>(rows) * std::max(header.cupsBytesPerLine, passed);
  if (bytes <= kMostBytes) return true;
  std::fprintf(stderr, "ERROR: Page %u is too large: %.0f bytes, at most %.0f can be printed.\n",
               page, bytes, kMostBytes);
  return false;
}

bool PageLimits::fitsTheModel(unsigned page, const cups_page_header2_t& header) const {
  const double across_dpi = header.HWResolution[0], down_dpi = header.HWResolution[1];
  if (across_dpi <= 0 || down_dpi <= 0 || largest_.longer <= 0) return true;
  const double width = header.cupsWidth, height = header.cupsHeight;
  const bool lies = width * down_dpi > height * across_dpi;
  const auto dots = [](double points, double dpi) {
    return std::floor(kMostSheets * points * dpi / kPointsPerInch);
  };
  const double most_width = dots(lies ? largest_.longer : largest_.shorter, across_dpi);
  const double most_height = dots(lies ? largest_.shorter : largest_.longer, down_dpi);
  if (width <= most_width && height <= most_height) return true;
  std::fprintf(stderr,
               "ERROR: Page %u is too large: %.0f x %.0f dots, twice the model's largest size is "
               "%.0f x %.0f.\n",
               page, width, height, most_width, most_height);
  return false;
}

unsigned limitCopies(unsigned page, unsigned copies) {
  if (copies <= kMostCopies) return copies;
  std::fprintf(stderr, "WARNING: Page %u asks for %u copies: %u are printed.\n", page, copies,
               kMostCopies);
  return kMostCopies;
}
