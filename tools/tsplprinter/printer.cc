#include "tsplprinter/printer.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <optional>

#include "program/program.h"
#include "tsplprinter/connection.h"
#include "tsplprinter/job.h"
#include "tsplprinter/listener.h"
#include "tsplprinter/tray.h"
#include "tsplprinter/watch.h"

namespace tsplprinter {
namespace {

constexpr std::uint64_t kMebibyte = 1 << 20;

constexpr std::size_t kBufferBytes = 1 << 14;

constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();

std::uint64_t Unsigned(std::int64_t number) { return static_cast<std::uint64_t>(number); }

class Printer {
 public:
  explicit Printer(const Arguments& arguments)
      : arguments_(arguments), tray_(arguments.out), listener_(arguments.port) {}

  int Run() {
    if (!SwitchOn()) return program::kGood;
    const std::uint64_t wanted = arguments_.jobs ? Unsigned(*arguments_.jobs) : kNoLimit;
    while (jobs_ < wanted && watch_.Wait(listener_.socket()) == Watch::Event::kReady) {
      if (files::Descriptor client = listener_.Accept()) Serve(std::move(client));
    }
    return status_;
  }

 private:
  // False when it is told to stop before.
  bool SwitchOn() {
    if (arguments_.absent_seconds > 0) {
      std::printf("absent on %s for %g seconds\n", listener_.address().c_str(),
                  arguments_.absent_seconds);
      const std::chrono::duration<double> absence(arguments_.absent_seconds);
      const auto until = Clock::now() + std::chrono::duration_cast<Clock::duration>(absence);
      if (watch_.Wait(until) == Watch::Event::kStop) return false;
    }
    listener_.Listen(arguments_.bytes_per_second.has_value());
    std::printf("listening on %s\n", listener_.address().c_str());
    return true;
  }

  void Serve(files::Descriptor client) {
    Connection connection(std::move(client), watch_, arguments_.bytes_per_second);
    std::optional<Job> job;
    const Ending ending = Receive(connection, job);
    if (job) {
      ++jobs_;
      status_ = std::max(status_, job->End(ending));
    }
    if (ending != Ending::kClosed) connection.Reset();
  }

  // Takes the job, which begins with its first byte.
  Ending Receive(Connection& connection, std::optional<Job>& job) {
    const std::uint64_t most = Unsigned(arguments_.max_job_mib) * kMebibyte;
    const std::uint64_t drop_at = DropAt();
    std::uint64_t taken = 0;
    for (;;) {
      // One byte too many tells a job that is too large from one that just fits.
      const std::uint64_t wanted = std::min(drop_at - taken, most + 1 - taken);
      const auto [state, got] = connection.Read(
          std::span(buffer_).first(std::min<std::uint64_t>(wanted, buffer_.size())));
      switch (state) {
        case Connection::State::kBytes:
          break;
        case Connection::State::kClosed:
          return Ending::kClosed;
        case Connection::State::kReset:
          return Ending::kBrokenOff;
        case Connection::State::kStopped:
          return Ending::kStopped;
      }
      if (!job) job.emplace(tray_, watch_, arguments_);
      const std::uint64_t fits = std::min<std::uint64_t>(got, most - taken);
      job->Take(std::span(buffer_).first(fits));
      if (fits < got) return Ending::kTooLarge;
      taken += got;
      if (taken == drop_at) return Ending::kDropped;
    }
  }

  // After how many bytes the job that comes now is to be dropped.
  std::uint64_t DropAt() const {
    const bool spared = arguments_.drop_jobs && jobs_ >= Unsigned(*arguments_.drop_jobs);
    return arguments_.drop_after && !spared ? Unsigned(*arguments_.drop_after) : kNoLimit;
  }

  const Arguments& arguments_;
  Watch watch_;
  Tray tray_;
  Listener listener_;
  std::array<std::uint8_t, kBufferBytes> buffer_{};
  std::uint64_t jobs_ = 0;
  int status_ = program::kGood;
};

}  // namespace

int Print(const Arguments& arguments) { return Printer(arguments).Run(); }

}  // namespace tsplprinter
