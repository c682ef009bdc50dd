#include "common/halftone_type.h"

#include <cstring>
#include <iterator>

namespace {

const char* const sHalftoneTypeStrTable[] = {
    "None",   "FloydSteinberg", "Ordered", "Burkes",    "Stucki", "JarvisJudiceNinke",
    "Sierra", "StevensonArce",  "Tattoo",  "Tattoo_X8",
};

}  // namespace

const char* tarvoHalftoneTypeToStr(DitherType type) {
  const auto index = static_cast<std::uint32_t>(type);
  return sHalftoneTypeStrTable[index < std::size(sHalftoneTypeStrTable) ? index : 0];
}

DitherType tarvoHalftoneTypeFromStr(const char* name) {
  for (std::size_t i = 0; i < std::size(sHalftoneTypeStrTable); ++i) {
    if (std::strcmp(name, sHalftoneTypeStrTable[i]) == 0) return static_cast<DitherType>(i);
  }
  return None;
}
