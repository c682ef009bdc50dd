// A PNG read back with the library's own reader.
#ifndef TARVO_TESTS_TOOLS_PNG_FILE_H_
#define TARVO_TESTS_TOOLS_PNG_FILE_H_

#include <cstdint>
#include <string>
#include <vector>

namespace test {

struct PngFile {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::vector<std::uint8_t> rgb;         // three bytes a pixel, no gap between rows
  std::uint32_t pixels_per_metre_x = 0;  // 0 when the file does not say
  std::uint32_t pixels_per_metre_y = 0;

  /// The pixel as 0xRRGGBB.
  std::uint32_t At(std::uint32_t x, std::uint32_t y) const;
};

/// Reads the file; an empty picture when it is no PNG or is damaged.
PngFile ReadPng(const std::string& path);

}  // namespace test

#endif  // TARVO_TESTS_TOOLS_PNG_FILE_H_
