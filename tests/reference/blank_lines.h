#pragma once

#include <cstdint>
#include <vector>

namespace reference {

// Blank means that the examined bytes of a line are all 0: its first line_bytes - skip_right bytes,
// or all of them when skip_right is greater. Lines begin `stride` bytes apart.

/// The number of blank lines counted from line 1 on (line 0 is not looked at); the line past the
/// end counts as blank.
std::uint64_t blankLinesFromFront(const std::vector<std::uint8_t>& data, std::uint64_t line_bytes,
                                  std::uint64_t lines, std::uint64_t skip_right,
                                  std::uint64_t stride);

/// The number of lines up to and including the last that is not blank.
std::uint64_t blankLinesFromBack(const std::vector<std::uint8_t>& data, std::uint64_t line_bytes,
                                 std::uint64_t lines, std::uint64_t skip_right,
                                 std::uint64_t stride);

}  // namespace reference
