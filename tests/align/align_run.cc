#include "align_run.h"

#include <string_view>
#include <utility>

support::Program alignProgram(std::string raster) {
  support::Program program;
  program.executable = RASTERTOALIGNED;
  program.arguments = {"rastertoaligned", "7", "user", "title", "1", ""};
  program.environment = {{"PPD", std::nullopt}};
  program.input = support::PipedBytes{std::move(raster)};
  return program;
}

support::Outcome align(std::string raster) { return support::run(alignProgram(std::move(raster))); }

std::vector<support::Page> pagesOf(const std::string& raster) {
  std::vector<support::Page> pages;
  std::string_view left = raster;
  const support::RasterStream stream = support::openRaster(left);
  if (stream == nullptr) return pages;
  support::Page page;
  while (cupsRasterReadHeader2(stream.get(), &page.header) != 0) {
    page.pixels.clear();
    std::vector<std::uint8_t> row(page.header.cupsBytesPerLine);
    while (cupsRasterReadPixels(stream.get(), row.data(), page.header.cupsBytesPerLine) ==
           row.size()) {
      page.pixels.insert(page.pixels.end(), row.begin(), row.end());
    }
    pages.push_back(page);
  }
  return pages;
}
