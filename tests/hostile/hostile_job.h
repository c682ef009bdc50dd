// Runs jobs whose page headers lie, and judges what came of them.
#ifndef TARVO_TESTS_HOSTILE_HOSTILE_JOB_H_
#define TARVO_TESTS_HOSTILE_HOSTILE_JOB_H_

#include <cups/raster.h>

#include <cstdint>
#include <string>
#include <vector>

#include "support/raster.h"

namespace hostile {

/// What every hostile job may map.
inline constexpr std::uint64_t kAddressSpaceBytes = std::uint64_t{512} << 20U;

/// A raster of a page with this header over the pixels of the good page (16 x 2 dots, a row of ink
/// and a row of every other dot), and the good page after it.
std::string rasterOf(const cups_page_header2_t& header, support::Packing packing);

/// The pages that libcups finds in a raster: those whose pixels are not all there have none. Ends
/// with a page that no filter can print.
std::vector<support::Page> pagesOf(const std::string& raster);

/// Runs the filter on the raster with kAddressSpaceBytes and compares all that it leaves with the
/// reference. A stream that a printer can't read to its end, as one that ends in a bitmap, is wrong
/// too. Empty when nothing is.
std::string whatIsWrong(const std::string& raster);

}  // namespace hostile

#endif  // TARVO_TESTS_HOSTILE_HOSTILE_JOB_H_
