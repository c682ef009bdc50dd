// The halftone types that a job can ask for, and their names.
#ifndef TARVO_COMMON_HALFTONE_TYPE_H_
#define TARVO_COMMON_HALFTONE_TYPE_H_

#include <cstdint>

/// The halftone type of a job: the position of its name in the table of names.
///
/// The value is handed unchanged to CxImage::Dither as its method number, and Dither numbers its
/// methods in its own order: most names run another technique than the one they name.
/// Quirk: halftone-names.
enum DitherType : std::int32_t {
  None = 0,
  FloydSteinberg = 1,
  Ordered = 2,
  Burkes = 3,
  Stucki = 4,
  JarvisJudiceNinke = 5,
  Sierra = 6,
  StevensonArce = 7,
  Tattoo = 8,
  Tattoo_X8 = 9,
};

extern "C" {

/// The name of `type`; a value of 10 or more gives "None". REQUIRES: type >= 0.
const char* tarvoHalftoneTypeToStr(DitherType type);

/// The type whose name equals `name` exactly (whole text, case-sensitive); no match gives None.
/// REQUIRES: name is not null.
DitherType tarvoHalftoneTypeFromStr(const char* name);

}  // extern "C"

#endif  // TARVO_COMMON_HALFTONE_TYPE_H_
