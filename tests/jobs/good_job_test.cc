#include "good_job.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/differences.h"
#include "support/tspl_commands.h"

namespace {

using namespace jobs;

TEST(GoodJob, SendsLogsAndLeavesWhatItShould) {
  FilterJob job;
  job.setPpd(goodPpd().text());
  const JobRun run = job.run(goodRaster());
  expectRun(run, 0, preamble() + goodPageCommands(), settingsLog() + goodPageLog(1));
  EXPECT_EQ(run.trace, "cupsWidth:16, cupsHeight:2, cupsBytesPerLine:16, cupsBitsPerPixel:8\n");
  EXPECT_TRUE(run.recordings.empty());
  ASSERT_EQ(run.dumps.size(), 2U);
  EXPECT_EQ(run.dumps[0].first, "origin_2026-11-16_7_5_9_0.bmp");
  EXPECT_EQ(run.dumps[1].first, "dithered_2026-11-16_7_5_9_1.bmp");
  // 1078 bytes of headers and palette, then 32 pixels.
  EXPECT_EQ(run.dumps[0].second.size(), 1110U);
  EXPECT_EQ(run.dumps[1].second.size(), 1110U);
}

TEST(GoodJob, CommandsInOrder) {
  FilterJob job;
  job.setPpd(goodPpd().text());
  const support::Commands commands = support::commandsOf(job.run(goodRaster()).outcome.output);
  EXPECT_EQ(commands.fault, "");
  const std::vector<std::string> expected = {"SIZE 2.0 mm, 0.3 mm",
                                             "GAP 3.0 mm, 0.0 mm",
                                             "REFERENCE 0,0",
                                             "DIRECTION 1,0",
                                             "SPEED 4",
                                             "DENSITY 8",
                                             "SET RIBBON OFF",
                                             "OFFSET 0.0 mm",
                                             "SET TEAR ON",
                                             "SET PEEL OFF",
                                             "SET CUTTER OFF",
                                             "CLS",
                                             "BITMAP 0,0,2,2,0,",
                                             "PRINT 1,2"};
  EXPECT_EQ(support::firstDifference(expected, commands.lines()), "");
}

TEST(GoodJob, RasterFromFileOrStandardInputUncompressedOrCompressed) {
  for (const support::Packing packing :
       {support::Packing::Uncompressed, support::Packing::Compressed}) {
    for (const Source source : {Source::StandardInput, Source::FileArgument}) {
      FilterJob job;
      job.setPpd(goodPpd().text());
      expectRun(job.run(support::rasterFile({goodPage()}, packing), "", source), 0,
                preamble() + goodPageCommands(), settingsLog() + goodPageLog(1));
    }
  }
}

TEST(GoodJob, RasterFileAsStandardInput) {
  FilterJob job;
  job.setPpd(goodPpd().text());
  support::writeFile(job.folder() / "job.ras", goodRaster());
  support::Program program = job.program();
  program.input = support::FromFile{job.folder() / "job.ras"};
  expectRun(job.run(program), 0, preamble() + goodPageCommands(), settingsLog() + goodPageLog(1));
}

TEST(GoodJob, FileArgumentWinsOverStandardInputAndLaterArgumentsAreIgnored) {
  FilterJob job;
  job.setPpd(goodPpd().text());
  support::writeFile(job.folder() / "job.ras", goodRaster());
  support::Program program = job.program();
  program.arguments.push_back((job.folder() / "job.ras").string());
  program.arguments.insert(program.arguments.end(), {"/no/such/file", "another"});
  program.input = support::PipedBytes{"not a raster"};
  expectRun(job.run(program), 0, preamble() + goodPageCommands(), settingsLog() + goodPageLog(1));
}

TEST(GoodJob, CopiesAreThoseOfThePageAndNotOfTheArgument) {
  FilterJob job;
  job.setPpd(goodPpd().text());
  support::Program program = job.program();
  ASSERT_EQ(program.arguments[4], "7");
  program.input = support::PipedBytes{goodRaster()};
  const JobRun run = job.run(program);
  EXPECT_NE(run.outcome.output.find("\r\nPRINT 1,2\r\n"), std::string::npos);
}

TEST(GoodJob, SizeIsThatOfTheRasterAndNotOfThePpd) {
  // 600 x 25.4 / 203 = 75.07 mm; 120 x 25.4 / 300 = 10.16 mm.
  FilterJob job;
  job.setPpd(goodPpd().text());
  support::Page page = support::grayPage(600, 120, support::Drawing::Blank);
  page.header.HWResolution[1] = 300;
  const JobRun run = job.run(support::rasterFile({page}));
  EXPECT_EQ(run.outcome.output.substr(64, 24), "SIZE 75.1 mm, 10.2 mm\r\nG");
}

TEST(GoodJob, EachPageHasItsSetupCommandsAgain) {
  FilterJob job;
  job.setPpd(goodPpd().text());
  const JobRun run = job.run(support::rasterFile({goodPage(), goodPage(), goodPage()}));
  expectRun(run, 0, preamble() + goodPageCommands() + goodPageCommands() + goodPageCommands(),
            settingsLog() + goodPageLog(1) + goodPageLog(2) + goodPageLog(3));
  std::vector<std::string> names;
  for (const auto& [name, bytes] : run.dumps) names.push_back(name);
  const std::vector<std::string> expected = {
      "origin_2026-11-16_7_5_9_0.bmp", "dithered_2026-11-16_7_5_9_1.bmp",
      "origin_2026-11-16_7_5_9_2.bmp", "dithered_2026-11-16_7_5_9_3.bmp",
      "origin_2026-11-16_7_5_9_4.bmp", "dithered_2026-11-16_7_5_9_5.bmp"};
  EXPECT_EQ(names, expected);
}

TEST(GoodJob, TraceFileHoldsTheLatestPage) {
  FilterJob job;
  job.setPpd(goodPpd().text());
  support::writeFile(job.trace(), std::string(1000, 'x'));
  const JobRun run =
      job.run(support::rasterFile({goodPage(), support::grayPage(7, 5, support::Drawing::Text)}));
  EXPECT_EQ(run.trace, "cupsWidth:7, cupsHeight:5, cupsBytesPerLine:7, cupsBitsPerPixel:8\n");
}

TEST(GoodJob, RecordingIsACopyOfStandardOutput) {
  FilterJob job;
  job.setPpd(goodPpd()
                 .option("RecordPrinterCommands", "1", {"0", "1"})
                 .attribute("tarvoFilterOutputFile", "", "recorded")
                 .text());
  const JobRun run = job.run(support::rasterFile({goodPage(), goodPage()}));
  expectRun(run, 0, preamble() + goodPageCommands() + goodPageCommands(),
            settingsLog() + "DEBUG:Filter data output to: recorded-20261116070509.bin\n" +
                goodPageLog(1) + goodPageLog(2));
  ASSERT_EQ(run.recordings.size(), 1U);
  EXPECT_EQ(run.recordings[0].first, "recorded-20261116070509.bin");
  EXPECT_EQ(support::firstDifference(run.outcome.output, run.recordings[0].second), "");
}

TEST(GoodJob, RecordingWithoutTheAttributeLandsInTheWorkingFolder) {
  FilterJob job;
  job.setPpd(goodPpd().option("RecordPrinterCommands", "0", {"0", "1", "-1"}).text());
  EXPECT_TRUE(job.run(goodRaster(), "RecordPrinterCommands=0").recordings.empty());
  EXPECT_TRUE(job.run(goodRaster(), "RecordPrinterCommands=-1").recordings.empty());
  const JobRun run = job.run(goodRaster(), "RecordPrinterCommands=1");
  ASSERT_EQ(run.recordings.size(), 1U);
  EXPECT_EQ(run.recordings[0].first, "-20261116070509.bin");
  EXPECT_EQ(run.recordings[0].second, run.outcome.output);
}

TEST(GoodJob, JobOptionsWinOverThePpd) {
  FilterJob job;
  job.setPpd(goodPpd().option("Brightness", "0", {"0", "100"}).text());
  // 100 x 5 = 500 makes every level 255: no bit is set.
  const JobRun run = job.run(goodRaster(), "Brightness=100");
  const std::string bitmap = "BITMAP 0,0,2,2,0," + std::string(4, '\0') + "\r\nPRINT 1,2\r\n";
  EXPECT_EQ(support::firstDifference(preamble() + setupCommands("2.0 mm, 0.3 mm") + bitmap,
                                     run.outcome.output),
            "");
}

}  // namespace
