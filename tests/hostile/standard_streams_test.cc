// Standard input, output and error closed, each alone and together, or read by nobody.
#include <gtest/gtest.h>
#include <signal.h>

#include <string>

#include "jobs/good_job.h"
#include "support/differences.h"
#include "surroundings.h"

namespace {

using namespace hostile;
using jobs::FilterJob;
using support::StandardOutput;

// The files that the filter opens must not get the numbers of the closed streams: the recording
// would take in the log, and the commands twice.
TEST(ClosedStreams, OfThePrintingFilterChangeNothingElse) {
  for (int closed = 0; closed < 8; ++closed) {
    const bool input = (closed & 1) != 0;
    const bool output = (closed & 2) != 0;
    const bool error = (closed & 4) != 0;
    SCOPED_TRACE(std::string("closed:") + (input ? " input" : "") + (output ? " output" : "") +
                 (error ? " error" : ""));
    FilterJob job;
    recordJob(job);
    support::Program program = job.program();
    job.give(program, support::rasterFile({jobs::goodPage(), jobs::goodPage()}),
             jobs::Source::FileArgument);
    if (!input) program.input = support::PipedBytes{""};
    if (output) program.output = StandardOutput::Closed;
    if (error) program.error = StandardOutput::Closed;
    const support::Outcome outcome = job.runAlone(program);
    // Without an output there is no printer, and the job has failed.
    EXPECT_EQ(outcome.ending(), output ? "exit status 1" : "exit status 0");
    EXPECT_EQ(support::firstDifference(output ? "" : goodStream(2), outcome.output), "");
    EXPECT_EQ(support::firstDifference(goodStream(2), *support::readFile(Places(job).recording)),
              "");
    EXPECT_EQ(outcome.error.empty(), error);
    EXPECT_EQ(outcome.error.ends_with(
                  "\nERROR: The printer's data could not be written: Bad file descriptor\n"),
              output && !error);
    // 54 bytes of head, 1024 of palette, 32 dots.
    EXPECT_EQ(std::filesystem::file_size(Places(job).origin), 54U + 1024 + 32);
    EXPECT_EQ(std::filesystem::file_size(Places(job).dithered), 54U + 1024 + 32);
    EXPECT_EQ(support::readFile(job.trace()),
              "cupsWidth:16, cupsHeight:2, cupsBytesPerLine:16, cupsBitsPerPixel:8\n");
  }
}

support::Program aligningProgram(const std::string& raster) {
  support::Program program;
  program.executable = RASTERTOALIGNED;
  program.arguments = {"rastertoaligned", "1", "user", "title", "1", ""};
  program.input = support::PipedBytes{raster};
  return program;
}

TEST(ClosedStreams, OfTheFilterBeforeEndItOrChangeNothing) {
  const support::Folder folder;
  support::writeFile(folder / "job.ras", jobs::goodRaster());
  const std::string passedOn = support::run(aligningProgram(jobs::goodRaster())).output;
  ASSERT_GT(passedOn.size(), 1800U);
  for (int closed = 0; closed < 8; ++closed) {
    SCOPED_TRACE(closed);
    support::Program program = aligningProgram("");
    program.arguments.push_back(folder / "job.ras");
    if ((closed & 1) != 0) program.input = support::Closed{};
    if ((closed & 2) != 0) program.output = StandardOutput::Closed;
    if ((closed & 4) != 0) program.error = StandardOutput::Closed;
    const support::Outcome outcome = support::run(program);
    if ((closed & 2) != 0) {
      EXPECT_EQ(outcome.ending(), "exit status 1");
      EXPECT_EQ(outcome.error, (closed & 4) != 0
                                   ? ""
                                   : "ERROR: Unable to pass the pages on: Bad file descriptor.\n");
    } else {
      EXPECT_EQ(outcome.ending(), "exit status 0");
      EXPECT_EQ(support::firstDifference(passedOn, outcome.output), "");
    }
    EXPECT_EQ(support::readFile(folder / "job.ras"), jobs::goodRaster());
  }
}

std::string largeRaster() {
  const support::Page page = support::grayPage(800, 100, support::Drawing::Random);
  return support::rasterFile({page, page, page});
}

// When the spooler goes down, the printer's end may stay: the job goes on, and no bitmap is left
// half sent.
TEST(BrokenStreams, LogThatNobodyReadsCostsNothing) {
  FilterJob job;
  recordJob(job);
  support::Program program = job.program();
  program.input = support::PipedBytes{largeRaster()};
  const support::Outcome expected = job.runAlone(program);
  EXPECT_GT(expected.output.size(), 30000U);
  program.error = StandardOutput::Broken;
  const support::Outcome outcome = job.runAlone(program);
  EXPECT_EQ(outcome.ending(), "exit status 0");
  EXPECT_EQ(support::firstDifference(expected.output, outcome.output), "");

  support::Program aligning = aligningProgram(largeRaster());
  const std::string passedOn = support::run(aligning).output;
  aligning.error = StandardOutput::Broken;
  const support::Outcome aligned = support::run(aligning);
  EXPECT_EQ(aligned.ending(), "exit status 0");
  EXPECT_EQ(support::firstDifference(passedOn, aligned.output), "");
}

TEST(BrokenStreams, OutputThatNobodyReadsEndsBothFilters) {
  FilterJob job;
  recordJob(job);
  support::Program program = job.program();
  program.input = support::PipedBytes{largeRaster()};
  support::Program aligning = aligningProgram(largeRaster());
  for (const StandardOutput error : {StandardOutput::Taken, StandardOutput::Broken}) {
    for (support::Program* filter : {&program, &aligning}) {
      filter->output = StandardOutput::Broken;
      filter->error = error;
      EXPECT_EQ(job.runAlone(*filter).signal, SIGPIPE) << filter->executable;
    }
  }
}

// A stream that does not wait takes what its reader has room for, and the rest would be lost in the
// middle of a bitmap.
TEST(UnwaitingOutput, IsWaitedFor) {
  // Reads only when nothing more goes in, or the filter has ended.
  const std::string reader =
      "import fcntl, os, select, subprocess, sys, time\n"
      "out, into = os.pipe()\n"
      "fcntl.fcntl(into, fcntl.F_SETFL, os.O_NONBLOCK | os.O_WRONLY)\n"
      "filter = subprocess.Popen(sys.argv[1:], stdout=into)\n"
      "while filter.poll() is None and select.select([], [into], [], 0)[1]: time.sleep(0.001)\n"
      "os.close(into)\n"
      "while part := os.read(out, 65536): sys.stdout.buffer.write(part)\n"
      "sys.exit(filter.wait())\n";
  FilterJob job;
  recordJob(job);
  support::Program program = job.program();
  const support::Page page = support::grayPage(800, 1000, support::Drawing::Random);
  program.input = support::PipedBytes{support::rasterFile({page, page, page})};
  const support::Outcome expected = job.runAlone(program);
  ASSERT_GT(expected.output.size(), 300000U) << "no more than a pipe holds";
  const support::Outcome outcome =
      job.runAlone(through({"/usr/bin/env", "python3", "-c", reader}, program));
  EXPECT_EQ(outcome.ending(), "exit status 0") << outcome.error;
  EXPECT_EQ(support::firstDifference(expected.output, outcome.output), "");
}

}  // namespace
