// A client's connection, read at the printer's speed.
#ifndef TARVO_TSPLPRINTER_CONNECTION_H_
#define TARVO_TSPLPRINTER_CONNECTION_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "files/descriptor.h"
#include "tsplprinter/watch.h"

namespace tsplprinter {

class Connection {
 public:
  /// Reads at most so many bytes a second, or as fast as they come. `watch` must outlive it.
  Connection(files::Descriptor socket, Watch& watch, std::optional<std::int64_t> bytes_per_second);

  enum class State {
    kBytes,    // there are some
    kClosed,   // the client has sent all
    kReset,    // the client has broken the connection off
    kStopped,  // the process was told to stop
  };
  struct Reading {
    State state;
    std::size_t bytes;  // 1 or more with kBytes, else 0
  };

  /// Waits for bytes and puts them into `buffer`. REQUIRES: it is not empty.
  ///
  /// What had arrived when the process was told to stop is handed out before kStopped, for its
  /// sender has done its part; not so at a limited speed, where that could take its time, nor once
  /// the watch is overdue.
  Reading Read(std::span<std::uint8_t> buffer);

  /// Closes the connection so that its client sees it fail rather than end. Nothing may be read
  /// then.
  void Reset();

 private:
  // False when the process was told to stop.
  bool Wait();
  std::size_t Arrived() const;

  files::Descriptor socket_;
  Watch& watch_;
  std::optional<std::int64_t> bytes_per_second_;
  Clock::time_point next_read_;      // at a limited speed
  std::optional<std::size_t> left_;  // to be read yet of what arrived before the stop
};

}  // namespace tsplprinter

#endif  // TARVO_TSPLPRINTER_CONNECTION_H_
