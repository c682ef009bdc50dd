#include "tspl/reader.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "streams.h"

namespace {

using test::BarePage;
using test::Bytes;
using test::FullPage;
using test::Join;
using test::kDots;
using test::kPreamble;

// What is expected behind a whole page.
const std::string kNextPage = "\"SIZE \", 64 line feeds or the end of the stream";

// The full page with the line that begins with `name` replaced.
std::vector<std::string> FullPageWith(std::string_view name, const std::string& line) {
  std::vector<std::string> page = FullPage();
  for (std::string& old : page) {
    if (old.starts_with(name)) old = line;
  }
  return page;
}

std::string Reason(const tspl::Stream& stream) {
  if (!stream.malformed) return "good";
  return "byte " + std::to_string(stream.malformed->offset) + ": expected " +
         stream.malformed->expected + ", found " + stream.malformed->found;
}

TEST(Reader, TakesAPageWithEveryCommand) {
  const std::vector<std::string> page = FullPage();
  const std::string bytes = kPreamble + Join(page);
  const tspl::Stream stream = tspl::Read(Bytes(bytes));
  ASSERT_EQ(Reason(stream), "good");

  // One command a line, each where the ones before it end.
  ASSERT_EQ(stream.commands.size(), 1 + page.size());
  EXPECT_EQ(stream.commands[0].offset, 0U);
  EXPECT_EQ(stream.commands[0].length, 64U);
  EXPECT_EQ(stream.commands[0].text, "");
  std::uint64_t offset = 64;
  for (std::size_t i = 0; i < page.size(); ++i) {
    const tspl::Command& command = stream.commands[i + 1];
    EXPECT_EQ(command.offset, offset) << page[i];
    EXPECT_EQ(command.length, page[i].size()) << page[i];
    EXPECT_TRUE(page[i].starts_with(tspl::Name(command.kind))) << page[i];
    const std::string text =
        page[i].starts_with("BITMAP") ? "BITMAP 0,0,1,4,0," : page[i].substr(0, page[i].size() - 2);
    EXPECT_EQ(command.text, text);
    offset += page[i].size();
  }

  ASSERT_EQ(stream.pages.size(), 1U);
  const tspl::Page& read = stream.pages[0];
  EXPECT_EQ(read.first_command, 1U);
  EXPECT_EQ(read.command_count, page.size());
  EXPECT_EQ(read.width_tenths_mm, 10);
  EXPECT_EQ(read.height_tenths_mm, 5);
  EXPECT_FALSE(read.rotated);
  ASSERT_TRUE(read.bitmap);
  EXPECT_EQ(read.bitmap->width_bytes, 1U);
  EXPECT_EQ(read.bitmap->height_dots, 4U);
  EXPECT_EQ(std::string(read.bitmap->data.begin(), read.bitmap->data.end()), kDots);
  EXPECT_EQ(bytes.substr(read.bitmap->data_offset, 4), kDots);
  EXPECT_EQ(read.copies, 1);
}

TEST(Reader, KeepsEachPageApart) {
  const std::string bytes = kPreamble + Join(FullPage()) + Join(BarePage());
  const tspl::Stream stream = tspl::Read(Bytes(bytes));
  ASSERT_EQ(Reason(stream), "good");
  ASSERT_EQ(stream.pages.size(), 2U);
  EXPECT_FALSE(stream.pages[0].rotated);
  EXPECT_EQ(stream.pages[0].copies, 1);
  EXPECT_TRUE(stream.pages[1].rotated);
  EXPECT_EQ(stream.pages[1].copies, 3);
  EXPECT_EQ(stream.pages[1].first_command, 1 + FullPage().size());
  EXPECT_EQ(stream.pages[1].command_count, BarePage().size());
}

TEST(Reader, TakesAJobWithoutPages) {
  const tspl::Stream stream = tspl::Read(Bytes(kPreamble));
  EXPECT_EQ(Reason(stream), "good");
  EXPECT_EQ(stream.commands.size(), 1U);
  EXPECT_TRUE(stream.pages.empty());
}

TEST(Reader, APageWithoutDotsIsFollowedByTheNext) {
  const std::string no_dots =
      "SIZE 9.0 mm, 9.0 mm\r\nREFERENCE 0,0\r\nDIRECTION 0,0\r\nOFFSET 0.0 mm\r\nCLS\r\n";
  const std::string bytes = kPreamble + no_dots + Join(FullPage());
  const tspl::Stream stream = tspl::Read(Bytes(bytes));
  ASSERT_EQ(Reason(stream), "good");
  ASSERT_EQ(stream.pages.size(), 2U);
  EXPECT_FALSE(stream.pages[0].bitmap);
  EXPECT_FALSE(stream.pages[0].copies);
  EXPECT_TRUE(stream.pages[1].bitmap);
}

// A job's documents come one after another, and each may end as one that comes alone may.
TEST(Reader, TakesOneDocumentAfterAnother) {
  const std::vector<std::string> page = FullPage();
  for (std::size_t last = 0; last <= page.size(); ++last) {
    const std::string first =
        kPreamble + Join(BarePage()) + Join({page.begin(), page.begin() + std::ptrdiff_t(last)});
    const std::string bytes = first + kPreamble + Join(FullPage()) + kPreamble + Join(BarePage());
    const tspl::Stream stream = tspl::Read(Bytes(bytes));
    ASSERT_EQ(Reason(stream), "good") << last;
    ASSERT_EQ(stream.pages.size(), last == 0 ? 3U : 4U) << last;
    const tspl::Page& second = stream.pages[stream.pages.size() - 2];
    EXPECT_EQ(second.command_count, page.size()) << last;
    EXPECT_EQ(second.copies, 1) << last;
    EXPECT_EQ(stream.commands[second.first_command].offset, first.size() + 64) << last;
    const tspl::Command& between = stream.commands[second.first_command - 1];
    EXPECT_EQ(between.kind, tspl::Kind::kPreamble) << last;
    EXPECT_EQ(between.offset, first.size()) << last;
    EXPECT_EQ(between.length, 64U) << last;
    EXPECT_EQ(between.text, "") << last;
    // What the first document was cut off in is no part of the second.
    if (last > 0) {
      EXPECT_EQ(stream.pages[1].command_count, last);
      EXPECT_EQ(stream.pages[1].copies.has_value(), last == page.size()) << last;
    }
  }
}

TEST(Reader, APageIsCompleteWithItsPrintOrWhenMoreFollows) {
  const std::string whole = kPreamble + Join(FullPage());
  const std::string no_dots =
      "SIZE 9.0 mm, 9.0 mm\r\nREFERENCE 0,0\r\nDIRECTION 0,0\r\nOFFSET 0.0 mm\r\nCLS\r\n";
  const struct {
    std::string bytes;
    std::size_t pages;
    std::size_t complete;
  } kCases[] = {
      {kPreamble, 0, 0},
      {whole, 1, 1},
      {whole + "FEED", 1, 1},
      {whole + "SIZE", 1, 1},
      {whole + "SIZE 1.0 mm, 0.5 mm\r\n", 2, 1},
      {whole + no_dots, 2, 1},
      {whole + no_dots + "FEED", 2, 1},
      {whole + no_dots + no_dots, 3, 2},
      {whole + no_dots + kPreamble, 2, 2},
      {whole + no_dots + kPreamble + "FEED", 2, 2},
      {whole + no_dots + kPreamble.substr(1), 2, 1},
  };
  for (const auto& c : kCases) {
    const tspl::Stream stream = tspl::Read(Bytes(c.bytes));
    EXPECT_EQ(stream.pages.size(), c.pages) << c.bytes;
    EXPECT_EQ(tspl::CompletePages(stream), c.complete) << c.bytes;
  }
}

TEST(Reader, DotsMayLookLikeCommands) {
  const std::string dots = "\r\nPRINT 1,1\r\nCLS\r\n";
  const std::string bytes =
      kPreamble + Join(FullPageWith("BITMAP", "BITMAP 0,0,18,1,0," + dots + "\r\n"));
  const tspl::Stream stream = tspl::Read(Bytes(bytes));
  EXPECT_EQ(dots.size(), 18U);
  EXPECT_EQ(Reason(stream), "good");
  EXPECT_EQ(stream.pages.size(), 1U);
}

TEST(Reader, TakesEachCommandInEveryForm) {
  const struct {
    std::string_view name;
    std::string line;
  } kCases[] = {
      {"SIZE", "SIZE 0.0 mm, 0.0 mm\r\n"},
      {"SIZE", "SIZE 210.0 mm, 297.0 mm\r\n"},
      // 4294967295 dots x 25.4 mm, as a single-precision number.
      {"SIZE", "SIZE 109090521088.0 mm, 0.1 mm\r\n"},
      {"GAP", "GAP 0, 0\r\n"},
      {"GAP", "GAP 2147483648.0 mm, 0.0 mm\r\n"},
      {"GAP", "BLINE 3.0 mm, 0.0 mm\r\n"},
      {"GAP", ""},
      {"DIRECTION", "DIRECTION 1,0\r\n"},
      {"SPEED", "SPEED 2.5\r\n"},
      {"SPEED", "SPEED 12 in/s, or what comes near it\r\n"},
      {"SPEED", "SPEED " + std::string(40, '7') + "\r\n"},
      {"SPEED", ""},
      {"DENSITY", "DENSITY 0\r\n"},
      {"DENSITY", "DENSITY 30\r\n"},
      {"DENSITY", ""},
      {"SET RIBBON", "SET RIBBON ON\r\n"},
      {"SET RIBBON", ""},
      {"SET TEAR", "SET TEAR OFF\r\n"},
      {"BITMAP", "BITMAP 0,0,0,0,0,\r\n"},
      {"BITMAP", "BITMAP 0,0,0,2147483647,0,\r\n"},
      {"BITMAP", "BITMAP 0,0,2147483647,0,0,\r\n"},
      {"BITMAP", "BITMAP 0,0,2,3,0,abcdef\r\n"},
      {"PRINT", "PRINT 1,0\r\n"},
      {"PRINT", "PRINT 1,2147483647\r\n"},
      // The copies of a page's header are unsigned, and sent as a signed number.
      {"PRINT", "PRINT 1,-1\r\n"},
      {"PRINT", "PRINT 1,-2147483648\r\n"},
  };
  for (const auto& c : kCases) {
    const std::string bytes = kPreamble + Join(FullPageWith(c.name, c.line));
    EXPECT_EQ(Reason(tspl::Read(Bytes(bytes))), "good") << c.name << " as " << c.line;
  }
}

TEST(Reader, TakesEachPostAction) {
  const struct {
    const char* tear;
    const char* peel;
    const char* cutter;
    bool good;
  } kCases[] = {
      {"OFF", "OFF", "OFF", true}, {"ON", "OFF", "OFF", true}, {"OFF", "ON", "OFF", true},
      {"OFF", "OFF", "ON", true},  {"ON", "ON", "OFF", false}, {"ON", "OFF", "ON", false},
      {"OFF", "ON", "ON", false},  {"ON", "ON", "ON", false},
  };
  for (const auto& c : kCases) {
    std::vector<std::string> page = FullPage();
    page[8] = std::string("SET TEAR ") + c.tear + "\r\n";
    page[9] = std::string("SET PEEL ") + c.peel + "\r\n";
    page[10] = std::string("SET CUTTER ") + c.cutter + "\r\n";
    // On two pages: what one page switches on does not forbid the next to.
    const std::string bytes = kPreamble + Join(page) + Join(page);
    const tspl::Stream stream = tspl::Read(Bytes(bytes));
    EXPECT_EQ(!stream.malformed, c.good) << page[8] << page[9] << page[10] << Reason(stream);
  }
}

// In every line below one thing is wrong; `column` is its place in the line.
TEST(Reader, SaysWhatIsWrongAndWhere) {
  const std::string length = "a length in millimetres with one decimal";
  const std::string copies = "a number of copies from -2147483648 to 2147483647";
  const std::string width = "a width in bytes from 0 to 2147483647";
  const std::string height = "a height in dots from 0 to 2147483647";
  const struct {
    std::string_view name;
    std::string line;
    std::uint64_t column;
    std::string expected;
  } kCases[] = {
      {"SIZE", "SIZE 1.0 mm, 0.5 mm\n", 19, "\"\\r\\n\""},
      {"SIZE", "SIZE 1.0 mm, 0.5 mm\r", 20, "\"\\n\""},
      {"SIZE", "SIZE 1.0 mm, 0.5 mm\n\r", 19, "\"\\r\\n\""},
      {"SIZE", "SIZE 1.0 mm, 0.5 mm\r\r\n", 20, "\"\\n\""},
      {"SIZE", "SIZE 1.0 mm, 0.5 mm \r\n", 19, "\"\\r\\n\""},
      {"SIZE", "SIZE 1.0 mm 0.5 mm\r\n", 11, "\", \""},
      {"SIZE", "SIZE 1.0 mm,0.5 mm\r\n", 12, "\" \""},
      {"SIZE", "SIZE 1.0, 0.5 mm\r\n", 8, "\" mm, \""},
      {"SIZE", "SIZE 1.0 mm, 0.5\r\n", 16, "\" mm\\r\\n\""},
      {"SIZE", "SIZE 1 mm, 0.5 mm\r\n", 5, length},
      {"SIZE", "SIZE 1. mm, 0.5 mm\r\n", 5, length},
      {"SIZE", "SIZE .5 mm, 0.5 mm\r\n", 5, length},
      {"SIZE", "SIZE 1.00 mm, 0.5 mm\r\n", 8, "\" mm, \""},
      {"SIZE", "SIZE 01.0 mm, 0.5 mm\r\n", 5, length},
      {"SIZE", "SIZE +1.0 mm, 0.5 mm\r\n", 5, length},
      {"SIZE", "SIZE -1.0 mm, 0.5 mm\r\n", 5, length},
      {"SIZE", "SIZE inf mm, 0.5 mm\r\n", 5, length},
      {"SIZE", "SIZE 1,0 mm, 0.5 mm\r\n", 5, length},
      {"SIZE", "SIZE 1234567890123.0 mm, 0.5 mm\r\n", 5, length},
      {"SIZE", "SIZE 1.0 mm, " + std::string(400, '9') + ".0 mm\r\n", 13, length},
      {"SIZE", "SIZE  1.0 mm, 0.5 mm\r\n", 5, length},
      {"SIZE", "SIZE\t1.0 mm, 0.5 mm\r\n", 0, kNextPage},
      {"SIZE", "size 1.0 mm, 0.5 mm\r\n", 0, kNextPage},
      {"SIZE", "\nSIZE 1.0 mm, 0.5 mm\r\n", 1, "64 line feeds, 63 more"},
      {"GAP", "GAP 0,0\r\n", 4, length},
      {"GAP", "GAP 0, 0 mm\r\n", 8, "\"\\r\\n\""},
      {"GAP", "GAP 0, 1\r\n", 7, "\"0\\r\\n\""},
      {"GAP", "GAP 0.0 mm, 0.0 mm\r\n", 4, "a length above 0.0 mm"},
      {"GAP", "GAP 3 mm, 0 mm\r\n", 4, length},
      {"GAP", "GAP 3.0 mm,0.0 mm\r\n", 11, "\" 0.0 mm\\r\\n\""},
      {"GAP", "GAP 3.0 mm, 1.0 mm\r\n", 12, "\"0.0 mm\\r\\n\""},
      {"GAP", "BLINE 0, 0\r\n", 6, length},
      {"GAP", "GAPS 3.0 mm, 0.0 mm\r\n", 0, "\"GAP \", \"BLINE \" or \"REFERENCE \""},
      {"REFERENCE", "REFERENCE 0, 0\r\n", 12, "\"0\\r\\n\""},
      {"REFERENCE", "REFERENCE 0,1\r\n", 12, "\"0\\r\\n\""},
      {"REFERENCE", "REFERENCE 00\r\n", 11, "\",0\\r\\n\""},
      {"DIRECTION", "DIRECTION 2,0\r\n", 10, "a direction from 0 to 1"},
      {"DIRECTION", "DIRECTION 01,0\r\n", 11, "\",0\\r\\n\""},
      {"DIRECTION", "DIRECTION -1,0\r\n", 10, "a direction from 0 to 1"},
      {"DIRECTION", "DIRECTION 1,1\r\n", 12, "\"0\\r\\n\""},
      {"DIRECTION", "DIRECTION 1\r\n", 11, "\",0\\r\\n\""},
      {"SPEED", "SPEED \r\n", 6, "a speed of 1 to 40 characters"},
      {"SPEED", "SPEED " + std::string(41, '7') + "\r\n", 6, "a speed of 1 to 40 characters"},
      {"SPEED", "SPEED 0\r\n", 6, "a speed that begins with a number above 0"},
      {"SPEED", "SPEED -4\r\n", 6, "a speed that begins with a number above 0"},
      {"SPEED", "SPEED fast\r\n", 6, "a speed that begins with a number above 0"},
      {"SPEED", "SPEED 4Normal\r\n", 6, "a speed that begins with a number above 0"},
      {"SPEED", "SPEED 4\x1B[31m\r\n", 7, "\"\\r\\n\""},
      {"DENSITY", "DENSITY 31\r\n", 8, "a density from 0 to 30"},
      {"DENSITY", "DENSITY -1\r\n", 8, "a density from 0 to 30"},
      {"DENSITY", "DENSITY 08\r\n", 9, "\"\\r\\n\""},
      {"DENSITY", "DENSITY 8.0\r\n", 9, "\"\\r\\n\""},
      {"DENSITY", "DENSITY \r\n", 8, "a density from 0 to 30"},
      {"SET RIBBON", "SET RIBBON \r\n", 11, "\"ON\" or \"OFF\""},
      {"SET RIBBON", "SET RIBBON off\r\n", 11, "\"ON\" or \"OFF\""},
      {"SET RIBBON", "SET RIBBON ONE\r\n", 13, "\"\\r\\n\""},
      {"SET RIBBON", "SET  RIBBON ON\r\n", 0, "\"SET RIBBON \" or \"OFFSET \""},
      {"OFFSET", "OFFSET 0 mm\r\n", 8, "\".0 mm\\r\\n\""},
      {"OFFSET", "OFFSET 0.0\r\n", 10, "\" mm\\r\\n\""},
      {"OFFSET", "OFFSET 1.0 mm\r\n", 7, "\"0.0 mm\\r\\n\""},
      {"SET TEAR", "SET TEAR O\r\n", 9, "\"ON\" or \"OFF\""},
      {"SET CUTTER", "SET CUTTER ON\r\n", 12, "\"FF\\r\\n\""},
      {"CLS", "CLS\n", 0, "\"CLS\\r\\n\""},
      {"CLS", "CLS \r\n", 0, "\"CLS\\r\\n\""},
      {"BITMAP", "BITMAP 1,0,1,4,0,abcd\r\n", 7, "\"0,0,\""},
      {"BITMAP", "BITMAP 0,0,1,4,1,abcd\r\n", 15, "\"0,\""},
      {"BITMAP", "BITMAP 0,0,1,4,0abcd\r\n", 16, "\",\""},
      {"BITMAP", "BITMAP 0,0,-1,4,0,abcd\r\n", 11, width},
      {"BITMAP", "BITMAP 0,0,2147483648,4,0,abcd\r\n", 11, width},
      {"BITMAP", "BITMAP 0,0,99999999999999999999999,4,0,abcd\r\n", 11, width},
      {"BITMAP", "BITMAP 0,0,1,,0,abcd\r\n", 13, height},
      {"BITMAP", "BITMAP 0,0,1,4294967300,0,abcd\r\n", 13, height},
      {"BITMAP", "BITMAP 0,0,1,4,0,abc\r\n", 21, "\"\\r\\n\""},
      {"BITMAP", "BITMAP 0,0,1,4,0,abcde\r\n", 21, "\"\\r\\n\""},
      {"BITMAP", "BITMAP 0,0,1,4,0,abcd\n", 21, "\"\\r\\n\""},
      {"BITMAP", "BITMAP 0,0,1,4,0,abcd", 21, "\"\\r\\n\""},
      {"BITMAP", "BITMAP 0,0,1,4,0,\r\nabcd\r\n", 21, "\"\\r\\n\""},
      {"PRINT", "PRINT 2,1\r\n", 6, "\"1,\""},
      {"PRINT", "PRINT 1, 1\r\n", 8, copies},
      {"PRINT", "PRINT 1,2147483648\r\n", 8, copies},
      {"PRINT", "PRINT 1,-2147483649\r\n", 8, copies},
      {"PRINT", "PRINT 1,-0\r\n", 8, copies},
      {"PRINT", "PRINT 1,01\r\n", 9, "\"\\r\\n\""},
      {"PRINT", "PRINT 1\r\n", 7, "\",\""},
  };
  for (const auto& c : kCases) {
    const std::vector<std::string> page = FullPageWith(c.name, c.line);
    const std::string bytes = kPreamble + Join(page);
    // The line stands where the one that it replaces stood.
    const std::uint64_t line_start = bytes.find(c.line, 64);
    const tspl::Stream stream = tspl::Read(Bytes(bytes));
    ASSERT_TRUE(stream.malformed) << c.line;
    EXPECT_EQ(stream.malformed->offset, line_start + c.column) << c.line << Reason(stream);
    EXPECT_EQ(stream.malformed->expected, c.expected) << c.line;
    // Everything before the line was read, and nothing of it or after it.
    EXPECT_EQ(stream.commands.back().offset + stream.commands.back().length, line_start) << c.line;
  }
}

TEST(Reader, QuotesWhatItFound) {
  const struct {
    std::string tail;  // after the first page
    std::string found;
  } kCases[] = {
      {"X", "\"X\" and the end of the stream"},
      {"\r\n", "\"\\r\\n\" and the end of the stream"},
      {"SIZE", "\"SIZE\" and the end of the stream"},
      {"say \"hi\\\"", "\"say \\\"hi\\\\\\\"\" and the end of the stream"},
      {std::string("\0\x7F\xFF\t", 4), "\"\\x00\\x7F\\xFF\\x09\" and the end of the stream"},
      {"sixteen bytes   ", "\"sixteen bytes   \""},
      {"sixteen bytes and more", "\"sixteen bytes an\""},
  };
  for (const auto& c : kCases) {
    const std::string bytes = kPreamble + Join(FullPage()) + c.tail;
    const tspl::Stream stream = tspl::Read(Bytes(bytes));
    ASSERT_TRUE(stream.malformed) << c.tail;
    EXPECT_EQ(stream.malformed->offset, bytes.size() - c.tail.size());
    EXPECT_EQ(stream.malformed->expected, kNextPage);
    EXPECT_EQ(stream.malformed->found, c.found);
  }
}

TEST(Reader, WantsAllOfThePreambleAndNoMore) {
  const struct {
    std::size_t line_feeds;
    std::string reason;
  } kCases[] = {
      {0, "byte 0: expected 64 line feeds, 64 more, found \"SIZE 1.0 mm, 0.5\""},
      {63, "byte 63: expected 64 line feeds, 1 more, found \"SIZE 1.0 mm, 0.5\""},
      {64, "good"},
      {65, "byte 65: expected 64 line feeds, 63 more, found \"SIZE 1.0 mm, 0.5\""},
      {127, "byte 127: expected 64 line feeds, 1 more, found \"SIZE 1.0 mm, 0.5\""},
      {128, "good"},  // a document without pages is before this one
  };
  for (const auto& c : kCases) {
    const std::string bytes = std::string(c.line_feeds, '\n') + Join(FullPage());
    EXPECT_EQ(Reason(tspl::Read(Bytes(bytes))), c.reason);
  }
  EXPECT_EQ(Reason(tspl::Read({})),
            "byte 0: expected 64 line feeds, 64 more, found the end of the stream");
}

TEST(Reader, AHeadThatClaimsMoreThanThereIsCostsNothing) {
  const struct {
    std::string head;
    std::string claim;
  } kCases[] = {
      // 2147483647 x 2147483647; 65536 x 65536 is 0 in 32 bits.
      {"BITMAP 0,0,2147483647,2147483647,0,", "4611686014132420609"},
      {"BITMAP 0,0,65536,65536,0,", "4294967296"},
  };
  for (const auto& c : kCases) {
    const std::string bytes = kPreamble + Join(FullPageWith("BITMAP", c.head + "\r\n"));
    const tspl::Stream stream = tspl::Read(Bytes(bytes));
    ASSERT_TRUE(stream.malformed);
    EXPECT_EQ(stream.malformed->offset, bytes.size());
    EXPECT_TRUE(stream.malformed->expected.starts_with(c.claim + " bytes of dots from byte "))
        << stream.malformed->expected;
    EXPECT_EQ(stream.malformed->found, "the end of the stream");
  }
}

}  // namespace
