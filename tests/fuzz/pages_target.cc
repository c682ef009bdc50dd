// Pages on a printer that is set in every way that its setters know, most of which the filter
// leaves alone, against the plain version.
#include <array>
#include <string>
#include <vector>

#include "filter/tspl_printer.h"
#include "fuzz/captured_process.h"
#include "fuzz/finding.h"
#include "fuzz/input.h"
#include "fuzz/target.h"
#include "reference/packing.h"
#include "reference/page_pipeline.h"
#include "support/differences.h"
#include "support/raster.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

reference::PageOptions drawOptions(fuzz::Input& input) {
  reference::PageOptions options;
  options.halftone = input.byte() % 10;
  const auto tone = [&] {
    const std::uint8_t drawn = input.byte();
    return drawn < 128 ? 0 : static_cast<int>(drawn % 201) - 100;
  };
  options.brightness = tone();
  options.contrast = tone();
  const std::uint8_t flags = input.byte();
  options.mirror = (flags & 1) != 0;
  options.negative = (flags & 2) != 0;
  options.rotate_180 = (flags & 4) != 0;
  options.remove_blank_edges = flags & 0x0A;
  if ((flags & 0x30) == 0x30) options.anti_wrinkle = input.byte() % 5;
  if ((flags & 0xC0) == 0xC0) options.skip_right = input.byte();
  return options;
}

void set(TarvoPrinter& printer, const reference::PageOptions& options) {
  printer.setHalftoneType(static_cast<DitherType>(options.halftone));
  printer.setBrightness(options.brightness);
  printer.setContrast(options.contrast);
  printer.setMirrorPrint(options.mirror);
  printer.setNegativePrint(options.negative);
  printer.setRotate180Print(options.rotate_180);
  printer.setAntiWrinkle(options.anti_wrinkle);
  printer.setRemoveBlankEdges(static_cast<unsigned char>(options.remove_blank_edges));
  printer.setSkipRightPixels(options.skip_right);
}

struct DrawnPage {
  reference::PageOptions options;
  reference::Page page;
  bool processedOnly;  ///< by PageProcess, whose result is looked at, not by printImage
};

DrawnPage drawPage(fuzz::Input& input) {
  DrawnPage drawn;
  drawn.options = drawOptions(input);
  const std::uint8_t flags = input.byte();
  drawn.processedOnly = (flags & 1) != 0;
  const unsigned width = 1 + input.byte() % 100U;
  const unsigned height = 1 + input.byte() % 40U;
  const unsigned padding = (flags & 6) == 6 ? input.byte() % 16U : 0;
  drawn.page.header = support::grayHeader(width, height, 300);
  drawn.page.header.cupsBytesPerLine = width + padding;
  drawn.page.header.NumCopies = flags;
  // The one paper of the four whose frame is drawn quickly enough.
  if (flags == 0xF8) {
    std::snprintf(drawn.page.header.cupsPageSizeName, sizeof drawn.page.header.cupsPageSizeName,
                  "Tattoo_A6");
  }
  const std::span<const std::uint8_t> motif = input.take(1 + input.byte() * std::size_t{4});
  drawn.page.pixels.assign(std::size_t{width + padding} * height, 0);
  for (std::size_t i = 0; i < drawn.page.pixels.size() && !motif.empty(); ++i) {
    drawn.page.pixels[i] = motif[i % motif.size()];
  }
  return drawn;
}

/// Everything that comes of the pages but their dumps' names.
struct Outcome {
  std::string stream;
  std::vector<std::string> log;
  std::vector<std::string> dumps;
  std::vector<Bytes> processed;
  std::vector<long> lengths;
};

Outcome printed(const std::vector<DrawnPage>& pages) {
  Outcome outcome;
  fuzz::CapturedProcess process({});
  {
    TsplPrinter printer;
    sPrinter = &printer;
    for (const DrawnPage& drawn : pages) {
      cups_page_header2_t header = drawn.page.header;
      printer.setPageHeader(&header);
      set(printer, drawn.options);
      if (drawn.processedOnly) {
        Bytes out(drawn.page.pixels.size() * 2);
        outcome.lengths.push_back(printer.PageProcess(
            static_cast<DitherType>(drawn.options.halftone), drawn.page.pixels.data(),
            static_cast<int>(header.cupsBytesPerLine), static_cast<int>(header.cupsWidth),
            static_cast<int>(header.cupsHeight), out.data()));
        outcome.processed.push_back(out);
      } else {
        printer.printImage(drawn.page.pixels.data(), header.cupsBytesPerLine, header.cupsHeight,
                           header.cupsWidth);
      }
      Bytes packed = drawn.page.pixels;
      const int length = printer.GrayToMono(static_cast<int>(header.cupsBytesPerLine),
                                            static_cast<int>(header.cupsHeight), packed.data());
      packed.resize(static_cast<std::size_t>(length));
      outcome.processed.push_back(packed);
    }
    sPrinter = nullptr;
  }
  const fuzz::Captured captured = process.finish();
  outcome.stream = captured.output;
  outcome.log = support::linesOf(captured.error);
  for (const auto& [name, bytes] : captured.dumps) outcome.dumps.push_back(bytes);
  return outcome;
}

Outcome plainlyPrinted(const std::vector<DrawnPage>& pages) {
  Outcome outcome;
  reference::Log log;
  reference::Printer printer;
  std::vector<reference::Dump> dumps;
  const std::tm now{};
  for (const DrawnPage& drawn : pages) {
    const cups_page_header2_t& header = drawn.page.header;
    const auto stride = static_cast<int>(header.cupsBytesPerLine);
    const auto height = static_cast<int>(header.cupsHeight);
    if (drawn.processedOnly) {
      reference::Processing processing =
          reference::pageProcess(printer, drawn.options, header, drawn.page.pixels, stride,
                                 static_cast<int>(header.cupsWidth), height, log);
      outcome.lengths.push_back(processing.length);
      outcome.processed.push_back(std::move(processing.out));
    } else {
      reference::printImage(printer, drawn.options, drawn.page, {outcome.stream, dumps, log, now});
    }
    const auto skip = drawn.options.skip_right;
    outcome.processed.push_back(reference::grayToMono(drawn.page.pixels, stride, height, skip));
    log.line(0, "GrayToMono, bpl(%d), h(%d), skipPixels(%d), wb(%d)", stride, height,
             static_cast<int>(skip),
             skip < header.cupsBytesPerLine ? stride - static_cast<int>(skip) : stride);
  }
  outcome.log = log.lines();
  for (reference::Dump& dump : dumps) outcome.dumps.push_back(std::move(dump.bytes));
  return outcome;
}

void requireSame(Outcome result, const Outcome& expected) {
  const auto same = [](const std::string& what, const std::string& text) {
    fuzz::require(text.empty(), what + ": " + text);
  };
  for (std::size_t i = 0; i < result.log.size() && i < expected.log.size(); ++i) {
    if (reference::logLineMatches(expected.log[i], result.log[i])) result.log[i] = expected.log[i];
  }
  same("log", support::firstDifference(expected.log, result.log));
  same("stream", support::firstDifference(expected.stream, result.stream));
  fuzz::require(result.lengths == expected.lengths, "PageProcess returns another length");
  fuzz::require(result.processed == expected.processed, "processed pixels differ");
  fuzz::require(result.dumps == expected.dumps, "dumps differ");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzz::Watch watch;
  fuzz::Input input({data, size});
  std::vector<DrawnPage> pages(1 + input.byte() % 3U);
  for (DrawnPage& page : pages) page = drawPage(input);
  requireSame(printed(pages), plainlyPrinted(pages));
  return 0;
}
