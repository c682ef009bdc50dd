#include "ppd/ppd_sheet.h"

#include <algorithm>

namespace {

void widen(PpdSheet& sheet, float width, float length) {
  if (!(width > 0 && length > 0)) return;
  sheet.shorter = std::max(sheet.shorter, static_cast<double>(std::min(width, length)));
  sheet.longer = std::max(sheet.longer, static_cast<double>(std::max(width, length)));
}

}  // namespace

PpdSheet tarvoPpdLargestSheet(const ppd_file_s* ppd) {
  PpdSheet largest;
  if (ppd == nullptr) return largest;
  for (int i = 0; i < ppd->num_sizes; ++i) {
    widen(largest, ppd->sizes[i].width, ppd->sizes[i].length);
  }
  if (ppd->variable_sizes != 0) widen(largest, ppd->custom_max[0], ppd->custom_max[1]);
  return largest;
}
