// Jobs that one page ends: depth, size and resolution, first or after a good page.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "good_job.h"
#include "support/differences.h"

namespace {

using namespace jobs;
using support::Page;

Page bitPage() {
  Page page = goodPage();
  page.header.cupsBitsPerColor = page.header.cupsBitsPerPixel = 1;
  page.header.cupsBytesPerLine = 2;
  page.pixels.assign(4, 0xAA);
  return page;
}

Page colourPage() {
  Page page = goodPage();
  page.header.cupsBitsPerPixel = 24;
  page.header.cupsColorSpace = CUPS_CSPACE_RGB;
  page.header.cupsNumColors = 3;
  page.header.cupsBytesPerLine = 48;
  page.pixels.assign(96, 0x55);
  return page;
}

/// A good page with one number of its header changed and no pixels: they are never read.
template <typename Change>
Page headerWith(Change change) {
  Page page = goodPage();
  change(page.header);
  page.pixels.clear();
  return page;
}

struct BadPage {
  const char* what;
  Page page;
  int status;
  const char* log;
};

std::vector<BadPage> badPages() {
  return {
      {"1 bit", bitPage(), 1,
       "ERROR:Unsupported bits per pixel : 1 ! Requires 8 bits per pixel!\n"},
      {"24 bits", colourPage(), 1,
       "ERROR:Unsupported bits per pixel : 24 ! Requires 8 bits per pixel!\n"},
      // libcups itself reads no such header, nor the one of a line of 2 GB: the raster ends there.
      {"no rows", headerWith([](auto& header) { header.cupsHeight = 0; }), 0, ""},
      {"no bytes in a line", headerWith([](auto& header) { header.cupsBytesPerLine = 0; }), 0, ""},
      // 65536 x 65536 = 2 to the 32nd: one more than 32 bits hold.
      {"too large", headerWith([](auto& header) {
         header.cupsBytesPerLine = 65536;
         header.cupsHeight = 65536;
       }),
       1, "ERROR:Page too large: 65536 bytes per line, 65536 lines!\n"},
      {"far too large", headerWith([](auto& header) {
         header.cupsBytesPerLine = 2147483647;
         header.cupsHeight = 4294967295;
       }),
       1, "ERROR:Page too large: 2147483647 bytes per line, 4294967295 lines!\n"},
      {"a line of 2 GB", headerWith([](auto& header) { header.cupsBytesPerLine = 2147483648; }), 0,
       ""},
      {"line too short", headerWith([](auto& header) { header.cupsWidth = 17; }), 1,
       "ERROR:Line too short: 16 bytes for 17 dots!\n"},
      {"line far too short", headerWith([](auto& header) { header.cupsWidth = 4294967295; }), 1,
       "ERROR:Line too short: 16 bytes for 4294967295 dots!\n"},
      {"no resolution across", headerWith([](auto& header) { header.HWResolution[0] = 0; }), 1,
       "ERROR:Bad resolution: 0 x 203!\n"},
      {"no resolution along", headerWith([](auto& header) { header.HWResolution[1] = 0; }), 1,
       "ERROR:Bad resolution: 203 x 0!\n"},
      {"no resolution at all",
       headerWith([](auto& header) { header.HWResolution[0] = header.HWResolution[1] = 0; }), 1,
       "ERROR:Bad resolution: 0 x 0!\n"},
  };
}

TEST(BadPage, FirstOfTheJobSendsThePreambleAlone) {
  for (const BadPage& bad : badPages()) {
    SCOPED_TRACE(bad.what);
    FilterJob job;
    job.setPpd(goodPpd().text());
    // A good page after it is not read.
    const JobRun run = job.run(support::uncheckedRasterFile({bad.page, goodPage()}));
    expectRun(run, bad.status, preamble(), settingsLog() + bad.log);
    EXPECT_EQ(run.trace, std::nullopt);
    EXPECT_TRUE(run.dumps.empty());
  }
}

TEST(BadPage, AfterGoodPagesThoseStayPrinted) {
  for (const BadPage& bad : badPages()) {
    SCOPED_TRACE(bad.what);
    FilterJob job;
    job.setPpd(goodPpd()
                   .option("RecordPrinterCommands", "1", {"1"})
                   .attribute("tarvoFilterOutputFile", "", "recorded")
                   .text());
    const JobRun run =
        job.run(support::uncheckedRasterFile({goodPage(), goodPage(), bad.page, goodPage()}));
    expectRun(run, bad.status, preamble() + goodPageCommands() + goodPageCommands(),
              settingsLog() + "DEBUG:Filter data output to: recorded-20261116070509.bin\n" +
                  goodPageLog(1) + goodPageLog(2) + bad.log);
    // The trace is that of the last good page.
    EXPECT_EQ(run.trace, "cupsWidth:16, cupsHeight:2, cupsBytesPerLine:16, cupsBitsPerPixel:8\n");
    EXPECT_EQ(run.dumps.size(), 4U);
    ASSERT_EQ(run.recordings.size(), 1U);
    EXPECT_EQ(support::firstDifference(run.outcome.output, run.recordings[0].second), "");
  }
}

TEST(BadPage, LargestSizesThatPass) {
  // 65535 x 65537 = 2 to the 32nd less 1, the largest size of 32 bits. Its data is missing, so its
  // commands end with CLS.
  FilterJob job;
  job.setPpd(goodPpd().text());
  Page page = headerWith([](auto& header) {
    header.cupsBytesPerLine = 65535;
    header.cupsHeight = 65537;
  });
  const JobRun run = job.run(support::uncheckedRasterFile({page}));
  EXPECT_EQ(run.outcome.error.find("ERROR:"), std::string::npos) << run.outcome.error;
  if (!kAddressSanitizer) {
    EXPECT_EQ(run.outcome.ending(), "exit status 0");
    // 65537 x 25.4 / 203 = 8200.2 mm
    EXPECT_EQ(support::firstDifference(preamble() + setupCommands("2.0 mm, 8200.2 mm"),
                                       run.outcome.output),
              "");
  }
}

TEST(BadPage, PageWithoutMemoryEndsTheJobWithoutAWord) {
  FilterJob job;
  job.setPpd(goodPpd().text());
  Page page = headerWith([](auto& header) {
    header.cupsBytesPerLine = 1U << 20U;
    header.cupsHeight = 3000;  // 3 GB
  });
  support::Program program = job.program();
  program.input = support::PipedBytes{support::uncheckedRasterFile({goodPage(), page, goodPage()})};
  limitMemory(program, 1ULL << 30U);
  JobRun run = job.run(program);
  run.outcome.error = withoutSanitizerLines(run.outcome.error);
  expectRun(run, 1, preamble() + goodPageCommands(), settingsLog() + goodPageLog(1));
  // The trace is written before the memory is asked for.
  EXPECT_EQ(run.trace,
            "cupsWidth:16, cupsHeight:3000, cupsBytesPerLine:1048576, cupsBitsPerPixel:8\n");
}

TEST(BadPage, HalftoneWithoutMemoryEndsTheJobWithOneLine) {
  if (kAddressSanitizer) GTEST_SKIP() << "the sanitizer ends a process that has no memory";
  // One line of 4 Mi dots: 4 MiB, of which the page takes less than ten. Its error diffusion goes
  // down sixteen rows at once, each longer than the line, and needs more than 128 MiB for them.
  constexpr unsigned kDots = 4U << 20U;
  FilterJob job;
  job.setPpd(goodPpd().option("HalftoneType", "Ordered", {"Ordered"}).text());
  Page page = headerWith([](auto& header) {
    header.cupsWidth = header.cupsBytesPerLine = kDots;
    header.cupsHeight = 1;
  });
  page.pixels.assign(kDots, 100);
  support::Program program = job.program();
  program.input = support::PipedBytes{support::rasterFile({page, goodPage()})};
  program.addressSpaceLimitBytes = 112ULL << 20U;
  const JobRun run = job.run(program);
  EXPECT_EQ(run.outcome.ending(), "exit status 1");
  // 4194304 x 25.4 / 203 = 524804.54 mm, as a float 524804.5625. No bitmap is begun.
  EXPECT_EQ(support::firstDifference(preamble() + setupCommands("524804.6 mm, 0.1 mm"),
                                     run.outcome.output),
            "");
  const std::vector<std::string> log = support::linesOf(run.outcome.error);
  ASSERT_FALSE(log.empty());
  EXPECT_EQ(log.back(), "ERROR:Unable to go on: std::bad_alloc");
}

TEST(BadPage, PageWithoutItsDataIsSkippedAfterItsSetup) {
  FilterJob job;
  job.setPpd(goodPpd().text());
  Page cut = goodPage();
  cut.pixels.resize(31);
  const JobRun run = job.run(support::uncheckedRasterFile({goodPage(), cut}));
  expectRun(run, 0, preamble() + goodPageCommands() + setupCommands("2.0 mm, 0.3 mm"),
            settingsLog() + goodPageLog(1) + goodHeaderLog(2));
  EXPECT_EQ(run.dumps.size(), 2U);
}

TEST(BadPage, PageOfOneDotIsPrinted) {
  FilterJob job;
  job.setPpd(goodPpd().text());
  const JobRun run = job.run(
      support::rasterFile({Page{support::grayHeader(1, 1), std::vector<std::uint8_t>(1, 255)}}));
  EXPECT_EQ(run.outcome.ending(), "exit status 0");
  EXPECT_NE(run.outcome.output.find("BITMAP 0,0,1,1,0,"), std::string::npos);
}

// Planes count as rows of the page in libcups, which counts them in 32 bits. The number of colours
// says nothing of pages whose colours lie side by side.
TEST(BadPage, PlanesAreNoReasonToLeaveAPageOutUnlessTheirNumberWraps) {
  const struct {
    cups_order_t order;
    unsigned colours;
    bool printed;
  } cases[] = {{CUPS_ORDER_CHUNKED, 0, true},
               {CUPS_ORDER_CHUNKED, 1, true},
               {CUPS_ORDER_CHUNKED, 0xAAAAAAAB, true},
               {CUPS_ORDER_PLANAR, 0, true},  // libcups takes the number from the colour space
               {CUPS_ORDER_PLANAR, 1, true},
               {CUPS_ORDER_PLANAR, 3, true},
               {CUPS_ORDER_PLANAR, 0xAAAAAAAB, false}};
  for (const auto& [order, colours, printed] : cases) {
    Page page{support::grayHeader(16, 3), std::vector<std::uint8_t>(48, 255)};
    page.header.cupsColorOrder = order;
    page.header.cupsNumColors = colours;
    FilterJob job;
    job.setPpd(goodPpd().text());
    // Printed or not, the page that follows is.
    const JobRun run = job.run(support::uncheckedRasterFile({page, goodPage()}));
    EXPECT_EQ(run.outcome.ending(), "exit status 0");
    const std::string& sent = run.outcome.output;
    const std::string following = goodPageCommands();
    ASSERT_GT(sent.size(), following.size());
    const std::string own = sent.substr(0, sent.size() - following.size());
    EXPECT_EQ(support::firstDifference(following, sent.substr(own.size())), "") << order << colours;
    EXPECT_EQ(own.find("BITMAP") != std::string::npos, printed)
        << "order " << order << ", " << colours << " colours";
  }
}

}  // namespace
