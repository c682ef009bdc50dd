// What becomes of a page: the rows that rastertotarvo prints straight.
#ifndef TARVO_ALIGN_PAGE_ALIGNMENT_H_
#define TARVO_ALIGN_PAGE_ALIGNMENT_H_

#include <cups/raster.h>

#include <cstdint>

/// Turns the pages that rastertotarvo is made for, 8-bit gray in the colour spaces W, sW and K,
/// into K (0 is paper, 255 is ink) with rows of a multiple of 8 dots. It prints such rows straight,
/// and shears others. Every other page, broken ones included, stays as it is: what to say about it
/// is for the filter that prints.
class PageAlignment {
 public:
  /// For the page of this header, as it came.
  explicit PageAlignment(const cups_page_header2_t& header);

  /// The header of the page that goes on. Width, line length, colour space and number of colours
  /// are those of its rows. The sizes and boxes in points stay: the sheet and what is painted on
  /// it are the same, and the added dots are paper at the right of it.
  const cups_page_header2_t& header() const { return header_; }

  /// Whether rows have to go through alignRow; else they go on as they are.
  bool isNeeded() const { return needed_; }

  /// Makes a row that goes on, of header().cupsBytesPerLine bytes, from one that came. The bytes of
  /// `from` past the page's width are not looked at. REQUIRES: isNeeded().
  void alignRow(const std::uint8_t* from, std::uint8_t* to) const;

 private:
  cups_page_header2_t header_;
  std::uint32_t width_dots_;  ///< as it came
  bool needed_;
  bool complement_;
};

#endif  // TARVO_ALIGN_PAGE_ALIGNMENT_H_
