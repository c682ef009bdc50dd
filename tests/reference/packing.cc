#include "reference/packing.h"

#include "reference/text.h"

namespace reference {

std::string packedDots(const std::uint8_t* row, int width) {
  std::string packed;
  unsigned accumulator = 0;
  for (int x = 0; x < width; ++x) {
    if (row[x] == 0) accumulator |= 1U << (7 - x % 8);
    if (x % 8 == 7) {
      packed.push_back(static_cast<char>(accumulator));
      accumulator = 0;
    }
  }
  if (width % 8 != 0) packed.push_back(static_cast<char>(accumulator | (255U >> (width % 8))));
  return packed;
}

std::string printCommands(const Image8& image, std::uint32_t copies) {
  std::string stream =
      formatted("BITMAP %d,%d,%d,%d,%d,", 0, 0, (image.width + 7) / 8, image.height, 0);
  for (int y = 0; y < image.height; ++y) {
    const std::size_t start = static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width);
    stream += packedDots(image.bytes.data() + start, image.width);
  }
  stream += "\r\n";
  stream += formatted("PRINT %d,%d\r\n", 1, static_cast<int>(copies));
  return stream;
}

std::vector<std::uint8_t> grayToMono(const std::vector<std::uint8_t>& buffer, int bytes_per_line,
                                     int height, std::uint64_t skip_right) {
  int row_pixels = bytes_per_line;
  if (skip_right != 0 && skip_right < static_cast<std::uint64_t>(bytes_per_line)) {
    row_pixels = bytes_per_line - static_cast<int>(skip_right);
  }
  std::vector<std::uint8_t> packed;
  for (int y = 0; y < height; ++y) {
    unsigned accumulator = 0;
    for (int x = 0; x < row_pixels; ++x) {
      const std::size_t line =
          static_cast<std::size_t>(y) * static_cast<std::size_t>(bytes_per_line);
      if (buffer[line + static_cast<std::size_t>(x)] != 0) accumulator |= 0x80U >> (x % 8);
      if (x % 8 == 7) {
        packed.push_back(static_cast<std::uint8_t>(accumulator));
        accumulator = 0;
      }
    }
    if (row_pixels % 8 != 0) packed.push_back(static_cast<std::uint8_t>(accumulator));
  }
  return packed;
}

std::vector<std::uint8_t> processedPixels(const Image8& image, int stride, bool negative) {
  std::vector<std::uint8_t> out(
      static_cast<std::size_t>(stride) * static_cast<std::size_t>(image.height), 0);
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      std::uint8_t value = image.at(x, y);
      if (value == 1) value = 255;
      if (negative) value = static_cast<std::uint8_t>(255 - value);
      out[static_cast<std::size_t>(y) * static_cast<std::size_t>(stride) +
          static_cast<std::size_t>(x)] = value;
    }
  }
  return out;
}

}  // namespace reference
