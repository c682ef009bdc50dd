// Reading all of what may come in pieces.
#include "files/read_whole.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <string>

namespace {

// What happens when the program waits: the poll() below stands in for the system's.
std::function<void()> while_waiting;

}  // namespace

#pragma GCC diagnostic ignored "-Wredundant-decls"  // the C library's header may define it as well
extern "C" int poll(pollfd* watched, nfds_t count, int /*milliseconds*/) {
  if (while_waiting) while_waiting();
  for (nfds_t i = 0; i < count; ++i) watched[i].revents = watched[i].events;
  return static_cast<int>(count);
}

namespace {

TEST(ReadWhole, WaitsForWhatDoesNotBlock) {
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
  int waits = 0;
  while_waiting = [&] {
    // Once in vain, as a system may; then the next piece; then the end.
    ++waits;
    if (waits == 2) {
      EXPECT_EQ(write(ends[1], "second", 6), 6);
    }
    if (waits == 3) close(ends[1]);
  };
  ASSERT_EQ(write(ends[1], "first ", 6), 6);
  std::vector<std::uint8_t> bytes{'0', ' '};
  EXPECT_TRUE(files::ReadWhole(ends[0], bytes));
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "0 first second");
  EXPECT_EQ(waits, 3);
  close(ends[0]);
  while_waiting = nullptr;
}

TEST(ReadWhole, SaysWhatCannotBeRead) {
  const int folder = open("/", O_RDONLY | O_CLOEXEC);
  std::vector<std::uint8_t> bytes;
  EXPECT_FALSE(files::ReadWhole(folder, bytes));
  EXPECT_EQ(errno, EISDIR);
  EXPECT_TRUE(bytes.empty());
  close(folder);
}

}  // namespace
