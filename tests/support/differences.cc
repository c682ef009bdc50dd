#include "support/differences.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>

namespace support {

namespace {

constexpr std::size_t kContext = 24;

std::string hexadecimal(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) {
    char pair[4];
    std::snprintf(pair, sizeof pair, "%02x ",
                  static_cast<unsigned>(static_cast<unsigned char>(byte)));
    text += pair;
  }
  return text;
}

std::string window(std::string_view bytes, std::size_t offset) {
  const std::size_t begin = offset > kContext ? offset - kContext : 0;
  if (begin >= bytes.size()) return "(end)";
  const std::string_view before = bytes.substr(begin, std::min(offset, bytes.size()) - begin);
  const std::string_view from = bytes.substr(std::min(offset, bytes.size()), kContext);
  std::string text = "\"";
  text += printable(before);
  text += "|";
  text += printable(from);
  text += "\"\n            ";
  text += hexadecimal(before);
  text += "| ";
  text += hexadecimal(from);
  return text;
}

}  // namespace

std::string printable(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) {
    if (byte == '\n') {
      text += "\\n";
    } else if (byte == '\r') {
      text += "\\r";
    } else if (byte >= ' ' && byte <= '~') {
      text += byte;
    } else {
      char code[8];
      std::snprintf(code, sizeof code, "\\x%02x",
                    static_cast<unsigned>(static_cast<unsigned char>(byte)));
      text += code;
    }
  }
  return text;
}

std::string firstDifference(std::string_view expected, std::string_view actual) {
  if (expected == actual) return "";
  const auto [inExpected, inActual] =
      std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
  const auto offset = static_cast<std::size_t>(inExpected - expected.begin());
  return "first difference at byte " + std::to_string(offset) + "\n  expected (" +
         std::to_string(expected.size()) + " bytes): " + window(expected, offset) + "\n  actual (" +
         std::to_string(actual.size()) + " bytes): " + window(actual, offset) + "\n";
}

std::string firstDifference(const std::vector<std::string>& expected,
                            const std::vector<std::string>& actual) {
  if (expected == actual) return "";
  const auto [inExpected, inActual] =
      std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
  const auto line = static_cast<std::size_t>(inExpected - expected.begin());
  std::string text = "first difference in line " + std::to_string(line + 1) + " of " +
                     std::to_string(expected.size()) + " (actual: of " +
                     std::to_string(actual.size()) + ")\n";
  if (line > 0) text += "  both:     " + printable(expected[line - 1]) + "\n";
  text += "  expected: " + (line < expected.size() ? printable(expected[line]) : "(end)") + "\n";
  text += "  actual:   " + (line < actual.size() ? printable(actual[line]) : "(end)") + "\n";
  return text;
}

std::vector<std::string> linesOf(std::string_view text) {
  std::vector<std::string> lines;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    lines.emplace_back(text.substr(0, end));
    if (end == std::string_view::npos) break;
    text.remove_prefix(end + 1);
  }
  return lines;
}

}  // namespace support
