#include "printer_process.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace test {
namespace {

bool Readable(int descriptor) {
  pollfd watched{descriptor, POLLIN, 0};
  return poll(&watched, 1, kPatienceSeconds * 1000) > 0;
}

}  // namespace

PrinterProcess::PrinterProcess(const TemporaryFolder& folder, std::vector<std::string> arguments,
                               const char* preloaded) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  output_ = ends[0];

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addchdir_np(&actions, folder.path().c_str());
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "err", O_WRONLY | O_CREAT | O_TRUNC,
                                   0666);
  arguments.insert(arguments.begin(), TSPLPRINTER);
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  std::vector<char*> environment;
  for (char** variable = environ; *variable != nullptr; ++variable)
    environment.push_back(*variable);
  std::string library = std::string("LD_PRELOAD=") + (preloaded != nullptr ? preloaded : "");
  // A sanitizer wants to be loaded first, and need not.
  std::string sanitizer = "ASAN_OPTIONS=verify_asan_link_order=0";
  if (preloaded != nullptr) {
    environment.insert(environment.begin(), {library.data(), sanitizer.data()});
  }
  environment.push_back(nullptr);
  // Whoever runs the tests in the background may have them ignore signals.
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) sigaddset(&signals, signal);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setsigdefault(&attributes, &signals);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
  const int failed =
      posix_spawn(&process_, TSPLPRINTER, &actions, &attributes, argv.data(), environment.data());
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  if (failed != 0) throw std::runtime_error(TSPLPRINTER " cannot be started");
}

PrinterProcess::~PrinterProcess() {
  CloseOutput();
  if (process_ < 0) return;
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
}

std::string PrinterProcess::Line() {
  for (;;) {
    const std::size_t end = unread_.find('\n');
    char buffer[4096];
    ssize_t got = 0;
    if (end == std::string::npos && Readable(output_)) got = read(output_, buffer, sizeof buffer);
    if (got > 0) {
      unread_.append(buffer, static_cast<std::size_t>(got));
      continue;
    }
    const std::string line = unread_.substr(0, end);
    unread_.erase(0, end == std::string::npos ? end : end + 1);
    return line;
  }
}

int PrinterProcess::ListeningPort() {
  const std::string_view start = "listening on 127.0.0.1:";
  for (std::string line = Line(); !line.empty(); line = Line()) {
    if (line.starts_with(start)) return std::atoi(line.c_str() + start.size());
  }
  return 0;
}

bool PrinterProcess::WaitForUnread(int bytes) const {
  const auto patience = std::chrono::steady_clock::now() + std::chrono::seconds(kPatienceSeconds);
  int unread = 0;
  while (ioctl(output_, FIONREAD, &unread) == 0 && unread < bytes) {
    if (std::chrono::steady_clock::now() > patience) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

void PrinterProcess::CloseOutput() {
  if (output_ >= 0) close(output_);
  output_ = -1;
}

void PrinterProcess::Signal(int signal) const { kill(process_, signal); }

void PrinterProcess::LimitFiles(std::uint64_t bytes) const {
  const rlimit limit{bytes, bytes};
  if (prlimit(process_, RLIMIT_FSIZE, &limit, nullptr) != 0) throw std::runtime_error("prlimit");
}

std::vector<std::string> PrinterProcess::Descriptors(bool inheritable) const {
  const std::filesystem::path process = "/proc/" + std::to_string(process_);
  std::vector<std::string> targets;
  for (const auto& entry : std::filesystem::directory_iterator(process / "fd")) {
    const std::string number = entry.path().filename().string();
    const int here = fcntl(std::stoi(number), F_GETFD);
    if (std::stoi(number) <= STDERR_FILENO || (here >= 0 && (here & FD_CLOEXEC) == 0)) continue;
    std::ifstream info(process / "fdinfo" / number);
    std::string word;
    while (info >> word && word != "flags:") {
    }
    info >> word;
    const bool closed = (std::stoul(word, nullptr, 8) & O_CLOEXEC) != 0;
    if (closed != inheritable) {
      targets.push_back(std::filesystem::read_symlink(entry.path()).string());
    }
  }
  return targets;
}

int PrinterProcess::Wait() {
  const auto patience = std::chrono::steady_clock::now() + std::chrono::seconds(kPatienceSeconds);
  int status = 0;
  while (waitpid(process_, &status, WNOHANG) == 0) {
    if (std::chrono::steady_clock::now() > patience) Signal(SIGKILL);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  process_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string PrinterProcess::Rest() {
  std::string rest = std::move(unread_);
  unread_.clear();
  char buffer[4096];
  while (Readable(output_)) {
    const ssize_t got = read(output_, buffer, sizeof buffer);
    if (got <= 0) break;
    rest.append(buffer, static_cast<std::size_t>(got));
  }
  return rest;
}

Client::Client(int port, const char* at) : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  const timeval patience{kPatienceSeconds, 0};
  setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  setsockopt(socket_, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  inet_pton(AF_INET, at, &address.sin_addr);
  if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    error_ = errno;
  }
}

Client::~Client() { close(socket_); }

bool Client::Send(std::string_view bytes) const {
  while (!bytes.empty()) {
    const ssize_t sent = send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

void Client::Finish() const { shutdown(socket_, SHUT_WR); }

void Client::Reset() {
  const linger at_once{.l_onoff = 1, .l_linger = 0};
  setsockopt(socket_, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
  close(socket_);
  socket_ = -1;
}

std::string Client::Ending() const {
  char byte = 0;
  const ssize_t got = recv(socket_, &byte, 1, 0);
  if (got == 0) return "closed";
  if (got > 0) return "a byte came back";
  return errno == ECONNRESET ? "reset" : std::strerror(errno);
}

std::string Client::Print(std::string_view job) const {
  if (!Send(job)) return "broken while sending";
  Finish();
  return Ending();
}

}  // namespace test
