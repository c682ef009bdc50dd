// No room for the dumps, the trace and the recording: the printer gets all of the job, and the log
// is as ever.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "jobs/good_job.h"
#include "support/differences.h"
#include "surroundings.h"

namespace {

using namespace hostile;
using jobs::FilterJob;

/// Pages whose dumps take 81 kB each; their commands 10 kB.
support::Program largeProgram(const FilterJob& job) {
  support::Program program = job.program();
  const support::Page page = support::grayPage(800, 100, support::Drawing::Random);
  program.input = support::PipedBytes{support::rasterFile({page, page})};
  return program;
}

support::Outcome undisturbed() {
  FilterJob job;
  recordJob(job);
  return job.runAlone(largeProgram(job));
}

TEST(FullDisk, CostsThePrinterNothing) {
  const support::Outcome expected = undisturbed();
  ASSERT_GT(expected.output.size(), 20000U);
  const std::string failed = "TarvoPrinter::saveImage: unable to open the file ";
  const std::string noRecording = "ERROR:Unable to create the output file: ";
  const struct {
    const char* what;
    std::string options, script;
    std::size_t lines;  // on files that can't be created
  } kCases[] = {
      {"room for less than a dump", "size=64k", "mkdir \"$0/spool\"", 0},
      {"no room at all", "size=64k",
       "mkdir \"$0/spool\" && { head -c 100000 /dev/zero >\"$0/fill\" 2>\"$0/said\" || true; }", 0},
      // The root folder is one; the spool folder the second and last.
      {"no room for a name", "size=1m,nr_inodes=2", "mkdir \"$0/spool\"", 5},
  };
  for (const auto& [what, options, script, lines] : kCases) {
    SCOPED_TRACE(what);
    FilterJob job;
    recordJob(job);
    const std::filesystem::path disk = job.folder() / "disk";
    std::filesystem::create_directory(disk);
    const auto starter = withFileSystem(disk, options, script);
    if (!starter) GTEST_SKIP() << "nothing can be mounted here";
    support::Program program = through(*starter, largeProgram(job));
    program.environment["TARVO_TEST_FOLDER"] = disk.string();
    const support::Outcome outcome = job.runAlone(program);
    EXPECT_EQ(outcome.ending(), "exit status 0");
    EXPECT_EQ(support::firstDifference(expected.output, outcome.output), "");
    std::size_t said = 0;
    std::string log;
    for (const std::string& line : support::linesOf(jobs::masked(outcome.error))) {
      if (line.rfind(failed, 0) == 0 || line.rfind(noRecording, 0) == 0) {
        ++said;
      } else {
        log += line + "\n";
      }
    }
    EXPECT_EQ(said, lines);
    std::string expectedLog = jobs::masked(expected.error);
    if (lines > 0) {
      const std::size_t announced = expectedLog.find("DEBUG:Filter data output to: ");
      expectedLog.erase(announced, expectedLog.find('\n', announced) + 1 - announced);
    }
    EXPECT_EQ(support::firstDifference(expectedLog, log), "");
  }
}

// A file that would grow beyond what the process may write: the kernel's signal must not end the
// filter, which would be inside a bitmap when the recording comes to its limit.
TEST(FullDisk, LimitOnTheSizeOfFilesCostsThePrinterNothing) {
  const support::Outcome expected = undisturbed();
  for (const int kib : {0, 1, 8, 16, 40}) {
    SCOPED_TRACE(kib);
    FilterJob job;
    recordJob(job);
    // Through pipes, which have no size: the limit would count for what the test takes in.
    const support::Outcome outcome =
        job.runAlone(through({"/bin/bash", "-o", "pipefail", "-c",
                              "{ { (ulimit -f " + std::to_string(kib) +
                                  "; exec \"$@\") 2>&3 | cat; } 3>&1 >&4 | cat >&2; } 4>&1",
                              "bash"},
                             largeProgram(job)));
    EXPECT_EQ(outcome.ending(), "exit status 0");
    EXPECT_EQ(support::firstDifference(expected.output, outcome.output), "");
    EXPECT_EQ(support::firstDifference(jobs::masked(expected.error), jobs::masked(outcome.error)),
              "");
    EXPECT_LE(std::filesystem::file_size(Places(job).origin), static_cast<unsigned>(kib) * 1024U);
  }
}

TEST(FullDisk, UnderStandardOutputIsNoHangAndNoCrash) {
  FilterJob job;
  recordJob(job);
  const support::Outcome outcome =
      job.runAlone(through({"/bin/sh", "-c", "exec \"$@\" >/dev/full", "sh"}, largeProgram(job)));
  EXPECT_EQ(outcome.ending(), "exit status 0");
  // The recording is a stream of its own, and whole.
  EXPECT_EQ(
      support::firstDifference(undisturbed().output, *support::readFile(Places(job).recording)),
      "");
}

}  // namespace
