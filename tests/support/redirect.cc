// Puts the two fixed places that the filter writes to, and the clock, under a test's control, so
// that the shipped binary can be tested unchanged and many tests can run side by side.
//
// TARVO_TEST_FOLDER: /var/spool/cups/tmp/NAME becomes FOLDER/spool/NAME, and /tmp/xxxxx.log becomes
// FOLDER/xxxxx.log; without a folder neither can be opened, so that no test writes to the real
// ones. TARVO_TEST_TIME: what time() answers, in seconds since 1970. TARVO_TEST_FREE: the bytes
// that are free on each file system of a terabyte; without it half of it, whatever this machine
// has.
//
// Plain C inside: this code runs before anything else in the process.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <time.h>

#include "library_calls.h"

namespace {

using support::FOpen;
using support::next;
using support::Open;
using support::OpenAt;

constexpr char kSpool[] = "/var/spool/cups/tmp/";
constexpr char kTrace[] = "/tmp/xxxxx.log";
constexpr size_t kPathSize = 4096;

const char* redirected(const char* path, char* buffer) {
  if (path == nullptr) return path;
  const char* folder = getenv("TARVO_TEST_FOLDER");
  if (folder == nullptr) folder = "/nonexistent";
  const size_t spoolLength = sizeof kSpool - 1;
  int length = 0;
  if (strncmp(path, kSpool, spoolLength) == 0) {
    length = snprintf(buffer, kPathSize, "%s/spool/%s", folder, path + spoolLength);
  } else if (strcmp(path, kTrace) == 0) {
    length = snprintf(buffer, kPathSize, "%s/xxxxx.log", folder);
  } else {
    return path;
  }
  // A path that does not fit must not reach the real place instead.
  if (length < 0 || static_cast<size_t>(length) >= kPathSize) abort();
  return buffer;
}

using LStat = int(const char*, struct stat*);
using MakeTemporary = int(char*, int);

/// The template that the caller gave gets the name that was found, in its own folder.
int makeTemporary(const char* name, char* path, int flags) {
  char buffer[kPathSize];
  const char* given = redirected(path, buffer);
  if (given == path) return next<MakeTemporary>(name)(path, flags);
  const int descriptor = next<MakeTemporary>(name)(buffer, flags);
  const size_t length = strlen(path);
  const size_t made = strlen(buffer);
  for (size_t i = 1; i <= 6; ++i) path[length - i] = buffer[made - i];
  return descriptor;
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  TARVO_MODE_OF(flags)
  char buffer[kPathSize];
  return next<Open>("open")(redirected(path, buffer), flags, mode);
}

int open64(const char* path, int flags, ...) {
  TARVO_MODE_OF(flags)
  char buffer[kPathSize];
  return next<Open>("open64")(redirected(path, buffer), flags, mode);
}

int openat(int folder, const char* path, int flags, ...) {
  TARVO_MODE_OF(flags)
  char buffer[kPathSize];
  return next<OpenAt>("openat")(folder, redirected(path, buffer), flags, mode);
}

int openat64(int folder, const char* path, int flags, ...) {
  TARVO_MODE_OF(flags)
  char buffer[kPathSize];
  return next<OpenAt>("openat64")(folder, redirected(path, buffer), flags, mode);
}

FILE* fopen(const char* path, const char* mode) {
  char buffer[kPathSize];
  return next<FOpen>("fopen")(redirected(path, buffer), mode);
}

FILE* fopen64(const char* path, const char* mode) {
  char buffer[kPathSize];
  return next<FOpen>("fopen64")(redirected(path, buffer), mode);
}

int lstat(const char* path, struct stat* status) {
  char buffer[kPathSize];
  return next<LStat>("lstat")(redirected(path, buffer), status);
}

int mkostemp(char* path, int flags) { return makeTemporary("mkostemp", path, flags); }

int mkostemp64(char* path, int flags) { return makeTemporary("mkostemp64", path, flags); }

int rename(const char* from, const char* to) {
  char bufferFrom[kPathSize], bufferTo[kPathSize];
  return next<int(const char*, const char*)>("rename")(redirected(from, bufferFrom),
                                                       redirected(to, bufferTo));
}

int unlink(const char* path) {
  char buffer[kPathSize];
  return next<int(const char*)>("unlink")(redirected(path, buffer));
}

int fstatvfs(int, struct statvfs* status) {
  const char* free = getenv("TARVO_TEST_FREE");
  memset(status, 0, sizeof *status);
  status->f_bsize = status->f_frsize = 4096;
  status->f_blocks = 1ULL << 28U;
  status->f_bavail = free == nullptr ? 1ULL << 27U : strtoull(free, nullptr, 10) / 4096;
  status->f_bfree = status->f_bavail;
  return 0;
}

time_t time(time_t* result) {
  const char* fixed = getenv("TARVO_TEST_TIME");
  if (fixed == nullptr) return next<time_t(time_t*)>("time")(result);
  const time_t moment = static_cast<time_t>(strtoll(fixed, nullptr, 10));
  if (result != nullptr) *result = moment;
  return moment;
}

}  // extern "C"
