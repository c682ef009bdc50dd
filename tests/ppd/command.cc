#include "command.h"

#include <stdlib.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <stdexcept>

CommandResult runCommand(const std::string& command) {
  CommandResult result;
  // Some of CUPS's programs are where only root's path leads; they read and say in the reader's
  // language what is judged here.
  const std::string settings = "PATH=$PATH:/usr/sbin:/sbin; export LC_ALL=C.UTF-8; ";
  std::FILE* pipe = popen((settings + command).c_str(), "r");
  if (pipe == nullptr) return result;
  char buffer[4096];
  std::size_t count = 0;
  while ((count = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) {
    result.output.append(buffer, count);
  }
  const int status = pclose(pipe);
  if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
  return result;
}

TemporaryFolder::TemporaryFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "tarvo-ppd-test.XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("mkdtemp " + name);
  path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}
