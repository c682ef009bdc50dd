// One small good stream of two pages, damaged in every way that a loop can.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "streams.h"
#include "tspl/reader.h"

namespace {

using test::BarePage;
using test::Bytes;
using test::FullPage;
using test::Join;
using test::kPreamble;

bool IsGood(const std::string& bytes) { return !tspl::Read(Bytes(bytes)).malformed; }

struct Job {
  std::string bytes;
  std::set<std::size_t> boundaries;  // where a command ends
  std::vector<bool> is_dot;          // whether the byte is a bitmap's data
};

// Two pages, and another document.
Job TwoDocuments() {
  Job job;
  std::vector<std::string> commands;
  const std::vector<std::string> preamble = {kPreamble};
  for (const auto& part : {preamble, FullPage(), BarePage(), preamble, BarePage()}) {
    commands.insert(commands.end(), part.begin(), part.end());
  }
  for (const std::string& command : commands) {
    const std::size_t start = job.bytes.size();
    job.bytes += command;
    job.boundaries.insert(job.bytes.size());
    job.is_dot.resize(job.bytes.size(), false);
    if (!command.starts_with("BITMAP")) continue;
    // Four bytes of data, and a line end behind them.
    for (std::size_t i = 0; i < 4; ++i) job.is_dot[start + command.size() - 6 + i] = true;
  }
  return job;
}

TEST(DamagedStream, IsGoodWhenCutAtTheEndOfACommandAndNowhereElse) {
  const Job job = TwoDocuments();
  for (std::size_t length = 0; length <= job.bytes.size(); ++length) {
    const std::string cut = job.bytes.substr(0, length);
    const tspl::Stream stream = tspl::Read(Bytes(cut));
    ASSERT_EQ(!stream.malformed, job.boundaries.contains(length)) << "cut to " << length;
    if (stream.malformed) {
      EXPECT_LE(stream.malformed->offset, length);
      EXPECT_TRUE(stream.malformed->found.ends_with("the end of the stream"))
          << "cut to " << length;
    }
  }
}

TEST(DamagedStream, IsMalformedWhenAnyByteButADotIsAnother) {
  const Job job = TwoDocuments();
  for (std::size_t at = 0; at < job.bytes.size(); ++at) {
    for (const char other : {'\0', 'X', ' ', '\xFF'}) {
      if (job.bytes[at] == other) continue;
      std::string bytes = job.bytes;
      bytes[at] = other;
      EXPECT_EQ(IsGood(bytes), job.is_dot[at]) << "byte " << at;
    }
  }
}

TEST(DamagedStream, IsMalformedWithAByteMoreOrLess) {
  const Job job = TwoDocuments();
  for (std::size_t at = 0; at <= job.bytes.size(); ++at) {
    std::string bytes = job.bytes;
    bytes.insert(at, 1, '\0');
    EXPECT_FALSE(IsGood(bytes)) << "a NUL before byte " << at;
  }
  for (std::size_t at = 0; at < job.bytes.size(); ++at) {
    std::string bytes = job.bytes;
    bytes.erase(at, 1);
    EXPECT_FALSE(IsGood(bytes)) << "without byte " << at;
  }
}

TEST(DamagedStream, IsMalformedWithoutACommandThatEveryPageHas) {
  const std::set<std::string> optional = {"GAP 3.0 mm, 0.0 mm\r\n", "SPEED 4\r\n", "DENSITY 8\r\n",
                                          "SET RIBBON OFF\r\n"};
  const std::vector<std::string> page = FullPage();
  for (std::size_t gone = 0; gone < page.size(); ++gone) {
    std::vector<std::string> rest = page;
    rest.erase(rest.begin() + static_cast<std::ptrdiff_t>(gone));
    EXPECT_EQ(IsGood(kPreamble + Join(rest) + Join(page)), optional.contains(page[gone]))
        << page[gone];
  }
}

TEST(DamagedStream, IsMalformedWithACommandTwice) {
  const std::vector<std::string> page = FullPage();
  for (std::size_t twice = 0; twice < page.size(); ++twice) {
    std::vector<std::string> more = page;
    more.insert(more.begin() + static_cast<std::ptrdiff_t>(twice), page[twice]);
    EXPECT_FALSE(IsGood(kPreamble + Join(more))) << page[twice];
  }
}

TEST(DamagedStream, IsMalformedWithTwoCommandsInEachOthersPlace) {
  const std::vector<std::string> page = FullPage();
  for (std::size_t a = 0; a < page.size(); ++a) {
    for (std::size_t b = a + 1; b < page.size(); ++b) {
      std::vector<std::string> swapped = page;
      std::swap(swapped[a], swapped[b]);
      EXPECT_FALSE(IsGood(kPreamble + Join(swapped))) << page[a] << page[b];
    }
  }
}

// What may follow each command. Every command is put behind every other one.
TEST(DamagedStream, IsMalformedWithACommandBehindOneThatItDoesNotFollow) {
  const std::map<std::string, std::set<std::string>> followers = {
      {"(preamble)", {"SIZE"}},
      {"SIZE", {"GAP", "BLINE", "REFERENCE"}},
      {"GAP", {"REFERENCE"}},
      {"BLINE", {"REFERENCE"}},
      {"REFERENCE", {"DIRECTION"}},
      {"DIRECTION", {"SPEED", "DENSITY", "SET RIBBON", "OFFSET"}},
      {"SPEED", {"DENSITY", "SET RIBBON", "OFFSET"}},
      {"DENSITY", {"SET RIBBON", "OFFSET"}},
      {"SET RIBBON", {"OFFSET"}},
      {"OFFSET", {"SET TEAR", "CLS"}},
      {"SET TEAR", {"SET PEEL"}},
      {"SET PEEL", {"SET CUTTER"}},
      {"SET CUTTER", {"CLS"}},
      {"CLS", {"BITMAP", "SIZE"}},
      {"BITMAP", {"PRINT"}},
      {"PRINT", {"SIZE"}},
  };
  std::map<std::string, std::string> lines = {{"BLINE", "BLINE 3.0 mm, 0.0 mm\r\n"}};
  for (const std::string& line : FullPage()) {
    for (const auto& [name, ignored] : followers) {
      if (line.starts_with(name)) lines[name] = line;
    }
  }
  ASSERT_EQ(lines.size(), 15U);

  // A good stream that ends with each command.
  std::map<std::string, std::string> streams = {{"(preamble)", kPreamble}};
  std::string bytes = kPreamble;
  for (const std::string& line : FullPage()) {
    bytes += line;
    for (const auto& [name, ignored] : followers) {
      if (line.starts_with(name)) streams[name] = bytes;
    }
  }
  streams["BLINE"] = streams["SIZE"] + lines["BLINE"];

  for (const auto& [last, allowed] : followers) {
    ASSERT_TRUE(IsGood(streams[last])) << last;
    for (const auto& [next, line] : lines) {
      EXPECT_EQ(IsGood(streams[last] + line), allowed.contains(next)) << next << " behind " << last;
    }
  }
}

// Whatever the bytes, the commands that were read lie end to end from the first byte, and only a
// good stream is read to its end. With the sanitizers this also shows that no other byte is read.
TEST(DamagedStream, IsNeverReadBeyondItsEnd) {
  const Job job = TwoDocuments();
  std::mt19937 random(20240229);
  const auto below = [&](std::size_t limit) { return random() % limit; };
  for (int round = 0; round < 20000; ++round) {
    std::string bytes = job.bytes;
    for (std::size_t changes = 1 + below(4); changes > 0; --changes) {
      // A digit, where there is one, makes numbers large rather than wrong.
      const std::size_t at = 64 + below(bytes.size() - 64);
      const bool digit = bytes[at] >= '0' && bytes[at] <= '9';
      bytes.replace(at, below(3),
                    digit ? std::string(1 + below(3), '9')
                          : std::string(below(3), static_cast<char>(random())));
      if (bytes.size() < 80) bytes = job.bytes;
    }
    bytes.resize(below(4) == 0 ? 1 + below(bytes.size()) : bytes.size());
    bytes.shrink_to_fit();
    const tspl::Stream stream = tspl::Read(Bytes(bytes));
    std::uint64_t end = 0;
    for (const tspl::Command& command : stream.commands) {
      ASSERT_EQ(command.offset, end);
      end += command.length;
    }
    ASSERT_LE(end, bytes.size());
    ASSERT_EQ(end == bytes.size(), !stream.malformed);
    if (stream.malformed) {
      ASSERT_GE(stream.malformed->offset, end);
      ASSERT_LE(stream.malformed->offset, bytes.size());
    }
  }
}

}  // namespace
