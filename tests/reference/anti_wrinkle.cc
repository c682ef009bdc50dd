#include "reference/anti_wrinkle.h"

#include "reference/geometry.h"

namespace reference {

namespace {

struct Offset {
  std::int64_t x = 0;
  std::int64_t y = 0;
};

/// Fills the bars in turn. The column counter lives from bar to bar: a bar without rows leaves it
/// where the one before it did, and the log shows it.
class BarPainter {
 public:
  BarPainter(Image8& image, Log& log) : image_(image), log_(log) {}

  void draw(const char* name, std::int64_t x_begin, std::int64_t x_end, std::int64_t y_begin,
            std::int64_t y_end) {
    const auto start_x = static_cast<std::int32_t>(x_begin);
    const auto start_y = static_cast<std::int32_t>(y_begin);
    std::int32_t row = start_y;
    for (; row < y_end; ++row) {
      for (column_ = start_x; column_ < x_end; ++column_) image_.setIfInside(column_, row, 255);
    }
    log_.line(0, "EnableAntiWrink: Drawing %s line. point(%d, %d, %d, %d)", name, start_x, start_y,
              column_, row);
  }

 private:
  Image8& image_;
  Log& log_;
  std::int32_t column_ = 0;
};

}  // namespace

std::uint32_t dotsOf(std::uint32_t hundredths_mm) {
  return (kFrameResolution * hundredths_mm / 254 + 5) / 10;
}

std::uint32_t verticalBarDots(int level) {
  return (static_cast<std::uint32_t>(level) * 100 * kFrameResolution / 254 + 5) / 10;
}

std::uint32_t horizontalBarDots() { return (kFrameResolution * 100 / 254 + 5) / 10; }

std::optional<Canvas> canvasOf(const std::string& page_size_name, int level) {
  std::uint32_t content_width = 0;
  std::uint32_t content_height = 0;
  if (page_size_name == "A4") {
    content_width = dotsOf(20000);
    content_height = dotsOf(27500);
  } else if (page_size_name == "Letter") {
    content_width = dotsOf(21000);
    content_height = dotsOf(25700);
  } else if (page_size_name == "Tattoo_A5") {
    content_width = dotsOf(20000);
    content_height = dotsOf(11800);
  } else if (page_size_name == "Tattoo_A6") {
    content_width = dotsOf(10000);
    content_height = dotsOf(11800);
  } else {
    return std::nullopt;
  }
  return Canvas{content_width + 2 * verticalBarDots(level),
                content_height + 2 * horizontalBarDots()};
}

Image8 antiWrinkleFrame(const Image8& image, const std::string& page_size_name, int level,
                        Log& log) {
  const std::uint32_t line_h = horizontalBarDots();
  const std::uint32_t line_v = verticalBarDots(level);
  log.line(0, "EnableAntiWrink: AntiWrinkle level: %d, line_v: %d points, line_h: %d points.",
           level, static_cast<int>(line_v), static_cast<int>(line_h));

  const std::optional<Canvas> listed = canvasOf(page_size_name, level);
  if (listed) {
    log.line(0, "EnableAntiWrink: Page size is %s, CanvasWidth: %d, CanvasHeight: %d",
             page_size_name.c_str(), static_cast<int>(listed->width),
             static_cast<int>(listed->height));
  }
  const Canvas canvas = listed.value_or(Canvas{});
  const int canvas_width = static_cast<int>(canvas.width);
  const int canvas_height = static_cast<int>(canvas.height);

  int ex = 0;
  int ey = 0;
  if (image.width < canvas_width) {
    ex = (canvas_width - image.width) / 2;
    log.line(0, "EnableAntiWrink: Image width is less than canvas width, exPoints: %d", ex);
  }
  if (image.height < canvas_height) {
    ey = (canvas_height - image.height) / 2;
    log.line(0, "EnableAntiWrink: Image height is less than canvas height, eyPoints: %d", ey);
  }

  Image8 framed = image;
  if (ex != 0 || ey != 0) {
    const std::optional<Image8> expanded = expand(image, ex, ey, ex, ey, {255, 255, 255, 0});
    if (!expanded) {
      log.line(0, "EnableAntiWrink: Failed to expand image, returning.");
      return image;
    }
    framed = *expanded;
    log.line(0, "EnableAntiWrink: Image expanded successfully.");
  }

  Offset offset;
  if (framed.width > canvas_width) {
    offset.x = (framed.width - canvas_width) / 2;
    log.line(0, "EnableAntiWrink: Image width is greater than canvas width, offset.x: %d",
             static_cast<int>(offset.x));
  }
  if (framed.height > canvas_height) {
    offset.y = (framed.height - canvas_height) / 2;
    log.line(0, "EnableAntiWrink: Image height is greater than canvas height, offset.y: %d",
             static_cast<int>(offset.y));
  }

  const std::int64_t right = offset.x + canvas_width;
  const std::int64_t bottom = offset.y + canvas_height;
  BarPainter painter(framed, log);
  painter.draw("left", offset.x, offset.x + line_v, offset.y, bottom);
  painter.draw("top", offset.x, right, offset.y, offset.y + line_h);
  painter.draw("right", right - line_v, right, offset.y, bottom);
  painter.draw("bottom", offset.x, right, bottom - line_h, bottom);
  return framed;
}

}  // namespace reference
