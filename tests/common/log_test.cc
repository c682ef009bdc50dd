#include "common/log.h"

#include <gtest/gtest.h>

#include <string>

namespace {

template <typename Function>
std::string standardErrorOf(Function function) {
  testing::internal::CaptureStderr();
  function();
  return testing::internal::GetCapturedStderr();
}

TEST(Log, EachLevelHasItsPrefixAndNoBlankFollows) {
  const char* const expected[] = {"DEBUG:text\n", "DEBUG:text\n", "WARN:text\n",
                                  "ERROR:text\n", "CRIT:text\n",  "INVALID:text\n"};
  for (int level = 0; level <= 5; ++level) {
    EXPECT_EQ(standardErrorOf([level] { tarvoLogCommon(level, "text"); }), expected[level]);
  }
}

TEST(Log, ArgumentsAreFormatted) {
  EXPECT_EQ(standardErrorOf([] {
              tarvoLogCommon(3, "Unsupported bits per pixel : %d ! Requires 8 bits per pixel!", 1);
            }),
            "ERROR:Unsupported bits per pixel : 1 ! Requires 8 bits per pixel!\n");
  EXPECT_EQ(standardErrorOf([] { tarvoLogCommon(0, "PAGE: %d %d", 1, 1); }), "DEBUG:PAGE: 1 1\n");
}

TEST(Log, FormatWithItsOwnLineEndGivesAnEmptyLine) {
  EXPECT_EQ(standardErrorOf([] { tarvoLogCommon(0, "PAGE: %d %d\n", 2, 3); }),
            "DEBUG:PAGE: 2 3\n\n");
}

}  // namespace
