#include "common/text.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

TEST(PathGetBasename, TakesWhatFollowsTheRightmostSeparator) {
  const struct {
    const char* path;
    const char* base;
  } kCases[] = {
      {"rastertotarvo", "rastertotarvo"},
      {"/usr/lib/cups/filter/rastertotarvo", "rastertotarvo"},
      {"C:\\filters\\rastertotarvo", "rastertotarvo"},
      {"/unix/then\\dos", "dos"},
      {"dos\\then/unix", "unix"},
      {"/ends/in/separator/", ""},
      {"ends\\", ""},
      {"", ""},
  };
  for (const auto& c : kCases) EXPECT_STREQ(tarvoPathGetBasename(c.path), c.base) << c.path;
}

TEST(PathGetBasename, PointsIntoItsArgument) {
  const char path[] = "/a/b";
  EXPECT_EQ(tarvoPathGetBasename(path), path + 3);
}

TEST(PathGetBasename, NullGivesNull) { EXPECT_EQ(tarvoPathGetBasename(nullptr), nullptr); }

TEST(StrCpy, KeepsSizeMinusOneCharactersAndFillsWithNuls) {
  const struct {
    int length;  // of the source, all 'x'
    std::size_t size;
    std::size_t kept;
  } kCases[] = {{50, 41, 40}, {41, 41, 40}, {40, 41, 40}, {39, 41, 39}, {0, 41, 0}, {5, 1, 0}};
  for (const auto& c : kCases) {
    std::string destination(64, '#');
    const std::string source(static_cast<std::size_t>(c.length), 'x');
    EXPECT_EQ(tarvoStrCpy(destination.data(), source.c_str(), c.size), destination.data());
    const std::string expected = std::string(c.kept, 'x') + std::string(c.size - c.kept, '\0') +
                                 std::string(64 - c.size, '#');
    EXPECT_EQ(destination, expected) << c.length << " characters into " << c.size;
  }
}

}  // namespace
