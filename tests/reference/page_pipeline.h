#pragma once

#include <cups/raster.h>

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "reference/image8.h"
#include "reference/log.h"
#include "reference/reference.h"

namespace reference {

/// The printer's per-page choices, all that its setters can make of them.
struct PageOptions {
  int halftone = 0;    ///< 0..9
  int brightness = 0;  ///< -100..100
  int contrast = 0;    ///< -100..100; the filter leaves it 0
  bool mirror = false;
  bool negative = false;
  bool rotate_180 = false;          ///< the filter leaves it false
  int anti_wrinkle = 0;             ///< millimetres, 0: no frame; the filter leaves it 0
  unsigned remove_blank_edges = 0;  ///< 2: top, 8: bottom; the filter leaves it 0
  std::uint64_t skip_right = 0;     ///< bytes; the filter leaves it 0
};

/// The printer's images, which outlive a page: a page that cannot be processed prints what the last
/// one left.
struct Printer {
  enum class Processed { None, Working, Tattoo };

  std::optional<Image8> working;  ///< built from the page, halftoned in place
  std::optional<Image8> tattoo;   ///< built from a tattoo halftone
  Processed processed = Processed::None;
  long dump_counter = 0;

  /// The processed image of the last page; null: none, or left empty by a page that failed.
  const Image8* image() const;
};

/// What a page's processing gives.
struct Processing {
  long length = 0;                ///< the returned length, 0 on failure
  std::vector<std::uint8_t> out;  ///< the result buffer, 2 * stride * height bytes
};

/// One gray page to the processed image, left in `printer`. REQUIRES: `lines` holds stride * height
/// bytes and width <= stride.
Processing pageProcess(Printer& printer, const PageOptions& options,
                       const cups_page_header2_t& header, const std::vector<std::uint8_t>& lines,
                       int stride, int width, int height, Log& log);

/// Where a page's output goes, and the time that names its dumps.
struct Sinks {
  std::string& stream;
  std::vector<Dump>& dumps;
  Log& log;
  const std::tm& now;
  bool dumps_can_be_written = true;
  bool keep_pages = true;  ///< false: none is dumped
};

/// One page: counts, dumps, processing, printing.
void printImage(Printer& printer, const PageOptions& options, const Page& page, const Sinks& sinks);

}  // namespace reference
