#include "printer/blank_lines.h"

#include <algorithm>

namespace {

bool isBlank(const unsigned char* line, unsigned long lineBytes, unsigned long skipRight) {
  const unsigned long examined = skipRight > lineBytes ? lineBytes : lineBytes - skipRight;
  return std::all_of(line, line + examined, [](unsigned char byte) { return byte == 0; });
}

}  // namespace

unsigned long tarvoImageCountBlankLinesFromFront(const unsigned char* data, unsigned long lineBytes,
                                                 unsigned long lines, unsigned long skipRight,
                                                 unsigned long stride) {
  // Quirk: blank-lines-from-front. Begins at line 1.
  for (unsigned long line = 1; line < lines; ++line) {
    if (!isBlank(data + line * stride, lineBytes, skipRight)) return line - 1;
  }
  return lines;
}

unsigned long tarvoImageCountBlankLinesFromBack(const unsigned char* data, unsigned long lineBytes,
                                                unsigned long lines, unsigned long skipRight,
                                                unsigned long stride) {
  // Quirk: blank-lines-from-back. The end of the content, not the length of the blank.
  for (unsigned long end = lines; end > 0; --end) {
    if (!isBlank(data + (end - 1) * stride, lineBytes, skipRight)) return end;
  }
  return 0;
}
