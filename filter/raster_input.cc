#include "filter/raster_input.h"

#include <fcntl.h>
#include <unistd.h>

RasterInput::~RasterInput() {
  if (raster_ != nullptr) cupsRasterClose(raster_);
  if (descriptor_ > 0) close(descriptor_);
}

bool RasterInput::openFile(const char* path) {
  descriptor_ = open(path, O_RDONLY);
  return descriptor_ != -1;
}

void RasterInput::openRaster() { raster_ = cupsRasterOpen(descriptor_, CUPS_RASTER_READ); }

bool RasterInput::readHeader(cups_page_header2_t& header) {
  return raster_ != nullptr && cupsRasterReadHeader2(raster_, &header) != 0;
}

bool RasterInput::readPixels(unsigned char* pixels, std::uint32_t size) {
  return cupsRasterReadPixels(raster_, pixels, size) >= 1;
}
