// A program that a protected stack and a checking C library would show in.
#include <cstdio>

// Memory that can be both written and run.
asm(".pushsection .soft, \"awx\"\n.zero 16\n.popsection");

int main(int count, char** arguments) {
  char text[64];
  return std::snprintf(text, static_cast<std::size_t>(count) + 32, "%s", arguments[0]) > 0 ? 0 : 1;
}
