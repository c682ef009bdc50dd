// A program run by the shell, as its user would.
#ifndef TARVO_TESTS_TOOLS_TOOL_RUN_H_
#define TARVO_TESTS_TOOLS_TOOL_RUN_H_

#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "temporary_folder.h"

namespace test {

struct ToolRun {
  int status;  // its exit status; -1 when it was killed
  std::string out;
  std::string err;
};

/// Runs `command` by the shell in `folder`, which keeps its output in files called out and err.
inline ToolRun RunIn(const TemporaryFolder& folder, const std::string& command) {
  const std::string line = "cd '" + folder.path() + "' && { " + command + "; } >out 2>err";
  const int status = std::system(line.c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, folder.Read("out"), folder.Read("err")};
}

}  // namespace test

#endif  // TARVO_TESTS_TOOLS_TOOL_RUN_H_
