#include "align/raster_stream.h"

#include <cerrno>

#include "common/termination.h"

bool RasterReader::open() {
  raster_.reset(cupsRasterOpenIO(&RasterReader::read, this, CUPS_RASTER_READ));
  return raster_ != nullptr;
}

bool RasterReader::readHeader(cups_page_header2_t& header) {
  bytes_ = 0;
  return cupsRasterReadHeader2(raster_.get(), &header) != 0;
}

bool RasterReader::readRow(std::uint8_t* row, std::uint32_t size) {
  return cupsRasterReadPixels(raster_.get(), row, size) == size;
}

ssize_t RasterReader::read(void* self, unsigned char* bytes, std::size_t size) {
  RasterReader& reader = *static_cast<RasterReader*>(self);
  const ssize_t count = tarvoReadUnlessTerminated(reader.descriptor_, bytes, size);
  if (count < 0) {
    reader.error_ = errno;
  } else {
    reader.bytes_ += static_cast<std::uint64_t>(count);
  }
  return count;
}

bool RasterWriter::open() {
  raster_.reset(cupsRasterOpenIO(&RasterWriter::write, this, CUPS_RASTER_WRITE));
  return raster_ != nullptr;
}

bool RasterWriter::writeHeader(cups_page_header2_t header) {
  return cupsRasterWriteHeader2(raster_.get(), &header) != 0;
}

bool RasterWriter::writeRow(std::uint8_t* row, std::uint32_t size) {
  return cupsRasterWritePixels(raster_.get(), row, size) == size;
}

ssize_t RasterWriter::write(void* self, unsigned char* bytes, std::size_t size) {
  RasterWriter& writer = *static_cast<RasterWriter*>(self);
  const ssize_t count = tarvoWriteUnlessTerminated(writer.descriptor_, bytes, size);
  if (count < 0) writer.error_ = errno;
  return count;
}
