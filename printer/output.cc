// Every byte that is sent to the printer goes through these, to each stream in turn.
#include <cerrno>
#include <cstdarg>

#include "printer/tarvo_printer.h"

void TarvoPrinter::printBytes(const unsigned char* data, unsigned long length) {
  if (length == 0) return;  // `data` may be null then, which fwrite must not be given
  for (std::FILE* stream : outputStreams_) {
    std::fwrite(data, length, 1, stream);
    noteError(stream);
  }
}

void TarvoPrinter::printStr(const char* text) {
  for (std::FILE* stream : outputStreams_) {
    std::fprintf(stream, "%s", text);
    noteError(stream);
  }
}

void TarvoPrinter::printByte(unsigned char byte) {
  for (std::FILE* stream : outputStreams_) {
    std::fputc(byte, stream);
    noteError(stream);
  }
}

int TarvoPrinter::printFormat(const char* format, ...) {
  int count = 0;
  for (std::FILE* stream : outputStreams_) {
    va_list arguments;
    va_start(arguments, format);
    count = std::vfprintf(stream, format, arguments);
    va_end(arguments);
    noteError(stream);
  }
  return count;
}

void TarvoPrinter::noteError(std::FILE* stream) {
  // A stream knows only that it failed, and what failed first is what ruined the job.
  if (outputError_ == 0 && stream == stdout && std::ferror(stream) != 0) outputError_ = errno;
}
