#include "reference/blank_lines.h"

namespace reference {

namespace {

bool isBlank(const std::vector<std::uint8_t>& data, std::uint64_t start, std::uint64_t line_bytes,
             std::uint64_t skip_right) {
  const std::uint64_t examined = skip_right > line_bytes ? line_bytes : line_bytes - skip_right;
  for (std::uint64_t i = 0; i < examined; ++i) {
    if (data[start + i] != 0) return false;
  }
  return true;
}

}  // namespace

std::uint64_t blankLinesFromFront(const std::vector<std::uint8_t>& data, std::uint64_t line_bytes,
                                  std::uint64_t lines, std::uint64_t skip_right,
                                  std::uint64_t stride) {
  for (std::uint64_t r = 0; r + 1 < lines; ++r) {
    if (!isBlank(data, (r + 1) * stride, line_bytes, skip_right)) return r;
  }
  return lines;
}

std::uint64_t blankLinesFromBack(const std::vector<std::uint8_t>& data, std::uint64_t line_bytes,
                                 std::uint64_t lines, std::uint64_t skip_right,
                                 std::uint64_t stride) {
  for (std::uint64_t r = lines; r > 0; --r) {
    if (!isBlank(data, (r - 1) * stride, line_bytes, skip_right)) return r;
  }
  return 0;
}

}  // namespace reference
