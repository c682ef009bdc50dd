// CUPS raster in and out, a row at a time. SIGTERM ends both at once, also while they wait.
#ifndef TARVO_ALIGN_RASTER_STREAM_H_
#define TARVO_ALIGN_RASTER_STREAM_H_

#include <cups/raster.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

struct RasterCloser {
  void operator()(cups_raster_t* raster) const { cupsRasterClose(raster); }
};

/// The pages that come. Reads ahead, so that rows of a few dots do not cost a system call each.
class RasterReader {
 public:
  /// From a descriptor that stays the caller's.
  explicit RasterReader(int descriptor) : descriptor_(descriptor) {}
  RasterReader(const RasterReader&) = delete;
  RasterReader& operator=(const RasterReader&) = delete;

  /// Reads what tells a raster stream from anything else. False when it is none: see hasBytes and
  /// error.
  bool open();

  /// Reads the header of the next page. False when there is none, which is the end of the stream
  /// unless hasBytes or error says otherwise.
  bool readHeader(cups_page_header2_t& header);

  /// Reads a row of the page whose header came last. False when it is not all there.
  bool readRow(std::uint8_t* row, std::uint32_t size);

  /// Whether anything came since the last page, or since the start.
  bool hasBytes() const { return bytes_ > 0; }

  /// Why reading failed, as errno has it; 0 when it did not.
  int error() const { return error_; }

 private:
  static ssize_t read(void* self, unsigned char* bytes, std::size_t size);

  int descriptor_;
  int error_ = 0;
  std::uint64_t bytes_ = 0;
  std::vector<std::uint8_t> ahead_;
  std::size_t next_ = 0;  ///< the first byte of `ahead_` that was not taken yet
  std::size_t end_ = 0;   ///< behind the last byte that came
  std::unique_ptr<cups_raster_t, RasterCloser> raster_;
};

/// The pages that go on, uncompressed. Rows are gathered, so that those of a few dots do not cost a
/// system call each.
class RasterWriter {
 public:
  /// To a descriptor that stays the caller's.
  explicit RasterWriter(int descriptor) : descriptor_(descriptor) {}
  RasterWriter(const RasterWriter&) = delete;
  RasterWriter& operator=(const RasterWriter&) = delete;

  /// Writes the start of a raster stream. This and what follows are false when writing failed: see
  /// error.
  bool open();
  bool writeHeader(cups_page_header2_t header);
  bool writeRow(std::uint8_t* row, std::uint32_t size);

  /// Writes what was gathered; what is not flushed when the writer goes is lost. After a failure it
  /// fails again.
  bool flush();

  /// Why writing failed, as errno has it; 0 when it did not.
  int error() const { return error_; }

 private:
  static ssize_t write(void* self, unsigned char* bytes, std::size_t size);

  bool send(const std::uint8_t* bytes, std::size_t size);

  int descriptor_;
  int error_ = 0;
  std::vector<std::uint8_t> gathered_;
  std::unique_ptr<cups_raster_t, RasterCloser> raster_;
};

#endif  // TARVO_ALIGN_RASTER_STREAM_H_
