#include "common/termination.h"

#include <limits.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace {

volatile sig_atomic_t terminated = 0;

void onTermination(int /*signal*/) { terminated = 1; }

/// Whether nobody reads standard output any more.
bool isOutputBroken() {
  pollfd output = {STDOUT_FILENO, 0, 0};
  return poll(&output, 1, 0) > 0 && (output.revents & (POLLERR | POLLHUP)) != 0;
}

/// Ends the process, once the handler has returned, unless it is only the log that nobody reads.
void onBrokenPipe(int signal) {
  const int error = errno;
  if (isOutputBroken()) {
    struct sigaction action = {};
    sigemptyset(&action.sa_mask);
    action.sa_handler = SIG_DFL;
    sigaction(signal, &action, nullptr);
    raise(signal);
  }
  errno = error;
}

/// Waits until `descriptor` is ready for `events`, which a broken one is too. False with errno
/// EINTR when terminated.
bool waitUnlessTerminated(int descriptor, short events) {
  sigset_t whileWaiting;
  sigprocmask(SIG_BLOCK, nullptr, &whileWaiting);
  sigdelset(&whileWaiting, SIGTERM);
  pollfd file = {descriptor, events, 0};
  while (!tarvoIsTerminated()) {
    if (ppoll(&file, 1, nullptr, &whileWaiting) > 0) return true;
    if (errno != EINTR) return false;
  }
  errno = EINTR;
  return false;
}

}  // namespace

void tarvoCatchTermination() {
  struct sigaction action = {};
  sigemptyset(&action.sa_mask);
  action.sa_handler = onBrokenPipe;
  sigaction(SIGPIPE, &action, nullptr);
  action.sa_handler = onTermination;
  sigaction(SIGTERM, &action, nullptr);
  // A file that would grow beyond what the process may write: the write fails, and the job goes on.
  action.sa_handler = SIG_IGN;
  sigaction(SIGXFSZ, &action, nullptr);

  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGPIPE);
  sigprocmask(SIG_UNBLOCK, &signals, nullptr);
  sigemptyset(&signals);
  sigaddset(&signals, SIGTERM);
  sigprocmask(SIG_BLOCK, &signals, nullptr);
}

bool tarvoIsTerminated() {
  sigset_t pending;
  return terminated != 0 || (sigpending(&pending) == 0 && sigismember(&pending, SIGTERM) == 1);
}

ssize_t tarvoReadUnlessTerminated(int descriptor, void* bytes, std::size_t size) {
  while (waitUnlessTerminated(descriptor, POLLIN)) {
    const ssize_t count = read(descriptor, bytes, size);
    if (count >= 0 || (errno != EINTR && errno != EAGAIN)) return count;
  }
  return -1;
}

ssize_t tarvoWriteUnlessTerminated(int descriptor, const void* bytes, std::size_t size) {
  const char* next = static_cast<const char*>(bytes);
  std::size_t left = size;
  while (left > 0) {
    if (!waitUnlessTerminated(descriptor, POLLOUT)) return -1;
    // A pipe that is ready takes this much without waiting.
    const ssize_t count = write(descriptor, next, std::min<std::size_t>(left, PIPE_BUF));
    if (count < 0) {
      if (errno == EINTR || errno == EAGAIN) continue;
      return -1;
    }
    next += count;
    left -= static_cast<std::size_t>(count);
  }
  return static_cast<ssize_t>(size);
}
