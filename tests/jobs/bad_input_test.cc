// Jobs whose raster is no raster.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "good_job.h"
#include "support/differences.h"
#include "support/tspl_commands.h"

namespace {

using namespace jobs;

TEST(BadInput, WithoutAHeaderThePreambleIsSentAndTheJobIsDone) {
  const struct {
    const char* what;
    std::string raster;
  } cases[] = {
      {"empty", ""},
      {"one byte", "R"},
      {"sync word alone", goodRaster().substr(0, 4)},
      {"text", std::string(5000, 'x')},
      {"zeros", std::string(5000, '\0')},
      {"a PDF", "%PDF-1.7\n%\xE2\xE3\xCF\xD3\n" + std::string(4000, '\n')},
      {"another sync word", "RaS9" + goodRaster().substr(4)},
      {"a byte too many in front", "\n" + goodRaster()},
  };
  for (const auto& [what, raster] : cases) {
    for (const Source source : {Source::StandardInput, Source::FileArgument}) {
      SCOPED_TRACE(what);
      FilterJob job;
      job.setPpd(goodPpd().text());
      const JobRun run = job.run(raster, "", source);
      expectRun(run, 0, preamble(), settingsLog());
      EXPECT_EQ(run.trace, std::nullopt);
      EXPECT_TRUE(run.dumps.empty());
    }
  }
}

TEST(BadInput, ClosedStandardInput) {
  FilterJob job;
  job.setPpd(goodPpd()
                 .option("RecordPrinterCommands", "1", {"0", "1"})
                 .attribute("tarvoFilterOutputFile", "", "recorded")
                 .text());
  for (const char* record : {"0", "1"}) {
    support::Program program = job.program(std::string("RecordPrinterCommands=") + record);
    program.input = support::Closed{};
    const JobRun run = job.run(program);
    EXPECT_EQ(run.outcome.ending(), "exit status 0");
    EXPECT_EQ(support::firstDifference(preamble(), run.outcome.output), "");
  }
}

TEST(BadInput, GarbageAfterAGoodPageEndsTheJob) {
  for (const std::string& garbage : {std::string(1, 'x'), std::string(1795, '\xFF')}) {
    FilterJob job;
    job.setPpd(goodPpd().text());
    expectRun(job.run(goodRaster() + garbage), 0, preamble() + goodPageCommands(),
              settingsLog() + goodPageLog(1));
  }
}

TEST(BadInput, RandomHeadersNeverCrashAndLeaveWholeCommands) {
  std::mt19937 random(20261116);
  const std::string good = goodRaster();
  for (int i = 0; i < 60; ++i) {
    std::string raster = good;
    // From a few bytes to all of the header.
    const std::size_t count = i < 40 ? 1 + static_cast<std::size_t>(i) % 8 : 1796;
    for (std::size_t n = 0; n < count; ++n) {
      // The numbers of the header lie at 256 to 424.
      const std::size_t at = count < 100 ? 4 + 256 + random() % 168 : 4 + n;
      raster[at] = static_cast<char>(random());
    }
    FilterJob job;
    job.setPpd(goodPpd().text());
    const JobRun run = job.run(raster);
    EXPECT_EQ(run.outcome.signal, 0) << i << ": " << run.outcome.ending() << "\n"
                                     << run.outcome.error;
    EXPECT_EQ(run.outcome.error.find("runtime error"), std::string::npos) << run.outcome.error;
    EXPECT_EQ(run.outcome.error.find("Sanitizer: "), std::string::npos) << run.outcome.error;
    EXPECT_TRUE(run.outcome.status == 0 || run.outcome.status == 1) << run.outcome.ending();
    const support::Commands sent = support::commandsOf(run.outcome.output);
    EXPECT_EQ(sent.fault, "") << i;
    EXPECT_EQ(sent.documents, 1) << i;
  }
}

}  // namespace
