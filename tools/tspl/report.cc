#include "tspl/report.h"

#include <zlib.h>

#include <cinttypes>
#include <cstdio>

namespace tspl {
namespace {

constexpr std::size_t kOffsetColumn = 10;

std::string Millimetres(std::int64_t tenths) {
  return std::to_string(tenths / 10) + '.' + std::to_string(tenths % 10);
}

std::string Hex32(std::uint32_t value) {
  char text[9];
  std::snprintf(text, sizeof text, "%08" PRIx32, value);
  return text;
}

// A BITMAP's size in dots; its rows are whole bytes, so that a page can be up to 7 dots narrower.
std::string Dots(const Bitmap& bitmap) {
  return std::to_string(std::uint64_t{bitmap.width_bytes} * 8) + " x " +
         std::to_string(bitmap.height_dots) + " dots";
}

std::string Crc32(std::span<const std::uint8_t> data) {
  return Hex32(
      static_cast<std::uint32_t>(crc32_z(crc32_z(0, nullptr, 0), data.data(), data.size())));
}

// A resolution to one decimal, and none when it is whole: what was computed from SIZE seldom is.
std::string PerInch(double dpi) {
  if (dpi <= 0) return "unknown";
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", dpi);
  const std::string decimal = text;
  return decimal.ends_with(".0") ? decimal.substr(0, decimal.size() - 2) : decimal;
}

std::string Dpi(const Label& label) {
  if (label.dpi_x == label.dpi_y) return PerInch(label.dpi_x) + " dpi";
  return PerInch(label.dpi_x) + " x " + PerInch(label.dpi_y) + " dpi";
}

std::string Copies(std::int32_t copies) {
  return std::to_string(copies) + (copies == 1 ? " copy" : " copies");
}

// A page that is complete but for its dots is one whose pixels the filter could not read; any
// other is cut off by the end of the stream.
std::string WhyNotPrinted(Kind last) {
  switch (last) {
    case Kind::kCls:
      return "not printed: no BITMAP follows its CLS";
    case Kind::kBitmap:
      return "not printed: the stream ends before PRINT";
    default:
      return "not printed: the stream ends after " + std::string(Name(last));
  }
}

}  // namespace

std::string CommandLine(const Command& command, const Page* page) {
  std::string line = std::to_string(command.offset);
  if (line.size() < kOffsetColumn) line.insert(0, kOffsetColumn - line.size(), ' ');
  line += "  ";
  line += command.kind == Kind::kPreamble ? Name(command.kind) : command.text;
  if (command.kind == Kind::kBitmap) {
    const Bitmap& bitmap = *page->bitmap;
    line += "  " + Dots(bitmap) + ", " + std::to_string(bitmap.data.size()) + " bytes, CRC-32 " +
            Crc32(bitmap.data);
  }
  return line;
}

std::string PageLine(const Page& page, const Command& last, const std::optional<Label>& label) {
  std::string line =
      Millimetres(page.width_tenths_mm) + " x " + Millimetres(page.height_tenths_mm) + " mm";
  if (page.bitmap) line += ", " + Dots(*page.bitmap);
  if (label) line += " at " + Dpi(*label);
  if (page.rotated) line += ", turned by 180 degrees";
  line += page.copies ? ", " + Copies(*page.copies) : ", " + WhyNotPrinted(last.kind);
  return line;
}

std::string MalformedLine(const Malformed& wrong) {
  return "byte " + std::to_string(wrong.offset) + ": expected " + wrong.expected + ", found " +
         wrong.found;
}

}  // namespace tspl
