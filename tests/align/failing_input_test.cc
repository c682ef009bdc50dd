// Input that fails in the middle: what came goes on, and both are said.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "align_run.h"
#include "support/folder.h"

namespace {

/// Both ends of a connection.
struct Connection {
  Connection() {
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) ADD_FAILURE();
  }
  ~Connection() {
    close(ends[0]);
    if (ends[1] >= 0) close(ends[1]);
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  /// Sends `bytes` to the first end and breaks off: the second has not read what it was sent.
  void sendAndBreak(const std::string& bytes) {
    EXPECT_EQ(write(ends[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    EXPECT_EQ(write(ends[0], "?", 1), 1);
    close(ends[1]);
    ends[1] = -1;
  }

  int ends[2] = {-1, -1};
};

TEST(FailingInput, InTheMiddleOfAPageIsSaidAndThePageEnded) {
  const std::string raster =
      support::rasterFile({support::grayPage(13, 5, support::Drawing::Full)});
  Connection connection;
  connection.sendAndBreak(raster.substr(0, raster.size() - std::size_t{3} * 13));
  const support::Folder folder;
  const std::string out = folder / "out", log = folder / "log";
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    dup2(connection.ends[0], 0);
    dup2(open(out.c_str(), O_WRONLY | O_CREAT, 0600), 1);
    dup2(open(log.c_str(), O_WRONLY | O_CREAT, 0600), 2);
    execl(RASTERTOALIGNED, "rastertoaligned", "7", "u", "t", "1", "", nullptr);
    _exit(127);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 1);
  EXPECT_EQ(support::readFile(log).value_or(""),
            "ATTR: job-media-progress=0\n"
            "ATTR: job-media-progress=20\n"
            "ATTR: job-media-progress=40\n"
            "ERROR: Unable to read the pages: Connection reset by peer.\n"
            "ERROR: Page 1 is cut short: 2 of its 5 rows came.\n");
  const std::vector<support::Page> pages = pagesOf(support::readFile(out).value_or(""));
  ASSERT_EQ(pages.size(), 1U);
  EXPECT_EQ(pages[0].pixels.size(), std::size_t{5} * 16) << "filled up with paper";
}

}  // namespace
