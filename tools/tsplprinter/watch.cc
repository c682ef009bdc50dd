#include "tsplprinter/watch.h"

#include <poll.h>
#include <sys/signalfd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <system_error>

namespace tsplprinter {
namespace {

// As long as one poll() waits; a later point in time takes several.
constexpr std::chrono::milliseconds kLongest = std::chrono::hours(1);

int Milliseconds(std::optional<Clock::time_point> until) {
  if (!until) return -1;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(*until - Clock::now());
  return static_cast<int>(std::clamp(left, std::chrono::milliseconds(0), kLongest).count());
}

}  // namespace

Watch::Watch() {
  sigset_t stop;
  sigemptyset(&stop);
  sigaddset(&stop, SIGINT);
  sigaddset(&stop, SIGTERM);
  sigprocmask(SIG_BLOCK, &stop, nullptr);
  signals_ = Descriptor(signalfd(-1, &stop, SFD_CLOEXEC));
  if (!signals_) throw std::system_error(errno, std::generic_category(), "signals");
}

// The signal itself is left unread, so that whoever waits next is stopped too.
Watch::Event Watch::Wait(int descriptor, std::optional<Clock::time_point> until) {
  pollfd watched[] = {{signals_.number(), POLLIN, 0}, {descriptor, POLLIN, 0}};
  for (;;) {
    const int found = poll(watched, std::size(watched), Milliseconds(until));
    if (found < 0 && errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "poll");
    }
    if (found > 0) return watched[0].revents != 0 ? Event::kStop : Event::kReady;
    if (found == 0 && until && Clock::now() >= *until) return Event::kTime;
  }
}

}  // namespace tsplprinter
