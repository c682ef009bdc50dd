#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "reference/bmp_dump.h"
#include "reference/log.h"
#include "reference/packing.h"
#include "reference/setup_commands.h"
#include "reference/trace.h"

namespace reference {
namespace {

using testing::ElementsAre;

std::string packed(const std::vector<std::uint8_t>& row) {
  return packedDots(row.data(), static_cast<int>(row.size()));
}

TEST(Packing, AZeroByteIsASetBitAndSoIsThePadding) {
  EXPECT_EQ(packed({}), "");
  EXPECT_EQ(packed(std::vector<std::uint8_t>(16, 7)), std::string(2, '\0'));
  EXPECT_EQ(packed(std::vector<std::uint8_t>(16, 0)), "\xFF\xFF");
  EXPECT_EQ(packed({0, 1, 1, 1, 1, 1, 1, 0}), "\x81");
  EXPECT_EQ(packed({1, 1, 1, 1, 1, 1, 1, 1, 1}), std::string("\x00\x7F", 2));
  EXPECT_EQ(packed({1, 1, 1, 1, 1, 1, 1, 1, 0}), std::string("\x00\xFF", 2));
}

TEST(Packing, A576Times800PageHas57600Bytes) {
  const std::string stream = printCommands(blankImage(576, 800, grayPalette()), 3);
  const std::string head = "BITMAP 0,0,72,800,0,";
  EXPECT_EQ(stream, head + std::string(72 * 800, '\xFF') + "\r\nPRINT 1,3\r\n");
}

TEST(Packing, RowsStepByTheWidthNotByThePaddedRow) {
  // Nine dots of ink in rows of twelve bytes: row 1 begins at byte 9, in the padding of row 0, and
  // so shows three dots of paper first.
  const Image8 image = imageFromLines(std::vector<std::uint8_t>(18, 255), 9, 2, 9).value();
  EXPECT_EQ(printCommands(image, 1),
            "BITMAP 0,0,2,2,0," + std::string("\x00\x7F\xE0\x7F", 4) + "\r\nPRINT 1,1\r\n");
}

TEST(Packing, GrayToMonoSetsABitForInk) {
  const std::vector<std::uint8_t> lines = {9, 0, 0, 0, 0, 0, 0, 1, 1, 0};
  EXPECT_THAT(grayToMono(lines, 10, 1, 0), ElementsAre(0x81, 0x80));
  EXPECT_THAT(grayToMono(lines, 10, 1, 2), ElementsAre(0x81));
  EXPECT_THAT(grayToMono(lines, 10, 1, 10), ElementsAre(0x81, 0x80));
  EXPECT_THAT(grayToMono(lines, 5, 2, 0), ElementsAre(0x80, 0x30));
  EXPECT_THAT(grayToMono({}, 10, 0, 0), ElementsAre());
}

TEST(Packing, ProcessedPixelsAreWidenedAndComplementedAgain) {
  const Image8 image = imageFromLines({0, 1, 200, 255}, 4, 1, 4).value();
  EXPECT_THAT(processedPixels(image, 4, false), ElementsAre(0, 255, 200, 255));
  EXPECT_THAT(processedPixels(image, 4, true), ElementsAre(255, 0, 55, 0));
}

std::uint32_t field(const std::string& file, std::size_t offset) {
  std::uint32_t value = 0;
  for (std::size_t i = 4; i-- > 0;)
    value = value << 8 | static_cast<unsigned char>(file[offset + i]);
  return value;
}

struct DumpCase {
  std::uint32_t width;
  std::uint32_t image_bytes;
  std::uint32_t said_size;
  std::size_t file_size;
};

TEST(BmpDump, AnEightBitFileMayBeShorterThanItSays) {
  const DumpCase cases[] = {
      {10, 24, 1102, 1098},  // rows of 12 said, 20 pixel bytes written
      {12, 24, 1102, 1102},
  };
  for (const DumpCase& c : cases) {
    const std::vector<std::uint8_t> data(c.width * 2, 65);
    const std::string file = bmpFile(data, c.width, 2, c.width, 8);
    EXPECT_EQ(file.size(), c.file_size);
    EXPECT_EQ(file.substr(0, 2), "BM");
    EXPECT_EQ(field(file, 2), c.said_size);
    EXPECT_EQ(field(file, 6), 0U);
    EXPECT_EQ(field(file, 10), 1078U);
    EXPECT_EQ(field(file, 14), 40U);
    EXPECT_EQ(field(file, 18), c.width);
    EXPECT_EQ(field(file, 22), 2U);
    EXPECT_EQ(field(file, 26), 8U << 16 | 1U);
    EXPECT_EQ(field(file, 30), 0U);
    EXPECT_EQ(field(file, 34), c.image_bytes);
    EXPECT_EQ(field(file, 38), 0U);
    EXPECT_EQ(field(file, 42), 0U);
    EXPECT_EQ(field(file, 46), 256U);
    EXPECT_EQ(field(file, 50), 256U);
    EXPECT_EQ(field(file, 54), 0U);
    EXPECT_EQ(field(file, 54 + 4 * 200), 0x00C8C8C8U);
    EXPECT_EQ(file.substr(1078), std::string(data.size(), 'A'));
  }
}

TEST(BmpDump, AOneBitRowIsFilledWithOnesThenZeros) {
  const std::string file = bmpFile(std::vector<std::uint8_t>(10, 0), 10, 1, 10, 1);
  EXPECT_EQ(field(file, 10), 62U);
  EXPECT_EQ(field(file, 26), 1U << 16 | 1U);
  EXPECT_EQ(file.substr(54), std::string("\0\0\0\0\xFF\xFF\xFF\0\xFF\xFF\0\0", 12));
}

TEST(BmpDump, AOneBitFileHoldsTheLastLineFirst) {
  std::vector<std::uint8_t> data(16, 0);
  data[0] = 1;  // the first line's first dot
  EXPECT_EQ(bmpFile(data, 8, 2, 8, 1).substr(62), std::string("\xFF\0\0\0\x7F\0\0\0", 8));
}

TEST(BmpDump, ALineLongerThanItsRowIsCut) {
  EXPECT_EQ(bmpFile(std::vector<std::uint8_t>(64, 0), 64, 1, 8, 1).size(), 62U + 4U);
}

TEST(BmpDump, NamesAreNotPaddedWithZeros) {
  std::tm now{};
  now.tm_year = 126;
  now.tm_mon = 10;
  now.tm_mday = 16;
  now.tm_hour = 7;
  now.tm_min = 5;
  now.tm_sec = 9;
  EXPECT_EQ(dumpName("origin", now, 0), "origin_2026-11-16_7_5_9_0.bmp");
}

TEST(Log, WritesPrefixMessageAndLineEnd) {
  Log log;
  log.line(3, "Unsupported bits per pixel : %d ! Requires 8 bits per pixel!", 1);
  log.line(0, "PAGE: %d %d\n", 1, 1);
  log.line(4, "end");
  EXPECT_THAT(log.lines(),
              ElementsAre("ERROR:Unsupported bits per pixel : 1 ! Requires 8 bits per pixel!",
                          "DEBUG:PAGE: 1 1", "", "CRIT:end"));
}

TEST(Trace, IsOneLine) {
  cups_page_header2_t header{};
  header.cupsWidth = 9;
  header.cupsHeight = 2;
  header.cupsBytesPerLine = 12;
  header.cupsBitsPerPixel = 8;
  EXPECT_EQ(traceLine(header),
            "cupsWidth:9, cupsHeight:2, cupsBytesPerLine:12, cupsBitsPerPixel:8\n");
}

struct GapCase {
  float gap;
  const char* paper_type;
  const char* sent;
  const char* logged;
};

TEST(SetupCommands, GapHasItsWorkedCases) {
  const GapCase cases[] = {
      {0, "", "GAP 0, 0\r\n", nullptr},
      {2, "", "", "DEBUG:Unknown paper type: !"},
      {3, "LabelGaps", "GAP 3.0 mm, 0.0 mm\r\n", nullptr},
      {3, "LabelMark", "BLINE 3.0 mm, 0.0 mm\r\n", nullptr},
      {0, "LabelGaps", "GAP 0, 0\r\n", nullptr},
      {-1, "LabelMark", "GAP 0, 0\r\n", nullptr},
      {3, "Continue", "GAP 0, 0\r\n", nullptr},
      {3, "NormalLabelGaps", "", "DEBUG:Skip the GAP cmd by Normal paper type"},
      {3, "labelgaps", "", "DEBUG:Unknown paper type: labelgaps!"},
  };
  for (const GapCase& c : cases) {
    Log log;
    EXPECT_EQ(gapCommand(c.gap, 0.0F, c.paper_type, log), c.sent) << c.paper_type;
    EXPECT_THAT(log.lines(), c.logged == nullptr
                                 ? testing::Matcher<std::vector<std::string>>(ElementsAre())
                                 : ElementsAre(std::string(c.logged)))
        << c.paper_type;
  }
}

TEST(SetupCommands, SpeedIsCopiedAndDensityBounded) {
  EXPECT_EQ(speedAndDensityCommands("4", 31), "SPEED 4\r\n");
  EXPECT_EQ(speedAndDensityCommands("2.5", -1), "SPEED 2.5\r\n");
  EXPECT_EQ(speedAndDensityCommands("4ips", 30), "SPEED 4ips\r\nDENSITY 30\r\n");
  EXPECT_EQ(speedAndDensityCommands("4Normal", 0), "DENSITY 0\r\n");
  EXPECT_EQ(speedAndDensityCommands("0", 31), "");
  EXPECT_EQ(speedAndDensityCommands("", 31), "");
}

TEST(SetupCommands, TheOthersHaveTheirWorkedTexts) {
  EXPECT_EQ(preamble(), std::string(64, '\x0A'));
  EXPECT_EQ(sizeCommand(static_cast<float>(600 * 25.4 / 203), 10), "SIZE 75.1 mm, 10.0 mm\r\n");
  EXPECT_EQ(directionCommand("Rotation180"), "DIRECTION 1,0\r\n");
  EXPECT_EQ(directionCommand("Normal"), "DIRECTION 0,0\r\n");
  EXPECT_EQ(ribbonCommand("DirectThermal"), "SET RIBBON OFF\r\n");
  EXPECT_EQ(ribbonCommand("ThermalTransfer"), "SET RIBBON ON\r\n");
  EXPECT_EQ(ribbonCommand(""), "");
  EXPECT_EQ(offsetCommand(0.0F), "OFFSET 0.0 mm\r\n");
}

TEST(SetupCommands, PostActionsHaveTheirOrder) {
  const std::string off = "SET TEAR OFF\r\nSET PEEL OFF\r\nSET CUTTER OFF\r\n";
  EXPECT_EQ(postActionCommands("Normal"), off);
  EXPECT_EQ(postActionCommands("None"), off);
  EXPECT_EQ(postActionCommands("TearOff"), "SET TEAR ON\r\nSET PEEL OFF\r\nSET CUTTER OFF\r\n");
  EXPECT_EQ(postActionCommands("PeelOff"), "SET TEAR OFF\r\nSET PEEL ON\r\nSET CUTTER OFF\r\n");
  for (const char* text : {"Cut", "PartialCut"}) {
    EXPECT_EQ(postActionCommands(text), "SET TEAR OFF\r\nSET PEEL OFF\r\nSET CUTTER ON\r\n");
  }
  EXPECT_EQ(postActionCommands(""), "");
}

}  // namespace
}  // namespace reference
