// Waiting, which a signal to stop ends.
#ifndef TARVO_TSPLPRINTER_WATCH_H_
#define TARVO_TSPLPRINTER_WATCH_H_

#include <atomic>
#include <chrono>
#include <optional>
#include <thread>

#include "files/descriptor.h"

namespace tsplprinter {

using Clock = std::chrono::steady_clock;

/// From a signal to stop on: how long all that has arrived is still worked on, and until when the
/// process has ended.
constexpr std::chrono::milliseconds kTimeToFinish{400};
constexpr std::chrono::milliseconds kMostToStop{800};

class Watch {
 public:
  /// From now on SIGINT and SIGTERM do nothing but end the waiting, and then, when the watch still
  /// lives kMostToStop later, the process: with a complaint, status 2 and no unfinished files. What
  /// it waits for then - a disk, a reader of its lines - may never come. Throws std::system_error.
  Watch();
  ~Watch();
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

  /// What can be left out is to be left out: the process was told to stop kTimeToFinish ago.
  bool Overdue() const { return overdue_; }

  enum class Event {
    kReady,  // there is something to read, or to accept
    kTime,   // it is time
    kStop,   // the process was told to stop, now or earlier
  };

  /// Waits for `descriptor`. Throws std::system_error.
  Event Wait(const files::Descriptor& descriptor) {
    return Wait(descriptor.number(), std::nullopt);
  }

  /// Waits for a point in time; not at all when it is past. Throws std::system_error.
  Event Wait(Clock::time_point until) { return Wait(-1, until); }

 private:
  void SeeToTheEnd();
  Event Wait(int descriptor, std::optional<Clock::time_point> until);

  files::Descriptor signals_;
  files::Descriptor over_;  // readable when the watch ends
  std::atomic<bool> overdue_ = false;
  std::thread end_;
};

}  // namespace tsplprinter

#endif  // TARVO_TSPLPRINTER_WATCH_H_
