// Puts the two fixed places that the filter writes to, and the clock, under a test's control, so
// that the shipped binary can be tested unchanged and many tests can run side by side.
//
// TARVO_TEST_FOLDER: /var/spool/cups/tmp/NAME becomes FOLDER/spool/NAME, and /tmp/xxxxx.log becomes
// FOLDER/xxxxx.log; without a folder neither can be opened, so that no test writes to the real
// ones. TARVO_TEST_TIME: what time() answers, in seconds since 1970.
//
// Plain C inside: this code runs before anything else in the process.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
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

time_t time(time_t* result) {
  const char* fixed = getenv("TARVO_TEST_TIME");
  if (fixed == nullptr) return next<time_t(time_t*)>("time")(result);
  const time_t moment = static_cast<time_t>(strtoll(fixed, nullptr, 10));
  if (result != nullptr) *result = moment;
  return moment;
}

}  // extern "C"
