// Draws the parts of a test case from the bytes that the fuzzer makes up.
#ifndef TARVO_TESTS_FUZZ_INPUT_H_
#define TARVO_TESTS_FUZZ_INPUT_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace fuzz {

/// Bytes that are used up from the front. What is drawn behind their end is 0 or empty, so that
/// every input is a whole case and a short one stays a small one.
class Input {
 public:
  explicit Input(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  bool empty() const { return bytes_.empty(); }

  std::uint8_t byte() {
    if (bytes_.empty()) return 0;
    const std::uint8_t first = bytes_.front();
    bytes_ = bytes_.subspan(1);
    return first;
  }

  /// The lowest byte first, whatever this machine's order: a corpus serves all machines.
  std::uint32_t word() {
    std::uint32_t word = 0;
    for (unsigned shift = 0; shift < 32; shift += 8) word |= std::uint32_t{byte()} << shift;
    return word;
  }

  /// The bytes up to the next 0, at most `most`; the 0 is used up too.
  std::string text(std::size_t most) {
    std::string text;
    while (!bytes_.empty() && text.size() < most) {
      const std::uint8_t next = byte();
      if (next == 0) break;
      text.push_back(static_cast<char>(next));
    }
    return text;
  }

  /// At most `most` bytes.
  std::span<const std::uint8_t> take(std::size_t most) {
    const std::size_t count = std::min(most, bytes_.size());
    const std::span<const std::uint8_t> taken = bytes_.first(count);
    bytes_ = bytes_.subspan(count);
    return taken;
  }

  std::string_view rest() {
    const std::span<const std::uint8_t> taken = take(bytes_.size());
    return {reinterpret_cast<const char*>(taken.data()), taken.size()};
  }

  /// One of the elements of `all`.
  template <typename Array>
  const auto& oneOf(const Array& all) {
    return all[byte() % std::size(all)];
  }

 private:
  std::span<const std::uint8_t> bytes_;
};

}  // namespace fuzz

#endif  // TARVO_TESTS_FUZZ_INPUT_H_
