// The surroundings of a filter that runs in this process: what it writes is kept in memory, and the
// clock and the disk are the test's.
#ifndef TARVO_TESTS_FUZZ_CAPTURED_PROCESS_H_
#define TARVO_TESTS_FUZZ_CAPTURED_PROCESS_H_

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fuzz {

struct Surroundings {
  std::int64_t time = 1'794'812'709;  ///< seconds since 1970, read as UTC
  bool recordingCanBeCreated = true;
  bool traceCanBeWritten = true;
  bool dumpsCanBeWritten = true;
  /// How many bytes dumps and recording hold in all before the disk is full. It always says that it
  /// has more.
  std::size_t room = std::numeric_limits<std::size_t>::max();
};

struct Captured {
  std::string output;  ///< standard output
  std::string error;   ///< standard error
  /// Name without the folder, and bytes, in the order in which they were begun.
  std::vector<std::pair<std::string, std::string>> dumps;
  long dumpsBegun = 0;  ///< those that could not be created included
  std::vector<std::pair<std::string, std::string>> recordings;  ///< path and bytes
  std::optional<std::string> trace;                             ///< nothing when it wasn't written
};

/// Captures what is written from its construction to finish(), every file that is created included.
/// One at a time. A file that is not closed in the end is a finding.
class CapturedProcess {
 public:
  explicit CapturedProcess(const Surroundings& surroundings);
  ~CapturedProcess();
  CapturedProcess(const CapturedProcess&) = delete;
  CapturedProcess& operator=(const CapturedProcess&) = delete;

  /// Ends the capture. Call it once, when everything that writes is gone.
  Captured finish();

 private:
  std::FILE* output_;
  std::FILE* error_;
};

/// A file whose content is set again and again, and a path that opens it.
class MemoryFile {
 public:
  MemoryFile();
  ~MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  /// Replaces the content and goes back to its start.
  void set(std::string_view bytes);
  std::string content() const;
  int descriptor() const { return descriptor_; }
  const std::string& path() const { return path_; }

 private:
  int descriptor_;
  std::string path_;
};

}  // namespace fuzz

#endif  // TARVO_TESTS_FUZZ_CAPTURED_PROCESS_H_
