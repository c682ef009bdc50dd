// Jobs that fail before their first page: arguments, raster file, PPD.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "good_job.h"
#include "support/differences.h"

namespace {

using namespace jobs;

std::string usage(const std::string& name) {
  return name + " v3.13.32\n\nUsage:\n\n    " + name +
         " job_id user title copyies options [file]\n\n";
}

TEST(BadStart, FewerThanSixArgumentsGiveTheUsage) {
  // The program's own path counts.
  for (std::size_t count = 1; count <= 5; ++count) {
    FilterJob job;
    job.setPpd(goodPpd().text());
    support::Program program = job.program();
    program.arguments.resize(count);
    program.input = support::PipedBytes{goodRaster()};
    const JobRun run = job.run(program);
    expectRun(run, 1, "", usage("rastertotarvo"));
    EXPECT_EQ(run.trace, std::nullopt);
    EXPECT_TRUE(run.dumps.empty());
  }
}

TEST(BadStart, WithoutEvenAPathThereIsStillAUsage) {
  FilterJob job;
  support::Program program = job.program();
  program.arguments.clear();  // the system passes one empty argument
  expectRun(job.run(program), 1, "", usage(""));
}

TEST(BadStart, UsageNamesTheProgramByItsBaseName) {
  const struct {
    const char* path;
    const char* name;
  } cases[] = {{"/usr/lib/cups/filter/rastertotarvo", "rastertotarvo"},
               {"./x", "x"},
               {"C:\\filters\\tarvo.exe", "tarvo.exe"},
               {"/usr/lib\\mixed", "mixed"},
               {"back\\slash/then", "then"},
               {"ends/", ""}};
  for (const auto& [path, name] : cases) {
    FilterJob job;
    support::Program program = job.program();
    program.arguments = {path, "1"};
    expectRun(job.run(program), 1, "", usage(name));
  }
}

TEST(BadStart, RasterFileThatCannotBeOpened) {
  // The line is not ended: kept for those who match it.
  for (const char* file : {"/no/such/file", ""}) {
    FilterJob job;
    job.setPpd(goodPpd().option("RecordPrinterCommands", "1", {"1"}).text());
    support::Program program = job.program();
    program.arguments.emplace_back(file);
    program.input = support::PipedBytes{goodRaster()};
    const JobRun run = job.run(program);
    expectRun(run, 1, "", "ERROR: Unable to open raster file - ");
    EXPECT_TRUE(run.recordings.empty());
  }
}

TEST(BadStart, RasterFileThatIsAFolderHasNoPages) {
  FilterJob job;
  job.setPpd(goodPpd().text());
  support::Program program = job.program();
  program.arguments.push_back(job.spool().string());
  expectRun(job.run(program), 0, preamble(), settingsLog());
}

// The paper size

constexpr char kNoPaper[] = "ERROR: Paper size must not less than 1.0 : (0.000000, 0.000000)\n";

std::string emptySettingsLog() {
  std::string log = "DEBUG:PageSizeName: \n";
  for (const char* name :
       {"Resolution:", "MediaMethod:", "PaperType:", "GapsHeight:0",
        "PostAction:", "Occurrence:", "Origin:", "MirrorImage:0", "NegativeImage:0",
        "PrintSpeed:", "Darkness:0", "halftoneType:0", "DirectBuffer:0", "StoredGraphics:0",
        "OptionDisplayUnit:0", "PageSize:", "pageWidth:0.000000", "pageHeight:0.000000"}) {
    log += std::string("DEBUG:settings->") + name + "\n";
  }
  return log;
}

TEST(BadStart, NoPpdMeansNoPaper) {
  FilterJob job;
  expectRun(job.run(goodRaster()), 1, "", emptySettingsLog() + kNoPaper);
}

TEST(BadStart, PpdThatIsMissingOrNoPpd) {
  FilterJob job;
  support::Program program = job.program();
  program.input = support::PipedBytes{goodRaster()};
  support::writeFile(job.folder() / "not.ppd", "This is not a PPD.\n");
  for (const std::string& path : {std::string("/no/such/queue.ppd"), std::string(),
                                  (job.folder() / "not.ppd").string(), job.spool().string()}) {
    program.environment["PPD"] = path;
    expectRun(job.run(program), 1, "", emptySettingsLog() + kNoPaper);
  }
}

TEST(BadStart, UnknownPaperSizeFailsAfterTheRecordingWasCreated) {
  FilterJob job;
  job.setPpd(support::PpdText()
                 .pageSize("w288h432", 288, 432)
                 .defaultPageSize("Unknown")
                 .option("RecordPrinterCommands", "1", {"1"})
                 .attribute("tarvoFilterOutputFile", "", "recorded")
                 .text());
  const JobRun run = job.run(goodRaster());
  expectRun(
      run, 1, "",
      emptySettingsLog() + "DEBUG:Filter data output to: recorded-20261116070509.bin\n" + kNoPaper);
  ASSERT_EQ(run.recordings.size(), 1U);
  EXPECT_EQ(run.recordings[0].second, "");
  EXPECT_EQ(run.trace, std::nullopt);
}

TEST(BadStart, PaperWithoutWidthOrLength) {
  const struct {
    float width;
    float length;
    const char* message;
  } cases[] = {
      {0, 432, "ERROR: Paper size must not less than 1.0 : (0.000000, 152.409607)\n"},
      {288, 0, "ERROR: Paper size must not less than 1.0 : (101.606400, 0.000000)\n"},
  };
  for (const auto& [width, length, message] : cases) {
    FilterJob job;
    job.setPpd(support::PpdText().pageSize("w0", width, length).text());
    const JobRun run = job.run(goodRaster());
    EXPECT_EQ(run.outcome.ending(), "exit status 1");
    EXPECT_EQ(run.outcome.output, "");
    const std::string& error = run.outcome.error;
    EXPECT_EQ(error.substr(error.find("ERROR:")), message);
  }
}

TEST(BadStart, PaperOfLessThanAMillimetreIsPrintedIsKept) {
  // The message speaks of 1.0, the test is against 0.000001: one point, 0.3528 mm, passes.
  FilterJob job;
  job.setPpd(support::PpdText().pageSize("w1h1", 1, 1).text());
  const JobRun run = job.run(goodRaster());
  EXPECT_EQ(run.outcome.ending(), "exit status 0");
  EXPECT_EQ(run.outcome.error.find("ERROR:"), std::string::npos);
}

TEST(BadStart, PaperIsTakenFromAMillionthOfAMillimetreOnIsKept) {
  // A point is 0.3528 mm here.
  const struct {
    float points;
    bool taken;
  } cases[] = {{2.8340e-6F, false},  // 0.99984e-6 mm
               {2.8350e-6F, true}};  // 1.00019e-6 mm
  for (const auto& [points, taken] : cases) {
    for (const bool narrow : {true, false}) {
      FilterJob job;
      job.setPpd(support::PpdText()
                     .pageSize("least", narrow ? points : 288.0F, narrow ? 432.0F : points)
                     .text());
      const JobRun run = job.run(goodRaster());
      EXPECT_EQ(run.outcome.ending(), taken ? "exit status 0" : "exit status 1") << points;
    }
  }
}

}  // namespace
