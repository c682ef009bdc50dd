#include "tsplprinter/watch.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <string_view>
#include <system_error>

#include "files/unfinished.h"
#include "program/program.h"

namespace tsplprinter {
namespace {

// As long as one poll() waits; a later point in time takes several.
constexpr std::chrono::milliseconds kLongest = std::chrono::hours(1);

int Milliseconds(std::optional<Clock::time_point> until) {
  if (!until) return -1;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(*until - Clock::now());
  return static_cast<int>(std::clamp(left, std::chrono::milliseconds(0), kLongest).count());
}

// Whether it is by then.
bool IsOver(const files::Descriptor& over, Clock::time_point until) {
  pollfd watched{over.number(), POLLIN, 0};
  while (poll(&watched, 1, Milliseconds(until)) <= 0) {
    if (Clock::now() >= until) return false;
  }
  return true;
}

// On standard error, but not when that would block: what the program hangs in may be its reader.
void Say(std::string_view text) {
  pollfd watched{STDERR_FILENO, POLLOUT, 0};
  if (poll(&watched, 1, 0) <= 0) return;
  [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, text.data(), text.size());
}

}  // namespace

Watch::Watch() {
  sigset_t stop;
  sigemptyset(&stop);
  sigaddset(&stop, SIGINT);
  sigaddset(&stop, SIGTERM);
  sigprocmask(SIG_BLOCK, &stop, nullptr);
  signals_ = files::Descriptor(signalfd(-1, &stop, SFD_CLOEXEC));
  over_ = files::Descriptor(eventfd(0, EFD_CLOEXEC));
  if (!signals_ || !over_) throw std::system_error(errno, std::generic_category(), "signals");
  // A signal that ends the process at once is the main thread's: it knows what files it has begun.
  const files::SignalsHeld held;
  end_ = std::thread([this] { SeeToTheEnd(); });
}

Watch::~Watch() {
  const std::uint64_t one = 1;
  // An event's counter that stands at 0 takes a 1.
  [[maybe_unused]] const ssize_t written = ::write(over_.number(), &one, sizeof one);
  end_.join();
}

void Watch::SeeToTheEnd() {
  if (Wait(over_) == Event::kReady) return;
  const auto told = Clock::now();
  if (IsOver(over_, told + kTimeToFinish)) return;
  overdue_ = true;
  if (IsOver(over_, told + kMostToStop)) return;
  files::RemoveUnfinished();
  Say("tsplprinter: told to stop: what was not finished by now is removed\n");
  _exit(program::kTrouble);
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
