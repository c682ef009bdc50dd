#include "align/raster_stream.h"

#include <algorithm>
#include <cerrno>

#include "common/termination.h"

namespace {

/// What is read ahead, and what is gathered: as much as a pipe holds. The memory is asked for when
/// a stream is opened, because nothing may be thrown through libcups.
constexpr std::size_t kBufferBytes = std::size_t{64} << 10U;

}  // namespace

bool RasterReader::open() {
  ahead_.resize(kBufferBytes);
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
  if (reader.next_ == reader.end_) {
    const ssize_t count =
        tarvoReadUnlessTerminated(reader.descriptor_, reader.ahead_.data(), reader.ahead_.size());
    if (count < 0) reader.error_ = errno;
    if (count <= 0) return count;
    reader.next_ = 0;
    reader.end_ = static_cast<std::size_t>(count);
  }
  const std::size_t count = std::min(size, reader.end_ - reader.next_);
  std::copy_n(&reader.ahead_[reader.next_], count, bytes);
  reader.next_ += count;
  reader.bytes_ += count;
  return static_cast<ssize_t>(count);
}

bool RasterWriter::open() {
  gathered_.reserve(kBufferBytes);
  raster_.reset(cupsRasterOpenIO(&RasterWriter::write, this, CUPS_RASTER_WRITE));
  // Whether anything can be written is known before any page is read.
  return raster_ != nullptr && flush();
}

bool RasterWriter::writeHeader(cups_page_header2_t header) {
  return cupsRasterWriteHeader2(raster_.get(), &header) != 0;
}

bool RasterWriter::writeRow(std::uint8_t* row, std::uint32_t size) {
  return cupsRasterWritePixels(raster_.get(), row, size) == size;
}

bool RasterWriter::flush() {
  if (error_ == 0) send(gathered_.data(), gathered_.size());
  gathered_.clear();
  return error_ == 0;
}

bool RasterWriter::send(const std::uint8_t* bytes, std::size_t size) {
  if (size == 0 || tarvoWriteUnlessTerminated(descriptor_, bytes, size) >= 0) return true;
  error_ = errno;
  return false;
}

ssize_t RasterWriter::write(void* self, unsigned char* bytes, std::size_t size) {
  RasterWriter& writer = *static_cast<RasterWriter*>(self);
  if (size > kBufferBytes - writer.gathered_.size() && !writer.flush()) return -1;
  if (size >= kBufferBytes) return writer.send(bytes, size) ? static_cast<ssize_t>(size) : -1;
  writer.gathered_.insert(writer.gathered_.end(), bytes, bytes + size);
  return static_cast<ssize_t>(size);
}
