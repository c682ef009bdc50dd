// Differences that a person can read.
#ifndef TARVO_TESTS_SUPPORT_DIFFERENCES_H_
#define TARVO_TESTS_SUPPORT_DIFFERENCES_H_

#include <string>
#include <string_view>
#include <vector>

namespace support {

/// `bytes` with everything but printable ASCII written as "\n", "\r" or "\xHH".
std::string printable(std::string_view bytes);

/// Empty when equal. Else the offset of the first byte that differs, both lengths, and the bytes
/// around it as text and in hexadecimal.
std::string firstDifference(std::string_view expected, std::string_view actual);

/// The same for lists of lines: the number of the first line that differs, with the lines around.
std::string firstDifference(const std::vector<std::string>& expected,
                            const std::vector<std::string>& actual);

/// `text` cut at its line ends; a last line without its end counts as a line.
std::vector<std::string> linesOf(std::string_view text);

}  // namespace support

#endif  // TARVO_TESTS_SUPPORT_DIFFERENCES_H_
