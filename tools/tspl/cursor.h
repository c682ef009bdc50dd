// A place in a stream, and the smallest things that can be read there.
#ifndef TARVO_TSPL_CURSOR_H_
#define TARVO_TSPL_CURSOR_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "tspl/reader.h"

namespace tspl {

/// `text` in double quotes, with what does not print escaped as in C.
std::string Quote(std::string_view text);

/// Each reading call takes what it describes, moves behind it and returns true; or it notes what
/// was expected and found where, and returns false. Only the first failure is kept, so calls can
/// be chained with &&.
class Cursor {
 public:
  /// `bytes` must outlive the cursor and what it hands out. They stand at `start` in their stream,
  /// and all offsets are the stream's.
  Cursor(std::span<const std::uint8_t> bytes, std::uint64_t start) : bytes_(bytes), start_(start) {}

  std::uint64_t offset() const { return start_ + at_; }
  bool AtEnd() const { return at_ == bytes_.size(); }
  const std::optional<Malformed>& malformed() const { return malformed_; }

  /// The bytes from `from` up to `to`, as text. REQUIRES: start <= from <= to <= the stream's end.
  std::string_view Text(std::uint64_t from, std::uint64_t to) const;

  /// Whether `text` comes next; moves nothing and never fails.
  bool Sees(std::string_view text) const;

  /// Exactly `text`. Fails at the first byte that differs.
  bool Literal(std::string_view text);

  /// A whole number from `least` to `most` as "%d" writes it: no sign but a minus, no leading
  /// zero. `what` names it in the failure.
  bool Integer(std::string_view what, std::int64_t least, std::int64_t most, std::int64_t& value);

  /// A length that is not negative, as "%.1f" writes it, at most twelve digits before the point:
  /// the longest that 32 bits of dots at 1 dot per inch make. `tenths` gets ten times its value.
  bool Length(std::int64_t& tenths);

  /// One to `most` printable ASCII characters, up to the next that is none of them.
  bool Printable(std::string_view what, std::size_t most, std::string_view& text);

  /// Exactly `count` bytes of any value. Fails at the end of the stream when fewer are left, and
  /// costs nothing then.
  bool Bytes(std::uint64_t count, std::string_view what, std::span<const std::uint8_t>& data);

  /// Notes a failure at `offset`, with the bytes found there, and returns false.
  bool Fail(std::uint64_t offset, std::string expected);

 private:
  std::uint64_t end() const { return start_ + bytes_.size(); }
  std::string_view Rest() const { return Text(offset(), end()); }

  std::span<const std::uint8_t> bytes_;
  std::uint64_t start_;
  std::size_t at_ = 0;  // in bytes_
  std::optional<Malformed> malformed_;
};

}  // namespace tspl

#endif  // TARVO_TSPL_CURSOR_H_
