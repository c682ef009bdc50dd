#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace reference {

/// Standard error, as it grows.
class Log {
 public:
  /// A line of the log: the level's prefix, the message with no blank between, a line end.
  /// REQUIRES: level 0 to 5.
  void line(int level, const char* format, ...) __attribute__((format(printf, 3, 4)));

  /// Text written to standard error as it is.
  void raw(std::string_view text) { text_ += text; }

  /// What was written, cut at the line ends. A message that ends in a line end of its own is
  /// therefore followed by an empty line.
  std::vector<std::string> lines() const;

 private:
  std::string text_;
};

}  // namespace reference
