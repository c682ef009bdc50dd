#include "fuzz/comparison.h"

#include <cups/cups.h>
#include <cups/ppd.h>

#include <memory>
#include <span>
#include <string_view>

#include "fuzz/raster_bytes.h"
#include "support/differences.h"
#include "tspl/reader.h"
#include "tspl/report.h"

namespace fuzz {

namespace {

struct PpdCloser {
  void operator()(ppd_file_t* ppd) const { ppdClose(ppd); }
};
using Ppd = std::unique_ptr<ppd_file_t, PpdCloser>;

Ppd markedPpd(const JobCase& job) {
  Ppd ppd(job.ppd.empty() ? nullptr : ppdOpenFile(ppdPath().c_str()));
  if (ppd == nullptr) return ppd;
  ppdMarkDefaults(ppd.get());
  cups_option_t* options = nullptr;
  const int count = cupsParseOptions(job.options.c_str(), 0, &options);
  cupsMarkOptions(ppd.get(), count, options);
  cupsFreeOptions(count, options);
  return ppd;
}

void readChoices(ppd_file_t* ppd, reference::Job& plain) {
  for (const char* keyword :
       {"PageSize", "Resolution", "MediaMethod", "PaperType", "GapsHeight", "PostAction",
        "Occurrence", "Origin", "HalftoneType", "MirrorImage", "NegativeImage", "PrintSpeed",
        "Darkness", "Brightness", "ForceRotation", "RecordPrinterCommands", "KeepPages"}) {
    const ppd_choice_t* choice = ppdFindMarkedChoice(ppd, keyword);
    if (choice == nullptr) {
      ppd_option_t* option = ppdFindOption(ppd, keyword);
      if (option != nullptr) choice = ppdFindChoice(option, option->defchoice);
    }
    if (choice != nullptr) plain.choices[keyword] = choice->choice;
  }
}

void readPageSize(ppd_file_t* ppd, reference::Job& plain) {
  const ppd_size_t* size = ppdPageSize(ppd, plain.choices["PageSize"].c_str());
  if (size == nullptr) return;
  plain.pageWidthPoints = size->width;
  plain.pageLengthPoints = size->length;
  plain.pageEdges = reference::Margins{size->left, size->bottom, size->right, size->top};
}

std::vector<reference::Page> pagesOf(const std::string& raster) {
  // A page of which there is more than this is in no job that is run.
  constexpr std::uint64_t kMostBytes = 1U << 24U;
  std::vector<reference::Page> pages;
  RasterReader reader(raster);
  while (reader.next()) {
    pages.push_back({reader.header(), {}});
    if (!isReadable(reader.header())) break;
    pages.back().pixels = reader.pixels(kMostBytes);
  }
  return pages;
}

/// The name under which a process that has begun `before` dumps leaves a job's dump.
std::string renumbered(const std::string& name, long before) {
  const std::size_t number = name.rfind('_') + 1;
  return name.substr(0, number) + std::to_string(std::stol(name.substr(number)) + before) + ".bmp";
}

std::string compareLogs(std::vector<std::string> expected, const FilterRun& run) {
  for (std::string& line : expected) {
    if (line.starts_with("TarvoPrinter::saveImage: ")) line = renumbered(line, run.firstDump);
  }
  std::vector<std::string> actual = support::linesOf(run.captured.error);
  for (std::size_t i = 0; i < actual.size() && i < expected.size(); ++i) {
    if (reference::logLineMatches(expected[i], actual[i])) actual[i] = expected[i];
  }
  return support::firstDifference(expected, actual);
}

std::string compareDumps(const std::vector<reference::Dump>& expected, const FilterRun& run) {
  const auto& dumps = run.captured.dumps;
  for (std::size_t i = 0; i < expected.size() && i < dumps.size(); ++i) {
    std::string text =
        support::firstDifference(renumbered(expected[i].name, run.firstDump), dumps[i].first);
    if (text.empty()) text = support::firstDifference(expected[i].bytes, dumps[i].second);
    if (!text.empty()) return expected[i].name + ": " + text;
  }
  if (expected.size() == dumps.size()) return "";
  return std::to_string(dumps.size()) + " instead of " + std::to_string(expected.size());
}

std::string compareRecordings(const reference::Result& expected, const Captured& captured) {
  const std::size_t count = expected.recordingName.empty() ? 0 : 1;
  if (captured.recordings.size() != count) {
    return std::to_string(captured.recordings.size()) + " files instead of " +
           std::to_string(count);
  }
  if (count == 0) return "";
  const auto& [name, bytes] = captured.recordings.front();
  const std::string text = support::firstDifference(expected.recordingName, name);
  return text.empty() ? support::firstDifference(expected.stream, bytes) : text;
}

/// The dots of a dumped page as the printer gets them: as many rows of as many bytes as the bitmap
/// has, a pixel of 0 a set bit, and set bits beside the page.
std::string packed(std::string_view dump, const tspl::Bitmap& bitmap) {
  constexpr std::size_t kPixelsAt = 1078;
  const auto width = static_cast<std::size_t>(static_cast<unsigned char>(dump[18])) |
                     static_cast<std::size_t>(static_cast<unsigned char>(dump[19])) << 8U |
                     static_cast<std::size_t>(static_cast<unsigned char>(dump[20])) << 16U;
  std::string bits(bitmap.data.size(), '\xFF');
  const std::string_view pixels = dump.substr(kPixelsAt);
  for (std::size_t i = 0; i < pixels.size() && width > 0; ++i) {
    if (pixels[i] == 0) continue;
    const std::size_t x = i % width;
    char& byte = bits.at(i / width * bitmap.width_bytes + x / 8);
    byte = static_cast<char>(byte & ~(0x80 >> (x % 8)));
  }
  return bits;
}

}  // namespace

reference::Job plainJob(const JobCase& job) {
  reference::Job plain;
  plain.recordingCanBeCreated = job.surroundings.recordingCanBeCreated;
  plain.traceCanBeWritten = job.surroundings.traceCanBeWritten;
  plain.dumpsCanBeWritten = job.surroundings.dumpsCanBeWritten;
  const std::time_t now = job.surroundings.time;
  ::gmtime_r(&now, &plain.now);
  if (const Ppd ppd = markedPpd(job)) {
    readChoices(ppd.get(), plain);
    readPageSize(ppd.get(), plain);
    const ppd_attr_t* attribute = ppdFindAttr(ppd.get(), "tarvoFilterOutputFile", nullptr);
    if (attribute != nullptr && attribute->value != nullptr) {
      plain.recordingAttribute = attribute->value;
    }
  }
  plain.pages = pagesOf(job.raster);
  return plain;
}

std::string difference(const FilterRun& run, const reference::Result& expected) {
  if (run.status != expected.status) {
    return "status " + std::to_string(run.status) + " instead of " +
           std::to_string(expected.status);
  }
  const Captured& captured = run.captured;
  std::string text = support::firstDifference(expected.stream, captured.output);
  if (!text.empty()) return "standard output: " + text;
  text = compareLogs(expected.log, run);
  if (!text.empty()) return "standard error: " + text;
  text = compareDumps(expected.dumps, run);
  if (!text.empty()) return "dumps: " + text;
  text = support::firstDifference(expected.trace, captured.trace.value_or(""));
  if (!text.empty()) return "trace file: " + text;
  text = compareRecordings(expected, captured);
  if (!text.empty()) return "recording file: " + text;
  return "";
}

std::string unreadable(const FilterRun& run) {
  const std::string& output = run.captured.output;
  if (output.empty()) return run.status == 0 ? "nothing was sent" : "";
  const tspl::Stream stream =
      tspl::Read({reinterpret_cast<const std::uint8_t*>(output.data()), output.size()});
  if (stream.malformed) return tspl::MalformedLine(*stream.malformed);

  std::size_t dump = 0;
  const auto& dumps = run.captured.dumps;
  const bool dumped =
      run.captured.dumpsBegun > 0 && run.captured.dumpsBegun == static_cast<long>(dumps.size());
  for (const tspl::Page& page : stream.pages) {
    if (!page.bitmap || !dumped) continue;
    while (dump < dumps.size() && !dumps[dump].first.starts_with("dithered_")) ++dump;
    if (dump == dumps.size()) return "a bitmap without its dump";
    const std::string expected = packed(dumps[dump++].second, *page.bitmap);
    const std::string_view dots(reinterpret_cast<const char*>(page.bitmap->data.data()),
                                page.bitmap->data.size());
    const std::string text = support::firstDifference(expected, dots);
    if (!text.empty()) return "dots: " + text;
  }
  return "";
}

}  // namespace fuzz
