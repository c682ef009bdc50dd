// For libraries that are loaded before a program and stand in for functions of the C library: how
// these are called that they stand in for.
//
// Plain C inside: this code runs before anything else in the process.
#ifndef TARVO_TESTS_SUPPORT_LIBRARY_CALLS_H_
#define TARVO_TESTS_SUPPORT_LIBRARY_CALLS_H_

#include <dlfcn.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <sys/types.h>

namespace support {

using Open = int(const char*, int, ...);
using OpenAt = int(int, const char*, int, ...);
using FOpen = FILE*(const char*, const char*);

/// The function of this name that comes after the one that stands in for it.
template <typename Function>
Function* next(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

inline bool needsMode(int flags) {
  return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
}

}  // namespace support

// The mode that follows `flags`, if one does, as `mode`. By hand: the C library declares the
// functions that take it with attributes of its own.
#define TARVO_MODE_OF(flags)          \
  mode_t mode = 0;                    \
  if (support::needsMode(flags)) {    \
    va_list arguments;                \
    va_start(arguments, flags);       \
    mode = va_arg(arguments, mode_t); \
    va_end(arguments);                \
  }

#endif  // TARVO_TESTS_SUPPORT_LIBRARY_CALLS_H_
