#include "tspl/cursor.h"

#include <algorithm>
#include <cstdio>

namespace tspl {
namespace {

// As much of a wrong stream as a message shows.
constexpr std::size_t kShownBytes = 16;

constexpr std::size_t kMostLengthDigits = 12;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsPrintable(char c) { return c >= ' ' && c <= '~'; }

// The digits at the front of `text`, as a number is written without leading zeros: "07" has one.
std::string_view LeadingNumber(std::string_view text) {
  std::size_t digits = 0;
  while (digits < text.size() && IsDigit(text[digits])) ++digits;
  return text.substr(0, text.starts_with('0') ? 1 : digits);
}

// REQUIRES: at most 18 digits and nothing else.
std::int64_t Value(std::string_view digits) {
  std::int64_t value = 0;
  for (const char digit : digits) value = value * 10 + (digit - '0');
  return value;
}

}  // namespace

std::string Quote(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '\r') {
      quoted += "\\r";
    } else if (c == '\n') {
      quoted += "\\n";
    } else if (c == '"' || c == '\\') {
      quoted += {'\\', c};
    } else if (IsPrintable(c)) {
      quoted += c;
    } else {
      char escaped[5];
      std::snprintf(escaped, sizeof escaped, "\\x%02X", static_cast<unsigned char>(c));
      quoted += escaped;
    }
  }
  return quoted + '"';
}

std::string_view Cursor::Text(std::uint64_t from, std::uint64_t to) const {
  return {reinterpret_cast<const char*>(bytes_.data()) + (from - start_), to - from};
}

bool Cursor::Sees(std::string_view text) const { return Rest().starts_with(text); }

bool Cursor::Literal(std::string_view text) {
  const std::string_view rest = Rest();
  const std::size_t common = static_cast<std::size_t>(
      std::mismatch(text.begin(), text.end(), rest.begin(), rest.end()).first - text.begin());
  if (common < text.size()) return Fail(offset() + common, Quote(text.substr(common)));
  at_ += text.size();
  return true;
}

bool Cursor::Integer(std::string_view what, std::int64_t least, std::int64_t most,
                     std::int64_t& value) {
  const std::string_view rest = Rest();
  const bool negative = least < 0 && rest.starts_with('-');
  const std::string_view digits = LeadingNumber(rest.substr(negative ? 1 : 0));
  // Eighteen digits always fit in 64 bits, and no range goes beyond 32 bits.
  bool good = !digits.empty() && digits.size() <= 18 && !(negative && digits == "0");
  if (good) {
    value = negative ? -Value(digits) : Value(digits);
    good = value >= least && value <= most;
  }
  if (!good) {
    return Fail(offset(), std::string(what) + " from " + std::to_string(least) + " to " +
                              std::to_string(most));
  }
  at_ += digits.size() + (negative ? 1 : 0);
  return true;
}

bool Cursor::Length(std::int64_t& tenths) {
  const std::string_view rest = Rest();
  const std::string_view whole = LeadingNumber(rest);
  const std::string_view tail = rest.substr(whole.size());
  if (whole.empty() || whole.size() > kMostLengthDigits || tail.size() < 2 || tail[0] != '.' ||
      !IsDigit(tail[1])) {
    return Fail(offset(), "a length in millimetres with one decimal");
  }
  tenths = Value(whole) * 10 + (tail[1] - '0');
  at_ += whole.size() + 2;
  return true;
}

bool Cursor::Printable(std::string_view what, std::size_t most, std::string_view& text) {
  const std::string_view rest = Rest();
  const std::size_t length = static_cast<std::size_t>(
      std::find_if_not(rest.begin(), rest.end(), IsPrintable) - rest.begin());
  if (length == 0 || length > most) {
    return Fail(offset(), std::string(what) + " of 1 to " + std::to_string(most) + " characters");
  }
  text = rest.substr(0, length);
  at_ += length;
  return true;
}

bool Cursor::Bytes(std::uint64_t count, std::string_view what,
                   std::span<const std::uint8_t>& data) {
  const std::size_t left = bytes_.size() - at_;
  if (count > left) {
    return Fail(end(), std::to_string(count) + " bytes of " + std::string(what) + " from byte " +
                           std::to_string(offset()) + " on, " + std::to_string(count - left) +
                           " more");
  }
  data = bytes_.subspan(at_, count);
  at_ += count;
  return true;
}

bool Cursor::Fail(std::uint64_t offset, std::string expected) {
  if (malformed_) return false;
  const std::string_view rest = Text(offset, end());
  std::string found = "the end of the stream";
  if (rest.size() >= kShownBytes) {
    found = Quote(rest.substr(0, kShownBytes));
  } else if (!rest.empty()) {
    found = Quote(rest) + " and the end of the stream";
  }
  malformed_ = Malformed{offset, std::move(expected), std::move(found)};
  return false;
}

}  // namespace tspl
