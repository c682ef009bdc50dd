// Runs a shell command and keeps what it says.
#ifndef TARVO_TESTS_PPD_COMMAND_H_
#define TARVO_TESTS_PPD_COMMAND_H_

#include <string>

struct CommandResult {
  int status = -1;     ///< exit status, -1 when it did not end by itself
  std::string output;  ///< what it wrote to standard output
};

/// Runs `command` with /bin/sh, the system's programs on its path, in no language and
/// country, and waits for its end.
CommandResult runCommand(const std::string& command);

/// A new empty folder under the temporary folder, removed with all it holds at the end of its life.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

#endif  // TARVO_TESTS_PPD_COMMAND_H_
