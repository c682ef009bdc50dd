#include "cancelled_filter.h"

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <stdexcept>
#include <thread>

#include "support/folder.h"

using namespace std::chrono_literals;

RunningFilter::RunningFilter(const std::filesystem::path& folder, const std::filesystem::path& ppd,
                             const std::filesystem::path& input, Writes writes) {
  int in[2], out[2];
  if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC | O_DIRECT) != 0 ||
      fcntl(out[1], F_SETPIPE_SZ, 4096) != 4096) {
    throw std::runtime_error("no pipe that holds one write");
  }
  process_ = fork();
  if (process_ == 0) {
    dup2(input.empty() ? in[0] : open(input.c_str(), O_RDONLY), STDIN_FILENO);
    dup2(out[1], STDOUT_FILENO);
    dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);
    setenv("PPD", ppd.c_str(), 1);
    setenv("TARVO_TEST_FOLDER", folder.c_str(), 1);
    setenv("LD_PRELOAD", REDIRECT, 1);
    setenv("ASAN_OPTIONS", "verify_asan_link_order=0", 1);
    if (writes == Writes::kPieces) {
      execlp("stdbuf", "stdbuf", "-o0", RASTERTOTARVO, "1", "user", "title", "1", "", nullptr);
    }
    execl(RASTERTOTARVO, "rastertotarvo", "1", "user", "title", "1", "", nullptr);
    _exit(127);
  }
  close(in[0]);
  close(out[1]);
  input_ = in[1];
  output_ = out[0];
}

RunningFilter::~RunningFilter() {
  hangUp();
  close(input_);
  if (process_ > 0) {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
  }
}

void RunningFilter::feed(const std::string& bytes) const {
  if (write(input_, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
    throw std::runtime_error("the filter's input takes no more");
  }
}

std::string RunningFilter::take() const {
  std::string bytes(65536, '\0');
  const ssize_t count = read(output_, bytes.data(), bytes.size());
  bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  return bytes;
}

std::string RunningFilter::takeRest() const {
  std::string all;
  for (std::string bytes = take(); !bytes.empty(); bytes = take()) all += bytes;
  return all;
}

void RunningFilter::settle() const {
  const std::string stat = "/proc/" + std::to_string(process_) + "/stat";
  for (int waiting = 0; waiting < 2;) {
    std::this_thread::sleep_for(1ms);
    const std::string text = support::readFile(stat).value_or("");
    const std::size_t name = text.rfind(')');
    const char state = name == std::string::npos ? 'Z' : text[name + 2];
    waiting = state == 'S' || state == 'Z' ? waiting + 1 : 0;
  }
}

void RunningFilter::terminate() const { kill(process_, SIGTERM); }

void RunningFilter::hangUp() {
  if (output_ >= 0) close(output_);
  output_ = -1;
}

int RunningFilter::end() {
  for (int i = 0; i < 5000; ++i) {
    int status = 0;
    if (waitpid(process_, &status, WNOHANG) == process_) {
      process_ = -1;
      return status;
    }
    std::this_thread::sleep_for(1ms);
  }
  return -1;
}
