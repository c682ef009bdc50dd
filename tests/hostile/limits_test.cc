// Little stack and little memory.
#include <gtest/gtest.h>

#include <cstdint>
#include <iostream>
#include <string>
#include <vector>

#include "jobs/good_job.h"
#include "support/differences.h"
#include "surroundings.h"

namespace {

using namespace hostile;
using jobs::FilterJob;
using support::Drawing;

constexpr std::uint64_t kKib = 1024;

TEST(Limits, SmallStackIsEnough) {
  FilterJob job;
  job.setPpd(jobs::goodPpd()
                 .option("HalftoneType", "None", {"None", "FloydSteinberg", "Sierra", "Tattoo_X8"})
                 .text());
  for (const std::string halftone : {"None", "FloydSteinberg", "Sierra", "Tattoo_X8"}) {
    support::Program program = job.program("HalftoneType=" + halftone);
    program.input =
        support::PipedBytes{support::rasterFile({support::grayPage(812, 300, Drawing::Gradient)})};
    const support::Outcome expected = job.runAlone(program);
    ASSERT_EQ(expected.ending(), "exit status 0");
    // The sanitizer's own frames are larger.
    for (const std::uint64_t kib : {64U, 128U, 256U}) {
      program.stackLimitBytes = kib * kKib * (jobs::kAddressSanitizer ? 4U : 1U);
      const support::Outcome outcome = job.runAlone(program);
      EXPECT_EQ(outcome.ending(), "exit status 0") << halftone << ", " << kib << " KiB";
      EXPECT_EQ(support::firstDifference(expected.output, outcome.output), "");
    }
  }
}

/// From one limit to another.
struct Sweep {
  std::uint64_t fromKib, toKib, stepKib;
};

/// Whether nothing of the filter ran, because the dynamic linker had no room for its libraries: it
/// said nothing, sent nothing, and the status is the one that the linker ends with.
bool isNotLoaded(const support::Outcome& outcome) {
  constexpr int kNotLoaded = 127;
  const auto says = [&](const char* text) { return outcome.error.find(text) != std::string::npos; };
  return outcome.status == kNotLoaded && outcome.output.empty() && !says("DEBUG:") &&
         !says("ERROR:");
}

/// The program under one limit after another: it never crashes, and what it sends is the beginning
/// of `expected`, in whole commands. Where less than all of it came there is a line that says so,
/// or a status: none where libcups could not begin to read, which is an input without pages.
/// Returns how many runs ended each way.
struct Endings {
  int notStarted = 0, failed = 0, leftOut = 0, whole = 0;
};
Endings sweep(const FilterJob& job, support::Program program, const std::string& expected,
              Sweep limits) {
  Endings endings;
  for (std::uint64_t kib = limits.fromKib; kib <= limits.toKib; kib += limits.stepKib) {
    program.addressSpaceLimitBytes = kib * kKib;
    const support::Outcome outcome = job.runAlone(program);
    const std::string what = std::to_string(kib) + " KiB: " + outcome.ending() + "\n";
    if (isNotLoaded(outcome)) {
      ++endings.notStarted;
      continue;
    }
    EXPECT_EQ(outcome.signal, 0) << what << outcome.error;
    EXPECT_FALSE(outcome.timedOut) << what;
    EXPECT_EQ(support::firstDifference(expected.substr(0, outcome.output.size()), outcome.output),
              "")
        << what;
    if (!outcome.output.empty()) {
      EXPECT_EQ(damageOf(outcome.output), "") << what << outcome.error;
    }
    const bool whole = outcome.output == expected;
    const bool said = outcome.error.find("ERROR:") != std::string::npos;
    if (outcome.status == 1) {
      ++endings.failed;
    } else {
      EXPECT_EQ(outcome.status, 0) << what;
      EXPECT_TRUE(whole || said || outcome.output == jobs::preamble()) << what << outcome.error;
      ++(whole ? endings.whole : endings.leftOut);
    }
  }
  return endings;
}

class LittleMemory : public testing::Test {
 protected:
  void SetUp() override {
    if (jobs::kAddressSanitizer) GTEST_SKIP() << "its own memory is beyond any limit";
  }
};

TEST_F(LittleMemory, NeverCrashesTheFilterWhereItStarts) {
  FilterJob job;
  recordJob(job);
  const Endings endings = sweep(job, goodProgram(job), goodStream(), {16384, 24576, 32});
  std::cout << endings.notStarted << " not started, " << endings.failed << " failed, "
            << endings.leftOut << " left out, " << endings.whole << " whole\n";
  EXPECT_GT(endings.notStarted, 0);
  EXPECT_GT(endings.whole, 0);
}

TEST_F(LittleMemory, NeverLeavesThePrinterInABitmap) {
  // A page of 540 kB by way of the tattoo chain; and 8 MB in one line, whose packed dots are a
  // block of 1 MB by themselves.
  const struct {
    const char* halftone;
    support::Page page;
    Sweep limits;
  } kCases[] = {
      {"Tattoo", support::grayPage(600, 900, Drawing::Gradient), {20480, 36864, 256}},
      {"Sierra", support::grayPage(600, 900, Drawing::Gradient), {20480, 36864, 256}},
      {"None", support::grayPage(8U << 20U, 1, Drawing::Full), {49152, 81920, 512}},
  };
  for (const auto& [halftone, page, limits] : kCases) {
    SCOPED_TRACE(halftone);
    FilterJob job;
    job.setPpd(jobs::goodPpd().option("HalftoneType", halftone, {halftone}).text());
    support::Program program = job.program();
    program.input = support::PipedBytes{support::rasterFile({page})};
    const std::string expected = job.runAlone(program).output;
    const Endings endings = sweep(job, program, expected, limits);
    std::cout << halftone << ": " << endings.failed << " failed, " << endings.leftOut
              << " left out, " << endings.whole << " whole\n";
    EXPECT_GT(endings.failed + endings.leftOut, 0);
    EXPECT_GT(endings.whole, 0);
  }
}

}  // namespace
