#include "filter/raster_input.h"

#include "common/enumeration.h"
#include "common/termination.h"

namespace {

ssize_t readRaster(void* file, unsigned char* bytes, std::size_t size) {
  return tarvoReadUnlessTerminated(static_cast<const JobFile*>(file)->descriptor(), bytes, size);
}

/// Whether libcups counts all rows of the page. Where each colour is a plane of its own it counts
/// the rows of all planes, in 32 bits. When that wraps it counts fewer than the page has; of
/// compressed data it then reads no more than those, and yet reports the whole page as read.
bool countsAllRows(const cups_page_header2_t& header) {
  return tarvoBitsOf(header.cupsColorOrder) != CUPS_ORDER_PLANAR ||
         header.cupsHeight * header.cupsNumColors >= header.cupsHeight;
}

}  // namespace

RasterInput::~RasterInput() {
  if (raster_ != nullptr) cupsRasterClose(raster_);
}

void RasterInput::openRaster() { raster_ = cupsRasterOpenIO(readRaster, &file_, CUPS_RASTER_READ); }

bool RasterInput::readHeader(cups_page_header2_t& header) {
  if (raster_ == nullptr || cupsRasterReadHeader2(raster_, &header) == 0) return false;
  hasAllRows_ = countsAllRows(header);
  return !tarvoIsTerminated();
}

bool RasterInput::readPixels(unsigned char* pixels, std::uint32_t size) {
  return cupsRasterReadPixels(raster_, pixels, size) >= 1 && hasAllRows_ && !tarvoIsTerminated();
}
