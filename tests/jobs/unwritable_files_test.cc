// Jobs whose dumps, trace or recording can't be written; and what lies in wait where they go.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "good_job.h"
#include "support/differences.h"

namespace {

using namespace jobs;

TEST(UnwritableDumps, CostOneLineEachAndThePageIsPrinted) {
  FilterJob job;
  job.setPpd(goodPpd().text());
  std::filesystem::remove(job.spool());
  const auto failed = [](const std::string& name) {
    return "TarvoPrinter::saveImage: unable to open the file /var/spool/cups/tmp/" + name + "\n";
  };
  // Each follows the line that announces the dump. The numbers go on all the same.
  const auto imageLog = [&](int number) {
    std::string log = goodImageLog();
    for (const std::string kind : {"origin", "dithered"}) {
      const std::string announced =
          kind == "origin" ? "Saving original image, " : "Saving processed image, ";
      const std::size_t line = log.find('\n', log.find(announced)) + 1;
      log.insert(line, failed(kind + "_2026-11-16_7_5_9_" + std::to_string(number++) + ".bmp"));
    }
    return log;
  };
  const JobRun run = job.run(support::rasterFile({goodPage(), goodPage()}));
  expectRun(run, 0, preamble() + goodPageCommands() + goodPageCommands(),
            settingsLog() + goodHeaderLog(1) + imageLog(0) + goodHeaderLog(2) + imageLog(2));
}

// The trace file

/// The good job, whose trace can't be written, must go on as if nothing were.
void expectGoodJob(const FilterJob& job) {
  expectRun(job.run(goodRaster()), 0, preamble() + goodPageCommands(),
            settingsLog() + goodPageLog(1));
}

TEST(UnwritableTrace, FolderInItsPlace) {
  FilterJob job;
  job.setPpd(goodPpd().text());
  std::filesystem::create_directory(job.trace());
  expectGoodJob(job);
}

TEST(UnwritableTrace, LinkInItsPlaceIsNotFollowed) {
  FilterJob job;
  job.setPpd(goodPpd().text());
  const std::string content = "something that must stay as it is\n";
  support::writeFile(job.folder() / "victim", content);
  std::filesystem::create_symlink(job.folder() / "victim", job.trace());
  expectGoodJob(job);
  EXPECT_EQ(support::readFile(job.folder() / "victim"), content);
  EXPECT_TRUE(std::filesystem::is_symlink(job.trace()));
}

TEST(UnwritableTrace, LinkToNothingCreatesNothing) {
  FilterJob job;
  job.setPpd(goodPpd().text());
  std::filesystem::create_symlink(job.folder() / "victim", job.trace());
  expectGoodJob(job);
  EXPECT_FALSE(std::filesystem::exists(job.folder() / "victim"));
}

TEST(UnwritableTrace, FileThatHasAnotherNameIsLeftAlone) {
  FilterJob job;
  job.setPpd(goodPpd().text());
  const std::string content = "something that must stay as it is\n";
  support::writeFile(job.folder() / "victim", content);
  std::filesystem::create_hard_link(job.folder() / "victim", job.trace());
  expectGoodJob(job);
  EXPECT_EQ(support::readFile(job.folder() / "victim"), content);
}

TEST(UnwritableTrace, FileOfAnotherUserIsLeftAlone) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can give a file away";
  FilterJob job;
  job.setPpd(goodPpd().text());
  const std::string content = "something that must stay as it is\n";
  support::writeFile(job.trace(), content);
  ASSERT_EQ(::chown(job.trace().c_str(), 12345, 12345), 0);
  expectGoodJob(job);
  EXPECT_EQ(support::readFile(job.trace()), content);
}

TEST(UnwritableTrace, PipeInItsPlaceDoesNotHoldTheJob) {
  FilterJob job;
  job.setPpd(goodPpd().text());
  ASSERT_EQ(::mkfifo(job.trace().c_str(), 0600), 0);
  expectGoodJob(job);
}

// The recording file

TEST(UnwritableRecording, IsReportedAndThePageIsPrinted) {
  FilterJob job;
  job.setPpd(goodPpd()
                 .option("RecordPrinterCommands", "1", {"1"})
                 .attribute("tarvoFilterOutputFile", "", "/no/such/folder/recorded")
                 .text());
  expectRun(job.run(goodRaster()), 0, preamble() + goodPageCommands(),
            settingsLog() +
                "ERROR:Unable to create the output file: "
                "/no/such/folder/recorded-20261116070509.bin\n" +
                goodPageLog(1));
}

TEST(UnwritableRecording, FullDiskLeavesStandardOutputAsItIs) {
  FilterJob job;
  job.setPpd(goodPpd()
                 .option("RecordPrinterCommands", "1", {"1"})
                 .attribute("tarvoFilterOutputFile", "", "recorded")
                 .text());
  std::filesystem::create_symlink("/dev/full", job.work() / "recorded-20261116070509.bin");
  support::Program program = job.program();
  program.input = support::PipedBytes{goodRaster()};
  JobRun run;
  run.outcome = job.runAlone(program);  // the recording would never end when read
  expectRun(run, 0, preamble() + goodPageCommands(),
            settingsLog() + "DEBUG:Filter data output to: recorded-20261116070509.bin\n" +
                goodPageLog(1));
}

}  // namespace
