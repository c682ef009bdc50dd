#include "fuzz/captured_process.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <list>

#include "fuzz/finding.h"

namespace fuzz {

namespace {

constexpr std::string_view kSpoolPath = "/var/spool/cups/tmp/";
constexpr std::string_view kTracePath = "/tmp/xxxxx.log";

enum class Kind { kDump, kRecording, kTrace };

/// A file that the filter writes, in the order in which they are created.
struct File {
  Kind kind;
  std::string name;
  std::string bytes;
  int descriptor;  ///< through which the filter looks at it, or -1
};

/// What is being captured, which the functions below that stand in for the C library's write to.
struct Capture {
  Surroundings surroundings;
  Captured result;
  std::list<File> files;
  std::size_t used = 0;  ///< of the room on the disk
  int openStreams = 0;
};
Capture* capture = nullptr;

ssize_t append(void* text, const char* bytes, std::size_t size) {
  static_cast<std::string*>(text)->append(bytes, size);
  return static_cast<ssize_t>(size);
}

FILE* textStream(std::string& text) {
  FILE* stream = ::fopencookie(&text, "w", {nullptr, append, nullptr, nullptr});
  require(stream != nullptr, "no stream");
  return stream;
}

/// Full, the disk takes what it has room for; after that nothing.
ssize_t writeToDisk(void* file, const char* bytes, std::size_t size) {
  const std::size_t left = capture->surroundings.room - capture->used;
  const std::size_t fitting = std::min(size, left);
  if (fitting == 0 && size > 0) {
    errno = ENOSPC;
    return 0;
  }
  capture->used += fitting;
  return append(&static_cast<File*>(file)->bytes, bytes, fitting);
}

int closeFile(void* file) {
  const int descriptor = static_cast<File*>(file)->descriptor;
  --capture->openStreams;
  return descriptor == -1 ? 0 : ::close(descriptor);
}

FILE* streamOf(File& file) {
  ++capture->openStreams;
  return ::fopencookie(&file, "w", {nullptr, writeToDisk, nullptr, closeFile});
}

/// The file at `path`, new and empty; null when it can't be created.
File* createFile(std::string_view path) {
  const Surroundings& around = capture->surroundings;
  Kind kind = Kind::kRecording;
  bool possible = around.recordingCanBeCreated;
  if (path == kTracePath) {
    kind = Kind::kTrace;
    possible = around.traceCanBeWritten;
  } else if (path.starts_with(kSpoolPath)) {
    kind = Kind::kDump;
    possible = around.dumpsCanBeWritten;
    path.remove_prefix(kSpoolPath.size());
    ++capture->result.dumpsBegun;
  }
  if (!possible) {
    errno = EACCES;
    return nullptr;
  }
  return &capture->files.emplace_back(File{kind, std::string(path), "", -1});
}

bool canWrite(int flags) {
  return (flags & O_ACCMODE) != O_RDONLY || (flags & (O_CREAT | O_TRUNC)) != 0;
}

File* fileOf(int descriptor) {
  if (capture == nullptr || descriptor < 0) return nullptr;
  for (File& file : capture->files) {
    if (file.descriptor == descriptor) return &file;
  }
  return nullptr;
}

/// The name that a file in memory has for a path.
std::string_view nameOf(std::string_view path) {
  if (path.starts_with(kSpoolPath)) path.remove_prefix(kSpoolPath.size());
  return path;
}

std::list<File>::iterator findFile(std::string_view path) {
  return std::find_if(capture->files.begin(), capture->files.end(),
                      [&](const File& one) { return one.name == nameOf(path); });
}

int renameFile(std::string_view from, std::string_view to) {
  const auto file = findFile(from);
  require(file != capture->files.end(), "renames what it has not made");
  file->name = nameOf(to);
  return 0;
}

/// What it held is free again.
int removeFile(std::string_view path) {
  const auto file = findFile(path);
  require(file != capture->files.end(), "removes what it has not made");
  capture->used -= file->bytes.size();
  capture->files.erase(file);
  return 0;
}

/// Something that can be truncated, for those who open a file before they make a stream of it.
int openDescriptor(std::string_view path) {
  File* file = createFile(path);
  if (file == nullptr) return -1;
  // A number that an earlier file had is this one's now.
  const int descriptor = ::memfd_create("file", MFD_CLOEXEC);
  if (File* earlier = fileOf(descriptor)) earlier->descriptor = -1;
  file->descriptor = descriptor;
  return descriptor;
}

/// Gives what the C library says of a file in memory the looks of a plain file of one's own.
void dress(struct stat& status) {
  status.st_mode = S_IFREG | 0600;
  status.st_nlink = 1;
  status.st_uid = ::geteuid();
}

}  // namespace

CapturedProcess::CapturedProcess(const Surroundings& surroundings)
    : output_(stdout), error_(stderr) {
  require(capture == nullptr, "two captures at once");
  capture = new Capture{surroundings, {}, {}, 0, 0};
  stdout = textStream(capture->result.output);
  stderr = textStream(capture->result.error);
}

Captured CapturedProcess::finish() {
  ::fclose(stdout);
  ::fclose(stderr);
  stdout = output_;
  stderr = error_;
  require(capture->openStreams == 0, "leaves a file open");
  Captured result = std::move(capture->result);
  for (File& file : capture->files) {
    switch (file.kind) {
      case Kind::kDump:
        result.dumps.emplace_back(std::move(file.name), std::move(file.bytes));
        break;
      case Kind::kRecording:
        result.recordings.emplace_back(std::move(file.name), std::move(file.bytes));
        break;
      case Kind::kTrace:
        result.trace = std::move(file.bytes);
    }
  }
  delete capture;
  capture = nullptr;
  return result;
}

CapturedProcess::~CapturedProcess() { require(capture == nullptr, "a capture was not finished"); }

MemoryFile::MemoryFile()
    : descriptor_(::memfd_create("input", MFD_CLOEXEC)),
      path_("/proc/self/fd/" + std::to_string(descriptor_)) {
  require(descriptor_ != -1, "no file in memory");
}

MemoryFile::~MemoryFile() { ::close(descriptor_); }

void MemoryFile::set(std::string_view bytes) {
  require(
      ::ftruncate(descriptor_, 0) == 0 && ::lseek(descriptor_, 0, SEEK_SET) == 0 &&
          ::write(descriptor_, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()) &&
          ::lseek(descriptor_, 0, SEEK_SET) == 0,
      "can't fill a file in memory");
}

std::string MemoryFile::content() const {
  std::string bytes(static_cast<std::size_t>(::lseek(descriptor_, 0, SEEK_END)), '\0');
  require(::pread(descriptor_, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()),
          "can't read a file in memory");
  return bytes;
}

}  // namespace fuzz

// The C library's functions by which the filter reaches files and the clock.

namespace {

template <typename Function>
Function* libraryFunction(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

using Open = int(const char*, int, ...);
using FOpen = FILE*(const char*, const char*);

FILE* openStream(FOpen* next, const char* path, const char* mode) {
  // "wb" is the fuzzer's, which writes down what it found also in the middle of a capture.
  const bool other = mode[0] == 'r' || std::string_view(mode) == "wb";
  if (fuzz::capture == nullptr || other) return next(path, mode);
  fuzz::File* file = fuzz::createFile(path);
  return file == nullptr ? nullptr : fuzz::streamOf(*file);
}

using FStat = int(int, struct stat*);
using LStat = int(const char*, struct stat*);
using MakeTemporary = int(char*, int);
using Rename = int(const char*, const char*);
using Unlink = int(const char*);
using FStatVfs = int(int, struct statvfs*);

}  // namespace

#define TARVO_OPEN(name)                                                     \
  int name(const char* path, int flags, ...) {                               \
    static Open* const next = libraryFunction<Open>(#name);                  \
    mode_t mode = 0;                                                         \
    if ((flags & O_CREAT) != 0) {                                            \
      va_list arguments;                                                     \
      va_start(arguments, flags);                                            \
      mode = va_arg(arguments, mode_t);                                      \
      va_end(arguments);                                                     \
    }                                                                        \
    const bool captured = fuzz::capture != nullptr && fuzz::canWrite(flags); \
    return captured ? fuzz::openDescriptor(path) : next(path, flags, mode);  \
  }

extern "C" {

TARVO_OPEN(open)
TARVO_OPEN(open64)

FILE* fopen(const char* path, const char* mode) {
  static FOpen* const next = libraryFunction<FOpen>("fopen");
  return openStream(next, path, mode);
}

FILE* fopen64(const char* path, const char* mode) {
  static FOpen* const next = libraryFunction<FOpen>("fopen64");
  return openStream(next, path, mode);
}

FILE* fdopen(int descriptor, const char* mode) {
  static auto* const next = libraryFunction<FILE*(int, const char*)>("fdopen");
  fuzz::File* file = fuzz::fileOf(descriptor);
  return file == nullptr ? next(descriptor, mode) : fuzz::streamOf(*file);
}

int fstat(int descriptor, struct stat* status) {
  static FStat* const next = libraryFunction<FStat>("fstat");
  const int result = next(descriptor, status);
  if (result == 0 && fuzz::fileOf(descriptor) != nullptr) fuzz::dress(*status);
  return result;
}

int lstat(const char* path, struct stat* status) {
  static LStat* const next = libraryFunction<LStat>("lstat");
  if (fuzz::capture == nullptr) return next(path, status);
  if (fuzz::findFile(path) == fuzz::capture->files.end()) {
    errno = ENOENT;
    return -1;
  }
  fuzz::dress(*status);
  return 0;
}

int mkostemp(char* path, int flags) {
  static auto* const next = libraryFunction<MakeTemporary>("mkostemp");
  return fuzz::capture == nullptr ? next(path, flags) : fuzz::openDescriptor(path);
}

int rename(const char* from, const char* to) {
  static auto* const next = libraryFunction<Rename>("rename");
  return fuzz::capture == nullptr ? next(from, to) : fuzz::renameFile(from, to);
}

int unlink(const char* path) {
  static auto* const next = libraryFunction<Unlink>("unlink");
  return fuzz::capture == nullptr ? next(path) : fuzz::removeFile(path);
}

int fstatvfs(int descriptor, struct statvfs* status) {
  static auto* const next = libraryFunction<FStatVfs>("fstatvfs");
  if (fuzz::capture == nullptr) return next(descriptor, status);
  *status = {};
  status->f_frsize = 4096;
  status->f_blocks = std::uint64_t{1} << 28U;
  status->f_bavail = std::uint64_t{1} << 27U;
  return 0;
}

time_t time(time_t* result) {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  const time_t moment =
      fuzz::capture == nullptr ? now.tv_sec : time_t{fuzz::capture->surroundings.time};
  if (result != nullptr) *result = moment;
  return moment;
}

}  // extern "C"
