// Raster files, written byte by byte and read back through libcups.
#ifndef TARVO_TESTS_FUZZ_RASTER_BYTES_H_
#define TARVO_TESTS_FUZZ_RASTER_BYTES_H_

#include <cups/raster.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "support/raster.h"

namespace fuzz {

struct RasterForm {
  int version;   ///< 1, with its shorter header, 2, which packs its rows, or 3
  bool swapped;  ///< in the byte order of other machines
};

inline constexpr std::array<RasterForm, 6> kRasterForms = {
    {{3, false}, {2, false}, {1, false}, {3, true}, {2, true}, {1, true}}};

/// The pages as a raster file, their headers as they are, whether libcups would write them or not.
/// In version 2 the rows of a page whose header and pixels disagree are not packed.
std::string rasterBytes(const std::vector<support::Page>& pages, RasterForm form);

/// Sets the `index`th 32 bits of the header.
void setField(cups_page_header2_t& header, std::size_t index, std::uint32_t value);

/// Whether a page with this header has pixels that the filter reads; all others end the job.
bool isReadable(const cups_page_header2_t& header);

/// Reads a raster file as libcups does.
class RasterReader {
 public:
  explicit RasterReader(const std::string& raster);
  RasterReader(const RasterReader&) = delete;
  RasterReader& operator=(const RasterReader&) = delete;

  /// Goes to the next page. False at the end.
  bool next();
  const cups_page_header2_t& header() const { return header_; }

  /// The pixels of the page, or the first `most` bytes of them; none when they are not all there.
  /// Call it once for a page.
  std::vector<std::uint8_t> pixels(std::uint64_t most);

  /// How many rows the page has, those of one plane after those of another.
  std::uint64_t rows() const;

  /// Passes over a row, or the first `most` bytes of one that is longer. False when it isn't all
  /// there. Not on a page whose pixels were read.
  bool row(std::uint64_t most);

 private:
  std::string_view left_;
  support::RasterStream raster_;
  cups_page_header2_t header_{};
};

}  // namespace fuzz

#endif  // TARVO_TESTS_FUZZ_RASTER_BYTES_H_
