#include "reference/log.h"

#include <array>
#include <cstdarg>
#include <sstream>

#include "reference/text.h"

namespace reference {

void Log::line(int level, const char* format, ...) {
  constexpr std::array<const char*, 6> kPrefixes = {
      "DEBUG:", "DEBUG:", "WARN:", "ERROR:", "CRIT:", "INVALID:"};
  va_list arguments;
  va_start(arguments, format);
  text_ += kPrefixes[static_cast<std::size_t>(level)] + formattedList(format, arguments) + "\n";
  va_end(arguments);
}

std::vector<std::string> Log::lines() const {
  std::vector<std::string> lines;
  std::istringstream stream(text_);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

}  // namespace reference
