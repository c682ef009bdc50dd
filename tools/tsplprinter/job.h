// One job: its stream is saved, and each of its pages said and drawn when a printer would print it.
#ifndef TARVO_TSPLPRINTER_JOB_H_
#define TARVO_TSPLPRINTER_JOB_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "tspl/follower.h"
#include "tsplprinter/tray.h"

namespace tsplprinter {

/// How the connection of a job came to its end.
enum class Ending {
  kClosed,     // by the client
  kBrokenOff,  // the client has reset it
  kDropped,    // the printer has, as it was told to
  kTooLarge,   // likewise, for the job is
  kStopped,    // likewise, for it was told to stop
};

class Job {
 public:
  /// Begins the tray's next job. `tray` must outlive it; `dpi` is that of MeasureLabel(). Throws
  /// std::system_error when the stream's file cannot be made.
  Job(Tray& tray, std::optional<int> dpi);
  Job(const Job&) = delete;
  Job& operator=(const Job&) = delete;

  std::uint64_t bytes() const { return bytes_; }

  /// The next bytes. Throws std::system_error when they cannot be saved.
  void Take(std::span<const std::uint8_t> bytes);

  /// Says how the job ended. Returns the exit status that it calls for.
  int End(Ending ending);

 private:
  void Print(const tspl::Page& page, const tspl::Command& last);
  void SayMalformed();
  const char* Word(Ending ending) const;

  const Tray& tray_;
  std::optional<int> dpi_;
  Tray::JobFile file_;
  tspl::Follower follower_;
  std::uint64_t bytes_ = 0;
  std::size_t pages_ = 0;
  bool malformed_ = false;
  int status_;
};

}  // namespace tsplprinter

#endif  // TARVO_TSPLPRINTER_JOB_H_
