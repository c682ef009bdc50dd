// Runs a program and takes in all that it says.
#ifndef TARVO_TESTS_SUPPORT_PROCESS_H_
#define TARVO_TESTS_SUPPORT_PROCESS_H_

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace support {

/// Standard input of a program: bytes through a pipe, a file, or no open descriptor at all.
struct PipedBytes {
  std::string bytes;
};
struct FromFile {
  std::filesystem::path path;
};
struct Closed {};
using StandardInput = std::variant<PipedBytes, FromFile, Closed>;

/// Standard output or error of a program: taken into its outcome, no open descriptor at all, or a
/// pipe that nobody reads any more.
enum class StandardOutput { Taken, Closed, Broken };

struct Program {
  std::filesystem::path executable;
  std::vector<std::string> arguments;  ///< all of argv, the program's own name first
  /// Changes to the environment of the test; nothing: the variable is removed.
  std::map<std::string, std::optional<std::string>> environment;
  StandardInput input = PipedBytes{};
  StandardOutput output = StandardOutput::Taken;
  StandardOutput error = StandardOutput::Taken;
  std::filesystem::path workingFolder;                  ///< empty: that of the test
  std::chrono::seconds timeLimit{60};                   ///< killed after it
  std::optional<std::uint64_t> addressSpaceLimitBytes;  ///< what the process may map
  std::optional<std::uint64_t> stackLimitBytes;
};

struct Outcome {
  std::string output;  ///< standard output
  std::string error;   ///< standard error
  int status = -1;     ///< exit status; -1 when a signal ended it
  int signal = 0;      ///< the signal that ended it, or 0
  bool timedOut = false;
  long peakResidentKib = 0;  ///< the most memory it held, or this test's own when that was more

  /// "exit status 1", "signal 11", "time limit": for messages.
  std::string ending() const;
};

/// Throws std::runtime_error when the program can't be started at all.
Outcome run(const Program& program);

}  // namespace support

#endif  // TARVO_TESTS_SUPPORT_PROCESS_H_
