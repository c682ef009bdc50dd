// What rastertotarvo opens is not handed on to programs.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/differences.h"
#include "support/folder.h"
#include "support/ppd_text.h"
#include "support/process.h"
#include "support/raster.h"

namespace {

TEST(OpenFiles, OfRasterToTarvoAreClosedInEveryProgramItWouldStart) {
  const support::Folder folder;
  std::filesystem::create_directory(folder / "spool");
  support::writeFile(folder / "job.ras",
                     support::rasterFile({support::grayPage(16, 2, support::Drawing::Random)}));
  support::writeFile(folder / "model.ppd",
                     support::PpdText()
                         .pageSize("4x6", 288, 432)
                         .option("HalftoneType", "Stucki", {"Stucki"})
                         .option("RecordPrinterCommands", "1", {"1"})
                         .attribute("tarvoFilterOutputFile", "", "/var/spool/cups/tmp/recorded")
                         .text());
  support::Program program;
  program.executable = RASTERTOTARVO;
  program.arguments = {"rastertotarvo", "7", "user", "title", "1", "", folder / "job.ras"};
  program.environment = {{"PPD", folder / "model.ppd"},
                         {"LD_PRELOAD", WITNESS ":" REDIRECT},
                         {"ASAN_OPTIONS", "verify_asan_link_order=0"},
                         {"TARVO_TEST_FOLDER", folder.path()},
                         {"TARVO_TEST_OPENED", folder / "opened"}};
  const support::Outcome outcome = support::run(program);
  EXPECT_EQ(outcome.ending(), "exit status 0") << outcome.error;

  const std::string opened = support::readFile(folder / "opened").value_or("");
  int jobFiles = 0, traces = 0, spooled = 0;
  for (const std::string& line : support::linesOf(opened)) {
    EXPECT_EQ(line.substr(0, 7), "closed ") << opened;
    jobFiles += line.ends_with("/job.ras") ? 1 : 0;
    traces += line.ends_with("/tmp/xxxxx.log") ? 1 : 0;
    spooled += line.find(" /var/spool/cups/tmp/") != std::string::npos ? 1 : 0;
  }
  EXPECT_EQ(jobFiles, 1) << opened;
  EXPECT_EQ(traces, 1) << opened;
  EXPECT_GE(spooled, 3) << "two pictures and the recording are not among\n" << opened;
}

}  // namespace
