#include "reference/reference.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "reference/log.h"
#include "reference/page_pipeline.h"
#include "reference/settings.h"
#include "reference/setup_commands.h"
#include "reference/text.h"
#include "reference/trace.h"

namespace reference {

namespace {

constexpr double kMillimetresPerInch = 25.4;

enum class HeaderVerdict { Accepted, JobFailed, JobDone };

/// Whether a page is printed, ends the job in peace, or ends it with an error.
HeaderVerdict judge(const cups_page_header2_t& header, Log& log) {
  if (header.cupsBitsPerPixel != 8) {
    log.line(3, "Unsupported bits per pixel : %d ! Requires 8 bits per pixel!",
             static_cast<int>(header.cupsBitsPerPixel));
    return HeaderVerdict::JobFailed;
  }
  if (header.cupsHeight == 0 || header.cupsBytesPerLine == 0) return HeaderVerdict::JobDone;

  const std::uint64_t page_bytes =
      static_cast<std::uint64_t>(header.cupsBytesPerLine) * header.cupsHeight;
  if (page_bytes > 0xFFFFFFFFU) {
    log.line(3, "Page too large: %u bytes per line, %u lines!", header.cupsBytesPerLine,
             header.cupsHeight);
    return HeaderVerdict::JobFailed;
  }
  if (header.cupsWidth > header.cupsBytesPerLine) {
    log.line(3, "Line too short: %u bytes for %u dots!", header.cupsBytesPerLine, header.cupsWidth);
    return HeaderVerdict::JobFailed;
  }
  if (header.HWResolution[0] == 0 || header.HWResolution[1] == 0) {
    log.line(3, "Bad resolution: %u x %u!", header.HWResolution[0], header.HWResolution[1]);
    return HeaderVerdict::JobFailed;
  }
  return HeaderVerdict::Accepted;
}

float rasterMillimetres(unsigned dots, unsigned dots_per_inch) {
  return static_cast<float>(static_cast<double>(dots) * kMillimetresPerInch /
                            static_cast<double>(dots_per_inch));
}

/// A number that stands in an enumeration, which need not have it.
template <typename Enumeration>
int numberOf(const Enumeration& field) {
  int number = 0;
  std::memcpy(&number, &field, sizeof number);
  return number;
}

void logHeader(const cups_page_header2_t& header, int page_number, Log& log) {
  log.line(0, "PAGE: %d %d\n", page_number, static_cast<int>(header.NumCopies));
  log.line(0, "header.HWResolution[0]:%d\n", static_cast<int>(header.HWResolution[0]));
  log.line(0, "header.HWResolution[1]:%d", static_cast<int>(header.HWResolution[1]));
  log.line(0, "header.cupsWidth:%d", static_cast<int>(header.cupsWidth));
  log.line(0, "header.cupsHeight:%d", static_cast<int>(header.cupsHeight));
  log.line(0, "header.cupsMediaType:%d", static_cast<int>(header.cupsMediaType));
  log.line(0, "header.cupsBitsPerColor:%d", static_cast<int>(header.cupsBitsPerColor));
  log.line(0, "header.cupsBitsPerPixel:%d", static_cast<int>(header.cupsBitsPerPixel));
  log.line(0, "header.cupsBytesPerLine:%d", static_cast<int>(header.cupsBytesPerLine));
  log.line(0, "header.cupsColorOrder:%d", numberOf(header.cupsColorOrder));
  log.line(0, "header.cupsColorSpace:%d", numberOf(header.cupsColorSpace));
  log.line(0, "header.cupsCompression:%d", static_cast<int>(header.cupsCompression));
  log.line(0, "header.cupsRowCount:%d", static_cast<int>(header.cupsRowCount));
  log.line(0, "header.cupsRowFeed:%d", static_cast<int>(header.cupsRowFeed));
  log.line(0, "header.cupsRowStep:%d", static_cast<int>(header.cupsRowStep));
}

PageOptions optionsOf(const Settings& settings) {
  PageOptions options;
  options.brightness = std::clamp(settings.brightness, -100, 100);
  options.halftone = settings.halftone;
  options.mirror = settings.mirror_image != 0;
  options.negative = settings.negative_image != 0;
  return options;
}

/// The pages of a job whose preamble was sent; the exit status.
int printPages(const Job& job, Settings settings, Result& result, Log& log) {
  Printer printer;
  int page_number = 0;
  for (const Page& page : job.pages) {
    const cups_page_header2_t& header = page.header;
    const HeaderVerdict verdict = judge(header, log);
    if (verdict == HeaderVerdict::JobFailed) return 1;
    if (verdict == HeaderVerdict::JobDone) return 0;

    if (job.traceCanBeWritten) result.trace = traceLine(header);
    const std::uint64_t page_bytes =
        static_cast<std::uint64_t>(header.cupsBytesPerLine) * header.cupsHeight;
    if (page_bytes > job.largestPage) return 1;

    settings.page_width = rasterMillimetres(header.cupsWidth, header.HWResolution[0]);
    settings.page_height = rasterMillimetres(header.cupsHeight, header.HWResolution[1]);
    log.line(0, "pageWidth: %f,pageHeight: %f", static_cast<double>(settings.page_width),
             static_cast<double>(settings.page_height));
    result.stream += jobSetup(settings, log);
    result.stream += clsCommand();
    ++page_number;
    logHeader(header, page_number, log);

    if (page.pixels.size() < page_bytes) continue;
    printImage(printer, optionsOf(settings), page,
               {result.stream, result.dumps, log, job.now, job.dumpsCanBeWritten,
                settings.keep_pages != 0});
  }
  return 0;
}

int runJob(const Job& job, Result& result, Log& log) {
  const Settings settings = parseSettings(job, log);
  if (!settings.recording_name.empty()) {
    if (job.recordingCanBeCreated) {
      log.line(0, "Filter data output to: %s", settings.recording_name.c_str());
      result.recordingName = settings.recording_name;
    } else {
      log.line(3, "Unable to create the output file: %s", settings.recording_name.c_str());
    }
  }
  const auto too_small = [](float mm) { return static_cast<double>(mm) <= 1e-6; };
  if (too_small(settings.page_width) || too_small(settings.page_height)) {
    log.raw(formatted("ERROR: Paper size must not less than 1.0 : (%f, %f)\n",
                      static_cast<double>(settings.page_width),
                      static_cast<double>(settings.page_height)));
    return 1;
  }
  result.stream += preamble();
  return printPages(job, settings, result, log);
}

std::size_t digitsFrom(const std::string& text, std::size_t at, int (*is_digit)(int)) {
  std::size_t end = at;
  while (end < text.size() && is_digit(static_cast<unsigned char>(text[end])) != 0) ++end;
  return end - at;
}

}  // namespace

bool logLineMatches(const std::string& expected, const std::string& actual) {
  const std::string decimal = kDecimalAddress;
  const std::string pointer = kPointerAddress;
  std::size_t e = 0;
  std::size_t a = 0;
  while (e < expected.size()) {
    if (expected.compare(e, decimal.size(), decimal) == 0) {
      const std::size_t digits = digitsFrom(actual, a, std::isdigit);
      if (digits == 0) return false;
      e += decimal.size();
      a += digits;
    } else if (expected.compare(e, pointer.size(), pointer) == 0) {
      if (actual.compare(a, 2, "0x") != 0) return false;
      const std::size_t digits = digitsFrom(actual, a + 2, std::isxdigit);
      if (digits == 0) return false;
      e += pointer.size();
      a += 2 + digits;
    } else {
      if (a >= actual.size() || expected[e] != actual[a]) return false;
      ++e;
      ++a;
    }
  }
  return a == actual.size();
}

Result run(const Job& job) {
  Result result;
  Log log;
  result.status = runJob(job, result, log);
  result.log = log.lines();
  return result;
}

}  // namespace reference
