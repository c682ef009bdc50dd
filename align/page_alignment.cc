#include "align/page_alignment.h"

#include <algorithm>
#include <limits>

#include "common/enumeration.h"

namespace {

constexpr std::uint32_t kDotsOfARow = 8;

bool isWhiteAtTheTop(unsigned space) { return space == CUPS_CSPACE_W || space == CUPS_CSPACE_SW; }

/// 8 bits of one gray, and lines that hold their dots.
bool isGray(const cups_page_header2_t& header) {
  const unsigned space = tarvoBitsOf(header.cupsColorSpace);
  return header.cupsBitsPerColor == 8 && header.cupsBitsPerPixel == 8 &&
         header.cupsNumColors <= 1 && (space == CUPS_CSPACE_K || isWhiteAtTheTop(space)) &&
         header.cupsWidth > 0 && header.cupsWidth <= header.cupsBytesPerLine &&
         header.cupsWidth <= std::numeric_limits<std::uint32_t>::max() - (kDotsOfARow - 1);
}

}  // namespace

PageAlignment::PageAlignment(const cups_page_header2_t& header)
    : header_(header),
      width_dots_(header.cupsWidth),
      needed_(isGray(header)),
      complement_(isWhiteAtTheTop(tarvoBitsOf(header.cupsColorSpace))) {
  if (!needed_) return;
  header_.cupsWidth = (width_dots_ + kDotsOfARow - 1) / kDotsOfARow * kDotsOfARow;
  header_.cupsBytesPerLine = header_.cupsWidth;
  header_.cupsColorSpace = CUPS_CSPACE_K;
  header_.cupsNumColors = 1;
}

void PageAlignment::alignRow(const std::uint8_t* from, std::uint8_t* to) const {
  std::uint8_t* end = complement_ ? std::transform(from, from + width_dots_, to,
                                                   [](std::uint8_t white) {
                                                     return static_cast<std::uint8_t>(255 - white);
                                                   })
                                  : std::copy_n(from, width_dots_, to);
  std::fill(end, to + header_.cupsBytesPerLine, std::uint8_t{0});
}
