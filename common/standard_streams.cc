#include "common/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

void tarvoFillStandardStreams() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    if (fcntl(descriptor, F_GETFD) != -1) continue;
    // The lowest free number, which is this one. Open for what nobody does with it.
    if (open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY) == -1) return;
  }
}

WaitingOutput::WaitingOutput() : flags_(fcntl(STDOUT_FILENO, F_GETFL)) {
  if (flags_ == -1 || (flags_ & O_NONBLOCK) == 0 ||
      fcntl(STDOUT_FILENO, F_SETFL, flags_ & ~O_NONBLOCK) == -1) {
    flags_ = -1;
  }
}

WaitingOutput::~WaitingOutput() {
  if (flags_ != -1) fcntl(STDOUT_FILENO, F_SETFL, flags_);
}
