// Calls that the system refuses although the descriptor was ready: another reader was faster, the
// pipe took others' bytes. Reading and writing begin anew, and what a signal's handler meets stays
// its own affair.
#include <errno.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cstring>
#include <iterator>
#include <string>

#include "common/termination.h"

namespace {

/// What the next calls on a descriptor meet.
struct Refusals {
  int descriptor = -1;
  int left = 0;
  int error = 0;

  bool meet(int called) {
    if (called != descriptor || left == 0) return false;
    --left;
    errno = error;
    return true;
  }
};

Refusals readRefusals, writeRefusals, pollRefusals;

}  // namespace

// In the place of the C library's.
extern "C" {

ssize_t read(int descriptor, void* bytes, size_t size) {
  if (readRefusals.meet(descriptor)) return -1;
  return syscall(SYS_read, descriptor, bytes, size);
}

ssize_t write(int descriptor, const void* bytes, size_t size) {
  if (writeRefusals.meet(descriptor)) return -1;
  return syscall(SYS_write, descriptor, bytes, size);
}

int poll(pollfd* files, nfds_t count, int milliseconds) {
  // Only of standard output does anything ask so.
  if (pollRefusals.meet(STDOUT_FILENO)) return -1;
  const timespec time{milliseconds / 1000, milliseconds % 1000 * 1'000'000L};
  return ppoll(files, count, milliseconds < 0 ? nullptr : &time, nullptr);
}

}  // extern "C"

namespace {

/// A pipe with three bytes in it.
class RefusedCalls : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(pipe(ends_), 0);
    ASSERT_EQ(::write(ends_[1], "abc", 3), 3);
  }
  void TearDown() override {
    readRefusals = writeRefusals = pollRefusals = {};
    close(ends_[0]);
    close(ends_[1]);
  }

  int ends_[2] = {-1, -1};
};

constexpr int kTemporary[] = {EAGAIN, EINTR};
constexpr int kFinal[] = {EIO, ENOSPC, EBADF, EINVAL, EPIPE};

TEST_F(RefusedCalls, ReadingBeginsAnewAfterATemporaryRefusal) {
  for (const int error : kTemporary) {
    readRefusals = {ends_[0], 2, error};
    char byte = 0;
    EXPECT_EQ(tarvoReadUnlessTerminated(ends_[0], &byte, 1), 1) << std::strerror(error);
    EXPECT_EQ(readRefusals.left, 0);
  }
}

TEST_F(RefusedCalls, ReadingEndsWithAnyOther) {
  for (const int error : kFinal) {
    readRefusals = {ends_[0], 1, error};
    char byte = 0;
    errno = 0;
    EXPECT_EQ(tarvoReadUnlessTerminated(ends_[0], &byte, 1), -1) << std::strerror(error);
    EXPECT_EQ(errno, error);
  }
}

TEST_F(RefusedCalls, WritingBeginsAnewAfterATemporaryRefusalAndLosesNothing) {
  for (const int error : kTemporary) {
    writeRefusals = {ends_[1], 2, error};
    const std::string bytes = std::string(5000, '1') + std::string(5000, '2');
    EXPECT_EQ(tarvoWriteUnlessTerminated(ends_[1], bytes.data(), bytes.size()), 10000)
        << std::strerror(error);
    EXPECT_EQ(writeRefusals.left, 0);
    std::string come(20000, '\0');
    const ssize_t count = ::read(ends_[0], come.data(), come.size());
    come.resize(static_cast<std::size_t>(count));
    EXPECT_TRUE(come == bytes || come == "abc" + bytes) << come.size() << " bytes";
  }
}

TEST_F(RefusedCalls, WritingEndsWithAnyOther) {
  for (const int error : kFinal) {
    writeRefusals = {ends_[1], 1, error};
    errno = 0;
    EXPECT_EQ(tarvoWriteUnlessTerminated(ends_[1], "abc", 3), -1) << std::strerror(error);
    EXPECT_EQ(errno, error);
  }
}

/// Gives the process its signals back.
class SignalsKept {
 public:
  SignalsKept() {
    sigprocmask(SIG_SETMASK, nullptr, &mask_);
    for (std::size_t i = 0; i < std::size(kSignals); ++i) {
      sigaction(kSignals[i], nullptr, &actions_[i]);
    }
  }
  ~SignalsKept() {
    for (std::size_t i = 0; i < std::size(kSignals); ++i) {
      sigaction(kSignals[i], &actions_[i], nullptr);
    }
    sigprocmask(SIG_SETMASK, &mask_, nullptr);
  }
  SignalsKept(const SignalsKept&) = delete;
  SignalsKept& operator=(const SignalsKept&) = delete;

 private:
  static constexpr int kSignals[] = {SIGTERM, SIGPIPE, SIGXFSZ};
  sigset_t mask_;
  struct sigaction actions_[std::size(kSignals)];
};

// A log that nobody reads raises SIGPIPE in the middle of anything, also between a call and the
// look at its errno.
TEST_F(RefusedCalls, WhatTheHandlerOfABrokenPipeMeetsIsNotSeenOutside) {
  const SignalsKept signals;
  tarvoCatchTermination();
  pollRefusals = {STDOUT_FILENO, 1, ENOMEM};
  errno = ENOENT;
  raise(SIGPIPE);
  const int after = errno;
  EXPECT_EQ(after, ENOENT);
  EXPECT_EQ(pollRefusals.left, 0) << "the handler looked at standard output";
}

}  // namespace
