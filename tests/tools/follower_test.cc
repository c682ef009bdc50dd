// Streams that arrive in pieces.
#include "tspl/follower.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "streams.h"
#include "tspl/report.h"

namespace {

using test::BarePage;
using test::Bytes;
using test::FullPage;
using test::Join;
using test::kDots;
using test::kPreamble;

const std::string kNoDots =
    "SIZE 9.0 mm, 9.0 mm\r\nREFERENCE 0,0\r\nDIRECTION 0,0\r\nOFFSET 0.0 mm\r\nCLS\r\n";

std::string Say(const tspl::Page& page, const tspl::Command& last) {
  std::string line = std::to_string(last.offset) + ": " +
                     tspl::PageLine(page, last, tspl::MeasureLabel(page, std::nullopt));
  if (page.bitmap) {
    const std::span<const std::uint8_t> dots = page.bitmap->data;
    line += ", dots at " + std::to_string(page.bitmap->data_offset) + ": " +
            std::string(reinterpret_cast<const char*>(dots.data()), dots.size());
  }
  return line;
}

struct Told {
  std::vector<std::string> pages;
  std::string damage;

  bool operator==(const Told&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Told& told) {
  for (const std::string& page : told.pages) out << page << "\n";
  return out << told.damage;
}

// What the stream holds, by reading all of it at once. The page that damage cuts short is none.
Told Whole(const std::string& bytes) {
  const tspl::Stream stream = tspl::Read(Bytes(bytes));
  Told told;
  for (std::size_t i = 0; i < stream.pages.size(); ++i) {
    const tspl::Page& page = stream.pages[i];
    const std::size_t behind = page.first_command + page.command_count;
    if (stream.malformed && !page.copies && behind == stream.commands.size()) continue;
    told.pages.push_back(Say(page, stream.commands[behind - 1]));
  }
  if (stream.malformed) told.damage = tspl::MalformedLine(*stream.malformed);
  return told;
}

// What is told of a stream that arrives in pieces of `piece` bytes, the first one `first` long.
Told InPieces(const std::string& bytes, std::size_t first, std::size_t piece) {
  Told told;
  tspl::Follower follower([&](const tspl::Page& page, const tspl::Command& last) {
    told.pages.push_back(Say(page, last));
  });
  for (std::size_t at = 0; at < bytes.size();) {
    const std::string next = bytes.substr(at, at == 0 ? first : piece);
    follower.Take(Bytes(next));
    at += next.size();
  }
  follower.End();
  if (follower.malformed()) told.damage = tspl::MalformedLine(*follower.malformed());
  return told;
}

TEST(Follower, FindsInPiecesWhatTheWholeHolds) {
  const std::string good = kPreamble + Join(FullPage()) + kNoDots + Join(BarePage());
  const std::string up_to_speed =
      kPreamble + "SIZE 999999999999.9 mm, 999999999999.9 mm\r\nGAP 999999999999.9 mm, 0.0 mm\r\n" +
      "REFERENCE 0,0\r\nDIRECTION 0,0\r\nSPEED ";
  const struct {
    const char* what;
    std::string bytes;
    std::size_t pages;
  } kCases[] = {
      {"nothing", "", 0},
      {"half a preamble", kPreamble.substr(32), 0},
      {"a preamble alone", kPreamble, 0},
      {"no preamble", Join(FullPage()), 0},
      {"three pages", good, 3},
      {"a page without dots at the end", kPreamble + kNoDots, 1},
      {"a page that ends before its PRINT", good.substr(0, good.size() - 11), 3},
      {"a page that ends in its dots", good.substr(0, good.size() - 15), 2},
      {"damage in the second page", kPreamble + Join(FullPage()) + "SIZE 1.0 in" + good, 1},
      {"damage right behind a page", kPreamble + Join(FullPage()) + "FORMFEED" + good, 1},
      {"a copies' number without digits",
       kPreamble + kNoDots + "BITMAP 0,0,1,4,0," + kDots + "\r\nPRINT 1,-\r\n" + good, 0},
      {"two documents", good + good, 6},
      {"a document without pages between two", good + kPreamble + good, 6},
      {"a document that is cut off before the next one",
       kPreamble + Join(FullPage()) + kNoDots.substr(0, 21) + good, 5},
      {"a page without dots at the end of a document", kPreamble + kNoDots + good, 4},
      {"damage behind a page without dots and half a preamble",
       kPreamble + kNoDots + kPreamble.substr(32) + "FORMFEED" + good, 0},
      {"damage behind a page without dots and a preamble",
       kPreamble + kNoDots + kPreamble + "FORMFEED" + good, 1},
      {"negative copies", kPreamble + kNoDots + "BITMAP 0,0,1,4,0," + kDots + "\r\nPRINT 1,-5\r\n",
       1},
      // Whether such a speed is above 0 is known when its fortieth character is.
      {"a speed above 0 at last", up_to_speed + std::string(39, '0') + "1\r\nDENSITY 31\r\n", 0},
      {"a speed too near to 0", up_to_speed + "1e-" + std::string(35, '0') + "16\r\n" + good, 0},
      {"dots that never come", kPreamble + kNoDots + "BITMAP 0,0,2147483647,2147483647,0," + good,
       0},
  };
  for (const auto& c : kCases) {
    const Told whole = Whole(c.bytes);
    EXPECT_EQ(whole.pages.size(), c.pages) << c.what;
    EXPECT_EQ(InPieces(c.bytes, 1, 1), whole) << c.what << ", byte by byte";
    EXPECT_EQ(InPieces(c.bytes, 7, 7), whole) << c.what << ", in sevens";
    for (std::size_t cut = 1; cut <= c.bytes.size(); ++cut) {
      ASSERT_EQ(InPieces(c.bytes, cut, c.bytes.size()), whole) << c.what << ", cut at " << cut;
    }
  }
}

TEST(Follower, TellsAPageWithItsLastByte) {
  const std::string first = kPreamble + Join(FullPage());
  std::size_t pages = 0;
  tspl::Follower follower([&](const tspl::Page&, const tspl::Command&) { ++pages; });
  follower.Take(Bytes(first.substr(0, first.size() - 1)));
  EXPECT_EQ(pages, 0U);
  follower.Take(Bytes("\n"));
  EXPECT_EQ(pages, 1U);
  // One that is not printed ends where the next one begins.
  follower.Take(Bytes(kNoDots));
  EXPECT_EQ(pages, 1U);
  follower.Take(Bytes("SIZE 9.0 mm, 9.0 mm\r\n"));
  EXPECT_EQ(pages, 2U);
  EXPECT_FALSE(follower.malformed());
}

TEST(Follower, TellsAPageThatIsNotPrintedWithTheNextDocument) {
  std::size_t pages = 0;
  tspl::Follower follower([&](const tspl::Page&, const tspl::Command&) { ++pages; });
  follower.Take(Bytes(kPreamble + kNoDots + kPreamble.substr(1)));
  EXPECT_EQ(pages, 0U);
  follower.Take(Bytes("\n"));
  EXPECT_EQ(pages, 1U);
}

TEST(Follower, TellsDamageBeforeTheEndOnceItIsSure) {
  tspl::Follower follower([](const tspl::Page&, const tspl::Command&) {});
  follower.Take(Bytes(kPreamble + "HELLO"));
  EXPECT_FALSE(follower.malformed());
  follower.Take(Bytes(std::string(58, '.')));
  EXPECT_FALSE(follower.malformed());
  follower.Take(Bytes("."));  // 5 + 58 + 1 = 64 bytes from the damage on
  ASSERT_TRUE(follower.malformed());
  EXPECT_EQ(tspl::MalformedLine(*follower.malformed()),
            "byte 64: expected \"SIZE \", 64 line feeds or the end of the stream, found "
            "\"HELLO...........\"");
}

}  // namespace
