// rastertoaligned: a CUPS filter that stands before rastertotarvo. It passes raster pages on with
// rows of a multiple of 8 dots in the K colour space, which that filter prints straight, and tells
// the spooler how far the job is. What is too large for any printer it refuses. It holds one row of
// the page.
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

#include "align/page_alignment.h"
#include "align/page_limits.h"
#include "align/page_report.h"
#include "align/raster_stream.h"
#include "common/enumeration.h"
#include "common/job_file.h"
#include "common/no_memory.h"
#include "common/standard_streams.h"
#include "common/termination.h"
#include "common/text.h"
#include "ppd/ppd_file.h"
#include "ppd/ppd_sheet.h"

namespace {

/// What becomes of the job.
enum class Outcome {
  kGoesOn,
  kEnds,   ///< cancelled, or nothing more to do
  kFails,  ///< said why
};

std::uint64_t countRows(const cups_page_header2_t& header) {
  const std::uint64_t planes =
      tarvoBitsOf(header.cupsColorOrder) == CUPS_ORDER_PLANAR ? header.cupsNumColors : 1;
  return header.cupsHeight * planes;
}

/// Memory for a row that nothing touches before it is used: a header may promise any size.
std::unique_ptr<std::uint8_t[]> makeRow(const cups_page_header2_t& header) {
  return std::unique_ptr<std::uint8_t[]>(new std::uint8_t[header.cupsBytesPerLine]);
}

Outcome failedToRead(const RasterReader& reader) {
  if (tarvoIsTerminated()) return Outcome::kEnds;
  std::fprintf(stderr, "ERROR: Unable to read the pages: %s.\n", std::strerror(reader.error()));
  return Outcome::kFails;
}

Outcome failedToWrite(const RasterWriter& writer) {
  if (tarvoIsTerminated()) return Outcome::kEnds;
  std::fprintf(stderr, "ERROR: Unable to pass the pages on: %s.\n", std::strerror(writer.error()));
  return Outcome::kFails;
}

/// As much paper as a filter before this one can be made up for with: an A4 page at 800 dpi. A
/// header may promise far more, which the next filter would hold in memory.
constexpr std::uint64_t kMostPaperBytes = std::uint64_t{64} << 20U;

/// As many rows: 5 m at 600 dpi, longer than any label.
constexpr std::uint64_t kMostPaperRows = std::uint64_t{1} << 17U;

/// The rows of the page that are missing: paper, so that the page ends and what came of it is
/// printed. It stays cut short where nothing came of it, where nothing is known about its bytes,
/// and where only its header knows of so many rows.
Outcome endPage(const RasterReader& reader, RasterWriter& writer, const PageAlignment& alignment,
                unsigned page, std::uint64_t row, std::uint64_t rows) {
  if (tarvoIsTerminated()) return Outcome::kEnds;
  if (reader.error() != 0) failedToRead(reader);
  std::fprintf(stderr, "ERROR: Page %u is cut short: %llu of its %llu rows came.\n", page,
               static_cast<unsigned long long>(row), static_cast<unsigned long long>(rows));
  const std::uint32_t size = alignment.header().cupsBytesPerLine;
  if (!alignment.isNeeded() || row == 0 || rows - row > kMostPaperRows ||
      rows - row > kMostPaperBytes / size) {
    return Outcome::kFails;
  }
  const std::unique_ptr<std::uint8_t[]> paper = makeRow(alignment.header());
  std::memset(paper.get(), 0, size);
  for (; row < rows; ++row) {
    if (!writer.writeRow(paper.get(), size)) {
      failedToWrite(writer);
      break;
    }
  }
  return Outcome::kFails;
}

Outcome passPage(RasterReader& reader, RasterWriter& writer, const PageLimits& limits,
                 cups_page_header2_t header, unsigned page) {
  const std::uint64_t rows = countRows(header);
  if (!limits.admit(page, header, rows)) return Outcome::kFails;
  header.NumCopies = limitCopies(page, header.NumCopies);
  const PageAlignment alignment(header);
  const std::unique_ptr<std::uint8_t[]> from = makeRow(header);
  const std::unique_ptr<std::uint8_t[]> to = makeRow(alignment.header());

  PageReport report(page, rows);
  if (!writer.writeHeader(alignment.header())) return failedToWrite(writer);
  for (std::uint64_t row = 0; row < rows; ++row) {
    if (!reader.readRow(from.get(), header.cupsBytesPerLine)) {
      return endPage(reader, writer, alignment, page, row, rows);
    }
    if (alignment.isNeeded()) alignment.alignRow(from.get(), to.get());
    std::uint8_t* passed = alignment.isNeeded() ? to.get() : from.get();
    if (!writer.writeRow(passed, alignment.header().cupsBytesPerLine)) return failedToWrite(writer);
    report.passed(row + 1);
  }
  // The next filter prints a page once it has all of it.
  if (!writer.flush()) return failedToWrite(writer);
  report.counts(header.NumCopies);
  return Outcome::kGoesOn;
}

/// Why there is no page, or no further one.
Outcome endPages(const RasterReader& reader, unsigned page) {
  if (tarvoIsTerminated()) return Outcome::kEnds;
  if (reader.error() != 0) return failedToRead(reader);
  if (reader.hasBytes()) {
    std::fprintf(stderr, "ERROR: Page %u has no header that can be read.\n", page);
    return Outcome::kFails;
  }
  if (page == 1) std::fprintf(stderr, "WARNING: The document has no pages.\n");
  return Outcome::kEnds;
}

Outcome passPages(RasterReader& reader, RasterWriter& writer, const PageLimits& limits) {
  if (!writer.open()) return failedToWrite(writer);
  if (!reader.open()) {
    if (!reader.hasBytes() || reader.error() != 0) return endPages(reader, 1);
    std::fprintf(stderr, "ERROR: The input is not a stream of raster pages.\n");
    return Outcome::kFails;
  }
  cups_page_header2_t header{};
  unsigned page = 1;
  for (; reader.readHeader(header); ++page) {
    const Outcome outcome = passPage(reader, writer, limits, header, page);
    if (outcome != Outcome::kGoesOn) return outcome;
  }
  return endPages(reader, page);
}

/// Whatever ends the job, the rows that came go on.
Outcome passJob(RasterReader& reader, RasterWriter& writer, const PageLimits& limits) {
  Outcome outcome = Outcome::kFails;
  try {
    outcome = passPages(reader, writer, limits);
  } catch (const std::bad_alloc&) {
    std::fprintf(stderr, "ERROR: Out of memory.\n");
  }
  if (writer.error() == 0 && !writer.flush()) return failedToWrite(writer);
  return outcome;
}

}  // namespace

int main(int argc, char* argv[]) {
  tarvoFillStandardStreams();
  tarvoCatchTermination();
  tarvoEndWithoutMemory("ERROR: Out of memory.\n");
  if (argc < 6 || argc > 7) {
    const char* name = tarvoPathGetBasename(argc > 0 ? argv[0] : "");
    std::fprintf(stderr, "Usage: %s job-id user title copies options [file]\n", name);
    return 1;
  }
  JobFile input;
  if (argc > 6 && !input.open(argv[6])) {
    std::fprintf(stderr, "ERROR: Unable to open \"%s\": %s.\n", argv[6], std::strerror(errno));
    return 1;
  }
  const PageLimits limits(tarvoPpdLargestSheet(tarvoOpenQueuePpd().get()));
  RasterReader reader(input.descriptor());
  RasterWriter writer(STDOUT_FILENO);
  return passJob(reader, writer, limits) == Outcome::kFails ? 1 : 0;
}
