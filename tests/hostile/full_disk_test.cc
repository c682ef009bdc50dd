// No room for the dumps, the trace and the recording: the printer gets all of the job, what is not
// whole is removed, and a line says so of each. No room for what is printed: the job fails.
#include <gtest/gtest.h>

#include <cstdint>
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

const std::string kFolder = "/var/spool/cups/tmp/";
const std::string kRecording = kFolder + "recorded-20261116070509.bin";

/// When the log says that the recording can't be written.
enum class Recording { kWhole, kNotCreated, kNotWhole };

/// The log of that job when none of its dumps can be written.
std::string logWithoutDumps(std::string log, Recording recording) {
  int number = 0;
  for (std::size_t at = 0; (at = log.find("printImage: Saving ", at)) != std::string::npos; ++at) {
    const char* kind = number % 2 == 0 ? "origin" : "dithered";
    log.insert(log.find('\n', at) + 1, "TarvoPrinter::saveImage: unable to open the file " +
                                           kFolder + kind + "_2026-11-16_7_5_9_" +
                                           std::to_string(number) + ".bmp\n");
    ++number;
  }
  const std::string created = "DEBUG:Filter data output to: ";
  const std::string failed = "ERROR:Unable to create the output file: ";
  if (recording == Recording::kNotCreated) {
    log.replace(log.find(created), created.size(), failed);
  } else if (recording == Recording::kNotWhole) {
    log += failed + kRecording + "\n";
  }
  return log;
}

TEST(FullDisk, CostsThePrinterNothing) {
  const support::Outcome expected = undisturbed();
  ASSERT_GT(expected.output.size(), 20000U);
  const struct {
    const char* what;
    std::string options, script;
    Recording recording;
    std::string left;  // in the spool folder
  } kCases[] = {
      {"room for less than a dump", "size=64k", "mkdir \"$0/spool\"", Recording::kWhole,
       "recorded-20261116070509.bin\n"},
      {"no room at all", "size=64k",
       "mkdir \"$0/spool\" && { head -c 100000 /dev/zero >\"$0/fill\" 2>\"$0/said\" || true; }",
       Recording::kNotWhole, ""},
      // The root folder is one; the spool folder the second and last.
      {"no room for a name", "size=1m,nr_inodes=2", "mkdir \"$0/spool\"", Recording::kNotCreated,
       ""},
  };
  for (const auto& [what, options, script, recording, left] : kCases) {
    SCOPED_TRACE(what);
    FilterJob job;
    recordJob(job);
    const std::filesystem::path disk = job.folder() / "disk";
    std::filesystem::create_directory(disk);
    // The file system is gone with the job: what it has left is written down before.
    const std::filesystem::path list = job.folder() / "list";
    support::writeFile(list, "");
    auto starter = withFileSystem(disk, options, script);
    if (!starter) GTEST_SKIP() << "nothing can be mounted here";
    starter->insert(starter->end(), {"/bin/sh", "-c",
                                     "\"$@\"; status=$?; ls -A \"${0%/*}/disk/spool\" >\"$0\"; "
                                     "exit $status",
                                     list.string()});
    support::Program program = through(*starter, largeProgram(job));
    program.environment["TARVO_TEST_FOLDER"] = disk.string();
    const support::Outcome outcome = job.runAlone(program);
    EXPECT_EQ(outcome.ending(), "exit status 0");
    EXPECT_EQ(support::firstDifference(expected.output, outcome.output), "");
    EXPECT_EQ(support::firstDifference(logWithoutDumps(jobs::masked(expected.error), recording),
                                       jobs::masked(outcome.error)),
              "");
    EXPECT_EQ(support::readFile(list), left);
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
    const bool whole = expected.output.size() <= static_cast<unsigned>(kib) * 1024U;
    EXPECT_EQ(
        support::firstDifference(logWithoutDumps(jobs::masked(expected.error),
                                                 whole ? Recording::kWhole : Recording::kNotWhole),
                                 jobs::masked(outcome.error)),
        "");
    EXPECT_EQ(support::namesIn(job.spool()),
              whole ? std::vector<std::string>{"recorded-20261116070509.bin"}
                    : std::vector<std::string>{});
  }
}

/// The job started by a shell that runs `script`; its log ends in a line about `reason`, and one
/// about the recording unless that is whole.
void expectLostOutput(const std::string& script, const std::string& reason,
                      Recording recording = Recording::kWhole) {
  SCOPED_TRACE(script);
  FilterJob job;
  recordJob(job);
  const support::Outcome outcome = job.runAlone(
      through({"/bin/bash", "-c", script, job.folder() / "printed"}, largeProgram(job)));
  EXPECT_EQ(outcome.ending(), "exit status 1");
  const std::string line = "ERROR: The printer's data could not be written: " + reason + "\n";
  const bool recorded = recording == Recording::kWhole;
  const std::string unrecorded = "ERROR:Unable to create the output file: " + kRecording + "\n";
  EXPECT_TRUE(outcome.error.ends_with("\n" + line + (recorded ? "" : unrecorded))) << outcome.error;
  EXPECT_EQ(outcome.error.find(line), outcome.error.rfind(line)) << "said twice";
  // A stream of its own.
  if (recorded) {
    EXPECT_EQ(
        support::firstDifference(undisturbed().output, *support::readFile(Places(job).recording)),
        "");
  }
}

TEST(FullDisk, UnderStandardOutputFailsTheJob) {
  expectLostOutput("exec \"$@\" >/dev/full", "No space left on device");
  // The log through a pipe, which has no size, and which is read to its end.
  expectLostOutput("(ulimit -f 8; exec \"$@\" >\"$0\") 2>&1 | cat >&2; exit ${PIPESTATUS[0]}",
                   "File too large", Recording::kNotWhole);
}

// The reason is that of the first loss: what is lost after it is of no interest.
TEST(FullDisk, RoomThatComesBackDoesNotHideTheLoss) {
  FilterJob job;
  recordJob(job);
  support::Program program = largeProgram(job);
  program.environment["LC_ALL"] = "C";
  const auto starter = withFileSystem(job.folder() / "work", "size=16k", "true");
  if (!starter) GTEST_SKIP() << "nothing can be mounted here";
  std::vector<std::string> shell = *starter;
  shell.insert(shell.end(), {"/bin/sh", "-c", "exec \"$@\" >\"$0/printed\"", job.work()});
  const support::Outcome outcome = job.runAlone(through(shell, program));
  EXPECT_EQ(outcome.ending(), "exit status 1");
  EXPECT_TRUE(outcome.error.ends_with(
      "ERROR: The printer's data could not be written: No space left on device\n"))
      << outcome.error;
}

TEST(LittleRoom, CountsAsNone) {
  const std::uint64_t kGiB = std::uint64_t{1} << 30U;
  // 5 % of a terabyte are kept, 51.2 GiB; a dump of the good page needs one block.
  const struct {
    const char* what;
    std::uint64_t free;
    bool dumped;
  } kCases[] = {
      {"half the disk", 512 * kGiB, true},
      {"a little more than is kept", 52 * kGiB, true},
      {"a little less than is kept", 51 * kGiB, false},
      {"nothing", 0, false},
  };
  for (const auto& [what, free, dumped] : kCases) {
    SCOPED_TRACE(what);
    FilterJob job;
    recordJob(job);
    support::Program program = goodProgram(job);
    program.environment["TARVO_TEST_FREE"] = std::to_string(free);
    const support::Outcome outcome = job.runAlone(program);
    EXPECT_EQ(outcome.ending(), "exit status 0");
    EXPECT_EQ(support::firstDifference(goodStream(), outcome.output), "");
    EXPECT_EQ(support::firstDifference(logWithout({.origin = !dumped, .dithered = !dumped}),
                                       jobs::masked(outcome.error)),
              "");
    EXPECT_EQ(support::namesIn(job.spool()).size(), dumped ? 3U : 1U);
  }
}

}  // namespace
