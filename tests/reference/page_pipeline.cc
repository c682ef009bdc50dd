#include "reference/page_pipeline.h"

#include "reference/anti_wrinkle.h"
#include "reference/blank_lines.h"
#include "reference/bmp_dump.h"
#include "reference/dither.h"
#include "reference/geometry.h"
#include "reference/packing.h"
#include "reference/tattoo.h"
#include "reference/tone.h"

namespace reference {

namespace {

constexpr int kTattoo = 8;
constexpr int kTattooX8 = 9;
constexpr unsigned kTopEdge = 2;
constexpr unsigned kBottomEdge = 8;

/// Brightness, turn and mirror, in this order.
void adjust(Image8& image, const PageOptions& options, Log& log) {
  if (options.brightness != 0 || options.contrast != 0) {
    const int brightness = options.brightness * 5;
    const int contrast = options.contrast * 2;
    image = light(image, brightness, contrast);
    log.line(0, "PageProcess: Adjusted brightness to %d and contrast to %d", brightness, contrast);
  }
  if (options.rotate_180) {
    image = rotate180(image);
    log.line(0, "PageProcess: Rotated the image 180 degrees");
  }
  if (options.mirror) {
    image = mirror(image);
    log.line(0, "PageProcess: Mirrored the image");
  }
}

/// The image's pixels in `out`, `stride` bytes apart; the bytes between keep what they held.
void copyPixels(const Image8& image, std::vector<std::uint8_t>& out, int stride) {
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      const std::size_t line = static_cast<std::size_t>(y) * static_cast<std::size_t>(stride);
      out[line + static_cast<std::size_t>(x)] = image.at(x, y);
    }
  }
}

/// The tattoo route. The source's rows are taken back to back from the buffer, whatever the stride:
/// with lines longer than the page is wide they run askew, and the gaps hold the buffer's zeros.
bool processTattoo(Printer& printer, const PageOptions& options, std::vector<std::uint8_t>& out,
                   int stride, int width, int height, Log& log) {
  copyPixels(*printer.working, out, stride);
  log.line(0,
           "PageProcess: Copied pixels to the output buffer for Lumo dithering, with stride %d, "
           "EffWidth %d",
           stride, printer.working->rowBytes());

  Gray source(width, height);
  for (std::size_t i = 0; i < source.px.size(); ++i) source.px[i] = out[i];
  const Gray result = options.halftone == kTattooX8 ? tattooX8(source) : tattoo(source);

  log.line(0, "PageProcess: Applied Lumo dithering with stride %d, width %d",
           (result.width + 3) / 4 * 4, width);
  printer.tattoo = imageFromLines(result.px, width, height, width);
  if (!printer.tattoo) {
    log.line(3, "PageProcess: Failed to create a new CxImage from Lumo dithered data");
    return false;
  }
  log.line(0, "PageProcess: Successfully created a new CxImage from Lumo dithered data");
  printer.processed = Printer::Processed::Tattoo;
  return true;
}

void saveDump(Printer& printer, const char* kind, const std::vector<std::uint8_t>& data,
              std::uint32_t bytes_per_line, std::uint32_t height, std::uint32_t width,
              const Sinks& sinks) {
  const std::string name = dumpName(kind, sinks.now, printer.dump_counter);
  ++printer.dump_counter;
  if (!sinks.keep_pages) return;
  if (!sinks.dumps_can_be_written) {
    sinks.log.raw("TarvoPrinter::saveImage: unable to open the file " + (kDumpFolder + name) +
                  "\n");
    return;
  }
  sinks.dumps.push_back({name, bmpFile(data, bytes_per_line, height, width, 8)});
}

}  // namespace

const Image8* Printer::image() const {
  switch (processed) {
    case Processed::Working:
      return working ? &*working : nullptr;
    case Processed::Tattoo:
      return tattoo ? &*tattoo : nullptr;
    case Processed::None:
      break;
  }
  return nullptr;
}

Processing pageProcess(Printer& printer, const PageOptions& options,
                       const cups_page_header2_t& header, const std::vector<std::uint8_t>& lines,
                       int stride, int width, int height, Log& log) {
  Processing result;
  result.out.assign(2 * static_cast<std::size_t>(stride) * static_cast<std::size_t>(height), 0);

  const bool by_tattoo = options.halftone == kTattoo || options.halftone == kTattooX8;
  log.line(0, "PageProcess: Lumo dithering is %s", by_tattoo ? "enabled" : "disabled");

  printer.working = imageFromLines(lines, width, height, stride);
  if (!printer.working) {
    log.line(4, "cximage.CreateFromArray with grey failed!");
    return result;
  }
  log.line(0, "PageProcess: Successfully created CxImage from array with stride %d", stride);

  adjust(*printer.working, options, log);

  if (by_tattoo) {
    if (!processTattoo(printer, options, result.out, stride, width, height, log)) return result;
  } else {
    printer.working = ditheredImage(*printer.working, options.halftone);
    printer.processed = Printer::Processed::Working;
    log.line(0, "PageProcess: Applied default dithering and increased bit depth");
  }
  Image8& image = by_tattoo ? *printer.tattoo : *printer.working;

  log.line(0, "PageProcess: negativePrint_ %d", options.negative ? 1 : 0);
  if (options.negative) {
    log.line(0, "PageProcess: Inverting the image for negative print");
    image = negative(image);
  }
  if (options.anti_wrinkle != 0) {
    image = antiWrinkleFrame(image, header.cupsPageSizeName, options.anti_wrinkle, log);
  }

  const int row_bytes = image.rowBytes();
  const std::vector<std::uint8_t> processed = processedPixels(image, row_bytes, options.negative);
  if (processed.size() <= result.out.size()) {
    for (int y = 0; y < image.height; ++y) {
      for (int x = 0; x < image.width; ++x) {
        result.out[image.index(x, y)] = processed[image.index(x, y)];
      }
    }
  }
  result.length = height * row_bytes;
  log.line(0, "PageProcess: Filled the output buffer with processed pixels, length: %d",
           static_cast<int>(result.length));
  return result;
}

void printImage(Printer& printer, const PageOptions& options, const Page& page,
                const Sinks& sinks) {
  Log& log = sinks.log;
  const std::size_t width = page.header.cupsWidth;
  const std::size_t height = page.header.cupsHeight;
  const std::size_t bytes_per_line = page.header.cupsBytesPerLine;
  log.line(0,
           "printImage: Start processing image, input width: %zu, height: %zu, bytes per line: %zu",
           width, height, bytes_per_line);
  const std::size_t size = bytes_per_line * height;
  log.line(0, "printImage: Memory allocated successfully, size: %zu bytes", size);

  std::size_t bottom = 0;
  std::size_t top = 0;
  if ((options.remove_blank_edges & kBottomEdge) != 0) {
    bottom = blankLinesFromBack(page.pixels, bytes_per_line, height, options.skip_right, width);
    log.line(0,
             "printImage: Removal of bottom blank edges detected, number of bottom blank lines: "
             "%zu",
             bottom);
  }
  if ((options.remove_blank_edges & kTopEdge) != 0) {
    top = blankLinesFromFront(page.pixels, bytes_per_line, height, options.skip_right, width);
    log.line(0, "printImage: Removal of top blank edges detected, number of top blank lines: %zu",
             top);
  }

  log.line(0, "printImage: Saving original image, file path will be generated based on time");
  saveDump(printer, "origin", page.pixels, page.header.cupsBytesPerLine, page.header.cupsHeight,
           page.header.cupsWidth, sinks);

  log.line(0, "printImage: Memory for processing result allocated successfully, size: %zu bytes",
           size);
  pageProcess(printer, options, page.header, page.pixels, static_cast<int>(bytes_per_line),
              static_cast<int>(width), static_cast<int>(height), log);

  std::size_t adjusted_height = height;
  if (bottom > top) {
    adjusted_height = bottom - top;
    log.line(0, "printImage: Adjusted image height to %zu, pointer offset by %zu bytes",
             adjusted_height, top * bytes_per_line);
  }
  log.line(0,
           "printImage: Processed image information - pointer address: %s, width: %zu, height: "
           "%zu, bytes per line: %zu, number of top blank lines: %zu, number of bottom blank "
           "lines: %zu, adjusted height: %zu",
           kDecimalAddress, bytes_per_line, height, width, top, bottom, adjusted_height);

  log.line(0, "printImage: Saving processed image, file path will be generated based on time");
  const Image8* image = printer.image();
  if (image != nullptr) {
    saveDump(printer, "dithered", image->bytes, static_cast<std::uint32_t>(image->rowBytes()),
             static_cast<std::uint32_t>(image->height), static_cast<std::uint32_t>(image->width),
             sinks);
  }

  log.line(0, "printImage: Starting to print the processed image");
  if (image != nullptr) {
    sinks.stream += printCommands(*image, page.header.NumCopies);
  } else {
    log.line(3, "printImage: pimage is NULL, unable to print the image");
  }

  log.line(0, "printImage: Freed the allocated memory, address: %s", "(nil)");
  log.line(0, "printImage: Freed the memory for processing result, address: %s", kPointerAddress);
  log.line(0, "printImage: Image processing completed");
}

}  // namespace reference
