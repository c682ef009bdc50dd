#include "results.h"

#include <array>
#include <fstream>

namespace results {

namespace {

constexpr std::array<const char*, 10> kHalftones = {
    "None",   "FloydSteinberg", "Ordered",   "Burkes", "Stucki",
    "Jarvis", "Sierra",         "Stevenson", "Tattoo", "Tattoo_X8"};

/// The level of the dot at (x, y) of a page of that size.
using Drawing = std::uint8_t (*)(int x, int y, int width, int height);

/// Dark to light, left to right, with a gentler slope down the page.
std::uint8_t gradient(int x, int y, int width, int height) {
  return static_cast<std::uint8_t>((x * 192 / width) + (y * 63 / height));
}

/// Any level anywhere: the position, scrambled.
std::uint8_t noise(int x, int y, int /*width*/, int /*height*/) {
  std::uint32_t bits = static_cast<std::uint32_t>(x) * 0x9E3779B1u +
                       static_cast<std::uint32_t>(y) * 0x85EBCA77u + 0xC2B2AE3Du;
  bits ^= bits >> 15;
  bits *= 0x2C1B3C6Du;
  bits ^= bits >> 12;
  bits *= 0x297A2D39u;
  bits ^= bits >> 15;
  return static_cast<std::uint8_t>(bits);
}

/// What a scanned page of writing holds: dark bars and slanted strokes with soft edges on paper
/// that is not quite white.
std::uint8_t strokes(int x, int y, int /*width*/, int /*height*/) {
  const int row = y % 24;
  if (row >= 18) return static_cast<std::uint8_t>(250 - (x + y) % 3);
  const int fromStroke = (x + row / 3) % 11;
  if (fromStroke == 0 || fromStroke == 3) return 120;
  if (fromStroke < 3) return static_cast<std::uint8_t>(8 + noise(x, y, 0, 0) % 16);
  return row % 9 < 2 && x % 37 < 30 ? 30 : 245;
}

std::uint8_t white(int, int, int, int) { return 255; }
std::uint8_t black(int, int, int, int) { return 0; }
std::uint8_t middle(int, int, int, int) { return 128; }

Page draw(const char* name, Drawing drawing, int width, int height, int gap = 0) {
  Page page;
  page.name = std::string(name) + "-" + std::to_string(width) + "x" + std::to_string(height);
  if (gap != 0) page.name += "+" + std::to_string(gap);
  page.width = width;
  page.height = height;
  page.stride = width + gap;
  page.bytes.reserve(static_cast<std::size_t>(page.stride) * static_cast<std::size_t>(height));
  for (int y = 0; y < height; ++y) {
    // The gap belongs to no dot: it is filled, so that whoever reads it is seen.
    for (int x = 0; x < page.stride; ++x) {
      page.bytes.push_back(x < width ? drawing(x, y, width, height) : noise(x, y, 0, 0));
    }
  }
  return page;
}

}  // namespace

std::vector<Page> pages() {
  return {draw("noise", noise, 1, 1),          draw("middle", middle, 5, 3),
          draw("noise", noise, 7, 45),         draw("gradient", gradient, 33, 17),
          draw("noise", noise, 33, 17),        draw("white", white, 33, 17),
          draw("black", black, 33, 17),        draw("noise", noise, 30, 17, 7),
          draw("gradient", gradient, 203, 64), draw("noise", noise, 203, 64),
          draw("strokes", strokes, 203, 64),   draw("gradient", gradient, 812, 300),
          draw("strokes", strokes, 812, 300)};
}

std::vector<Options> everyOption() {
  std::vector<Options> all;
  for (int halftone = 0; halftone < static_cast<int>(kHalftones.size()); ++halftone) {
    for (const bool mirror : {false, true}) {
      for (const bool negative : {false, true}) {
        for (const int brightness : {-37, 0, 20}) {
          all.push_back({halftone, mirror, negative, brightness});
        }
      }
    }
  }
  return all;
}

void Hash::add(const std::uint8_t* bytes, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) state_ = (state_ ^ bytes[i]) * 0x100000001b3;
}

std::string Hash::text() const {
  std::string digits;
  for (int shift = 60; shift >= 0; shift -= 4) digits += "0123456789abcdef"[state_ >> shift & 15];
  return digits;
}

std::string line(const Page& page, const Options& options, const Hash& hash) {
  return page.name + " " + kHalftones.at(static_cast<std::size_t>(options.halftone)) +
         (options.mirror ? ",mirror" : "") + (options.negative ? ",negative" : "") + "," +
         std::to_string(options.brightness) + " " + hash.text();
}

std::string dumpLine(const Page& page, int bitsPerPixel, const Hash& hash) {
  return page.name + " dump" + std::to_string(bitsPerPixel) + " " + hash.text();
}

std::vector<std::string> linesOf(const std::string& path) {
  std::ifstream file(path);
  std::vector<std::string> lines;
  for (std::string text; std::getline(file, text);) lines.push_back(text);
  return lines;
}

}  // namespace results
