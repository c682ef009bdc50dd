// rastertoaligned as the spooler starts it: streams in and out, what it says, how it ends.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <string>
#include <thread>

#include "align_run.h"
#include "support/differences.h"
#include "support/folder.h"

namespace {

using namespace std::chrono_literals;
using support::Drawing;
using support::grayPage;
using support::Outcome;
using support::Packing;
using support::Page;
using testing::HasSubstr;
using testing::StartsWith;

/// The page as rastertoaligned is to pass it on.
Page aligned(const Page& page) {
  Page result = page;
  const bool white = page.header.cupsColorSpace != CUPS_CSPACE_K;
  const unsigned width = (page.header.cupsWidth + 7) / 8 * 8;
  result.header.cupsWidth = width;
  result.header.cupsBytesPerLine = width;
  result.header.cupsColorSpace = CUPS_CSPACE_K;
  result.pixels.assign(std::size_t{width} * page.header.cupsHeight, 0);
  for (std::size_t y = 0; y < page.header.cupsHeight; ++y) {
    for (std::size_t x = 0; x < page.header.cupsWidth; ++x) {
      const unsigned value = page.pixels[y * page.header.cupsBytesPerLine + x];
      result.pixels[y * width + x] = static_cast<std::uint8_t>(white ? 255 - value : value);
    }
  }
  return result;
}

/// Empty when both lists hold the same pages.
std::string differenceOf(const std::vector<Page>& expected, const std::vector<Page>& actual) {
  if (expected.size() != actual.size()) {
    return std::to_string(expected.size()) + " pages, not " + std::to_string(actual.size());
  }
  for (std::size_t i = 0; i < expected.size(); ++i) {
    if (std::memcmp(&expected[i].header, &actual[i].header, sizeof expected[i].header) != 0) {
      return "header of page " + std::to_string(i + 1);
    }
    if (expected[i].pixels != actual[i].pixels) return "rows of page " + std::to_string(i + 1);
  }
  return "";
}

Page whitePage(unsigned width, unsigned height, cups_cspace_t space) {
  Page page = grayPage(width, height, Drawing::Random);
  page.header.cupsColorSpace = space;
  return page;
}

TEST(RasterToAligned, AlignsEveryPageOfAJob) {
  std::vector<Page> pages = {grayPage(13, 5, Drawing::Random), grayPage(799, 40, Drawing::Text),
                             whitePage(31, 7, CUPS_CSPACE_W), whitePage(16, 3, CUPS_CSPACE_SW),
                             grayPage(9, 1, Drawing::Full)};
  support::padLines(pages[1], 803);
  std::vector<Page> expected;
  for (const Page& page : pages) expected.push_back(aligned(page));
  for (const Packing packing : {Packing::Uncompressed, Packing::Compressed}) {
    const Outcome outcome = align(support::rasterFile(pages, packing));
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(differenceOf(expected, pagesOf(outcome.output)), "");
  }
}

TEST(RasterToAligned, PassesOtherPagesOnUnchanged) {
  std::vector<Page> pages;
  const auto add = [&pages](unsigned bitsPerColor, unsigned bitsPerPixel, cups_cspace_t space,
                            unsigned colours, cups_order_t order, unsigned bytesPerLine) {
    Page page = grayPage(13, 5, Drawing::Random);
    page.header.cupsBitsPerColor = bitsPerColor;
    page.header.cupsBitsPerPixel = bitsPerPixel;
    page.header.cupsColorSpace = space;
    page.header.cupsNumColors = colours;
    page.header.cupsColorOrder = order;
    page.header.cupsBytesPerLine = bytesPerLine;
    const unsigned planes = order == CUPS_ORDER_PLANAR ? colours : 1;
    page.pixels = support::draw(Drawing::Random, bytesPerLine, 5 * planes);
    pages.push_back(page);
  };
  add(1, 1, CUPS_CSPACE_K, 1, CUPS_ORDER_CHUNKED, 2);
  add(8, 24, CUPS_CSPACE_SRGB, 3, CUPS_ORDER_CHUNKED, 39);
  add(8, 24, CUPS_CSPACE_RGB, 3, CUPS_ORDER_BANDED, 39);
  add(8, 8, CUPS_CSPACE_CMYK, 4, CUPS_ORDER_PLANAR, 13);
  add(16, 16, CUPS_CSPACE_K, 1, CUPS_ORDER_CHUNKED, 26);
  add(8, 8, CUPS_CSPACE_RGB, 1, CUPS_ORDER_CHUNKED, 13);
  add(8, 8, CUPS_CSPACE_K, 1, CUPS_ORDER_CHUNKED, 11);  // a line too short for its 13 dots
  const Outcome outcome = align(support::rasterFile(pages));
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_EQ(differenceOf(pages, pagesOf(outcome.output)), "");
}

TEST(RasterToAligned, ReadsTheFileThatItsSixthArgumentNames) {
  const support::Folder folder;
  const Page page = grayPage(13, 5, Drawing::Random);
  support::writeFile(folder / "job.ras", support::rasterFile({page}));
  support::Program program = alignProgram("");
  program.arguments.push_back(folder / "job.ras");
  const Outcome outcome = support::run(program);
  EXPECT_EQ(outcome.status, 0) << outcome.error;
  EXPECT_EQ(differenceOf({aligned(page)}, pagesOf(outcome.output)), "");
}

// The page log counts a page with its copies when it has passed; how far it is comes before.
TEST(RasterToAligned, TellsTheSpoolerOfEachPage) {
  Page twice = grayPage(13, 4, Drawing::Random);
  twice.header.NumCopies = 2;
  const Outcome outcome = align(support::rasterFile({twice, grayPage(13, 100, Drawing::Random)}));
  EXPECT_EQ(outcome.error,
            "ATTR: job-media-progress=0\n"
            // 1, 2, 3 and 4 of 4 rows are 2, 5, 7 and 10 tenths.
            "ATTR: job-media-progress=20\n"
            "ATTR: job-media-progress=50\n"
            "ATTR: job-media-progress=70\n"
            "ATTR: job-media-progress=100\n"
            "PAGE: 1 2\n"
            "ATTR: job-media-progress=0\n"
            "ATTR: job-media-progress=10\n"
            "ATTR: job-media-progress=20\n"
            "ATTR: job-media-progress=30\n"
            "ATTR: job-media-progress=40\n"
            "ATTR: job-media-progress=50\n"
            "ATTR: job-media-progress=60\n"
            "ATTR: job-media-progress=70\n"
            "ATTR: job-media-progress=80\n"
            "ATTR: job-media-progress=90\n"
            "ATTR: job-media-progress=100\n"
            "PAGE: 2 1\n");
}

TEST(RasterToAligned, RefusesWhatIsNoJob) {
  for (const std::size_t count : {1U, 5U, 8U}) {
    support::Program program = alignProgram("");
    program.arguments.resize(count, "x");
    const Outcome outcome = support::run(program);
    EXPECT_EQ(outcome.status, 1) << count;
    EXPECT_EQ(outcome.error, "Usage: rastertoaligned job-id user title copies options [file]\n");
    EXPECT_EQ(outcome.output, "");
  }
}

TEST(RasterToAligned, SaysWhatIsWrongWithItsInput) {
  const std::string good = support::rasterFile({grayPage(13, 5, Drawing::Random)});
  Page empty = grayPage(13, 5, Drawing::Random);
  empty.header.cupsHeight = 0;
  const struct {
    std::string what, raster;
    int status;
    std::string says;
  } kCases[] = {
      {"nothing", "", 0, "WARNING: The document has no pages.\n"},
      {"no page", good.substr(0, 4), 0, "WARNING: The document has no pages.\n"},
      {"a byte", good.substr(0, 1), 1, "ERROR: The input is not a stream of raster pages.\n"},
      {"half a sync word", good.substr(0, 2), 1,
       "ERROR: The input is not a stream of raster pages.\n"},
      {"a PDF", "%PDF-1.4\nand so on", 1, "ERROR: The input is not a stream of raster pages.\n"},
      {"half a header", good.substr(0, 1000), 1, "ERROR: Page 1 has no header that can be read.\n"},
      {"a page without rows", support::uncheckedRasterFile({empty}), 1,
       "ERROR: Page 1 has no header that can be read.\n"},
      {"a byte behind the last page", good + "x", 1,
       "ERROR: Page 2 has no header that can be read.\n"},
      {"half a second header", good + good.substr(4, 1000), 1,
       "ERROR: Page 2 has no header that can be read.\n"},
  };
  for (const auto& input : kCases) {
    const Outcome outcome = align(input.raster);
    EXPECT_EQ(outcome.status, input.status) << input.what;
    EXPECT_EQ(support::linesOf(outcome.error).back() + "\n", input.says) << input.what;
  }

  support::Program program = alignProgram("");
  program.arguments.emplace_back("/no/such/file");
  Outcome outcome = support::run(program);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.error, "ERROR: Unable to open \"/no/such/file\": No such file or directory.\n");

  program = alignProgram("");
  program.input = support::Closed{};
  outcome = support::run(program);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.error, "ERROR: Unable to read the pages: Bad file descriptor.\n");
}

// A page of which something came ends, with paper for what did not come; it is not counted. Of a
// header alone nothing comes.
TEST(RasterToAligned, EndsAPageThatIsCutShort) {
  const Page page = grayPage(13, 5, Drawing::Full);
  const std::string raster = support::rasterFile({page});
  for (std::size_t left = 1; left <= 5 * 13; ++left) {
    const std::size_t rows = 5 - (left + 12) / 13;
    const Outcome outcome = align(raster.substr(0, raster.size() - left));
    EXPECT_EQ(outcome.status, 1) << left;
    std::string said;
    for (std::size_t row = 0; row <= rows; ++row) {
      said += "ATTR: job-media-progress=" + std::to_string(row * 20) + "\n";
    }
    EXPECT_EQ(outcome.error, said + "ERROR: Page 1 is cut short: " + std::to_string(rows) +
                                 " of its 5 rows came.\n");
    Page expected = aligned(page);
    std::fill(expected.pixels.begin() + static_cast<std::ptrdiff_t>(rows * 16),
              expected.pixels.end(), std::uint8_t{0});
    if (rows == 0) expected.pixels.clear();
    EXPECT_EQ(differenceOf({expected}, pagesOf(outcome.output)), "") << left;
  }
}

// A header can promise any number of rows; each that is made up for costs time.
TEST(RasterToAligned, MakesUpForNoMoreRowsThanALabelHas) {
  constexpr unsigned kMostRows = 131072;  // 5 m at 600 dpi
  for (const unsigned missing : {kMostRows, kMostRows + 1}) {
    Page page = grayPage(8, 1, Drawing::Full);
    page.header.cupsHeight = 1 + missing;
    const Outcome outcome = align(support::uncheckedRasterFile({page}));
    EXPECT_EQ(outcome.status, 1);
    if (missing <= kMostRows) page.pixels.resize(std::size_t{8} * (1 + missing), 0);
    EXPECT_EQ(differenceOf({page}, pagesOf(outcome.output)), "") << missing;
  }
}

// And any number of dots in a row, which the next filter holds.
TEST(RasterToAligned, MakesUpForNoMoreThan64MiB) {
  constexpr unsigned kWidth = 8192;
  constexpr unsigned kMostRows = (64U << 20U) / kWidth;
  const support::Folder folder;
  for (const unsigned missing : {kMostRows, kMostRows + 1}) {
    Page page = grayPage(kWidth, 1, Drawing::Full);
    page.header.cupsHeight = 1 + missing;
    // To a file: the test's own memory would count where another one measures the filter's.
    support::Program program = alignProgram(support::uncheckedRasterFile({page}));
    program.executable = "/bin/sh";
    program.arguments = {"sh", "-c", "exec '" RASTERTOALIGNED "' 7 u t 1 '' > \"$0\"",
                         folder / "out"};
    EXPECT_EQ(support::run(program).ending(), "exit status 1");
    const std::uintmax_t paper = missing <= kMostRows ? std::uintmax_t{kWidth} * missing : 0;
    EXPECT_EQ(std::filesystem::file_size(folder / "out"), 4 + sizeof page.header + kWidth + paper)
        << missing;
  }
}

// Nobody knows what is paper in it.
TEST(RasterToAligned, LeavesAnotherPageThatIsCutShortAsItIs) {
  Page page = grayPage(13, 5, Drawing::Full);
  page.header.cupsColorSpace = CUPS_CSPACE_RGB;
  const std::string raster = support::rasterFile({page});
  const Outcome outcome = align(raster.substr(0, raster.size() - 20));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.error, HasSubstr("ERROR: Page 1 is cut short: 3 of its 5 rows came.\n"));
  page.pixels.resize(std::size_t{3} * 13);
  EXPECT_EQ(differenceOf({page}, pagesOf(outcome.output)), "");
}

// Rows are gathered up to 64 KiB, longer ones are not.
TEST(RasterToAligned, RowsOfAnyLengthComeOutInTheirOrder) {
  for (const unsigned width :
       {1U, 8U, 13U, 4093U, 32767U, 65527U, 65528U, 65529U, 65537U, 200001U}) {
    const unsigned height = width < 100 ? 30000 : 20;
    const std::vector<Page> pages = {grayPage(width, height, Drawing::Random),
                                     grayPage(width, 3, Drawing::Random)};
    const Outcome outcome = align(support::rasterFile(pages));
    EXPECT_EQ(outcome.status, 0) << width;
    EXPECT_EQ(differenceOf({aligned(pages[0]), aligned(pages[1])}, pagesOf(outcome.output)), "")
        << width;
  }
}

// A4 at 1200 dpi is 139 MB; it is to pass through a few.
TEST(RasterToAligned, HoldsARowNotAPage) {
  const support::Folder folder;
  // Its pixels are a hole in the file: the test must not grow itself, the limit would count that.
  const std::string start =
      support::uncheckedRasterFile({Page{support::grayHeader(9921, 14031, 1200), {}}});
  support::writeFile(folder / "big.ras", start);
  std::filesystem::resize_file(folder / "big.ras", start.size() + std::uintmax_t{9921} * 14031);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const int null = open("/dev/null", O_RDWR);
    dup2(null, 1);
    dup2(null, 2);
    const std::string file = folder / "big.ras";
    execl(RASTERTOALIGNED, "rastertoaligned", "7", "u", "t", "1", "", file.c_str(), nullptr);
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  ASSERT_EQ(wait4(child, &status, 0, &usage), child);
  EXPECT_EQ(status, 0);
#if defined(__SANITIZE_ADDRESS__)
  const long limit_kib = 80000;  // the sanitizer's own memory
#else
  const long limit_kib = 16000;
#endif
  EXPECT_LT(usage.ru_maxrss, limit_kib);
}

/// The filter with a pipe on each side, of which the test holds the other ends.
class RunningFilter : public testing::Test {
 protected:
  /// `output_flags`: O_DIRECT for a pipe that keeps writes apart, as pieces of 4096 bytes at most.
  void start(int output_flags = 0) {
    int in[2], out[2], error[2];
    ASSERT_EQ(pipe2(in, O_CLOEXEC) + pipe2(out, O_CLOEXEC | output_flags) + pipe2(error, O_CLOEXEC),
              0);
    child_ = fork();
    ASSERT_GE(child_, 0);
    if (child_ == 0) {
      dup2(in[0], 0);
      dup2(out[1], 1);
      dup2(error[1], 2);
      execl(RASTERTOALIGNED, "rastertoaligned", "7", "u", "t", "1", "", nullptr);
      _exit(127);
    }
    close(in[0]);
    close(out[1]);
    close(error[1]);
    in_ = in[1];
    out_ = out[0];
    error_ = error[0];
  }
  void TearDown() override {
    for (const int descriptor : {in_, out_, error_}) close(descriptor);
  }

  void feed(const std::string& bytes) {
    ASSERT_EQ(write(in_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }

  /// Feeds it more than pipes hold, until it ends.
  std::thread feedAside() const {
    return std::thread([this] {
      const std::string raster = support::rasterFile({grayPage(800, 500, Drawing::Random)});
      signal(SIGPIPE, SIG_IGN);
      [[maybe_unused]] const ssize_t count = write(in_, raster.data(), raster.size());
    });
  }

  /// Waits until it has read its input and waits itself, or has ended.
  void settle() const {
    std::string stat;
    do {
      std::this_thread::sleep_for(2ms);
      stat = support::readFile("/proc/" + std::to_string(child_) + "/stat").value_or("");
    } while (stat.find(") R ") != std::string::npos || stat.find(") D ") != std::string::npos);
  }

  /// Its end as waitpid has it; -1 when it does not end at all.
  int end() {
    for (int i = 0; i < 15000; ++i) {
      int status = 0;
      if (waitpid(child_, &status, WNOHANG) == child_) return status;
      std::this_thread::sleep_for(2ms);
    }
    kill(child_, SIGKILL);
    waitpid(child_, nullptr, 0);
    return -1;
  }

  std::string said() const {
    char text[4096];
    const ssize_t count = read(error_, text, sizeof text);
    return {text, static_cast<std::size_t>(count < 0 ? 0 : count)};
  }

  pid_t child_ = -1;
  int in_ = -1;
  int out_ = -1;
  int error_ = -1;
};

// The next filter prints a page as soon as it has all of it.
TEST_F(RunningFilter, APageGoesOnBeforeTheNextOneComes) {
  start();
  const std::string raster = support::rasterFile({grayPage(13, 5, Drawing::Random)});
  feed(raster);
  settle();
  std::string output(65536, '\0');
  const ssize_t count = read(out_, output.data(), output.size());
  ASSERT_GT(count, 0);
  output.resize(static_cast<std::size_t>(count));
  EXPECT_EQ(differenceOf({aligned(grayPage(13, 5, Drawing::Random))}, pagesOf(output)), "");
  close(in_);
  EXPECT_EQ(end(), 0);
  in_ = -1;
}

TEST_F(RunningFilter, InputThatComesInPiecesIsTheSameAsWhole) {
  const Page page = grayPage(13, 5, Drawing::Random);
  const std::string raster = support::rasterFile({page});
  start();
  signal(SIGPIPE, SIG_IGN);  // of a filter that gives up, feed tells
  std::size_t fed = 0;
  for (const std::size_t size : {1U, 1U, 3U, 1000U, 1U, 795U, 1U, 2U, 1U, 30U, 1U}) {
    feed(raster.substr(fed, size));
    fed += size;
    settle();
  }
  feed(raster.substr(fed));
  close(in_);
  in_ = -1;
  EXPECT_EQ(end(), 0);
  std::string output(65536, '\0');
  const ssize_t count = read(out_, output.data(), output.size());
  ASSERT_GT(count, 0);
  output.resize(static_cast<std::size_t>(count));
  EXPECT_EQ(differenceOf({aligned(page)}, pagesOf(output)), "");
}

// Packed data of some kilobytes can hold millions of rows: a system call for each would take
// seconds.
TEST_F(RunningFilter, ShortRowsGoOnTogether) {
  start(O_DIRECT);
  std::thread feeder([this] {
    const std::string raster = support::rasterFile({grayPage(8, 20000, Drawing::Random)});
    feed(raster);
    close(in_);
  });
  char piece[65536];
  std::size_t pieces = 0;
  ssize_t bytes = 0;
  for (ssize_t count = read(out_, piece, sizeof piece); count > 0;
       count = read(out_, piece, sizeof piece)) {
    ++pieces;
    bytes += count;
  }
  feeder.join();
  in_ = -1;
  EXPECT_EQ(end(), 0);
  EXPECT_EQ(bytes, 4 + 1796 + 8 * 20000);
  EXPECT_LT(pieces, 50U);
}

// A log that nobody reads is no reason to stop, nor is the signal that tells of one while it waits.
TEST_F(RunningFilter, InterruptedWhileItWaitsForInputItWaitsOn) {
  const std::string raster = support::rasterFile({grayPage(13, 5, Drawing::Random)});
  start();
  feed(raster.substr(0, 1000));
  settle();
  kill(child_, SIGPIPE);
  settle();
  feed(raster.substr(1000));
  settle();
  kill(child_, SIGPIPE);  // and now it waits for nothing but the end
  settle();
  close(in_);
  in_ = -1;
  EXPECT_EQ(end(), 0);
  EXPECT_THAT(said(), HasSubstr("PAGE: 1 1\n"));
}

TEST_F(RunningFilter, CancelledWhileItWaitsForInputItEndsAtOnce) {
  const std::string raster = support::rasterFile({grayPage(13, 5, Drawing::Random)});
  for (const std::size_t come :
       {std::size_t{0}, std::size_t{4}, std::size_t{1000}, raster.size() - 20, raster.size()}) {
    start();
    feed(raster.substr(0, come));
    settle();
    kill(child_, SIGTERM);
    EXPECT_EQ(end(), 0) << come;
    EXPECT_THAT(said(), testing::Not(testing::AnyOf(HasSubstr("ERROR"), HasSubstr("WARNING"))));
    TearDown();
  }
  start();
  TearDown();
  end();
}

TEST_F(RunningFilter, CancelledWhileNobodyReadsItEndsAtOnce) {
  start();
  std::thread feeder = feedAside();
  settle();
  kill(child_, SIGTERM);
  EXPECT_EQ(end(), 0);
  feeder.join();
}

// The next filter took some of it and stopped: there is room for a part of what is to be written.
TEST_F(RunningFilter, CancelledAfterAPartWasReadItEndsAtOnce) {
  for (const std::size_t taken : {std::size_t{5000}, std::size_t{40000}}) {
    start();
    std::thread feeder = feedAside();
    settle();
    std::string some(taken, '\0');
    for (std::size_t left = taken; left > 0;) {
      const ssize_t count = read(out_, some.data(), left);
      ASSERT_GT(count, 0);
      left -= static_cast<std::size_t>(count);
    }
    settle();
    kill(child_, SIGTERM);
    const int status = end();
    feeder.join();
    ASSERT_EQ(status, 0) << taken;
    if (taken == 5000) TearDown();
  }
}

TEST_F(RunningFilter, NobodyLeftToReadEndsIt) {
  signal(SIGPIPE, SIG_IGN);  // inherited: the filter is not to depend on it
  start();
  signal(SIGPIPE, SIG_DFL);
  close(out_);
  feed(support::rasterFile({grayPage(13, 5, Drawing::Random)}));
  const int status = end();
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGPIPE);
  out_ = -1;
}

}  // namespace
