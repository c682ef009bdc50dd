#include "reference/trace.h"

#include "reference/text.h"

namespace reference {

std::string traceLine(const cups_page_header2_t& header) {
  return formatted("cupsWidth:%d, cupsHeight:%d, cupsBytesPerLine:%d, cupsBitsPerPixel:%d\n",
                   static_cast<int>(header.cupsWidth), static_cast<int>(header.cupsHeight),
                   static_cast<int>(header.cupsBytesPerLine),
                   static_cast<int>(header.cupsBitsPerPixel));
}

}  // namespace reference
