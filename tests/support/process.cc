#include "support/process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string_view>

extern char** environ;

namespace support {

namespace {

using Clock = std::chrono::steady_clock;

class Descriptor {
 public:
  explicit Descriptor(int value = -1) : value_(value) {}
  ~Descriptor() { close(); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  void reset(int value) {
    close();
    value_ = value;
  }
  void close() {
    if (value_ >= 0) ::close(value_);
    value_ = -1;
  }
  int get() const { return value_; }
  bool isOpen() const { return value_ >= 0; }

 private:
  int value_;
};

[[noreturn]] void fail(const std::string& what) {
  throw std::runtime_error(what + ": " + std::strerror(errno));
}

void makePipe(Descriptor& readEnd, Descriptor& writeEnd) {
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) fail("pipe");
  readEnd.reset(ends[0]);
  writeEnd.reset(ends[1]);
}

/// A null-terminated array of pointers into `texts`, as exec wants it.
std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> environmentOf(const Program& program) {
  std::vector<std::string> all;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string_view text = *entry;
    if (!program.environment.contains(std::string(text.substr(0, text.find('='))))) {
      all.emplace_back(text);
    }
  }
  for (const auto& [name, value] : program.environment) {
    if (value) all.push_back(name + "=" + *value);
  }
  return all;
}

/// Moves bytes between the pipes and the program until it has closed both outputs.
class Pump {
 public:
  Pump(Descriptor& input, Descriptor& output, Descriptor& error, std::string_view bytes,
       Outcome& outcome)
      : input_(input), output_(output), error_(error), bytes_(bytes), outcome_(outcome) {
    if (input_.isOpen()) ::fcntl(input_.get(), F_SETFL, O_NONBLOCK);
  }

  /// False when `deadline` came first.
  bool run(Clock::time_point deadline) {
    while (output_.isOpen() || error_.isOpen()) {
      const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
      if (left.count() <= 0) return false;
      if (bytes_.empty()) input_.close();
      std::array<pollfd, 3> watched{
          {{input_.get(), POLLOUT, 0}, {output_.get(), POLLIN, 0}, {error_.get(), POLLIN, 0}}};
      if (::poll(watched.data(), watched.size(), static_cast<int>(left.count())) < 0) {
        if (errno == EINTR) continue;
        fail("poll");
      }
      if (watched[0].revents != 0) feed();
      if (watched[1].revents != 0) drain(output_, outcome_.output);
      if (watched[2].revents != 0) drain(error_, outcome_.error);
    }
    input_.close();
    return true;
  }

 private:
  void feed() {
    const ssize_t written = ::write(input_.get(), bytes_.data(), bytes_.size());
    if (written >= 0) {
      bytes_.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EAGAIN && errno != EINTR) {
      bytes_ = {};  // A program need not read all of its input.
    }
  }

  static void drain(Descriptor& from, std::string& to) {
    std::array<char, 65536> buffer;
    const ssize_t count = ::read(from.get(), buffer.data(), buffer.size());
    if (count > 0) {
      to.append(buffer.data(), static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {
      from.close();
    }
  }

  Descriptor& input_;
  Descriptor& output_;
  Descriptor& error_;
  std::string_view bytes_;
  Outcome& outcome_;
};

/// In the child, after fork: only calls that are safe there. Never returns.
[[noreturn]] void becomeProgram(const Program& program, char* const* arguments,
                                char* const* environment, int input, int output, int error) {
  ::signal(SIGPIPE, SIG_DFL);
  if (input >= 0) {
    ::dup2(input, 0);
  } else {
    ::close(0);
  }
  ::dup2(output, 1);
  ::dup2(error, 2);
  if (program.addressSpaceLimitBytes) {
    const rlimit limit{*program.addressSpaceLimitBytes, *program.addressSpaceLimitBytes};
    ::setrlimit(RLIMIT_AS, &limit);
  }
  if (program.workingFolder.empty() || ::chdir(program.workingFolder.c_str()) == 0) {
    ::execve(program.executable.c_str(), arguments, environment);
  }
  constexpr std::string_view kMessage = "support: can't start the program\n";
  [[maybe_unused]] const ssize_t ignored = ::write(2, kMessage.data(), kMessage.size());
  ::_exit(127);
}

/// The child's end, waited for until `deadline`.
void awaitEnd(pid_t child, Clock::time_point deadline, Outcome& outcome) {
  int status = 0;
  while (true) {
    const pid_t ended = ::waitpid(child, &status, outcome.timedOut ? 0 : WNOHANG);
    if (ended == child) break;
    if (ended < 0 && errno != EINTR) fail("waitpid");
    if (Clock::now() >= deadline) {
      outcome.timedOut = true;
      ::kill(child, SIGKILL);
    }
    ::usleep(500);
  }
  if (WIFEXITED(status)) {
    outcome.status = WEXITSTATUS(status);
  } else {
    outcome.signal = WTERMSIG(status);
  }
}

}  // namespace

std::string Outcome::ending() const {
  if (timedOut) return "time limit";
  if (signal != 0) return "signal " + std::to_string(signal);
  return "exit status " + std::to_string(status);
}

Outcome run(const Program& program) {
  Descriptor childInput, childOutput, childError, input, output, error;
  makePipe(output, childOutput);
  makePipe(error, childError);
  std::string_view bytes;
  if (const auto* piped = std::get_if<PipedBytes>(&program.input)) {
    makePipe(childInput, input);
    bytes = piped->bytes;
  } else if (const auto* file = std::get_if<FromFile>(&program.input)) {
    childInput.reset(::open(file->path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!childInput.isOpen()) fail(file->path.string());
  }

  std::vector<std::string> arguments = program.arguments;
  std::vector<std::string> environment = environmentOf(program);
  const std::vector<char*> argumentPointers = pointersTo(arguments);
  const std::vector<char*> environmentPointers = pointersTo(environment);
  if (::access(program.executable.c_str(), X_OK) != 0) fail(program.executable.string());

  ::signal(SIGPIPE, SIG_IGN);
  const pid_t child = ::fork();
  if (child < 0) fail("fork");
  if (child == 0) {
    becomeProgram(program, argumentPointers.data(), environmentPointers.data(), childInput.get(),
                  childOutput.get(), childError.get());
  }
  childInput.close();
  childOutput.close();
  childError.close();

  Outcome outcome;
  const auto deadline = Clock::now() + program.timeLimit;
  if (!Pump(input, output, error, bytes, outcome).run(deadline)) {
    outcome.timedOut = true;
    ::kill(child, SIGKILL);
  }
  awaitEnd(child, deadline, outcome);
  return outcome;
}

}  // namespace support
