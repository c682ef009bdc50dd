// The raster pages of a job.
#ifndef TARVO_FILTER_RASTER_INPUT_H_
#define TARVO_FILTER_RASTER_INPUT_H_

#include <cups/raster.h>

#include <cstdint>

#include "common/job_file.h"

/// Reads pages from a file or from standard input, one after another. SIGTERM ends the input, as
/// soon as it comes.
class RasterInput {
 public:
  /// Standard input.
  RasterInput() = default;

  /// Closes the raster stream, then the file; never standard input.
  ~RasterInput();

  RasterInput(const RasterInput&) = delete;
  RasterInput& operator=(const RasterInput&) = delete;

  /// Reads from the file at `path` instead of standard input. False when it can't be opened.
  bool openFile(const char* path) { return file_.open(path); }

  /// Opens the raster stream. When it is none, the first readHeader fails.
  void openRaster();

  /// Reads the header of the next page. False at the end of the pages or when reading fails.
  bool readHeader(cups_page_header2_t& header);

  /// Reads the `size` bytes of the page whose header was read last. False when they aren't all
  /// there, or can't be.
  bool readPixels(unsigned char* pixels, std::uint32_t size);

 private:
  JobFile file_;
  bool hasAllRows_ = false;  ///< of the page whose header was read last
  cups_raster_t* raster_ = nullptr;
};

#endif  // TARVO_FILTER_RASTER_INPUT_H_
