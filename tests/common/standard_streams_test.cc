// Closed standard streams: their numbers are taken, by what can neither be read nor written to.
#include "common/standard_streams.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace {

/// In a process whose standard streams are closed where `closed` has their bits: the bits of those
/// that are closed afterwards, or the number of a file that is opened then, if it is not 3.
int leftClosed(unsigned closed) {
  const pid_t child = fork();
  if (child == 0) {
    for (int descriptor = 3; descriptor < 64; ++descriptor) close(descriptor);
    for (int descriptor = 0; descriptor < 3; ++descriptor) {
      if ((closed >> descriptor & 1U) != 0) close(descriptor);
    }
    tarvoFillStandardStreams();
    unsigned left = 0;
    for (int descriptor = 0; descriptor < 3; ++descriptor) {
      if (fcntl(descriptor, F_GETFD) == -1) left |= 1U << descriptor;
    }
    const int next = open("/dev/null", O_RDONLY);
    _exit(left != 0 ? static_cast<int>(left) : next == 3 ? 0 : 100 + next);
  }
  int status = -1;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(StandardStreams, NumbersOfThoseThatAreClosedAreTaken) {
  for (unsigned closed = 0; closed < 8; ++closed) EXPECT_EQ(leftClosed(closed), 0) << closed;
}

/// Whether what takes the place of a standard stream refuses what is done with that one.
bool refuses(int descriptor) {
  const pid_t child = fork();
  if (child == 0) {
    close(descriptor);
    tarvoFillStandardStreams();
    char byte = 0;
    const ssize_t count =
        descriptor == STDIN_FILENO ? read(descriptor, &byte, 1) : write(descriptor, &byte, 1);
    _exit(count == -1 && errno == EBADF ? 0 : 1);
  }
  int status = -1;
  waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST(StandardStreams, ReadingAndWritingFailAsOnAClosedOne) {
  EXPECT_TRUE(refuses(STDIN_FILENO));
  EXPECT_TRUE(refuses(STDOUT_FILENO));
  EXPECT_TRUE(refuses(STDERR_FILENO));
}

/// The flags of standard output in a process of its own that has it not wait: before, during and
/// after.
TEST(StandardOutput, WaitsForItsReaderAsLongAsItIsToldTo) {
  for (const int before : {0, O_NONBLOCK, O_NONBLOCK | O_APPEND}) {
    const pid_t child = fork();
    if (child == 0) {
      int ends[2];
      if (pipe(ends) != 0 || dup2(ends[1], STDOUT_FILENO) == -1) _exit(1);
      fcntl(STDOUT_FILENO, F_SETFL, before);
      const int original = fcntl(STDOUT_FILENO, F_GETFL);
      {
        const WaitingOutput waiting;
        if (fcntl(STDOUT_FILENO, F_GETFL) != (original & ~O_NONBLOCK)) _exit(2);
      }
      _exit(fcntl(STDOUT_FILENO, F_GETFL) == original ? 0 : 3);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0) << before;
  }
}

}  // namespace
