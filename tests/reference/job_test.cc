#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "reference/page_pipeline.h"
#include "reference/reference.h"

namespace reference {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

const std::string kPreamble(64, '\n');

Page pageOf(unsigned width, unsigned height, unsigned bytes_per_line, std::uint8_t level) {
  Page page;
  page.header.cupsWidth = width;
  page.header.cupsHeight = height;
  page.header.cupsBytesPerLine = bytes_per_line;
  page.header.cupsBitsPerColor = 8;
  page.header.cupsBitsPerPixel = 8;
  page.header.cupsColorSpace = CUPS_CSPACE_K;
  page.header.HWResolution[0] = 203;
  page.header.HWResolution[1] = 203;
  page.header.NumCopies = 1;
  page.pixels.assign(static_cast<std::size_t>(bytes_per_line) * height, level);
  return page;
}

/// A job that prints one page: 8 x 2 dots of ink.
Job smallJob() {
  Job job;
  job.choices = {{"PageSize", "w288h432"}, {"HalftoneType", "None"}, {"Darkness", "8"}};
  job.pageWidthPoints = 288;
  job.pageLengthPoints = 432;
  job.now.tm_year = 126;
  job.now.tm_mday = 1;
  job.pages = {pageOf(8, 2, 8, 255)};
  return job;
}

/// The setup commands of an 8-dot wide page of 2 rows: 8 x 25.4 / 203 = 1.0, 2 x 25.4 / 203 = 0.25.
const std::string kSetup =
    "SIZE 1.0 mm, 0.3 mm\r\nGAP 0, 0\r\nREFERENCE 0,0\r\nDIRECTION 0,0\r\nDENSITY 8\r\n"
    "OFFSET 0.0 mm\r\nCLS\r\n";

std::string inked(std::size_t bytes, const std::string& copies = "1") {
  return "BITMAP 0,0,1," + std::to_string(bytes) + ",0," + std::string(bytes, '\0') +
         "\r\nPRINT 1," + copies + "\r\n";
}

TEST(Job, OnePage) {
  const Result result = run(smallJob());
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.stream, kPreamble + kSetup + inked(2));
  EXPECT_EQ(result.recordingName, "");
  EXPECT_EQ(result.trace, "cupsWidth:8, cupsHeight:2, cupsBytesPerLine:8, cupsBitsPerPixel:8\n");
  ASSERT_THAT(result.dumps, SizeIs(2));
  EXPECT_EQ(result.dumps[0].name, "origin_2026-1-1_0_0_0_0.bmp");
  EXPECT_EQ(result.dumps[1].name, "dithered_2026-1-1_0_0_0_1.bmp");
  EXPECT_EQ(result.dumps[0].bytes.substr(1078), std::string(16, '\xFF'));
  EXPECT_EQ(result.dumps[1].bytes.substr(1078), std::string(16, '\x01'));
}

TEST(Job, ThePagesLogInOrder) {
  const std::vector<std::string> log = run(smallJob()).log;
  const auto first = std::ranges::find(log, "DEBUG:pageWidth: 1.000985,pageHeight: 0.250246");
  EXPECT_THAT(
      std::vector<std::string>(first, log.end()),
      ElementsAre(
          "DEBUG:pageWidth: 1.000985,pageHeight: 0.250246", "DEBUG:PAGE: 1 1", "",
          "DEBUG:header.HWResolution[0]:203", "", "DEBUG:header.HWResolution[1]:203",
          "DEBUG:header.cupsWidth:8", "DEBUG:header.cupsHeight:2", "DEBUG:header.cupsMediaType:0",
          "DEBUG:header.cupsBitsPerColor:8", "DEBUG:header.cupsBitsPerPixel:8",
          "DEBUG:header.cupsBytesPerLine:8", "DEBUG:header.cupsColorOrder:0",
          "DEBUG:header.cupsColorSpace:3", "DEBUG:header.cupsCompression:0",
          "DEBUG:header.cupsRowCount:0", "DEBUG:header.cupsRowFeed:0", "DEBUG:header.cupsRowStep:0",
          "DEBUG:printImage: Start processing image, input width: 8, height: 2, bytes per line: 8",
          "DEBUG:printImage: Memory allocated successfully, size: 16 bytes",
          "DEBUG:printImage: Saving original image, file path will be generated based on time",
          "DEBUG:printImage: Memory for processing result allocated successfully, size: 16 bytes",
          "DEBUG:PageProcess: Lumo dithering is disabled",
          "DEBUG:PageProcess: Successfully created CxImage from array with stride 8",
          "DEBUG:PageProcess: Applied default dithering and increased bit depth",
          "DEBUG:PageProcess: negativePrint_ 0",
          "DEBUG:PageProcess: Filled the output buffer with processed pixels, length: 16",
          "DEBUG:printImage: Processed image information - pointer address: %ADDR, width: 8, "
          "height: 2, bytes per line: 8, number of top blank lines: 0, number of bottom blank "
          "lines: 0, adjusted height: 2",
          "DEBUG:printImage: Saving processed image, file path will be generated based on time",
          "DEBUG:printImage: Starting to print the processed image",
          "DEBUG:printImage: Freed the allocated memory, address: (nil)",
          "DEBUG:printImage: Freed the memory for processing result, address: %p",
          "DEBUG:printImage: Image processing completed"));
}

TEST(Job, WithoutPagesThePreambleIsSent) {
  Job job = smallJob();
  job.pages.clear();
  const Result result = run(job);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.stream, kPreamble);
  EXPECT_EQ(result.trace, "");
}

TEST(Job, AnUnknownPaperSizeStopsItAfterTheRecordingWasCreated) {
  Job job = smallJob();
  job.choices["RecordPrinterCommands"] = "1";
  job.recordingAttribute = "/tmp/rec";
  job.pageWidthPoints = 0;
  job.pageLengthPoints = 0;
  const Result result = run(job);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.stream, "");
  EXPECT_EQ(result.recordingName, "/tmp/rec-20260101000000.bin");
  EXPECT_EQ(result.log[result.log.size() - 2],
            "DEBUG:Filter data output to: /tmp/rec-20260101000000.bin");
  EXPECT_EQ(result.log.back(), "ERROR: Paper size must not less than 1.0 : (0.000000, 0.000000)");
}

TEST(Job, ARecordingThatCannotBeCreatedIsReportedAndTheJobPrinted) {
  Job job = smallJob();
  job.choices["RecordPrinterCommands"] = "1";
  job.recordingAttribute = "/nowhere/rec";
  job.recordingCanBeCreated = false;
  const Result result = run(job);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.recordingName, "");
  EXPECT_EQ(result.stream, kPreamble + kSetup + inked(2));
  EXPECT_THAT(result.log, Contains("ERROR:Unable to create the output file: "
                                   "/nowhere/rec-20260101000000.bin"));
}

struct BadPage {
  const char* what;
  void (*spoil)(cups_page_header2_t&);
  int status;
  const char* logged;  ///< the last line; null: none of its own
};

TEST(Job, ABadPageEndsItAndNothingOfThePageIsSent) {
  using Header = cups_page_header2_t;
  const BadPage cases[] = {
      {"1 bit", [](Header& h) { h.cupsBitsPerPixel = 1; }, 1,
       "ERROR:Unsupported bits per pixel : 1 ! Requires 8 bits per pixel!"},
      {"24 bits", [](Header& h) { h.cupsBitsPerPixel = 24; }, 1,
       "ERROR:Unsupported bits per pixel : 24 ! Requires 8 bits per pixel!"},
      {"no lines", [](Header& h) { h.cupsHeight = 0; }, 0, nullptr},
      {"no bytes", [](Header& h) { h.cupsBytesPerLine = 0; }, 0, nullptr},
      {"4 GiB",
       [](Header& h) {
         h.cupsBytesPerLine = 65536;
         h.cupsHeight = 65536;
       },
       1, "ERROR:Page too large: 65536 bytes per line, 65536 lines!"},
      {"too wide", [](Header& h) { h.cupsWidth = 9; }, 1,
       "ERROR:Line too short: 8 bytes for 9 dots!"},
      {"no resolution across", [](Header& h) { h.HWResolution[0] = 0; }, 1,
       "ERROR:Bad resolution: 0 x 203!"},
      {"no resolution down", [](Header& h) { h.HWResolution[1] = 0; }, 1,
       "ERROR:Bad resolution: 203 x 0!"},
  };
  for (const BadPage& c : cases) {
    SCOPED_TRACE(c.what);
    Job job = smallJob();
    job.pages.push_back(job.pages[0]);
    c.spoil(job.pages[1].header);
    job.pages.push_back(job.pages[0]);
    const Result result = run(job);
    EXPECT_EQ(result.status, c.status);
    EXPECT_EQ(result.stream, kPreamble + kSetup + inked(2));
    EXPECT_THAT(result.dumps, SizeIs(2));
    EXPECT_EQ(result.log.back(),
              c.logged == nullptr ? "DEBUG:printImage: Image processing completed" : c.logged);
    EXPECT_EQ(result.trace, "cupsWidth:8, cupsHeight:2, cupsBytesPerLine:8, cupsBitsPerPixel:8\n");
  }
}

TEST(Job, APageWithoutDataSendsItsCommandsOnly) {
  Job job = smallJob();
  job.pages.insert(job.pages.begin(), job.pages[0]);
  job.pages[0].pixels.clear();
  job.pages[1].header.NumCopies = 7;
  const Result result = run(job);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.stream, kPreamble + kSetup + kSetup + inked(2, "7"));
  EXPECT_THAT(result.dumps, SizeIs(2));
  EXPECT_THAT(result.log, Contains("DEBUG:PAGE: 2 7"));
}

TEST(Job, NegativeIsAllInkWithEveryHalftoneButTheTattooOnes) {
  for (const std::uint8_t level : {std::uint8_t{0}, std::uint8_t{255}}) {
    Job job = smallJob();
    job.choices["NegativeImage"] = "True";
    job.pages = {pageOf(8, 2, 8, level)};
    // The levels 0 and 1 become 255 and 254, both of them set.
    EXPECT_EQ(run(job).stream, kPreamble + kSetup + inked(2)) << int{level};
    // 0 and 255 change places.
    job.choices["HalftoneType"] = "Tattoo";
    const std::string dots(2, level == 0 ? '\0' : '\xFF');
    EXPECT_THAT(run(job).stream, HasSubstr("BITMAP 0,0,1,2,0," + dots + "\r\n")) << int{level};
  }
}

TEST(Job, ThePaddingOfARowIsPrintedAndInNegativeItIsInk) {
  Job job = smallJob();
  job.pages = {pageOf(9, 2, 9, 255)};
  EXPECT_THAT(run(job).stream,
              HasSubstr("BITMAP 0,0,2,2,0," + std::string("\x00\x7F\xE0\x7F", 4) + "\r\n"));
  job.choices["NegativeImage"] = "1";
  EXPECT_THAT(run(job).stream,
              HasSubstr("BITMAP 0,0,2,2,0," + std::string("\x00\x7F\x00\x7F", 4) + "\r\n"));
}

TEST(Job, BytesBeyondTheWidthAreNotPrinted) {
  Job job = smallJob();
  job.pages = {pageOf(9, 2, 12, 255)};
  EXPECT_THAT(run(job).stream,
              HasSubstr("BITMAP 0,0,2,2,0," + std::string("\x00\x7F\xE0\x7F", 4) + "\r\n"));
}

TEST(Job, TattooRowsOfLongLinesRunAskew) {
  // Lines of 16 bytes for a page 8 wide: the buffer holds 8 bytes of page, 8 that nothing was
  // written to, and so on. The two rows of the page are its first 16 bytes: ink, then nothing.
  Job job = smallJob();
  job.choices["HalftoneType"] = "Tattoo";
  job.pages = {pageOf(8, 2, 16, 255)};
  const Result long_lines = run(job);

  Page page = pageOf(8, 2, 8, 255);
  std::fill(page.pixels.begin() + 8, page.pixels.end(), std::uint8_t{0});
  job.pages = {page};
  EXPECT_EQ(long_lines.stream, run(job).stream);
  // The labels of two values of this line are exchanged.
  EXPECT_THAT(long_lines.log,
              Contains(HasSubstr("address: %ADDR, width: 16, height: 2, bytes per line: 8, ")));
  EXPECT_THAT(long_lines.log, Contains("DEBUG:PageProcess: Copied pixels to the output buffer for "
                                       "Lumo dithering, with stride 16, EffWidth 8"));
}

TEST(Job, APageOfNoWidthPrintsNothing) {
  Job job = smallJob();
  for (const bool after_a_good_page : {false, true}) {
    job.pages = {pageOf(0, 2, 8, 255)};
    if (after_a_good_page) job.pages.insert(job.pages.begin(), pageOf(8, 2, 8, 255));
    const Result result = run(job);
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.stream, testing::EndsWith("CLS\r\n"));
    EXPECT_THAT(result.dumps, SizeIs(after_a_good_page ? 3 : 1));
    EXPECT_THAT(result.log, Contains("CRIT:cximage.CreateFromArray with grey failed!"));
    EXPECT_THAT(result.log,
                Contains("ERROR:printImage: pimage is NULL, unable to print the image"));
  }
}

TEST(Job, ATattooPageOfNoWidthPrintsThePageBefore) {
  Job job = smallJob();
  job.choices["HalftoneType"] = "Tattoo_X8";
  job.pages = {pageOf(8, 2, 8, 255), pageOf(0, 2, 8, 255)};
  job.pages[1].header.NumCopies = 4;
  const Result result = run(job);
  EXPECT_THAT(result.stream, testing::EndsWith("CLS\r\n" + inked(2, "4")));
  ASSERT_THAT(result.dumps, SizeIs(4));
  EXPECT_EQ(result.dumps[3].bytes, result.dumps[1].bytes);
}

TEST(Job, BrightnessIsClampedAndTakenFiveTimes) {
  Job job = smallJob();
  job.choices["Brightness"] = "-101";
  const Result result = run(job);
  EXPECT_THAT(result.log, Contains("DEBUG:PageProcess: Adjusted brightness to -500 and contrast to "
                                   "0"));
  EXPECT_THAT(result.stream, HasSubstr("BITMAP 0,0,1,2,0,\xFF\xFF\r\n"));
}

TEST(Job, MirrorsBeforeTheHalftone) {
  Job job = smallJob();
  job.choices["MirrorImage"] = "True";
  job.pages = {pageOf(8, 1, 8, 0)};
  job.pages[0].pixels[0] = 255;  // ink in the leftmost dot
  EXPECT_THAT(run(job).stream, HasSubstr("BITMAP 0,0,1,1,0,\xFE\r\n"));
}

TEST(Job, DumpsThatCannotBeWrittenAreReportedAndCounted) {
  Job job = smallJob();
  job.dumpsCanBeWritten = false;
  const Result result = run(job);
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.dumps, IsEmpty());
  for (const char* name : {"origin_2026-1-1_0_0_0_0", "dithered_2026-1-1_0_0_0_1"}) {
    EXPECT_THAT(result.log,
                Contains("TarvoPrinter::saveImage: unable to open the file /var/spool/cups/tmp/" +
                         std::string(name) + ".bmp"));
  }
}

TEST(Job, KeepsItsPagesUnlessToldNotTo) {
  for (const char* choice : {"True", "yes", "1", "255"}) {
    Job job = smallJob();
    job.choices["KeepPages"] = choice;
    EXPECT_THAT(run(job).dumps, SizeIs(2)) << choice;
  }
  for (const char* choice : {"False", "no", "0", "256", "Never"}) {
    Job job = smallJob();
    job.choices["KeepPages"] = choice;
    const Result result = run(job);
    EXPECT_THAT(result.dumps, IsEmpty()) << choice;
    EXPECT_EQ(result.stream, run(smallJob()).stream);
    EXPECT_EQ(result.log, run(smallJob()).log);
  }
}

TEST(Job, ATraceThatCannotBeWrittenIsPassedOver) {
  Job job = smallJob();
  job.traceCanBeWritten = false;
  EXPECT_EQ(run(job).trace, "");
  EXPECT_EQ(run(job).stream, run(smallJob()).stream);
}

TEST(PageProcess, TheBufferOfAOneDotPageIsTooSmallForItsRows) {
  // Two lines of one byte make a buffer of 4; the processed rows of four bytes need 8.
  Printer printer;
  Log log;
  const Page page = pageOf(1, 2, 1, 255);
  const Processing result =
      pageProcess(printer, PageOptions{}, page.header, page.pixels, 1, 1, 2, log);
  EXPECT_EQ(result.length, 8);
  EXPECT_THAT(result.out, ElementsAre(0, 0, 0, 0));
}

TEST(PageProcess, TheBufferShowsANegativePageInvertedTwice) {
  Printer printer;
  Log log;
  PageOptions options;
  options.halftone = 8;
  options.negative = true;
  const Page page = pageOf(4, 1, 4, 255);
  const Processing result = pageProcess(printer, options, page.header, page.pixels, 4, 4, 1, log);
  EXPECT_THAT(result.out, ElementsAre(255, 255, 255, 255, 0, 0, 0, 0));
  EXPECT_THAT(printer.image()->bytes, ElementsAre(0, 0, 0, 0));
}

TEST(PageProcess, AFramedPageIsReportedWithTheInputsHeight) {
  Printer printer;
  Log log;
  PageOptions options;
  options.anti_wrinkle = 1;
  Page page = pageOf(1000, 10, 1000, 0);
  std::snprintf(page.header.cupsPageSizeName, sizeof(page.header.cupsPageSizeName), "Tattoo_A6");
  const Processing result =
      pageProcess(printer, options, page.header, page.pixels, 1000, 1000, 10, log);
  // 1181 + 24 = 1205 wide: 102 dots on either side make 1204. 1394 + 24 = 1418 high.
  EXPECT_EQ(printer.image()->width, 1204);
  EXPECT_EQ(printer.image()->height, 1418);
  EXPECT_EQ(result.length, 10 * 1204);
  // Around a two-level page the nearest entry to white is 1; the bars are 255.
  EXPECT_EQ(printer.image()->at(50, 700), 1);
  EXPECT_EQ(printer.image()->at(0, 700), 255);
}

TEST(PrintImage, BlankEdgesReachTheLogOnly) {
  Page page = pageOf(8, 300, 8, 0);
  std::fill(page.pixels.begin() + 800, page.pixels.begin() + 1600, std::uint8_t{255});
  PageOptions options;
  options.remove_blank_edges = 10;
  Printer printer;
  std::string stream;
  std::vector<Dump> dumps;
  Log log;
  const std::tm now{};
  printImage(printer, options, page, {stream, dumps, log, now});
  EXPECT_THAT(stream, StartsWith("BITMAP 0,0,1,300,0,"));
  EXPECT_THAT(log.lines(), Contains("DEBUG:printImage: Adjusted image height to 101, pointer "
                                    "offset by 792 bytes"));
  EXPECT_THAT(log.lines(), Contains(HasSubstr("number of top blank lines: 99, number of bottom "
                                              "blank lines: 200, adjusted height: 101")));

  Log without;
  printImage(printer, PageOptions{}, page, {stream, dumps, without, now});
  EXPECT_THAT(without.lines(), Not(Contains(HasSubstr("Adjusted image height"))));
}

TEST(LogLines, AnAddressStandsInTheirPlace) {
  EXPECT_TRUE(logLineMatches("a %ADDR, b", "a 94837, b"));
  EXPECT_FALSE(logLineMatches("a %ADDR, b", "a , b"));
  EXPECT_TRUE(logLineMatches("at %p", "at 0x55d0c0ffee"));
  EXPECT_FALSE(logLineMatches("at %p", "at (nil)"));
  EXPECT_TRUE(logLineMatches("same", "same"));
  EXPECT_FALSE(logLineMatches("same", "samer"));
  EXPECT_FALSE(logLineMatches("samer", "same"));
}

}  // namespace
}  // namespace reference
