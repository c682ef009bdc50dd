// bench_make_raster KIND WIDTH HEIGHT DPI PAGES > FILE: an uncompressed CUPS raster of equal pages.
#include <cups/raster.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "page.h"

int main(int argc, char* argv[]) {
  if (argc != 6) {
    std::fprintf(stderr, "usage: %s KIND WIDTH HEIGHT DPI PAGES\n", argv[0]);
    return 2;
  }
  const auto number = [&](int i) { return static_cast<unsigned>(std::atoi(argv[i])); };
  cups_page_header2_t header{};
  header.cupsWidth = number(2);
  header.cupsHeight = number(3);
  header.HWResolution[0] = header.HWResolution[1] = number(4);
  header.NumCopies = 1;
  header.cupsBitsPerColor = header.cupsBitsPerPixel = 8;
  header.cupsBytesPerLine = header.cupsWidth;
  header.cupsColorSpace = CUPS_CSPACE_K;
  header.cupsNumColors = 1;

  std::vector<std::uint8_t> page = makePage(argv[1], header.cupsWidth, header.cupsHeight);
  if (page.empty()) return 2;
  cups_raster_t* raster = cupsRasterOpen(STDOUT_FILENO, CUPS_RASTER_WRITE);
  for (unsigned i = 0; i < number(5); ++i) {
    cupsRasterWriteHeader2(raster, &header);
    cupsRasterWritePixels(raster, page.data(), static_cast<unsigned>(page.size()));
  }
  cupsRasterClose(raster);
  return 0;
}
