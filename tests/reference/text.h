#pragma once

#include <cstdarg>
#include <string>

namespace reference {

/// What printf would print for the format and its arguments.
std::string formatted(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// The formatted text of an argument list already begun.
std::string formattedList(const char* format, va_list arguments)
    __attribute__((format(printf, 1, 0)));

/// True when `part` occurs anywhere in `text`, case-sensitively.
bool contains(const std::string& text, const char* part);

/// The number that a text begins with, 0 when there is none; surplus bits are dropped.
int leadingInt(const std::string& text);

}  // namespace reference
