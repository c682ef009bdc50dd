#include "align_run.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

ssize_t readString(void* context, unsigned char* bytes, std::size_t size) {
  std::string_view& left = *static_cast<std::string_view*>(context);
  const std::size_t count = std::min(size, left.size());
  std::memcpy(bytes, left.data(), count);
  left.remove_prefix(count);
  return static_cast<ssize_t>(count);
}

}  // namespace

support::Program alignProgram(std::string raster) {
  support::Program program;
  program.executable = RASTERTOALIGNED;
  program.arguments = {"rastertoaligned", "7", "user", "title", "1", ""};
  program.input = support::PipedBytes{std::move(raster)};
  return program;
}

support::Outcome align(std::string raster) { return support::run(alignProgram(std::move(raster))); }

std::vector<support::Page> pagesOf(const std::string& raster) {
  std::vector<support::Page> pages;
  std::string_view left = raster;
  cups_raster_t* stream = cupsRasterOpenIO(readString, &left, CUPS_RASTER_READ);
  if (stream == nullptr) return pages;
  support::Page page;
  while (cupsRasterReadHeader2(stream, &page.header) != 0) {
    page.pixels.clear();
    std::vector<std::uint8_t> row(page.header.cupsBytesPerLine);
    while (cupsRasterReadPixels(stream, row.data(), page.header.cupsBytesPerLine) == row.size()) {
      page.pixels.insert(page.pixels.end(), row.begin(), row.end());
    }
    pages.push_back(page);
  }
  cupsRasterClose(stream);
  return pages;
}
