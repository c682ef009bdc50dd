// Clocks that are wrong.
#include <gtest/gtest.h>

#include <string>

#include "jobs/good_job.h"
#include "support/differences.h"
#include "surroundings.h"

namespace {

using namespace hostile;

TEST(Clock, NamesTheFilesWhateverItSays) {
  const struct {
    const char* seconds;  // since 1970
    const char* dump;
    const char* recording;
  } kCases[] = {
      {"0", "1970-1-1_0_0_0", "19700101000000"},
      {"-1", "1969-12-31_23_59_59", "19691231235959"},
      {"-2147483649", "1901-12-13_20_45_51", "19011213204551"},
      {"-62167219201", "-1-12-31_23_59_59", "-11231235959"},  // before the year 0
      {"2147483647", "2038-1-19_3_14_7", "20380119031407"},
      {"2147483648", "2038-1-19_3_14_8", "20380119031408"},
      {"4294967296", "2106-2-7_6_28_16", "21060207062816"},
      {"9223372036", "2262-4-11_23_47_16", "22620411234716"},  // the last that Linux can be set to
      {"253402300800", "10000-1-1_0_0_0", "100000101000000"},
  };
  for (const auto& [seconds, dump, recording] : kCases) {
    SCOPED_TRACE(seconds);
    jobs::FilterJob job;
    recordJob(job);
    support::Program program = goodProgram(job);
    program.environment["TARVO_TEST_TIME"] = seconds;
    const support::Outcome outcome = job.runAlone(program);
    EXPECT_EQ(outcome.ending(), "exit status 0");
    EXPECT_EQ(support::firstDifference(goodStream(), outcome.output), "");
    EXPECT_EQ(support::namesIn(job.spool()),
              (std::vector<std::string>{std::string("dithered_") + dump + "_1.bmp",
                                        std::string("origin_") + dump + "_0.bmp",
                                        std::string("recorded-") + recording + ".bin"}));
  }
}

}  // namespace
