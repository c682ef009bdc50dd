#include "files/new_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

namespace files {
namespace {

// What has the name already, as the beginning of a sentence.
const char* NameOf(mode_t mode) {
  switch (mode & S_IFMT) {
    case S_IFREG:
      return "a file";
    case S_IFDIR:
      return "a folder";
    case S_IFLNK:
      return "a symbolic link";
    case S_IFIFO:
      return "a pipe";
    case S_IFSOCK:
      return "a socket";
    default:
      return "a device";
  }
}

// Other processes may do the same in this folder. What a crash left behind may have any name.
std::string NextHiddenName() {
  static unsigned count = 0;
  return ".tarvo-" + std::to_string(getpid()) + "-" + std::to_string(++count) + ".part";
}

// Gives the file at `from` the name `to`, which must be free.
int RenameToFree(const char* from, const char* to) {
  if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return -1;
  // Network file systems know a second name for a file, but not this way of renaming it.
  return link(from, to) == 0 ? unlink(from) : -1;
}

}  // namespace

NewFile::NewFile(const std::string& path, Existing existing, mode_t mode)
    : path_(path), existing_(existing) {
  int error = EEXIST;
  while (error == EEXIST) error = Begin(NextHiddenName(), mode);
  if (error != 0) error_ = std::strerror(error);
}

NewFile::NewFile(const std::string& path, Existing existing, mode_t mode, const std::string& hidden)
    : path_(path), existing_(existing) {
  const int error = Begin(hidden, mode);
  if (error != 0) error_ = std::strerror(error);
  if (error == EEXIST) taken_ = true;
}

NewFile::~NewFile() {
  if (stream_ != nullptr) std::fclose(stream_);
  Remove();
}

std::uint64_t NewFile::size() const { return static_cast<std::uint64_t>(ftello(stream_)); }

std::string NewFile::Finish() {
  const bool failed = std::ferror(stream_) != 0;
  // The last bytes go out here, and a network file system may only now say that it has no room.
  const bool closed = std::fclose(std::exchange(stream_, nullptr)) == 0;
  if (failed || !closed) {
    error_ = std::strerror(closed ? EIO : errno);
  } else if (!Refused()) {
    const int renamed = existing_ == Existing::kKeep ? RenameToFree(hidden_.c_str(), path_.c_str())
                                                     : std::rename(hidden_.c_str(), path_.c_str());
    if (renamed == 0) {
      mark_.Clear();
      hidden_.clear();
    } else {
      error_ = std::strerror(errno);
    }
  }
  Remove();
  return error_;
}

// Makes the hidden file. Returns 0, with a stream or what error() is to say, or why there is no
// such file, as errno has it.
int NewFile::Begin(const std::string& hidden, mode_t mode) {
  const std::string path = (std::filesystem::path(path_).parent_path() / hidden).string();
  // What has the hidden name already, a link among it, is not opened.
  const int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
  int descriptor = -1;
  {
    // A signal that ends the process comes before there is a file, or when it is marked.
    const SignalsHeld held;
    descriptor = ::open(path.c_str(), flags, mode);
    if (descriptor < 0) return errno;
    hidden_ = path;
    mark_.Set(hidden_);
  }
  // Only now: whoever gives a file this name holds the hidden one until then.
  if (Refused()) {
    ::close(descriptor);
    Remove();
    return 0;
  }
  stream_ = fdopen(descriptor, "w");
  if (stream_ != nullptr) return 0;
  const int error = errno;
  ::close(descriptor);
  Remove();
  return error;
}

bool NewFile::Refused() {
  struct stat status;
  if (lstat(path_.c_str(), &status) != 0) {
    if (errno == ENOENT) return false;
    error_ = std::strerror(errno);
    return true;
  }
  if (S_ISREG(status.st_mode) && existing_ == Existing::kReplace) return false;
  taken_ = true;
  error_ = std::string(NameOf(status.st_mode)) + " has this name and is left alone";
  return true;
}

void NewFile::Remove() {
  if (!hidden_.empty()) unlink(hidden_.c_str());
  hidden_.clear();
  mark_.Clear();
}

}  // namespace files
