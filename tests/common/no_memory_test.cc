// A process that has no memory left to throw an exception with.
#include "common/no_memory.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <string>

namespace {

/// Runs `function` in a process of its own whose standard output and error are one pipe.
template <typename Function>
std::string saidBy(Function function, int& status) {
  int ends[2];
  EXPECT_EQ(pipe(ends), 0);
  const pid_t child = fork();
  if (child == 0) {
    dup2(ends[1], STDOUT_FILENO);
    dup2(ends[1], STDERR_FILENO);
    function();
    _exit(99);
  }
  close(ends[1]);
  std::string said;
  char bytes[256];
  for (ssize_t count; (count = read(ends[0], bytes, sizeof bytes)) > 0;) {
    said.append(bytes, static_cast<std::size_t>(count));
  }
  close(ends[0]);
  waitpid(child, &status, 0);
  return said;
}

TEST(WithoutMemory, SaysItsLastWordsBehindWhatWasPrinted) {
  int status = -1;
  const std::string said = saidBy(
      [] {
        tarvoEndWithoutMemory("ERROR: words\n");
        std::printf("printed, ");
        std::terminate();  // what throwing comes to
      },
      status);
  EXPECT_EQ(said, "printed, ERROR: words\n");
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 1);
}

}  // namespace
