// One job: its stream is saved, and each of its pages said and drawn when a printer would print it.
#ifndef TARVO_TSPLPRINTER_JOB_H_
#define TARVO_TSPLPRINTER_JOB_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "tspl/follower.h"
#include "tspl/label.h"
#include "tsplprinter/arguments.h"
#include "tsplprinter/tray.h"
#include "tsplprinter/watch.h"

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
  /// Begins the tray's next job. All of these must outlive it. Throws std::runtime_error when the
  /// stream's file cannot be made.
  Job(Tray& tray, const Watch& watch, const Arguments& arguments);
  Job(const Job&) = delete;
  Job& operator=(const Job&) = delete;

  std::uint64_t bytes() const { return bytes_; }

  /// The next bytes. Throws std::runtime_error when they cannot be saved.
  void Take(std::span<const std::uint8_t> bytes);

  /// Says how the job ended, when its files are complete. Returns the exit status that it calls
  /// for. Throws std::runtime_error when the stream cannot be saved.
  int End(Ending ending);

 private:
  void Print(const tspl::Page& page, const tspl::Command& last);
  void Draw(const tspl::Page& page, const tspl::Label& label);
  std::string WhyNoMore(std::uint64_t bytes) const;
  void SayMalformed();
  const char* Word(Ending ending) const;

  const Tray& tray_;
  const Watch& watch_;
  const Arguments& arguments_;
  Tray::JobFile file_;
  tspl::Follower follower_;
  std::uint64_t bytes_ = 0;
  std::size_t pages_ = 0;
  std::uint64_t pictures_ = 0;
  std::uint64_t picture_bytes_ = 0;
  bool drawing_ = true;  // false when there are to be no more pictures
  bool malformed_ = false;
  int status_;
};

}  // namespace tsplprinter

#endif  // TARVO_TSPLPRINTER_JOB_H_
