// A locale that writes a comma for the point: commands, log and files keep the point.
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "jobs/good_job.h"
#include "support/differences.h"
#include "surroundings.h"

namespace {

using namespace hostile;

constexpr char kLocale[] = "de_DE.UTF-8";

/// Compiles the locale into `folder`. False where this system does not have its source.
bool compileLocale(const support::Folder& folder) {
  support::Program program;
  program.executable = "/usr/bin/localedef";
  program.arguments = {"localedef", "-i", "de_DE", "-f", "UTF-8", (folder / kLocale).string()};
  if (::access(program.executable.c_str(), X_OK) != 0) return false;
  return support::run(program).status == 0;
}

/// What stands between 1 and 5 in the locale.
std::string decimalPoint(const support::Folder& folder) {
  support::Program program;
  program.executable = "/usr/bin/locale";
  program.arguments = {"locale", "decimal_point"};
  program.environment = {{"LOCPATH", folder.path().string()}, {"LC_ALL", kLocale}};
  return support::run(program).output;
}

TEST(Locale, WithADecimalCommaChangesNothing) {
  const support::Folder folder;
  if (!compileLocale(folder)) GTEST_SKIP() << "no source of the locale de_DE: package locales";
  ASSERT_EQ(decimalPoint(folder), ",\n");
  support::PpdText ppd = jobs::goodPpd();
  ppd.option("Brightness", "-37", {"-37"}).option("HalftoneType", "Tattoo", {"Tattoo"});
  ppd.customPageSizes(10, 1000);
  // Speeds with a point; 0.5 would be 0, and not sent, if only its 0 were read.
  for (const std::string speed : {"4", "2.5", "0.5"}) {
    SCOPED_TRACE(speed);
    jobs::FilterJob job;
    job.setPpd(ppd.option("PrintSpeed", speed, {speed}).text());
    support::Program program = job.program("PageSize=Custom.123.4x234.5 PrintSpeed=" + speed);
    program.input = support::PipedBytes{
        support::rasterFile({support::grayPage(100, 30, support::Drawing::Gradient)})};
    const support::Outcome expected = job.runAlone(program);
    EXPECT_EQ(expected.ending(), "exit status 0");
    EXPECT_NE(expected.output.find("SIZE 12.5 mm, 3.8 mm\r\n"), std::string::npos);
    program.environment["LOCPATH"] = folder.path().string();
    // The C library keeps a copy of LOCPATH when libcups asks for the locale.
    program.environment["ASAN_OPTIONS"] = "verify_asan_link_order=0:detect_leaks=0";
    for (const char* variable : {"LC_ALL", "LC_NUMERIC", "LANG"}) {
      program.environment[variable] = kLocale;
      const support::Outcome outcome = job.runAlone(program);
      EXPECT_EQ(support::firstDifference(expected.output, outcome.output), "") << variable;
      EXPECT_EQ(support::firstDifference(jobs::masked(expected.error), jobs::masked(outcome.error)),
                "")
          << variable;
    }
  }
}

}  // namespace
