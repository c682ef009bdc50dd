#include "png_file.h"

#include <png.h>

#include <fstream>
#include <iterator>

namespace test {
namespace {

std::uint32_t BigEndian(const std::string& bytes, std::size_t at) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i) value = value << 8 | static_cast<std::uint8_t>(bytes[at + i]);
  return value;
}

}  // namespace

std::uint32_t PngFile::At(std::uint32_t x, std::uint32_t y) const {
  const std::size_t at = 3 * (std::size_t{y} * width + x);
  return static_cast<std::uint32_t>(rgb.at(at) << 16 | rgb.at(at + 1) << 8 | rgb.at(at + 2));
}

PngFile ReadPng(const std::string& path) {
  PngFile file;
  std::ifstream in(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()) == 0) return file;
  image.format = PNG_FORMAT_RGB;
  file.rgb.resize(PNG_IMAGE_SIZE(image));
  if (png_image_finish_read(&image, nullptr, file.rgb.data(), 0, nullptr) == 0) return PngFile();
  file.width = image.width;
  file.height = image.height;
  // The simple reader does not tell the resolution. The chunk: its name, two numbers of pixels,
  // and a 1 when they are those of a metre.
  const std::size_t chunk = bytes.find("pHYs");
  if (chunk != std::string::npos && bytes.at(chunk + 12) == 1) {
    file.pixels_per_metre_x = BigEndian(bytes, chunk + 4);
    file.pixels_per_metre_y = BigEndian(bytes, chunk + 8);
  }
  return file;
}

}  // namespace test
