// Writes down which files a program opens, and whether a program that it starts would get them too.
// Preloaded into the shipped filters, so that a file is seen however short it is open.
//
// TARVO_TEST_OPENED: the file to which each is added, as "closed PATH" or "kept PATH". Only what
// the program itself opens is in it: what libraries do is theirs.
//
// Plain C inside: this code runs before anything else in the process.
#include <dlfcn.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/auxv.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "library_calls.h"

namespace {

using support::FOpen;
using support::next;
using support::Open;
using support::OpenAt;
using MakeTemporary = int(char*);
using MakeTemporaryWith = int(char*, int);

/// Whether the code at `address` is the program's own.
bool isOfTheProgram(const void* address) {
  Dl_info caller{}, program{};
  return dladdr(address, &caller) != 0 &&
         dladdr(reinterpret_cast<const void*>(getauxval(AT_ENTRY)), &program) != 0 &&
         caller.dli_fbase == program.dli_fbase;
}

/// Adds a file that was opened from `caller`; returns its descriptor.
int witnessed(int descriptor, const char* path, const void* caller) {
  const char* list = getenv("TARVO_TEST_OPENED");
  if (descriptor == -1 || list == nullptr || !isOfTheProgram(caller)) return descriptor;
  const bool closed = (fcntl(descriptor, F_GETFD) & FD_CLOEXEC) != 0;
  const long file = syscall(SYS_openat, AT_FDCWD, list, O_WRONLY | O_CREAT | O_APPEND, 0600);
  if (file == -1) abort();
  dprintf(static_cast<int>(file), "%s %s\n", closed ? "closed" : "kept", path);
  close(static_cast<int>(file));
  return descriptor;
}

FILE* witnessed(FILE* file, const char* path, const void* caller) {
  if (file != nullptr) witnessed(fileno(file), path, caller);
  return file;
}

}  // namespace

#define TARVO_OPEN(name)                                                                       \
  int name(const char* path, int flags, ...) {                                                 \
    TARVO_MODE_OF(flags)                                                                       \
    return witnessed(next<Open>(#name)(path, flags, mode), path, __builtin_return_address(0)); \
  }

#define TARVO_OPEN_AT(name)                                                \
  int name(int folder, const char* path, int flags, ...) {                 \
    TARVO_MODE_OF(flags)                                                   \
    return witnessed(next<OpenAt>(#name)(folder, path, flags, mode), path, \
                     __builtin_return_address(0));                         \
  }

#define TARVO_FOPEN(name)                                                                \
  FILE* name(const char* path, const char* mode) {                                       \
    return witnessed(next<FOpen>(#name)(path, mode), path, __builtin_return_address(0)); \
  }

#define TARVO_MAKE_TEMPORARY(name)                                                         \
  int name(char* path) {                                                                   \
    return witnessed(next<MakeTemporary>(#name)(path), path, __builtin_return_address(0)); \
  }

#define TARVO_MAKE_TEMPORARY_WITH(name)                                 \
  int name(char* path, int flags) {                                     \
    return witnessed(next<MakeTemporaryWith>(#name)(path, flags), path, \
                     __builtin_return_address(0));                      \
  }

extern "C" {

TARVO_OPEN(open)
TARVO_OPEN(open64)
TARVO_OPEN_AT(openat)
TARVO_OPEN_AT(openat64)
TARVO_FOPEN(fopen)
TARVO_FOPEN(fopen64)
TARVO_MAKE_TEMPORARY(mkstemp)
TARVO_MAKE_TEMPORARY(mkstemp64)
TARVO_MAKE_TEMPORARY_WITH(mkostemp)
TARVO_MAKE_TEMPORARY_WITH(mkostemp64)

}  // extern "C"
