// What the command line asks of tsplprinter.
#ifndef TARVO_TSPLPRINTER_ARGUMENTS_H_
#define TARVO_TSPLPRINTER_ARGUMENTS_H_

#include <cstdint>
#include <optional>
#include <string>

namespace tsplprinter {

struct Arguments {
  int port = 9100;                               // 0 for any that is free
  std::string out = "printed";                   // the folder for streams and pictures
  std::optional<int> dpi;                        // 1 or more
  std::optional<std::int64_t> jobs;              // end after so many; 1 or more
  std::int64_t max_job_mib = 512;                // 1 or more
  std::uint64_t most_pictures = 1000;            // of a job; 1 or more
  std::uint64_t most_picture_mib = 512;          // of all of them; 1 to kMostMib
  std::optional<std::int64_t> bytes_per_second;  // 1 or more; as fast as they come without it
  double absent_seconds = 0;                     // 0 or more
  std::optional<std::int64_t> drop_after;        // bytes of a job, 1 or more
  std::optional<std::int64_t> drop_jobs;         // how many of them, 1 or more; all without it
};

/// Reads the command line. Returns the exit status when there is nothing more to do: 0 after help
/// or version on standard output, 2 after a complaint on standard error.
std::optional<int> ParseArguments(int argc, char** argv, Arguments& arguments);

}  // namespace tsplprinter

#endif  // TARVO_TSPLPRINTER_ARGUMENTS_H_
