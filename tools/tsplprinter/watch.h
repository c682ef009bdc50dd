// Waiting, which a signal to stop ends.
#ifndef TARVO_TSPLPRINTER_WATCH_H_
#define TARVO_TSPLPRINTER_WATCH_H_

#include <chrono>
#include <optional>

#include "tsplprinter/descriptor.h"

namespace tsplprinter {

using Clock = std::chrono::steady_clock;

class Watch {
 public:
  /// From now on SIGINT and SIGTERM do nothing but end the waiting. Throws std::system_error.
  Watch();

  enum class Event {
    kReady,  // there is something to read, or to accept
    kTime,   // it is time
    kStop,   // the process was told to stop, now or earlier
  };

  /// Waits for `descriptor`. Throws std::system_error.
  Event Wait(const Descriptor& descriptor) { return Wait(descriptor.number(), std::nullopt); }

  /// Waits for a point in time; not at all when it is past. Throws std::system_error.
  Event Wait(Clock::time_point until) { return Wait(-1, until); }

 private:
  Event Wait(int descriptor, std::optional<Clock::time_point> until);

  Descriptor signals_;
};

}  // namespace tsplprinter

#endif  // TARVO_TSPLPRINTER_WATCH_H_
