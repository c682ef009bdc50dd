#include "common/no_memory.h"

#include <unistd.h>

#include <cstdio>
#include <exception>

namespace {

const char* words = "";

[[noreturn]] void end() {
  std::fflush(nullptr);
  std::fputs(words, stderr);
  std::fflush(stderr);
  _exit(1);
}

}  // namespace

void tarvoEndWithoutMemory(const char* lastWords) {
  words = lastWords;
  std::set_terminate(end);
}
