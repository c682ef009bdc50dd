#include "printer/blank_lines.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "test_printer.h"

namespace {

/// Lines from a picture: '#' ink, '.' blank, lines cut by '/'.
Bytes lines(std::string_view picture) {
  Bytes bytes;
  for (const char dot : picture) {
    if (dot != '/') bytes.push_back(dot == '#' ? 1 : 0);
  }
  return bytes;
}

struct Case {
  const char* picture;
  unsigned long lineBytes;
  unsigned long lines;
  unsigned long skipRight;
  unsigned long stride;
  unsigned long expected;
};

TEST(BlankLinesFromFront, FirstLineIsNeverLookedAtIsKept) {
  const Case cases[] = {
      {"..../..../####/....", 4, 4, 0, 4, 1},  // ink in line 2: the test of r = 1 looks there
      {"####/..../####/....", 4, 4, 0, 4, 1},  // ink in line 0 does not count
      {"####/####/..../....", 4, 4, 0, 4, 0},
      {"####/..../..../....", 4, 4, 0, 4, 4},  // only line 0 has ink: all count as blank
      {"..../..../..../...#", 4, 4, 0, 4, 2},
      {"..../..../..../....", 4, 4, 0, 4, 4},  // the line past the end counts as blank
      {"#", 1, 1, 0, 1, 1},
      {".", 1, 1, 0, 1, 1},
      {"", 4, 0, 0, 4, 0},
  };
  for (const Case& row : cases) {
    // Exactly as long as the page, so that a read past the end would be found.
    const Bytes page = lines(row.picture);
    EXPECT_EQ(tarvoImageCountBlankLinesFromFront(page.data(), row.lineBytes, row.lines,
                                                 row.skipRight, row.stride),
              row.expected)
        << row.picture;
  }
}

TEST(BlankLinesFromBack, CountsTheLinesUpToTheLastInkIsKept) {
  const Case cases[] = {
      {"..../####/..../....", 4, 4, 0, 4, 2},
      {"####/..../..../....", 4, 4, 0, 4, 1},
      {"..../..../..../#...", 4, 4, 0, 4, 4},
      {"..../..../..../...#", 4, 4, 0, 4, 4},
      {"..../..../..../....", 4, 4, 0, 4, 0},
      {"#", 1, 1, 0, 1, 1},
      {".", 1, 1, 0, 1, 0},
      {"", 4, 0, 0, 4, 0},
  };
  for (const Case& row : cases) {
    const Bytes page = lines(row.picture);
    EXPECT_EQ(tarvoImageCountBlankLinesFromBack(page.data(), row.lineBytes, row.lines,
                                                row.skipRight, row.stride),
              row.expected)
        << row.picture;
  }
}

TEST(BlankLines, BytesAtTheRightAreSkipped) {
  const struct {
    const char* picture;
    unsigned long skipRight;
    unsigned long front;
    unsigned long back;
  } cases[] = {
      {"..../...#/...#/....", 0, 0, 3},
      {"..../...#/...#/....", 1, 4, 0},
      {"..../..#./..#./....", 1, 0, 3},
      {"..../..#./..#./....", 2, 4, 0},
      {"..../#.../#.../....", 3, 0, 3},
      {"..../#.../#.../....", 4, 4, 0},  // nothing is left to look at
      {"..../...#/...#/....", 5, 0, 3},  // more than a line has: the whole line counts
      {"..../...#/...#/....", 400, 0, 3},
  };
  for (const auto& row : cases) {
    const Bytes page = lines(row.picture);
    EXPECT_EQ(tarvoImageCountBlankLinesFromFront(page.data(), 4, 4, row.skipRight, 4), row.front)
        << row.picture << " skip " << row.skipRight;
    EXPECT_EQ(tarvoImageCountBlankLinesFromBack(page.data(), 4, 4, row.skipRight, 4), row.back)
        << row.picture << " skip " << row.skipRight;
  }
}

TEST(BlankLines, StrideIsTheDistanceOfTheLines) {
  // Two bytes of each line count, four bytes lie between the starts.
  const Bytes page = lines("..##/..##/.###/..##");
  EXPECT_EQ(tarvoImageCountBlankLinesFromFront(page.data(), 2, 4, 0, 4), 1U);
  EXPECT_EQ(tarvoImageCountBlankLinesFromBack(page.data(), 2, 4, 0, 4), 3U);
  // Lines may overlap: three bytes each, two apart.
  const Bytes overlapping = lines("......#..");
  EXPECT_EQ(tarvoImageCountBlankLinesFromFront(overlapping.data(), 3, 4, 0, 2), 1U);
  EXPECT_EQ(tarvoImageCountBlankLinesFromBack(overlapping.data(), 3, 4, 0, 2), 4U);
}

TEST(BlankLines, AnyByteButZeroIsInk) {
  for (int ink = 1; ink < 256; ++ink) {
    const Bytes page = {0, 0, static_cast<std::uint8_t>(ink), 0};
    EXPECT_EQ(tarvoImageCountBlankLinesFromFront(page.data(), 2, 2, 0, 2), 0U) << ink;
    EXPECT_EQ(tarvoImageCountBlankLinesFromBack(page.data(), 2, 2, 0, 2), 2U) << ink;
  }
}

TEST(BlankLines, PageOf300RowsWithInkIn100To199) {
  Bytes page(std::size_t{300} * 16, 0);
  for (std::size_t i = 100 * 16; i < 200 * 16; ++i) page[i] = 200;
  EXPECT_EQ(tarvoImageCountBlankLinesFromFront(page.data(), 16, 300, 0, 16), 99U);
  EXPECT_EQ(tarvoImageCountBlankLinesFromBack(page.data(), 16, 300, 0, 16), 200U);
}

}  // namespace
