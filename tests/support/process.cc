#include "support/process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/syscall.h>
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

/// A file in memory that takes in an output. A pipe would wake this process at every write of an
/// unbuffered stream.
void openMemory(Descriptor& file) {
  file.reset(::memfd_create("output", MFD_CLOEXEC));
  if (!file.isOpen()) fail("memfd_create");
}

std::string contentOf(const Descriptor& file) {
  std::string bytes(static_cast<std::size_t>(::lseek(file.get(), 0, SEEK_END)), '\0');
  for (std::size_t done = 0; done < bytes.size();) {
    const ssize_t count =
        ::pread(file.get(), bytes.data() + done, bytes.size() - done, static_cast<off_t>(done));
    if (count <= 0) fail("reading an output");
    done += static_cast<std::size_t>(count);
  }
  return bytes;
}

/// Feeds `bytes` to the program until it has ended. False when `deadline` came first.
bool feedUntilEnd(const Descriptor& process, Descriptor& input, std::string_view bytes,
                  Clock::time_point deadline) {
  if (input.isOpen()) ::fcntl(input.get(), F_SETFL, O_NONBLOCK);
  while (true) {
    if (bytes.empty()) input.close();
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    if (left.count() <= 0) return false;
    std::array<pollfd, 2> watched{{{process.get(), POLLIN, 0}, {input.get(), POLLOUT, 0}}};
    if (::poll(watched.data(), watched.size(), static_cast<int>(left.count())) < 0) {
      if (errno == EINTR) continue;
      fail("poll");
    }
    if (watched[0].revents != 0) return true;
    if (watched[1].revents == 0) continue;
    const ssize_t written = ::write(input.get(), bytes.data(), bytes.size());
    if (written >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EAGAIN && errno != EINTR) {
      bytes = {};  // A program need not read all of its input.
    }
  }
}

/// What an output of the program is to be: -1 for a closed one.
void openOutput(StandardOutput kind, Descriptor& file) {
  if (kind == StandardOutput::Taken) openMemory(file);
  Descriptor readEnd;  // closed at once
  if (kind == StandardOutput::Broken) makePipe(readEnd, file);
}

void putInPlace(int descriptor, int place) {
  if (descriptor >= 0) {
    ::dup2(descriptor, place);
  } else {
    ::close(place);
  }
}

void limitResource(int resource, std::optional<std::uint64_t> bytes) {
  if (!bytes) return;
  const rlimit limit{*bytes, *bytes};
  ::setrlimit(static_cast<__rlimit_resource>(resource), &limit);
}

/// In the child, after fork: only calls that are safe there. Never returns.
[[noreturn]] void becomeProgram(const Program& program, char* const* arguments,
                                char* const* environment, int input, int output, int error) {
  ::signal(SIGPIPE, SIG_DFL);
  putInPlace(input, 0);
  putInPlace(output, 1);
  putInPlace(error, 2);
  limitResource(RLIMIT_AS, program.addressSpaceLimitBytes);
  limitResource(RLIMIT_STACK, program.stackLimitBytes);
  if (program.workingFolder.empty() || ::chdir(program.workingFolder.c_str()) == 0) {
    ::execve(program.executable.c_str(), arguments, environment);
  }
  constexpr std::string_view kMessage = "support: can't start the program\n";
  [[maybe_unused]] const ssize_t ignored = ::write(2, kMessage.data(), kMessage.size());
  ::_exit(127);
}

}  // namespace

std::string Outcome::ending() const {
  if (timedOut) return "time limit";
  if (signal != 0) return "signal " + std::to_string(signal);
  return "exit status " + std::to_string(status);
}

Outcome run(const Program& program) {
  Descriptor childInput, input, output, error;
  openOutput(program.output, output);
  openOutput(program.error, error);
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
                  output.get(), error.get());
  }
  childInput.close();
  const Descriptor process(static_cast<int>(::syscall(SYS_pidfd_open, child, 0)));
  if (!process.isOpen()) fail("pidfd_open");

  Outcome outcome;
  outcome.timedOut = !feedUntilEnd(process, input, bytes, Clock::now() + program.timeLimit);
  if (outcome.timedOut) ::kill(child, SIGKILL);
  int status = 0;
  rusage usage{};
  while (::wait4(child, &status, 0, &usage) < 0) {
    if (errno != EINTR) fail("wait4");
  }
  outcome.peakResidentKib = usage.ru_maxrss;
  if (WIFEXITED(status)) {
    outcome.status = WEXITSTATUS(status);
  } else {
    outcome.signal = WTERMSIG(status);
  }
  if (program.output == StandardOutput::Taken) outcome.output = contentOf(output);
  if (program.error == StandardOutput::Taken) outcome.error = contentOf(error);
  return outcome;
}

}  // namespace support
