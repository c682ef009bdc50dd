// The one log call. Lines go to standard error, where the print spooler takes a line's level from
// its prefix.
#ifndef TARVO_COMMON_LOG_H_
#define TARVO_COMMON_LOG_H_

extern "C" {  // a plain name: C code can call it

/// Writes one line to standard error: the prefix of `level`, the message formatted like `printf`
/// with no blank between, and a line end.
///
/// Levels and prefixes: 0 and 1 "DEBUG:", 2 "WARN:", 3 "ERROR:", 4 "CRIT:", 5 "INVALID:".
/// REQUIRES: 0 <= level <= 5. A `format` that ends in its own "\n" gives an empty line after it.
void tarvoLogCommon(int level, const char* format, ...) __attribute__((format(printf, 2, 3)));

}  // extern "C"

#endif  // TARVO_COMMON_LOG_H_
