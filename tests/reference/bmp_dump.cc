#include "reference/bmp_dump.h"

#include "reference/text.h"

namespace reference {

const char* const kDumpFolder = "/var/spool/cups/tmp/";

namespace {

void append16(std::string& file, std::uint32_t value) {
  file.push_back(static_cast<char>(value & 255));
  file.push_back(static_cast<char>(value >> 8 & 255));
}

void append32(std::string& file, std::uint32_t value) {
  append16(file, value & 0xFFFF);
  append16(file, value >> 16);
}

/// The packed line, cut or filled with zeros to the row's length in the file.
std::string packedLine(const std::uint8_t* line, std::uint32_t bytes_per_line,
                       std::uint32_t row_bytes) {
  std::string row;
  unsigned accumulator = 0;
  for (std::uint32_t x = 0; x < bytes_per_line; ++x) {
    if (line[x] == 0) accumulator |= 0x80U >> (x % 8);
    if (x % 8 == 7) {
      row.push_back(static_cast<char>(accumulator));
      accumulator = 0;
    }
  }
  if (bytes_per_line % 8 != 0) {
    row.push_back(static_cast<char>(accumulator | (0xFFU >> (bytes_per_line % 8))));
  }
  row.resize(row_bytes, '\0');
  return row;
}

}  // namespace

std::string dumpName(const std::string& kind, const std::tm& now, long counter) {
  return formatted("%s_%d-%d-%d_%d_%d_%d_%ld.bmp", kind.c_str(), now.tm_year + 1900, now.tm_mon + 1,
                   now.tm_mday, now.tm_hour, now.tm_min, now.tm_sec, counter);
}

std::string bmpFile(const std::vector<std::uint8_t>& data, std::uint32_t bytes_per_line,
                    std::uint32_t height, std::uint32_t width, int bits_per_pixel) {
  const bool gray = bits_per_pixel == 8;
  const std::uint32_t row_bytes = ((gray ? width : (width + 7) / 8) + 3) / 4 * 4;
  const std::uint32_t image_bytes = row_bytes * height;
  const std::uint32_t offset = gray ? 1078 : 62;

  std::string file = "BM";
  append32(file, offset + image_bytes);
  append16(file, 0);
  append16(file, 0);
  append32(file, offset);
  append32(file, 40);
  append32(file, width);
  append32(file, height);
  append16(file, 1);
  append16(file, gray ? 8 : 1);
  append32(file, 0);
  append32(file, image_bytes);
  append32(file, 0);
  append32(file, 0);
  append32(file, gray ? 256 : 0);
  append32(file, gray ? 256 : 0);

  if (gray) {
    for (std::uint32_t i = 0; i < 256; ++i) append32(file, i << 16 | i << 8 | i);
    const std::size_t pixels = static_cast<std::size_t>(width) * height;
    file.append(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(pixels));
    return file;
  }
  if (bits_per_pixel == 1) {
    append32(file, 0x00000000);
    append32(file, 0x00FFFFFF);
  }
  for (std::uint32_t y = height; y-- > 0;) {
    const std::size_t start = static_cast<std::size_t>(y) * bytes_per_line;
    file += packedLine(data.data() + start, bytes_per_line, row_bytes);
  }
  return file;
}

}  // namespace reference
