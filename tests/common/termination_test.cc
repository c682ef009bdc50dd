// Reading and writing that only SIGTERM interrupts: whole jobs that are cancelled have tests of
// their own.
#include "common/termination.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <string>
#include <thread>

#include "support/folder.h"

namespace {

using namespace std::chrono_literals;

/// Both ends of a pipe that takes all that the tests write.
struct Pipe {
  Pipe() {
    if (pipe2(ends, O_CLOEXEC) != 0) ADD_FAILURE() << "no pipe";
  }
  ~Pipe() {
    close(ends[0]);
    if (ends[1] >= 0) close(ends[1]);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  void end() {
    close(ends[1]);
    ends[1] = -1;
  }

  int ends[2] = {-1, -1};
};

TEST(ReadAndWrite, EveryByteComesThrough) {
  for (const std::size_t size : {0U, 1U, 2U, 4095U, 4096U, 4097U, 8192U, 8193U, 50000U}) {
    Pipe pipe;
    std::string bytes(size, 'a');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>('a' + i % 23);
    EXPECT_EQ(tarvoWriteUnlessTerminated(pipe.ends[1], bytes.data(), size),
              static_cast<ssize_t>(size));
    pipe.end();
    std::string come(size + 10, '\0');
    std::size_t count = 0;
    for (ssize_t got = 1; got > 0; count += static_cast<std::size_t>(got)) {
      got = tarvoReadUnlessTerminated(pipe.ends[0], &come[count], come.size() - count);
      ASSERT_GE(got, 0) << size;
    }
    EXPECT_EQ(come.substr(0, count), bytes);
  }
}

TEST(ReadAndWrite, TheEndIsTheEndWhateverWentBefore) {
  for (const int before : {0, EINTR, EAGAIN, EIO}) {
    Pipe pipe;
    pipe.end();
    char byte = 0;
    errno = before;
    EXPECT_EQ(tarvoReadUnlessTerminated(pipe.ends[0], &byte, 1), 0) << before;
  }
}

TEST(ReadAndWrite, FailureIsMinusOneWithItsReason) {
  constexpr int kNotOpen = 1000;
  char byte = 0;
  EXPECT_EQ(tarvoReadUnlessTerminated(kNotOpen, &byte, 1), -1);
  EXPECT_EQ(errno, EBADF);
  EXPECT_EQ(tarvoWriteUnlessTerminated(kNotOpen, &byte, 1), -1);
  EXPECT_EQ(errno, EBADF);
}

TEST(ReadAndWrite, OtherSignalsStayBlockedWhileTheyWait) {
  sigset_t other, before;
  sigemptyset(&other);
  sigaddset(&other, SIGUSR1);
  sigprocmask(SIG_BLOCK, &other, &before);
  raise(SIGUSR1);  // it would end the test
  Pipe pipe;
  std::thread writer([&] {
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(write(pipe.ends[1], "a", 1), 1);
  });
  char byte = 0;
  EXPECT_EQ(tarvoReadUnlessTerminated(pipe.ends[0], &byte, 1), 1);
  writer.join();
  int signal = 0;
  sigwait(&other, &signal);
  EXPECT_EQ(signal, SIGUSR1);
  sigprocmask(SIG_SETMASK, &before, nullptr);
}

TEST(ReadAndWrite, OnceTerminatedNeitherBegins) {
  Pipe pipe;
  char byte = 'a';
  ASSERT_EQ(tarvoWriteUnlessTerminated(pipe.ends[1], &byte, 1), 1);

  sigset_t termination, before;
  sigemptyset(&termination);
  sigaddset(&termination, SIGTERM);
  sigprocmask(SIG_BLOCK, &termination, &before);
  raise(SIGTERM);
  errno = 0;
  const ssize_t read = tarvoReadUnlessTerminated(pipe.ends[0], &byte, 1);
  const int readError = errno;
  errno = 0;
  const ssize_t written = tarvoWriteUnlessTerminated(pipe.ends[1], &byte, 1);
  const int writeError = errno;
  int signal = 0;
  sigwait(&termination, &signal);  // the test goes on
  sigprocmask(SIG_SETMASK, &before, nullptr);

  EXPECT_EQ(read, -1);
  EXPECT_EQ(readError, EINTR);
  EXPECT_EQ(written, -1);
  EXPECT_EQ(writeError, EINTR);
  EXPECT_EQ(tarvoReadUnlessTerminated(pipe.ends[0], &byte, 1), 1) << "what came before is there";
}

/// Waits until a child sleeps, in a call that waits, or has ended.
void settle(pid_t child) {
  std::string stat;
  do {
    std::this_thread::sleep_for(2ms);
    stat = support::readFile("/proc/" + std::to_string(child) + "/stat").value_or("");
  } while (stat.find(") R ") != std::string::npos || stat.find(") D ") != std::string::npos);
}

/// The end of a child as waitpid has it; killed when it does not end at all.
int endOf(pid_t child) {
  int status = 0;
  for (int i = 0; i < 15000; ++i) {
    if (waitpid(child, &status, WNOHANG) == child) return status;
    std::this_thread::sleep_for(2ms);
  }
  kill(child, SIGKILL);
  waitpid(child, &status, 0);
  return status;
}

// A pipe that has room for some of the bytes is ready: who gives it all of them waits for the
// reader, and SIGTERM, which is blocked but in the wait, for both.
TEST(ReadAndWrite, TerminatedWhileAPipeHasTakenAPartTheyEnd) {
  constexpr int kInterrupted = 42;
  for (const std::size_t taken : {0U, 1U, 4096U, 5000U, 40000U}) {
    Pipe pipe;
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      tarvoCatchTermination();
      const std::string bytes(1000000, 'a');
      const ssize_t written = tarvoWriteUnlessTerminated(pipe.ends[1], bytes.data(), bytes.size());
      _exit(written == -1 && errno == EINTR ? kInterrupted : 1);
    }
    settle(child);
    std::string some(taken, '\0');
    for (std::size_t left = taken; left > 0;) {
      const ssize_t count = read(pipe.ends[0], some.data(), left);
      ASSERT_GT(count, 0);
      left -= static_cast<std::size_t>(count);
    }
    settle(child);
    kill(child, SIGTERM);
    const int status = endOf(child);
    ASSERT_TRUE(WIFEXITED(status)) << "hangs after " << taken << " bytes were read";
    EXPECT_EQ(WEXITSTATUS(status), kInterrupted) << taken;
  }
}

}  // namespace
