// rastertotarvo: a CUPS filter that prints raster pages on TSPL label and tattoo-stencil printers.
//
// main tells the road of a job: check the arguments, open the input, read the settings, send the
// preamble, then for each page header, setup commands, pixels, print; then close everything.
//
// SIGTERM, with which the spooler cancels, is the end of the input: whoever reads pages finds none,
// and the road ends as after the last page. What was begun before is sent whole.
#include <malloc.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <utility>

#include "common/enumeration.h"
#include "common/log.h"
#include "common/no_memory.h"
#include "common/standard_streams.h"
#include "common/termination.h"
#include "common/text.h"
#include "filter/page_check.h"
#include "filter/raster_input.h"
#include "filter/recording.h"
#include "filter/settings.h"
#include "filter/setup_commands.h"
#include "filter/trace_file.h"
#include "filter/tspl_printer.h"

namespace {

const char* const sVersion = "3.13.32";

constexpr double kMillimetresPerInch = 25.4;

/// Publishes the printer to the TSPL commands for as long as it lives.
class PublishedPrinter {
 public:
  explicit PublishedPrinter(TarvoPrinter* printer) { sPrinter = printer; }
  ~PublishedPrinter() { sPrinter = nullptr; }
  PublishedPrinter(const PublishedPrinter&) = delete;
  PublishedPrinter& operator=(const PublishedPrinter&) = delete;
};

/// The page buffer of the job, resized from page to page.
class PageBuffer {
 public:
  ~PageBuffer() { std::free(bytes_); }
  PageBuffer() = default;
  PageBuffer(const PageBuffer&) = delete;
  PageBuffer& operator=(const PageBuffer&) = delete;

  bool resize(std::size_t size) {
    void* resized = std::realloc(bytes_, size);
    if (resized == nullptr) return false;
    bytes_ = resized;
    return true;
  }
  unsigned char* bytes() { return static_cast<unsigned char*>(bytes_); }

 private:
  void* bytes_ = nullptr;
};

/// Keeps the memory of a page for the next one: else glibc gives it back and the kernel has to fill
/// it with zeros anew, an eighth of a page's time. (Larger blocks than it lets us name are mapped.)
void keepMemoryBetweenPages() {
#ifdef __GLIBC__
  mallopt(M_MMAP_THRESHOLD, 32 << 20);
  mallopt(M_TRIM_THRESHOLD, 256 << 20);
#endif
}

void printUsage(const char* program) {
  const char* name = tarvoPathGetBasename(program != nullptr ? program : "");
  // Quirk: usage-spelling.
  std::fprintf(stderr, "%s v%s\n\nUsage:\n\n    %s job_id user title copyies options [file]\n\n",
               name, sVersion, name);
}

bool isPaperSizeKnown(const Settings& settings) {
  // Quirk: paper-size-text. The message speaks of 1.0, the test is against next to nothing.
  const double least = 1e-6;
  const auto width = static_cast<double>(settings.pageWidth);
  const auto height = static_cast<double>(settings.pageHeight);
  if (width > least && height > least) return true;
  std::fprintf(stderr, "ERROR: Paper size must not less than 1.0 : (%f, %f)\n", width, height);
  return false;
}

void sendPreamble(TarvoPrinter& printer) {
  for (int i = 0; i < 64; ++i) printer.printByte('\n');
}

/// The size of the raster page replaces that of the PPD, which served the check only.
void setPageSize(Settings& settings, const cups_page_header2_s& header) {
  settings.pageWidth =
      static_cast<float>(header.cupsWidth * kMillimetresPerInch / header.HWResolution[0]);
  settings.pageHeight =
      static_cast<float>(header.cupsHeight * kMillimetresPerInch / header.HWResolution[1]);
  tarvoLogCommon(0, "pageWidth: %f,pageHeight: %f", static_cast<double>(settings.pageWidth),
                 static_cast<double>(settings.pageHeight));
}

void configurePrinter(TarvoPrinter& printer, const Settings& settings,
                      cups_page_header2_s& header) {
  printer.setPageHeader(&header);
  printer.setBrightness(settings.Brightness);
  printer.setHalftoneType(settings.halftoneType);
  printer.setMirrorPrint(settings.MirrorImage != 0);
  printer.setNegativePrint(settings.NegativeImage != 0);
}

void logPage(int page, const cups_page_header2_s& header) {
  const auto log = [](const char* name, unsigned value) {
    tarvoLogCommon(0, "header.%s:%d", name, static_cast<int>(value));
  };
  // Quirk: double-line-end. In the first two lines.
  tarvoLogCommon(0, "PAGE: %d %d\n", page, static_cast<int>(header.NumCopies));
  tarvoLogCommon(0, "header.HWResolution[0]:%d\n", static_cast<int>(header.HWResolution[0]));
  log("HWResolution[1]", header.HWResolution[1]);
  log("cupsWidth", header.cupsWidth);
  log("cupsHeight", header.cupsHeight);
  log("cupsMediaType", header.cupsMediaType);
  log("cupsBitsPerColor", header.cupsBitsPerColor);
  log("cupsBitsPerPixel", header.cupsBitsPerPixel);
  log("cupsBytesPerLine", header.cupsBytesPerLine);
  log("cupsColorOrder", tarvoBitsOf(header.cupsColorOrder));
  log("cupsColorSpace", tarvoBitsOf(header.cupsColorSpace));
  log("cupsCompression", header.cupsCompression);
  log("cupsRowCount", header.cupsRowCount);
  log("cupsRowFeed", header.cupsRowFeed);
  log("cupsRowStep", header.cupsRowStep);
}

/// Prints page after page. Returns the exit status: 0 at the end of the input or at an empty page,
/// 1 at a page that can't be printed.
int printPages(RasterInput& input, TarvoPrinter& printer, Settings& settings) {
  PageBuffer page;
  cups_page_header2_s header{};  // the printer keeps its address
  int pageCount = 0;
  while (input.readHeader(header)) {
    if (header.cupsBitsPerPixel != 8) {
      tarvoLogCommon(3, "Unsupported bits per pixel : %d ! Requires 8 bits per pixel!",
                     static_cast<int>(header.cupsBitsPerPixel));
      return 1;
    }
    if (header.cupsHeight == 0 || header.cupsBytesPerLine == 0) return 0;
    if (!isPrintablePage(header)) return 1;

    writeTraceFile(header);
    const std::uint32_t pageSize = header.cupsBytesPerLine * header.cupsHeight;
    if (!page.resize(pageSize)) return 1;

    setPageSize(settings, header);
    jobSetup(settings);
    configurePrinter(printer, settings, header);
    setCls();
    logPage(++pageCount, header);
    if (input.readPixels(page.bytes(), pageSize)) {
      printer.printImage(page.bytes(), header.cupsBytesPerLine, header.cupsHeight,
                         header.cupsWidth);
    }
  }
  return 0;
}

/// Whether all that was printed has come to whoever reads standard output. Says so where it has
/// not, but of a job that was cancelled: nobody waits for its rest.
bool isOutputWritten(const TarvoPrinter& printer) {
  const bool flushed = std::fflush(stdout) == 0;
  const int error = printer.getOutputError() != 0 ? printer.getOutputError() : errno;
  if ((flushed && std::ferror(stdout) == 0) || tarvoIsTerminated()) return true;
  std::fprintf(stderr, "ERROR: The printer's data could not be written: %s\n",
               std::strerror(error));
  return false;
}

int printJob(std::unique_ptr<RasterInput> opened, const char* options) {
  // Destroyed in reverse: the input is closed first; the recording before the printer, which writes
  // nothing more.
  const auto printer = std::make_unique<TsplPrinter>();
  Recording recording;
  const PublishedPrinter published(printer.get());
  const std::unique_ptr<RasterInput> input = std::move(opened);

  Settings settings{};
  parseSettings(settings, options);
  recording.attach(*printer, settings.FilterOutputFile);
  printer->setKeepPages(settings.KeepPages != 0);
  if (!isPaperSizeKnown(settings)) return 1;
  sendPreamble(*printer);
  input->openRaster();
  const int status = printPages(*input, *printer, settings);
  return isOutputWritten(*printer) ? status : 1;
}

}  // namespace

int main(int argc, char* argv[]) {
  tarvoFillStandardStreams();
  tarvoCatchTermination();
  tarvoEndWithoutMemory("ERROR:Unable to go on: std::bad_alloc\n");
  const WaitingOutput waiting;
  keepMemoryBetweenPages();
  // All filters of a job share one pipe to the spooler, which reads it by lines: a line that is
  // written in pieces can swallow another filter's, or be torn by it.
  std::setvbuf(stderr, nullptr, _IOLBF, 4096);
  if (argc < 6) {
    printUsage(argc > 0 ? argv[0] : nullptr);
    return 1;
  }
  try {
    auto input = std::make_unique<RasterInput>();
    if (argc > 6 && !input->openFile(argv[6])) {
      // Quirk: unended-error. The text ends in a blank, without a line end.
      std::fprintf(stderr, "ERROR: Unable to open raster file - ");
      return 1;
    }
    return printJob(std::move(input), argv[5]);
  } catch (const std::exception& failure) {  // no memory, a length that none could have
    tarvoLogCommon(3, "Unable to go on: %s", failure.what());
    return 1;
  }
}
