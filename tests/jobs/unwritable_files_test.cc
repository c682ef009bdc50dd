// Jobs whose dumps, trace or recording can't be written. tests/hostile/ has what else can be wrong
// with the places where the filter writes.
#include <gtest/gtest.h>

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

TEST(UnwritableTrace, CostsNothing) {
  FilterJob job;
  job.setPpd(goodPpd().text());
  std::filesystem::create_directory(job.trace());
  const support::Outcome outcome = [&] {
    support::Program program = job.program();
    job.give(program, goodRaster(), Source::StandardInput);
    return job.runAlone(program);
  }();
  EXPECT_EQ(outcome.ending(), "exit status 0");
  EXPECT_EQ(support::firstDifference(preamble() + goodPageCommands(), outcome.output), "");
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

}  // namespace
