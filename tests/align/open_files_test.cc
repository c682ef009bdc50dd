// What rastertoaligned opens is not handed on to programs.
#include <gtest/gtest.h>

#include <string>

#include "align_run.h"
#include "support/folder.h"

namespace {

TEST(OpenFiles, OfRasterToAlignedAreClosedInEveryProgramItWouldStart) {
  const support::Folder folder;
  const support::Page page = support::grayPage(13, 5, support::Drawing::Random);
  support::writeFile(folder / "job.ras", support::rasterFile({page}));
  support::Program program = alignProgram("");
  program.arguments.push_back(folder / "job.ras");
  program.environment = {{"PPD", std::nullopt},
                         {"LD_PRELOAD", WITNESS},
                         {"ASAN_OPTIONS", "verify_asan_link_order=0"},
                         {"TARVO_TEST_OPENED", folder / "opened"}};
  const support::Outcome outcome = support::run(program);
  EXPECT_EQ(outcome.ending(), "exit status 0") << outcome.error;
  EXPECT_EQ(support::readFile(folder / "opened").value_or("nothing"),
            "closed " + (folder / "job.ras").string() + "\n");
}

}  // namespace
