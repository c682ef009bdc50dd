// How large a page's label is in dots. The stream says it in millimetres with one decimal, and how
// many dots an inch holds it does not say at all.
#ifndef TARVO_TSPL_LABEL_H_
#define TARVO_TSPL_LABEL_H_

#include <cstdint>
#include <optional>

#include "tspl/reader.h"

namespace tspl {

/// A label in dots. Its sizes are at least 1.
struct Label {
  double dpi_x;  // 0 when it cannot be told
  double dpi_y;  // likewise
  std::uint64_t width_dots;
  std::uint64_t height_dots;
};

/// The label that `page` is printed on; none when the page has no dots (no BITMAP, or one that is
/// zero bytes wide or zero dots high).
///
/// With `dpi`, which must be above 0, the label is as large as SIZE says at that resolution.
/// Without it the resolution is the first that makes SIZE out of the page's dots in both
/// directions, to its one decimal: 203, 300, 600, some less usual ones, and then what the page's
/// dots make of SIZE. A page that no square dot fits gets a resolution for each direction.
///
/// Where SIZE leaves several numbers of dots open, the label is as large as its BITMAP; its width
/// can be up to 7 dots less than the BITMAP's, whose rows are whole bytes.
std::optional<Label> MeasureLabel(const Page& page, std::optional<int> dpi);

}  // namespace tspl

#endif  // TARVO_TSPL_LABEL_H_
