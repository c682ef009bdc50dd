// The log as it reaches the pipe that the filters of a job share.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "filter_job.h"
#include "good_job.h"

namespace {

using namespace jobs;

/// What the filter writes to standard error on a good job, a write each: a pipe keeps them apart.
std::vector<std::string> writesToTheLog() {
  const FilterJob job;
  support::writeFile(job.ppd(), goodPpd().text());
  support::writeFile(job.folder() / "pages", goodRaster());
  const std::string folder = job.folder().path(), ppd = job.ppd(), pages = job.folder() / "pages",
                    filter = filterPath(), redirect = redirectPath();

  int log[2];
  if (pipe2(log, O_CLOEXEC | O_DIRECT) != 0) return {};
  const pid_t child = fork();
  if (child == 0) {
    dup2(open("/dev/null", O_RDWR), STDIN_FILENO);
    dup2(open("/dev/null", O_RDWR), STDOUT_FILENO);
    dup2(log[1], STDERR_FILENO);
    setenv("PPD", ppd.c_str(), 1);
    setenv("TARVO_TEST_FOLDER", folder.c_str(), 1);
    setenv("LD_PRELOAD", redirect.c_str(), 1);
    setenv("ASAN_OPTIONS", "verify_asan_link_order=0", 1);
    execl(filter.c_str(), "rastertotarvo", "1", "user", "title", "1", "", pages.c_str(), nullptr);
    _exit(127);
  }
  close(log[1]);
  std::vector<std::string> writes;
  char bytes[4096];
  for (ssize_t count = 0; (count = read(log[0], bytes, sizeof bytes)) > 0;) {
    writes.emplace_back(bytes, static_cast<std::size_t>(count));
  }
  close(log[0]);
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  return writes;
}

// The spooler reads the pipe by lines. One in pieces can be torn by another filter's, whose level
// is then lost.
TEST(LogLines, AreWrittenWhole) {
  const std::vector<std::string> writes = writesToTheLog();
  EXPECT_GT(writes.size(), 40U);
  for (const std::string& write : writes) {
    EXPECT_EQ(write.back(), '\n') << write;
    // A page's first two lines end twice.
    EXPECT_TRUE(write == "\n" || write.rfind("DEBUG:", 0) == 0) << write;
  }
}

}  // namespace
