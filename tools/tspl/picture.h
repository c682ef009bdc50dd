// Draws a page as the label that comes out of the printer.
#ifndef TARVO_TSPL_PICTURE_H_
#define TARVO_TSPL_PICTURE_H_

#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>

#include "tspl/label.h"
#include "tspl/reader.h"

namespace tspl {

/// Pixels around the label, on each of its four sides: the innermost one is its edge, the others
/// are the table that it lies on. A side that the page's dots go beyond is wider.
constexpr std::uint64_t kMarginPixels = 16;

/// Gray levels of the picture, and the red of ink that misses the label.
constexpr std::uint8_t kInk = 0x00;
constexpr std::uint8_t kPaper = 0xFF;
constexpr std::uint8_t kEdge = 0x80;
constexpr std::uint8_t kTable = 0xD8;
constexpr std::uint8_t kStrayInk[3] = {0xE0, 0x00, 0x00};

/// Where things lie in the picture of a page, in pixels, one pixel a dot.
struct Layout {
  std::uint64_t width;  // of the picture
  std::uint64_t height;
  std::uint64_t label_left;  // the label's upper left corner
  std::uint64_t label_top;
};

/// The layout of `page` on `label`. REQUIRES: the page has a bitmap.
///
/// Dot (0,0), the first of the BITMAP, lies at the label's upper left corner, which is pixel
/// (kMarginPixels, kMarginPixels) unless dots go beyond the label. A page with DIRECTION 1 comes
/// out of the printer turned by 180 degrees, and is drawn so: dot (0,0) lies at the label's lower
/// right corner, and rows go from right to left, the first one lowest.
Layout LayOut(const Page& page, const Label& label);

/// Asked before each row of a picture and behind the last one. Returns why it is not to be drawn
/// on, or an empty text. May not throw.
using Objection = std::function<std::string()>;

/// Writes the page as a PNG with a palette to `file`, which stays the caller's and is not flushed,
/// and returns an empty text; or returns why that failed, with the file half written. `label` is
/// what MeasureLabel() gave for this page; its resolution goes into the file when it is known.
/// Memory is a few rows of the picture. A picture of more than a million pixels a side is refused,
/// and so is one that a wrong SIZE makes so large that drawing it would hardly end.
std::string WritePicture(const Page& page, const Label& label, std::FILE* file,
                         const Objection& objection = {});

}  // namespace tspl

#endif  // TARVO_TSPL_PICTURE_H_
