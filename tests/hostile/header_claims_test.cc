// What a page header claims, and no data backs.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "hostile_job.h"
#include "jobs/good_job.h"
#include "support/differences.h"
#include "support/tspl_commands.h"

namespace {

using namespace jobs;
using support::Packing;

/// A page of this size whose header is followed by `data` bytes, of a line at the most.
std::string claim(unsigned bytesPerLine, unsigned rows, std::size_t data,
                  Packing packing = Packing::Uncompressed) {
  cups_page_header2_t header = support::grayHeader(bytesPerLine, rows);
  const std::size_t whole = 4 + sizeof header;
  std::string raster = hostile::rasterOf(header, packing).substr(0, whole);
  if (packing == Packing::Uncompressed) return raster + std::string(data, '\x80');
  // Lines of one row, each byte by itself.
  raster += '\0';
  for (std::size_t byte = 0; byte < data; ++byte) raster += std::string("\0\x80", 2);
  return raster;
}

struct Claim {
  const char* what;
  std::string raster;
};

std::vector<Claim> claims() {
  const std::uint32_t most = 0xFFFFFFFF;
  std::vector<Claim> all;
  for (const Packing packing : {Packing::Uncompressed, Packing::Compressed}) {
    all.push_back({"4 GiB less 1", claim(65535, 65537, 0, packing)});
    all.push_back({"4 GiB less 1 in lines of one dot", claim(1, most, 0, packing)});
    all.push_back({"2 GiB in one line", claim(0x7FFFFFFF, 1, 0, packing)});
    all.push_back({"4 GiB in two lines", claim(0x7FFFFFFF, 2, 0, packing)});
    all.push_back({"400 MB", claim(20000, 20000, 0, packing)});
    all.push_back({"400 MB, of which half a line came", claim(20000, 20000, 10000, packing)});
  }
  return all;
}

/// What the filters hold for a small page: 9 MB. The claims are of 400 MB and more.
constexpr long kMostKib = 24 * 1024;

bool isHeldSmall(long peakKib) { return kAddressSanitizer || peakKib < kMostKib; }

TEST(HeaderClaims, CostThePrintingFilterNoMemory) {
  FilterJob job;
  job.setPpd(goodPpd().text());
  for (const bool limited : {false, true}) {
    // The sanitizer's allocator can't be trusted with gigabytes without a limit.
    if (!limited && kAddressSanitizer) continue;
    for (const Claim& claim : claims()) {
      SCOPED_TRACE(std::string(claim.what) + (limited ? ", limited" : ""));
      support::Program program = job.program();
      program.input = support::PipedBytes{claim.raster};
      if (limited) limitMemory(program, hostile::kAddressSpaceBytes);
      const support::Outcome outcome = job.runAlone(program);
      // No memory for the page: status 1 without a word. No data for it: no image, and the end.
      EXPECT_TRUE(outcome.status == 0 || (limited && outcome.status == 1)) << outcome.ending();
      EXPECT_EQ(outcome.error.find("ERROR:"), std::string::npos) << outcome.error;
      EXPECT_EQ(outcome.output.substr(0, 64), preamble());
      EXPECT_EQ(outcome.output.find("BITMAP"), std::string::npos);
      const support::Commands sent = support::commandsOf(outcome.output);
      EXPECT_EQ(sent.fault, "");
      EXPECT_EQ(sent.documents, 1);
      EXPECT_TRUE(isHeldSmall(outcome.peakResidentKib)) << outcome.peakResidentKib << " KiB";
    }
  }
}

// It makes up for rows that are missing, but not for a page of which only the header came, nor for
// gigabytes of which a line came: what it makes up the next filter has to hold.
TEST(HeaderClaims, AreNotMadeUpForByTheFilterBefore) {
  std::vector<Claim> all = claims();
  all.push_back({"400 MB, of which a line came", claim(20000, 20000, 20000)});
  all.push_back({"4 GiB less 1, of which a line came", claim(65535, 65537, 65535)});
  all.push_back({"a label, of which nothing came", claim(812, 1218, 0)});
  for (const Claim& claim : all) {
    SCOPED_TRACE(claim.what);
    support::Program program;
    program.executable = RASTERTOALIGNED;
    program.arguments = {"rastertoaligned", "1", "user", "title", "1", ""};
    program.input = support::PipedBytes{claim.raster};
    const support::Outcome outcome = support::run(program);
    EXPECT_EQ(outcome.ending(), "exit status 1");
    EXPECT_EQ(support::linesOf(outcome.error).back().substr(0, 7), "ERROR: ") << outcome.error;
    EXPECT_LE(outcome.output.size(), 4 + sizeof(cups_page_header2_t) + 65536);
    EXPECT_TRUE(isHeldSmall(outcome.peakResidentKib)) << outcome.peakResidentKib << " KiB";
  }
}

// 3 rows of 0xAAAAAAAB planes are 2 to the 33rd and 1: libcups, which counts in 32 bits, reads one
// row and reports three. The other two would be whatever the memory held before.
TEST(HeaderClaims, RowsThatLibcupsMiscountsAreNotPrinted) {
  cups_page_header2_t header = support::grayHeader(16, 3);
  header.cupsColorOrder = CUPS_ORDER_PLANAR;
  header.cupsNumColors = 0xAAAAAAAB;
  std::string raster = hostile::rasterOf(header, Packing::Compressed).substr(0, 4 + sizeof header);
  raster += std::string("\0\x0F\xFF", 3);
  FilterJob job;
  job.setPpd(goodPpd().text());
  const JobRun run = job.run(raster);
  EXPECT_EQ(run.outcome.ending(), "exit status 0");
  EXPECT_EQ(
      support::firstDifference(preamble() + setupCommands("2.0 mm, 0.4 mm"), run.outcome.output),
      "");
  EXPECT_TRUE(run.dumps.empty());
  EXPECT_EQ(hostile::whatIsWrong(raster), "");
}

TEST(HeaderClaims, CopiesOfAnyNumberAreOneCommand) {
  const struct {
    std::uint32_t copies;
    const char* command;
  } kCases[] = {{0, "PRINT 1,0\r\n"},
                {1, "PRINT 1,1\r\n"},
                {0x7FFFFFFF, "PRINT 1,2147483647\r\n"},
                // Sent as a signed number, which printers refuse.
                {0x80000000, "PRINT 1,-2147483648\r\n"},
                {0xFFFFFFFF, "PRINT 1,-1\r\n"}};
  for (const auto& [copies, command] : kCases) {
    support::Page page = goodPage();
    page.header.NumCopies = copies;
    FilterJob job;
    job.setPpd(goodPpd().text());
    const JobRun run = job.run(support::rasterFile({page}));
    const std::string whole = preamble() + goodPageCommands();
    EXPECT_EQ(support::firstDifference(whole.substr(0, whole.find("PRINT")) + command,
                                       run.outcome.output),
              "");
  }
}

// 18 MB of raster, 1.8 MB of commands. The memory is that of one page.
TEST(ManyPages, TenThousandAreEachPrintedOnce) {
  const int pages = kAddressSanitizer ? 1000 : 10000;
  const std::string sync = goodRaster().substr(0, 4);
  const std::string page = goodRaster().substr(4);
  std::string raster = sync;
  std::string stream = preamble();
  for (int i = 0; i < pages; ++i) {
    raster += page;
    stream += goodPageCommands();
  }
  FilterJob job;
  job.setPpd(goodPpd().text());
  std::filesystem::remove(job.spool());  // 20,000 dumps would take a slow disk a minute
  support::Program program = job.program();
  program.input = support::PipedBytes{raster};
  program.timeLimit = std::chrono::minutes{5};  // a busy machine
  limitMemory(program, hostile::kAddressSpaceBytes);
  const JobRun run = job.run(program);
  EXPECT_EQ(run.outcome.ending(), "exit status 0");
  EXPECT_EQ(support::firstDifference(stream, run.outcome.output), "");
  // The test's own copies of the raster and the stream count as well.
  EXPECT_TRUE(kAddressSanitizer || run.outcome.peakResidentKib < 128 * 1024)
      << run.outcome.peakResidentKib << " KiB";
  EXPECT_NE(run.outcome.error.find("dithered_2026-11-16_7_5_9_" + std::to_string(2 * pages - 1) +
                                   ".bmp\n"),
            std::string::npos);
  EXPECT_NE(run.outcome.error.find("DEBUG:PAGE: " + std::to_string(pages) + " 2\n"),
            std::string::npos);
}

/// A page of 128 dots by `rows`, all ink, in three bytes for each 256 rows: one line for all of
/// them, which is one run of a byte.
std::string bomb(unsigned rows) {
  cups_page_header2_t header = support::grayHeader(128, rows);
  std::string raster = hostile::rasterOf(header, Packing::Compressed).substr(0, 4 + sizeof header);
  for (unsigned row = 0; row < rows; row += 256) raster += std::string("\xFF\x7F\xFF", 3);
  return raster;
}

// Few bytes that stand for many: where the memory ends, the page is left out, and that is said.
TEST(ManyPages, OneOfFewBytesThatIsTooLargeIsLeftOutWithALine) {
  const struct {
    unsigned megabytes;
    const char* line;
  } kCases[] = {
      // The page, as much for a block beside it, and twice as much for the result.
      {150,
       "ERROR:printImage: Memory allocation for processing result failed, unable to continue "
       "processing\n"},
      {300,
       "ERROR:printImage: Memory allocation failed, unable to process image, exiting "
       "processing\n"},
  };
  if (kAddressSanitizer) GTEST_SKIP() << "its own memory is beyond any limit of the process";
  for (const auto& [megabytes, line] : kCases) {
    FilterJob job;
    job.setPpd(goodPpd().text());
    std::filesystem::remove(job.spool());  // no dumps of that size
    support::Program program = job.program();
    program.input = support::PipedBytes{bomb(megabytes << 13U)};
    limitMemory(program, hostile::kAddressSpaceBytes);
    const JobRun run = job.run(program);
    EXPECT_EQ(run.outcome.ending(), "exit status 0");
    EXPECT_NE(run.outcome.error.find(line), std::string::npos) << run.outcome.error;
    EXPECT_EQ(run.outcome.output.find("BITMAP"), std::string::npos);
    const support::Commands sent = support::commandsOf(run.outcome.output);
    EXPECT_EQ(sent.fault, "");
    EXPECT_EQ(sent.documents, 1);
  }
}

}  // namespace
