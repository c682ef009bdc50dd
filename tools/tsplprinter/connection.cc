#include "tsplprinter/connection.h"

#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>

namespace tsplprinter {
namespace {

// How often bytes are taken at a limited speed, unless it is slower than a byte each time.
constexpr std::int64_t kTurnsPerSecond = 20;

}  // namespace

Connection::Connection(files::Descriptor socket, Watch& watch,
                       std::optional<std::int64_t> bytes_per_second)
    : socket_(std::move(socket)),
      watch_(watch),
      bytes_per_second_(bytes_per_second),
      next_read_(Clock::now()) {}

Connection::Reading Connection::Read(std::span<std::uint8_t> buffer) {
  if (bytes_per_second_) {
    const std::int64_t turn = std::max<std::int64_t>(*bytes_per_second_ / kTurnsPerSecond, 1);
    buffer = buffer.first(std::min(buffer.size(), static_cast<std::size_t>(turn)));
  }
  for (;;) {
    if (watch_.Overdue()) return {State::kStopped, 0};
    if (!left_ && !Wait()) left_ = bytes_per_second_ ? 0 : Arrived();
    int flags = MSG_DONTWAIT;
    if (left_ && *left_ == 0) flags |= MSG_PEEK;  // for the end, which may have come as well
    if (left_) buffer = buffer.first(std::clamp<std::size_t>(*left_, 1, buffer.size()));

    const ssize_t got = recv(socket_.number(), buffer.data(), buffer.size(), flags);
    if (got == 0) return {State::kClosed, 0};
    if (got < 0 && errno != EAGAIN && errno != EINTR) return {State::kReset, 0};
    if (left_ && (got < 0 || *left_ == 0)) return {State::kStopped, 0};
    if (got < 0) continue;

    const auto bytes = static_cast<std::size_t>(got);
    if (left_) *left_ -= bytes;
    if (bytes_per_second_) {
      const std::chrono::duration<double> busy(static_cast<double>(bytes) /
                                               static_cast<double>(*bytes_per_second_));
      // "At most": what a late turn lost is not made good by a faster one.
      next_read_ = Clock::now() + std::chrono::duration_cast<Clock::duration>(busy);
    }
    return {State::kBytes, bytes};
  }
}

void Connection::Reset() {
  const linger at_once{.l_onoff = 1, .l_linger = 0};
  setsockopt(socket_.number(), SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
  socket_ = files::Descriptor();
}

bool Connection::Wait() {
  if (bytes_per_second_ && watch_.Wait(next_read_) == Watch::Event::kStop) return false;
  return watch_.Wait(socket_) == Watch::Event::kReady;
}

std::size_t Connection::Arrived() const {
  int bytes = 0;
  return ioctl(socket_.number(), FIONREAD, &bytes) == 0 ? static_cast<std::size_t>(bytes) : 0;
}

}  // namespace tsplprinter
