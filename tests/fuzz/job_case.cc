#include "fuzz/job_case.h"

#include <algorithm>
#include <array>
#include <vector>

#include "fuzz/raster_bytes.h"
#include "support/ppd_text.h"
#include "support/raster.h"

namespace fuzz {

namespace {

struct Option {
  const char* keyword;
  std::vector<std::string> choices;
};

/// Every option that the filter reads but the page size, with choices that mean something to it.
const std::vector<Option>& options() {
  static const std::vector<Option> all = {
      {"HalftoneType",
       {"None", "FloydSteinberg", "Ordered", "Burkes", "Stucki", "JarvisJudiceNinke", "Sierra",
        "StevensonArce", "Tattoo", "Tattoo_X8", "tattoo"}},
      {"Brightness",
       {"0", "10", "-10", "1", "-1", "50", "-50", "100", "-100", "101", "2147483648"}},
      {"MirrorImage", {"True", "False", "yes", "no", "1", "256", "255"}},
      {"NegativeImage", {"True", "False", "YES", "No", "2", "On"}},
      {"PaperType", {"LabelGaps", "LabelMark", "Continue", "Normal", "Unknown", "NormalLabelMark"}},
      {"GapsHeight", {"0", "3", "10", "-1", "2147483647", "-2147483648", "3mm"}},
      {"PostAction", {"None", "TearOff", "PeelOff", "Cut", "PartialCut", "Normal", "Unchanged"}},
      {"PrintSpeed", {"1", "5.5", "Normal", "0", "-3", "1e-16", "nan", "inf", "4Normal"}},
      {"Darkness", {"-1", "0", "15", "30", "31", "99999999999"}},
      {"MediaMethod", {"Direct", "Transfer", "Normal", "DirectTransfer"}},
      {"Origin", {"Rotation0", "Rotation180", "Rotation90"}},
      {"Occurrence", {"EndOfJob", "EveryPage"}},
      {"Resolution", {"203dpi", "300dpi"}},
      {"ForceRotation", {"0", "90"}},
      {"RecordPrinterCommands", {"0", "1", "-1"}},
      {"KeepPages", {"True", "False", "yes", "no", "0", "256"}},
  };
  return all;
}

/// A choice that can stand in a PPD and in the text of the options.
std::string drawWord(Input& input) {
  constexpr std::string_view kLetters =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789.-+_%";
  std::string word;
  for (std::size_t left = input.byte() % 48U + 1U; left > 0; --left) {
    word.push_back(kLetters[input.byte() % kLetters.size()]);
  }
  return word;
}

/// One byte an option: whether it is there, whether the job or only the PPD names the choice, and
/// which it is.
void drawOptions(Input& input, JobCase& job, support::PpdText& ppd) {
  constexpr std::uint8_t kAbsent = 0;
  constexpr std::uint8_t kWord = 0x7F;
  for (const Option& option : options()) {
    const std::uint8_t drawn = input.byte();
    const bool namedByJob = (drawn & 0x80) != 0;
    const std::uint8_t which = drawn & 0x7F;
    if (which == kAbsent) continue;
    const std::string choice =
        which == kWord ? drawWord(input) : option.choices[(which - 1U) % option.choices.size()];
    if (namedByJob) {
      ppd.option(option.keyword, "Another", {"Another", choice});
      job.options += " " + std::string(option.keyword) + "=" + choice;
    } else {
      ppd.option(option.keyword, choice, {"Another", choice});
    }
  }
}

void drawPageSize(Input& input, JobCase& job, support::PpdText& ppd) {
  enum { Missing, Unknown, Custom, Zero };
  const std::uint8_t drawn = input.byte();
  const std::uint8_t oddity = drawn / 64 == 3 ? drawn % 4 : 255;
  if (oddity == Missing) return;
  ppd.pageSize("w288h432", 288, 432).pageSize("w72h72", 72, 72).defaultPageSize("w72h72");
  if (oddity == Zero) ppd.pageSize("Zero", 0, 0);
  if (oddity == Custom) ppd.customPageSizes(36, 1000);
  const char* const names[] = {"", "Unlisted", "Custom.100x150mm", "Zero"};
  job.options = std::string("PageSize=") + (oddity < 4 ? names[oddity] : "w288h432");
}

std::vector<std::uint8_t> drawPixels(Input& input, unsigned bytesPerLine, unsigned rows) {
  const std::uint8_t kind = input.byte();
  if (kind % 8 < 5) {
    const auto drawing = static_cast<support::Drawing>(kind % 8);
    return support::draw(drawing, bytesPerLine, rows, input.byte());
  }
  // A few bytes of the input, again and again.
  const std::span<const std::uint8_t> motif = input.take(kind);
  std::vector<std::uint8_t> pixels(std::size_t{bytesPerLine} * rows, 0);
  for (std::size_t i = 0; i < pixels.size() && !motif.empty(); ++i) {
    pixels[i] = motif[i % motif.size()];
  }
  return pixels;
}

support::Page drawPage(Input& input) {
  // Mostly narrow; some wider than the longest vectors, some a little higher than the bands that
  // the kernels work in.
  const std::uint8_t widthByte = input.byte();
  const unsigned width = widthByte < 160 ? widthByte % 80U : (widthByte - 160U) * 4;
  const std::uint8_t heightByte = input.byte();
  const unsigned height = heightByte < 192 ? heightByte % 24U : heightByte % 64U;
  constexpr std::array kDpi = {203U, 300U, 600U, 1U, 72U, 1200U, 0xFFFFFFFFU, 0U};
  const std::uint8_t dpiByte = input.byte();
  support::Page page;
  page.header = support::grayHeader(width, height, 203);
  page.header.HWResolution[0] = kDpi[dpiByte < 224 ? dpiByte % 3 : dpiByte % kDpi.size()];
  page.header.HWResolution[1] = kDpi[dpiByte < 240 ? dpiByte % 3 : dpiByte / 8 % kDpi.size()];
  const std::uint8_t padding = input.byte();
  page.header.cupsBytesPerLine = width + (padding < 192 ? 0U : padding % 16U);
  page.header.NumCopies = input.byte();
  page.pixels = drawPixels(input, page.header.cupsBytesPerLine, page.header.cupsHeight);

  const std::uint8_t breaks = input.byte();
  for (unsigned left = breaks < 192 ? 0 : breaks % 4; left > 0; --left) {
    // Mostly one of the numbers that stand behind the four texts.
    const std::size_t drawn = input.word();
    const std::size_t field =
        drawn % 4 != 0 ? 64 + drawn / 4 % 42 : drawn / 4 % (sizeof page.header / 4);
    constexpr std::array kOdd = {0U,      1U,          2U,          7U,          8U,
                                 9U,      255U,        0xFFFFU,     0x7FFFFFFFU, 0x80000000U,
                                 0x1000U, 0xFFFFFFFFU, 0xFFFFFFFCU, 0x40000000U, 0x10001U};
    const std::uint8_t how = input.byte();
    const std::uint32_t value = how < 192 ? kOdd[how % kOdd.size()] : input.word();
    setField(page.header, field, value);
  }
  return page;
}

void drawSurroundings(Input& input, Surroundings& surroundings) {
  const std::uint8_t drawn = input.byte();
  surroundings.recordingCanBeCreated = (drawn & 0xC1) != 0xC1;
  surroundings.traceCanBeWritten = (drawn & 0xC2) != 0xC2;
  surroundings.dumpsCanBeWritten = (drawn & 0xC4) != 0xC4;
  if ((drawn & 0xC8) == 0xC8) surroundings.room = input.byte() * std::size_t{16};
  // From before 1970 to long after 2038.
  if ((drawn & 0xD0) == 0xD0) surroundings.time = static_cast<std::int32_t>(input.word()) * 8LL;
}

}  // namespace

void drawSettings(Input& input, JobCase& job) {
  const std::uint8_t flags = input.byte();
  support::PpdText ppd;
  drawPageSize(input, job, ppd);
  drawOptions(input, job, ppd);
  ppd.attribute("tarvoFilterOutputFile", "", (flags & 1) != 0 ? drawWord(input) : "recording");
  // Lines of a PPD and options as they come, behind the others.
  if ((flags & 0x0C) == 0x0C) ppd.line(input.text(400));
  if ((flags & 0x30) == 0x30) job.options += " " + input.text(200);
  if ((flags & 0xC2) != 0xC2) job.ppd = ppd.text();
}

std::string drawRaster(Input& input) {
  const std::uint8_t form = input.byte();
  if (form >= 240) return std::string(input.rest());
  std::vector<support::Page> pages(1 + form % 3U % 2U + form % 3U / 2U);
  for (support::Page& page : pages) page = drawPage(input);
  std::string raster = rasterBytes(pages, kRasterForms[form / 4U % kRasterForms.size()]);
  const std::uint8_t cut = input.byte();
  if (cut >= 224) raster.resize(raster.size() - std::min(raster.size(), std::size_t{cut} - 223));
  return raster;
}

JobCase drawJob(Input& input) {
  JobCase job;
  drawSurroundings(input, job.surroundings);
  job.fromStandardInput = (input.byte() & 1) != 0;
  drawSettings(input, job);
  job.raster = drawRaster(input);
  return job;
}

bool isSmall(const std::string& raster, std::uint64_t mostClaimed) {
  constexpr std::uint64_t kMostBytes = 1U << 17U;
  std::uint64_t bytes = 0;
  RasterReader reader(raster);
  while (reader.next()) {
    const cups_page_header2_t& header = reader.header();
    if (!isReadable(header)) break;
    if (std::uint64_t{header.cupsBytesPerLine} * header.cupsHeight > mostClaimed) return false;
    bytes += reader.pixels(kMostBytes + 1).size();
    if (bytes > kMostBytes) return false;
  }
  return true;
}

}  // namespace fuzz
