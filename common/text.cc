#include "common/text.h"

#include <algorithm>
#include <cstring>

const char* tarvoPathGetBasename(const char* path) {
  if (path == nullptr) return nullptr;
  const char* base = path;
  for (const char* p = path; *p != '\0'; ++p) {
    if (*p == '/' || *p == '\\') base = p + 1;
  }
  return base;
}

char* tarvoStrCpy(char* destination, const char* source, std::size_t size) {
  const std::size_t length = std::min(::strnlen(source, size), size - 1);
  std::memcpy(destination, source, length);
  std::memset(destination + length, '\0', size - length);
  return destination;
}
