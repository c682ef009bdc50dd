#include "reference/text.h"

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace reference {

std::string formattedList(const char* format, va_list arguments) {
  va_list measured;
  va_copy(measured, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, measured);
  va_end(measured);
  std::vector<char> text(static_cast<std::size_t>(length) + 1);
  std::vsnprintf(text.data(), text.size(), format, arguments);
  return std::string(text.data(), static_cast<std::size_t>(length));
}

std::string formatted(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::string text = formattedList(format, arguments);
  va_end(arguments);
  return text;
}

bool contains(const std::string& text, const char* part) {
  return text.find(part) != std::string::npos;
}

int leadingInt(const std::string& text) {
  return static_cast<int>(std::strtol(text.c_str(), nullptr, 10));
}

}  // namespace reference
