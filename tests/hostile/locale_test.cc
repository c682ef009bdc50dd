// A locale that writes a comma for the point: commands, log and files keep the point.
#include <gtest/gtest.h>
#include <locale.h>
#include <stdio.h>
#include <stdlib.h>
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

/// 1.5 as the locale has it.
std::string oneAndAHalf(const support::Folder& folder) {
  ::setenv("LOCPATH", folder.path().c_str(), 1);
  const locale_t locale = ::newlocale(LC_ALL_MASK, kLocale, nullptr);
  ::unsetenv("LOCPATH");
  if (locale == nullptr) return "no such locale";
  const locale_t before = ::uselocale(locale);
  char text[16];
  ::snprintf(text, sizeof text, "%.1f", 1.5);
  ::uselocale(before);
  ::freelocale(locale);
  return text;
}

TEST(Locale, WithADecimalCommaChangesNothing) {
  const support::Folder folder;
  if (!compileLocale(folder)) GTEST_SKIP() << "no source of the locale de_DE: package locales";
  ASSERT_EQ(oneAndAHalf(folder), "1,5");
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
