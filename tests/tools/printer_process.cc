#include "printer_process.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <thread>

namespace test {
namespace {

bool Readable(int descriptor) {
  pollfd watched{descriptor, POLLIN, 0};
  return poll(&watched, 1, kPatienceSeconds * 1000) > 0;
}

}  // namespace

PrinterProcess::PrinterProcess(const TemporaryFolder& folder, std::vector<std::string> arguments) {
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
  const int failed = posix_spawn(&process_, TSPLPRINTER, &actions, nullptr, argv.data(), environ);
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

void PrinterProcess::CloseOutput() {
  if (output_ >= 0) close(output_);
  output_ = -1;
}

void PrinterProcess::Signal(int signal) const { kill(process_, signal); }

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

Client::Client(int port) : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  const timeval patience{kPatienceSeconds, 0};
  setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  setsockopt(socket_, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
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
