#include "filter/page_check.h"

#include <cstdint>
#include <limits>

#include "common/log.h"

bool isPrintablePage(const cups_page_header2_s& header) {
  const std::uint64_t pageBytes = std::uint64_t{header.cupsBytesPerLine} * header.cupsHeight;
  if (pageBytes > std::numeric_limits<std::uint32_t>::max()) {
    tarvoLogCommon(3, "Page too large: %u bytes per line, %u lines!", header.cupsBytesPerLine,
                   header.cupsHeight);
    return false;
  }
  if (header.cupsWidth > header.cupsBytesPerLine) {
    tarvoLogCommon(3, "Line too short: %u bytes for %u dots!", header.cupsBytesPerLine,
                   header.cupsWidth);
    return false;
  }
  if (header.HWResolution[0] == 0 || header.HWResolution[1] == 0) {
    tarvoLogCommon(3, "Bad resolution: %u x %u!", header.HWResolution[0], header.HWResolution[1]);
    return false;
  }
  return true;
}
