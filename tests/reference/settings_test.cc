#include "reference/settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace reference {
namespace {

using testing::ElementsAre;

std::tm fifthOfMarch() {
  std::tm now{};
  now.tm_year = 125;
  now.tm_mon = 2;
  now.tm_mday = 5;
  now.tm_hour = 9;
  now.tm_min = 7;
  now.tm_sec = 3;
  return now;
}

TEST(Settings, WithoutAPpdAreEmpty) {
  Log log;
  const Settings s = parseSettings(Job{}, log);
  EXPECT_EQ(s.page_width, 0);
  EXPECT_EQ(s.halftone, 0);
  EXPECT_THAT(
      log.lines(),
      ElementsAre(
          "DEBUG:PageSizeName: ", "DEBUG:settings->Resolution:", "DEBUG:settings->MediaMethod:",
          "DEBUG:settings->PaperType:", "DEBUG:settings->GapsHeight:0",
          "DEBUG:settings->PostAction:", "DEBUG:settings->Occurrence:", "DEBUG:settings->Origin:",
          "DEBUG:settings->MirrorImage:0", "DEBUG:settings->NegativeImage:0",
          "DEBUG:settings->PrintSpeed:", "DEBUG:settings->Darkness:0",
          "DEBUG:settings->halftoneType:0", "DEBUG:settings->DirectBuffer:0",
          "DEBUG:settings->StoredGraphics:0", "DEBUG:settings->OptionDisplayUnit:0",
          "DEBUG:settings->PageSize:", "DEBUG:settings->pageWidth:0.000000",
          "DEBUG:settings->pageHeight:0.000000"));
}

TEST(Settings, AFourBySixInchPageInMillimetres) {
  // 288 x 0.3528 = 101.6064, 432 x 0.3528 = 152.4096.
  Job job;
  job.choices = {{"PageSize", "w288h432"}};
  job.pageWidthPoints = 288;
  job.pageLengthPoints = 432;
  Log log;
  const Settings s = parseSettings(job, log);
  EXPECT_EQ(s.page_width, 101.6064F);
  EXPECT_EQ(s.page_height, 152.4096F);
  const std::vector<std::string> lines = log.lines();
  EXPECT_EQ(lines[0], "DEBUG:PageSizeName: w288h432");
  EXPECT_EQ(lines[1],
            "DEBUG:Custom Size: "
            "(288.000000,432.000000,0.000000,0.000000,288.000000,432.000000)");
  EXPECT_EQ(lines[2], "DEBUG:Set page size: width 101.606400 mm, height 152.409607 mm");

  job.pageEdges = Margins{9, 10, 279, 422};
  Log with_edges;
  parseSettings(job, with_edges);
  EXPECT_EQ(with_edges.lines()[1],
            "DEBUG:Custom Size: "
            "(288.000000,432.000000,9.000000,10.000000,279.000000,422.000000)");
}

TEST(Settings, ASizeWithoutDimensionsIsKnownAndEmpty) {
  Job job;
  job.choices = {{"PageSize", "Odd"}};
  job.pageEdges = Margins{};
  Log log;
  EXPECT_EQ(parseSettings(job, log).page_width, 0);
  EXPECT_EQ(log.lines()[1],
            "DEBUG:Custom Size: (0.000000,0.000000,0.000000,0.000000,0.000000,0.000000)");
  EXPECT_EQ(log.lines()[2], "DEBUG:Set page size: width 0.000000 mm, height 0.000000 mm");
}

TEST(Settings, TextsAreCutToFortyCharacters) {
  Job job;
  job.choices = {{"Origin", std::string(39, 'a') + "bcd"}};
  Log log;
  EXPECT_EQ(parseSettings(job, log).origin, std::string(39, 'a') + "b");
}

TEST(Settings, HalftoneNamesAreMatchedExactly) {
  EXPECT_EQ(halftoneFromName("None"), 0);
  EXPECT_EQ(halftoneFromName("StevensonArce"), 7);
  EXPECT_EQ(halftoneFromName("Tattoo"), 8);
  EXPECT_EQ(halftoneFromName("Tattoo_X8"), 9);
  EXPECT_EQ(halftoneFromName("floydsteinberg"), 0);
  EXPECT_EQ(halftoneFromName(""), 0);
}

struct TruthCase {
  const char* text;
  int value;
};

TEST(Settings, TruthValues) {
  const TruthCase cases[] = {
      {"YES", 1}, {"True", 1}, {"yes", 1}, {"No", 0},  {"FALSE", 0},
      {"On", 0},  {"1", 1},    {"2", 2},   {"256", 0}, {"255", -1},
  };
  for (const TruthCase& c : cases) EXPECT_EQ(truthOf(c.text), c.value) << c.text;
}

TEST(Settings, NumbersTakeWhatATextBeginsWith) {
  Job job;
  job.choices = {{"GapsHeight", "3mm"}, {"Darkness", "dark"}, {"Brightness", "-37"}};
  Log log;
  const Settings s = parseSettings(job, log);
  EXPECT_EQ(s.gaps_height, 3);
  EXPECT_EQ(s.darkness, 0);
  EXPECT_EQ(s.brightness, -37);
}

TEST(Settings, TheRecordingIsNamedByTheTime) {
  EXPECT_EQ(recordingName("/tmp/rec", fifthOfMarch()), "/tmp/rec-20250305090703.bin");
  EXPECT_EQ(recordingName("", fifthOfMarch()), "-20250305090703.bin");
  EXPECT_EQ(recordingName(std::string(250, 'r'), fifthOfMarch()), std::string(250, 'r') + "-2025");
}

TEST(Settings, ARecordingIsAskedForByANumberAboveZero) {
  Job job;
  job.recordingAttribute = "/tmp/rec";
  job.now = fifthOfMarch();
  for (const char* off : {"0", "-1", "True"}) {
    job.choices = {{"RecordPrinterCommands", off}};
    Log log;
    EXPECT_EQ(parseSettings(job, log).recording_name, "") << off;
  }
  job.choices = {{"RecordPrinterCommands", "1"}};
  Log log;
  EXPECT_EQ(parseSettings(job, log).recording_name, "/tmp/rec-20250305090703.bin");
}

}  // namespace
}  // namespace reference
