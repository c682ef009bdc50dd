// A job that is cancelled never leaves the printer waiting for the rest of something.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "cancelled_filter.h"
#include "support/differences.h"
#include "support/folder.h"
#include "support/ppd_text.h"
#include "support/raster.h"
#include "tspl/reader.h"

namespace {

using support::Drawing;
using support::grayPage;

class Cancel : public testing::Test {
 protected:
  Cancel() {
    std::filesystem::create_directory(folder_ / "spool");
    support::writeFile(ppd_, support::PpdText()
                                 .pageSize("4x6", 288, 432)
                                 .option("HalftoneType", "None", {"None", "Tattoo"})
                                 .option("PostAction", "TearOff", {"TearOff"})
                                 .option("MediaMethod", "Direct", {"Direct"})
                                 .text());
    support::writeFile(raster_, support::rasterFile({grayPage(64, 9, Drawing::Text),
                                                     grayPage(40, 5, Drawing::Random)}));
  }

  /// The writes of the job when nothing disturbs it.
  std::vector<std::string> undisturbed(Writes writes) {
    RunningFilter filter(folder_.path(), ppd_, raster_, writes);
    std::vector<std::string> all;
    for (std::string bytes = filter.take(); !bytes.empty(); bytes = filter.take()) {
      all.push_back(bytes);
    }
    EXPECT_EQ(filter.end(), 0);
    return all;
  }

  support::Folder folder_;
  std::filesystem::path ppd_ = folder_ / "model.ppd";
  std::filesystem::path raster_ = folder_ / "job.ras";
};

tspl::Stream readStream(const std::string& bytes) {
  return tspl::Read({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

/// Where the stream is to end when the write that begins at `offset` was under way: with the
/// command that it is part of, a page's setup commands counting as one.
std::uint64_t expectedEnd(const tspl::Stream& whole, std::uint64_t offset) {
  bool setup = false;
  for (const tspl::Command& command : whole.commands) {
    if (command.offset + command.length <= offset) continue;
    setup = command.kind != tspl::Kind::kPreamble && command.kind < tspl::Kind::kCls;
    if (!setup) return command.offset + command.length;
  }
  ADD_FAILURE() << "no command at " << offset;
  return 0;
}

// At every write: those before it were taken, one waits in the pipe, the filter waits to write the
// next. What comes out is the job up to the end of what that write is part of.
TEST_F(Cancel, EndsWhatItBeganAtEveryWrite) {
  const std::vector<std::string> writes = undisturbed(Writes::kPieces);
  std::string whole;
  std::vector<std::uint64_t> offsets;
  for (const std::string& bytes : writes) {
    offsets.push_back(whole.size());
    whole += bytes;
  }
  const tspl::Stream stream = readStream(whole);
  ASSERT_FALSE(stream.malformed);
  ASSERT_EQ(stream.pages.size(), 2u);
  // The line feeds, each page's 14 rows and its commands, at the least.
  ASSERT_GT(writes.size(), 64u + 14 + 24);
  RecordProperty("writes", static_cast<int>(writes.size()));

  for (std::size_t taken = 0; taken <= writes.size(); ++taken) {
    RunningFilter filter(folder_.path(), ppd_, raster_, Writes::kPieces);
    std::string sent;
    for (std::size_t i = 0; i < taken; ++i) sent += filter.take();
    filter.settle();
    filter.terminate();
    sent += filter.takeRest();
    EXPECT_EQ(filter.end(), 0) << "after " << taken << " writes";

    const std::size_t underWay = taken + 1;
    const std::uint64_t end =
        underWay < writes.size() ? expectedEnd(stream, offsets[underWay]) : whole.size();
    EXPECT_EQ(support::firstDifference(whole.substr(0, end), sent), "")
        << "after " << taken << " writes";
    EXPECT_FALSE(readStream(sent).malformed) << "after " << taken << " writes";
  }
}

// As above with the writes as they are outside of tests: how far the filter is inside of a block
// can't be told, but it ends with a whole command, and begins nothing more.
TEST_F(Cancel, EndsWhatItBeganAtEveryBlock) {
  support::writeFile(raster_, support::rasterFile({grayPage(800, 100, Drawing::Random),
                                                   grayPage(400, 100, Drawing::Random),
                                                   grayPage(800, 100, Drawing::Random)}));
  const std::vector<std::string> writes = undisturbed(Writes::kBlocks);
  std::string whole;
  for (const std::string& bytes : writes) whole += bytes;
  ASSERT_GT(writes.size(), 5u);

  for (std::size_t taken = 0; taken <= writes.size(); ++taken) {
    RunningFilter filter(folder_.path(), ppd_, raster_, Writes::kBlocks);
    std::string sent;
    for (std::size_t i = 0; i < taken; ++i) sent += filter.take();
    filter.settle();
    filter.terminate();
    sent += filter.takeRest();
    EXPECT_EQ(filter.end(), 0) << "after " << taken << " writes";
    EXPECT_EQ(support::firstDifference(whole.substr(0, sent.size()), sent), "") << taken;
    const tspl::Stream stream = readStream(sent);
    EXPECT_FALSE(stream.malformed) << taken;
    // With a block of the last page's bitmap to go, that page is not printed.
    if (taken + 3 < writes.size()) {
      EXPECT_FALSE(stream.pages.size() == 3 && stream.pages[2].copies) << taken;
    }
  }
}

// Preamble, or the setup commands of a page whose dots never come, and nothing more.
TEST_F(Cancel, DoesNotWaitForInput) {
  const std::string raster = support::rasterFile({grayPage(64, 9, Drawing::Text)});
  const std::size_t headers = 4 + sizeof(cups_page_header2_t);
  const struct {
    const char* what;
    std::size_t come;
    std::size_t pages, prints;
  } kCases[] = {{"nothing", 0, 0, 0},
                {"half a sync word", 2, 0, 0},
                {"half a header", headers / 2, 0, 0},
                {"a header", headers, 1, 0},
                {"half the dots", headers + 300, 1, 0},
                {"a page, and none after it yet", raster.size(), 1, 1}};
  for (const auto& input : kCases) {
    RunningFilter filter(folder_.path(), ppd_, "", Writes::kBlocks);
    filter.feed(raster.substr(0, input.come));
    filter.settle();
    filter.terminate();
    EXPECT_EQ(filter.end(), 0) << input.what;
    const std::string sent = filter.takeRest();
    const tspl::Stream stream = readStream(sent);
    EXPECT_FALSE(stream.malformed) << input.what;
    EXPECT_EQ(stream.pages.size(), input.pages) << input.what;
    std::size_t prints = 0;
    for (const tspl::Page& page : stream.pages) prints += page.copies ? 1U : 0U;
    EXPECT_EQ(prints, input.prints) << input.what;
  }
}

// The printer is woken while the pages are still being made.
TEST_F(Cancel, ThePreambleIsSentBeforeAnyPageComes) {
  RunningFilter filter(folder_.path(), ppd_, "", Writes::kPieces);
  std::string sent;
  while (sent.size() < 64) {
    const std::string bytes = filter.take();
    if (bytes.empty()) break;
    sent += bytes;
  }
  EXPECT_EQ(sent, std::string(64, '\n'));
  filter.settle();
  filter.terminate();
  EXPECT_EQ(filter.takeRest(), "");
  EXPECT_EQ(filter.end(), 0);
}

TEST_F(Cancel, ASecondSignalChangesNothing) {
  RunningFilter filter(folder_.path(), ppd_, raster_, Writes::kPieces);
  std::string sent;
  while (sent.find("BITMAP") == std::string::npos) sent += filter.take();
  filter.settle();
  filter.terminate();
  filter.terminate();
  sent += filter.take();
  filter.terminate();
  sent += filter.takeRest();
  EXPECT_EQ(filter.end(), 0);
  const tspl::Stream stream = readStream(sent);
  EXPECT_FALSE(stream.malformed);
  ASSERT_EQ(stream.pages.size(), 1u);
  EXPECT_TRUE(stream.pages[0].bitmap);
  EXPECT_FALSE(stream.pages[0].copies);
}

// There is nobody to finish anything for: the next write ends it, at whatever write the reader
// went.
TEST_F(Cancel, AClosedOutputEndsItAtEveryWrite) {
  const std::size_t writes = undisturbed(Writes::kPieces).size();
  for (std::size_t taken = 0; taken + 1 < writes; ++taken) {
    RunningFilter filter(folder_.path(), ppd_, raster_, Writes::kPieces);
    for (std::size_t i = 0; i < taken; ++i) filter.take();
    filter.settle();
    filter.hangUp();
    const int status = filter.end();
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGPIPE)
        << status << " after " << taken << " writes";
  }
}

// Whether whoever started it had SIGPIPE ignored, blocked, or neither.
TEST_F(Cancel, AClosedOutputEndsItAtOnce) {
  support::writeFile(raster_, support::rasterFile({grayPage(800, 100, Drawing::Random),
                                                   grayPage(800, 100, Drawing::Random)}));
  sigset_t pipe;
  sigemptyset(&pipe);
  sigaddset(&pipe, SIGPIPE);
  const struct {
    const char* what;
    bool ignored, blocked;
  } kCases[] = {{"neither", false, false}, {"ignored", true, false}, {"blocked", false, true}};
  for (const auto& [what, ignored, blocked] : kCases) {
    ::signal(SIGPIPE, ignored ? SIG_IGN : SIG_DFL);
    if (blocked) sigprocmask(SIG_BLOCK, &pipe, nullptr);
    RunningFilter filter(folder_.path(), ppd_, raster_, Writes::kBlocks);
    sigprocmask(SIG_UNBLOCK, &pipe, nullptr);
    ::signal(SIGPIPE, SIG_DFL);
    filter.take();
    filter.settle();
    filter.hangUp();
    const int status = filter.end();
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGPIPE) << status << ", " << what;
  }
}

}  // namespace
