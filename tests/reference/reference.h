#pragma once

#include <cups/raster.h>

#include <cstdint>
#include <ctime>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace reference {

/// One raster page, as the filter reads it.
struct Page {
  cups_page_header2_t header{};

  /// cupsBytesPerLine * cupsHeight bytes. Fewer (or none): the stream ended inside the page, so
  /// reading its pixels gives 0 and the page's image is left out.
  std::vector<std::uint8_t> pixels;
};

/// The edges of a paper size's printable area, in points from the paper's left and bottom edge.
struct Margins {
  float left = 0;
  float bottom = 0;
  float right = 0;
  float top = 0;
};

/// A job as the filter sees it once the PPD's defaults and the job's options are marked. `pages`
/// holds every header that can be read; after the last one the next read fails.
struct Job {
  /// The effective choice of each option, by its keyword; absent: no such option.
  std::map<std::string, std::string> choices;

  /// The marked paper size in points. 0 x 0: not known to the PPD, unless pageEdges is given (a
  /// PPD's own size without dimensions is known, and 0 x 0).
  float pageWidthPoints = 0;
  float pageLengthPoints = 0;

  /// The value of the attribute tarvoFilterOutputFile; empty: none.
  std::string recordingAttribute;

  std::vector<Page> pages;

  /// Local time, for the file names: one moment for the whole job.
  std::tm now{};

  /// The marked size's printable area; absent: the whole paper.
  std::optional<Margins> pageEdges = std::nullopt;

  /// The largest page that there is memory for, in bytes.
  std::uint64_t largestPage = UINT64_MAX;

  /// False: opening such a file fails.
  bool recordingCanBeCreated = true;
  bool traceCanBeWritten = true;
  bool dumpsCanBeWritten = true;
};

/// A page dump: the file's name without the folder (see kDumpFolder), and its content.
struct Dump {
  std::string name;
  std::string bytes;
};

/// Everything that the filter leaves behind.
struct Result {
  int status = 0;
  std::string stream;         ///< standard output; the recording file holds the same bytes
  std::string recordingName;  ///< the recording file that was created; empty: none
  std::vector<Dump> dumps;    ///< in order: origin_, dithered_, origin_, ...
  std::string trace;          ///< the trace file at the end; empty: never written

  /// Standard error cut at its line ends, in order; a message that ends in a line end of its own is
  /// followed by an empty line. Where the filter prints an address that differs from run to run,
  /// the line holds kDecimalAddress or kPointerAddress instead.
  std::vector<std::string> log;
};

/// Stands for an address printed as a decimal number.
inline constexpr const char* kDecimalAddress = "%ADDR";

/// Stands for an address printed as a pointer: 0x and hexadecimal digits.
inline constexpr const char* kPointerAddress = "%p";

/// True when `actual` is the line `expected`, an address of the right form standing in the place
/// of each placeholder.
bool logLineMatches(const std::string& expected, const std::string& actual);

/// Runs a whole job, from its settings to its clean-up. Beyond the page itself memory is taken to
/// suffice. REQUIRES: choices and attribute without line ends, a time whose parts are in range.
Result run(const Job& job);

}  // namespace reference
