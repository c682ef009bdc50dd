// The anti-wrinkle frame: four solid bars around a canvas of the paper's printable area, which keep
// the stencil paper from wrinkling as it passes the head.
#include <cstring>

#include "common/log.h"
#include "printer/tarvo_printer.h"

namespace {

/// Printable area of a paper size in hundredths of a millimetre; not the paper's nominal size.
struct PrintableArea {
  const char* name;
  std::uint32_t width;
  std::uint32_t height;
};

constexpr PrintableArea kPrintableAreas[] = {{"A4", 20000, 27500},
                                             {"Letter", 21000, 25700},
                                             {"Tattoo_A5", 20000, 11800},
                                             {"Tattoo_A6", 10000, 11800}};

/// The nearest whole number of dots, from a length in hundredths of a millimetre times the
/// resolution in dots per inch.
std::uint32_t toDots(std::uint32_t lengthTimesDpi) { return (lengthTimesDpi / 254 + 5) / 10; }

struct Size {
  std::int64_t width;
  std::int64_t height;
};

/// Draws filled bars of index 255, row by row.
class BarDrawer {
 public:
  explicit BarDrawer(CxImage& image) : image_(image) {}

  /// The bar covers startX <= x < endX and startY <= y < endY.
  void draw(const char* name, std::int64_t startX, std::int64_t endX, std::int64_t startY,
            std::int64_t endY) {
    std::int64_t y = startY;
    for (; y < endY; ++y) {
      for (x_ = startX; x_ < endX; ++x_) image_.SetPixelIndex(x_, y, 255);
    }
    tarvoLogCommon(0, "EnableAntiWrink: Drawing %s line. point(%d, %d, %d, %d)", name,
                   static_cast<int>(startX), static_cast<int>(startY), static_cast<int>(x_),
                   static_cast<int>(y));
  }

 private:
  CxImage& image_;
  /// Outlives a bar: one without rows logs where the bar before it ended.
  std::int64_t x_ = 0;
};

}  // namespace

void TarvoPrinter::EnableAntiWrink(CxImage& image) {
  if (!image.IsValid() || pageHdr_ == nullptr) {
    tarvoLogCommon(0, "EnableAntiWrink: Image or pageHdr_ is not valid, returning.");
    return;
  }

  const auto dpi = static_cast<std::uint32_t>(resolution_);
  const std::uint32_t lineH = toDots(dpi * 100);
  const std::uint32_t lineV = toDots(static_cast<std::uint32_t>(antiWrinkle_) * 100 * dpi);
  tarvoLogCommon(0, "EnableAntiWrink: AntiWrinkle level: %d, line_v: %d points, line_h: %d points.",
                 antiWrinkle_, static_cast<int>(lineV), static_cast<int>(lineH));

  Size canvas = {0, 0};
  for (const PrintableArea& area : kPrintableAreas) {
    if (std::strcmp(pageHdr_->cupsPageSizeName, area.name) != 0) continue;
    canvas.width = static_cast<std::int32_t>(toDots(dpi * area.width) + 2 * lineV);
    canvas.height = static_cast<std::int32_t>(toDots(dpi * area.height) + 2 * lineH);
    tarvoLogCommon(0, "EnableAntiWrink: Page size is %s, CanvasWidth: %d, CanvasHeight: %d",
                   area.name, static_cast<int>(canvas.width), static_cast<int>(canvas.height));
    break;
  }

  // Quirk: odd-difference. Halves are cut off: the image ends a dot before the frame does.
  std::int64_t marginX = 0;
  std::int64_t marginY = 0;
  if (image.GetWidth() < canvas.width) {
    marginX = (canvas.width - image.GetWidth()) / 2;
    tarvoLogCommon(0, "EnableAntiWrink: Image width is less than canvas width, exPoints: %d",
                   static_cast<int>(marginX));
  }
  if (image.GetHeight() < canvas.height) {
    marginY = (canvas.height - image.GetHeight()) / 2;
    tarvoLogCommon(0, "EnableAntiWrink: Image height is less than canvas height, eyPoints: %d",
                   static_cast<int>(marginY));
  }
  if (marginX != 0 || marginY != 0) {
    constexpr tagRGBQUAD kWhite = {255, 255, 255, 0};
    if (!image.Expand(marginX, marginY, marginX, marginY, kWhite)) {
      tarvoLogCommon(0, "EnableAntiWrink: Failed to expand image, returning.");
      return;
    }
    tarvoLogCommon(0, "EnableAntiWrink: Image expanded successfully.");
  }

  std::int64_t offsetX = 0;
  std::int64_t offsetY = 0;
  if (image.GetWidth() > canvas.width) {
    offsetX = (image.GetWidth() - canvas.width) / 2;
    tarvoLogCommon(0, "EnableAntiWrink: Image width is greater than canvas width, offset.x: %d",
                   static_cast<int>(offsetX));
  }
  if (image.GetHeight() > canvas.height) {
    offsetY = (image.GetHeight() - canvas.height) / 2;
    tarvoLogCommon(0, "EnableAntiWrink: Image height is greater than canvas height, offset.y: %d",
                   static_cast<int>(offsetY));
  }

  const std::int64_t endX = offsetX + canvas.width;
  const std::int64_t endY = offsetY + canvas.height;
  BarDrawer bars(image);
  bars.draw("left", offsetX, offsetX + lineV, offsetY, endY);
  bars.draw("top", offsetX, endX, offsetY, offsetY + lineH);
  bars.draw("right", endX - lineV, endX, offsetY, endY);
  bars.draw("bottom", offsetX, endX, endY - lineH, endY);
}
