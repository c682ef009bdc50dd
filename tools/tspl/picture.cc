#include "tspl/picture.h"

#include <png.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csetjmp>
#include <cstring>
#include <vector>

namespace tspl {
namespace {

// The longest side of a picture that programs with libpng's own limits read.
constexpr std::uint64_t kMostSide = 1000000;

// How large a picture may be when its dots do not make it so: beyond that, a wrong SIZE would cost
// minutes and gigabytes.
constexpr std::uint64_t kMostUnbackedPixels = 1U << 30;

constexpr double kInchesPerMetre = 1.0 / 0.0254;

enum Colour : png_byte { kInkColour, kPaperColour, kEdgeColour, kTableColour, kStrayColour };

constexpr png_color kPalette[] = {
    {kInk, kInk, kInk},
    {kPaper, kPaper, kPaper},
    {kEdge, kEdge, kEdge},
    {kTable, kTable, kTable},
    {kStrayInk[0], kStrayInk[1], kStrayInk[2]},
};

std::uint64_t BitmapWidth(const Page& page) { return std::uint64_t{page.bitmap->width_bytes} * 8; }

// Paints the picture row by row, from the top.
class Painter {
 public:
  Painter(const Page& page, const Label& label)
      : page_(page), label_(label), layout_(LayOut(page, label)) {
    row_.resize(layout_.width);
  }

  const Layout& layout() const { return layout_; }

  // The row's colours, one a byte; good until the next call.
  const png_byte* Row(std::uint64_t y) {
    const std::uint64_t left = layout_.label_left;
    const std::uint64_t right = left + label_.width_dots;
    const std::uint64_t top = layout_.label_top;
    const std::uint64_t bottom = top + label_.height_dots;
    std::fill(row_.begin(), row_.end(), kTableColour);
    if (y + 1 == top || y == bottom) Fill(left - 1, right + 1, kEdgeColour);
    if (y >= top && y < bottom) {
      Fill(left, right, kPaperColour);
      row_[left - 1] = row_[right] = kEdgeColour;
    }
    // Rows above the label, or below a turned one, are no dots of the page.
    const std::uint64_t line = page_.rotated ? bottom - 1 - y : y - top;
    if (page_.rotated ? y < bottom : y >= top) Ink(line);
    return row_.data();
  }

 private:
  void Fill(std::uint64_t from, std::uint64_t to, Colour colour) {
    std::fill(row_.data() + from, row_.data() + to, colour);
  }

  // Row `line` of the bitmap, if it has one.
  void Ink(std::uint64_t line) {
    const Bitmap& bitmap = *page_.bitmap;
    if (line >= bitmap.height_dots) return;
    const auto dots = bitmap.data.subspan(line * bitmap.width_bytes, bitmap.width_bytes);
    const std::uint64_t last = layout_.label_left + label_.width_dots - 1;
    for (std::uint64_t byte = 0; byte < dots.size(); ++byte) {
      if (dots[byte] == 0xFF) continue;
      for (std::uint64_t x = byte * 8; x < byte * 8 + 8; ++x) {
        if ((dots[byte] >> (7 - x % 8) & 1) != 0) continue;
        const bool on_label = line < label_.height_dots && x < label_.width_dots;
        row_[page_.rotated ? last - x : layout_.label_left + x] =
            on_label ? kInkColour : kStrayColour;
      }
    }
  }

  const Page& page_;
  const Label& label_;
  Layout layout_;
  std::vector<png_byte> row_;
};

bool TooLarge(const Page& page, const Layout& layout) {
  if (layout.width > kMostSide || layout.height > kMostSide) return true;
  const std::uint64_t backed =
      (BitmapWidth(page) + 2 * kMarginPixels) * (page.bitmap->height_dots + 2 * kMarginPixels);
  return layout.width * layout.height > std::max(backed, kMostUnbackedPixels);
}

png_uint_32 PixelsPerMetre(double dpi) {
  return static_cast<png_uint_32>(std::lround(std::min(dpi * kInchesPerMetre, 2e9)));
}

[[noreturn]] void OnError(png_structp png, png_const_charp message) {
  static_cast<std::string*>(png_get_error_ptr(png))->assign(message);
  png_longjmp(png, 1);
}

void OnWarning(png_structp, png_const_charp) {}

// As libpng writes to a file itself, but with the reason when that fails.
void OnWrite(png_structp png, png_bytep bytes, std::size_t size) {
  std::FILE* const file = static_cast<std::FILE*>(png_get_io_ptr(png));
  if (std::fwrite(bytes, 1, size, file) != size) png_error(png, std::strerror(errno));
}

void OnFlush(png_structp) {}

bool Objects(const Objection& objection, std::string& error) {
  if (objection) error = objection();
  return !error.empty();
}

// Puts why it failed into `error`. libpng leaves this function by a jump when it fails, so nothing
// in it may need a destructor.
void WriteAll(png_structp png, png_infop info, const Label& label, Painter& painter,
              const Objection& objection, std::string& error) {
  // NOLINTNEXTLINE(cert-err52-cpp): a C library knows no other way out.
  if (setjmp(png_jmpbuf(png))) return;
  const auto width = static_cast<png_uint_32>(painter.layout().width);
  const auto height = static_cast<png_uint_32>(painter.layout().height);
  png_set_IHDR(png, info, width, height, 4, PNG_COLOR_TYPE_PALETTE, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_set_PLTE(png, info, kPalette, static_cast<int>(std::size(kPalette)));
  if (label.dpi_x > 0 && label.dpi_y > 0) {
    png_set_pHYs(png, info, PixelsPerMetre(label.dpi_x), PixelsPerMetre(label.dpi_y),
                 PNG_RESOLUTION_METER);
  }
  png_write_info(png, info);
  png_set_packing(png);
  for (png_uint_32 y = 0; y < height && !Objects(objection, error); ++y) {
    png_write_row(png, painter.Row(y));
  }
  if (!error.empty()) return;
  png_write_end(png, info);
  Objects(objection, error);
}

}  // namespace

Layout LayOut(const Page& page, const Label& label) {
  const std::uint64_t width = BitmapWidth(page);
  const std::uint64_t height = page.bitmap->height_dots;
  const std::uint64_t beyond_x = width > label.width_dots ? width - label.width_dots : 0;
  const std::uint64_t beyond_y = height > label.height_dots ? height - label.height_dots : 0;
  // One pixel of table stays visible beside stray ink.
  const std::uint64_t wide_x = std::max(kMarginPixels, beyond_x + 1);
  const std::uint64_t wide_y = std::max(kMarginPixels, beyond_y + 1);
  Layout layout{};
  layout.width = label.width_dots + kMarginPixels + wide_x;
  layout.height = label.height_dots + kMarginPixels + wide_y;
  layout.label_left = page.rotated ? wide_x : kMarginPixels;
  layout.label_top = page.rotated ? wide_y : kMarginPixels;
  return layout;
}

std::string WritePicture(const Page& page, const Label& label, std::FILE* file,
                         const Objection& objection) {
  if (TooLarge(page, LayOut(page, label))) {
    return "a label of " + std::to_string(label.width_dots) + " x " +
           std::to_string(label.height_dots) + " dots is too large to draw";
  }
  Painter painter(page, label);
  std::string error;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &error, OnError, OnWarning);
  png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
  if (info == nullptr) {
    error = "no memory for the picture";
  } else {
    png_set_write_fn(png, file, OnWrite, OnFlush);
    WriteAll(png, info, label, painter, objection, error);
  }
  png_destroy_write_struct(&png, &info);
  return error;
}

}  // namespace tspl
