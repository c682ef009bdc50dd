#include "files/read_whole.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>

namespace files {
namespace {

constexpr std::size_t kChunk = 1 << 20;

void WaitFor(int descriptor) {
  pollfd watched{descriptor, POLLIN, 0};
  poll(&watched, 1, -1);
}

}  // namespace

bool ReadWhole(int descriptor, std::vector<std::uint8_t>& bytes) {
  for (;;) {
    const std::size_t before = bytes.size();
    bytes.resize(before + kChunk);
    const ssize_t got = read(descriptor, bytes.data() + before, kChunk);
    bytes.resize(before + (got > 0 ? static_cast<std::size_t>(got) : 0));
    if (got == 0) return true;
    if (got > 0 || errno == EINTR) continue;
    if (errno != EAGAIN) return false;
    WaitFor(descriptor);
  }
}

}  // namespace files
