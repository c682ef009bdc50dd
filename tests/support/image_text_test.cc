#include "support/image_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;

TEST(ImageText, EqualPicturesPass) {
  EXPECT_TRUE(samePicture({"#.", ".#"}, {"#.", ".#"}));
  EXPECT_TRUE(samePicture({}, {}));
}

TEST(ImageText, DifferenceNamesTheFirstDotAndCounts) {
  const auto result = samePicture({"#..", ".##"}, {"#..", "..."});
  ASSERT_FALSE(result);
  EXPECT_THAT(result.message(), HasSubstr("2 of 6 dots differ, the first at (1, 1): '#'"));
  EXPECT_THAT(result.message(), HasSubstr("  #..   #..\n  .## ! ...\n"));
}

TEST(ImageText, WindowFollowsTheFirstDifferingDot) {
  Picture expected(100, std::string(200, '.'));
  Picture actual = expected;
  actual[80][150] = '#';
  // 32 columns from 150 - 16, 12 rows from 80 - 6.
  EXPECT_THAT(samePicture(actual, expected).message(), HasSubstr("from (134, 74)"));
}

TEST(ImageText, OtherSizeFails) {
  const auto result = samePicture({"#..", "..."}, {"#.", ".."});
  ASSERT_FALSE(result);
  EXPECT_THAT(result.message(), HasSubstr("the size is 3 x 2, expected 2 x 2"));
  EXPECT_FALSE(samePicture({"#.", "..", ".."}, {"#.", ".."}));
  EXPECT_FALSE(samePicture({"#.", "."}, {"#.", ".."}));
}

TEST(ImageText, PictureIsMadeRowByRow) {
  EXPECT_TRUE(
      samePicture(pictureOf(3, 2, [](int x, int y) { return x == 2 && y == 1; }), {"...", "..#"}));
}

}  // namespace
