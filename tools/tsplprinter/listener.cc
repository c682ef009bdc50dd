#include "tsplprinter/listener.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdint>
#include <system_error>

namespace tsplprinter {
namespace {

constexpr int kSmallBufferBytes = 16384;

[[noreturn]] void Fail(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}

std::string Name(int port) { return "127.0.0.1:" + std::to_string(port); }

}  // namespace

Listener::Listener(int port)
    : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)),
      address_(Name(port)) {
  if (!socket_) Fail(address_);
  // A port stays taken for a minute after its last connection otherwise.
  const int on = 1;
  setsockopt(socket_.number(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);

  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  if (bind(socket_.number(), reinterpret_cast<const sockaddr*>(&address), size) != 0 ||
      getsockname(socket_.number(), reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    Fail(address_);
  }
  address_ = Name(ntohs(address.sin_port));
}

void Listener::Listen(bool small_buffer) {
  if (small_buffer) {
    setsockopt(socket_.number(), SOL_SOCKET, SO_RCVBUF, &kSmallBufferBytes,
               sizeof kSmallBufferBytes);
  }
  if (listen(socket_.number(), SOMAXCONN) != 0) Fail(address_);
}

files::Descriptor Listener::Accept() {
  files::Descriptor client(accept4(socket_.number(), nullptr, nullptr, SOCK_CLOEXEC));
  if (!client && errno != EAGAIN && errno != ECONNABORTED && errno != EINTR) Fail(address_);
  return client;
}

}  // namespace tsplprinter
