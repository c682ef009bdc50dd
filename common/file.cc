#include "common/file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace {

constexpr mode_t kOwnerOnly = 0600;

bool isOurPlainFile(const struct stat& status) {
  return S_ISREG(status.st_mode) && status.st_nlink == 1 && status.st_uid == geteuid();
}

enum class Sharing { kWithAll, kWithNone };

/// Whether nobody else has the file, or where files can't be locked, nobody that we know of.
bool lock(int descriptor) {
  return flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

FileOwner openOurs(const char* path, Sharing sharing) {
  // Emptied only once it is known to be ours; without O_NONBLOCK a pipe would be waited for.
  const int descriptor =
      open(path, O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, kOwnerOnly);
  if (descriptor == -1) return nullptr;
  FileOwner file;
  int error = 0;
  struct stat status {};
  // Looked at behind the lock: who had it until now may have removed the file.
  if (sharing == Sharing::kWithNone && !lock(descriptor)) {
    error = EWOULDBLOCK;
  } else if (fstat(descriptor, &status) != 0 || !isOurPlainFile(status)) {
    error = status.st_nlink == 0 ? EWOULDBLOCK : EEXIST;
  } else if (fchmod(descriptor, kOwnerOnly) == 0 && ftruncate(descriptor, 0) == 0) {
    file.reset(fdopen(descriptor, "w+"));
  }
  if (file == nullptr) {
    close(descriptor);
    if (error != 0) errno = error;
  }
  return file;
}

}  // namespace

FileOwner tarvoOpenOwnFile(const char* path) { return openOurs(path, Sharing::kWithAll); }

FileOwner tarvoOpenUnsharedFile(const char* path) { return openOurs(path, Sharing::kWithNone); }

bool tarvoIsOccupied(const char* path) {
  struct stat status {};
  return lstat(path, &status) == 0 && !isOurPlainFile(status);
}

bool tarvoCloseWhole(FileOwner file) {
  // Asked in this order: closing writes what is still held, and the mark is gone with the stream.
  const bool flushed = std::fflush(file.get()) == 0 && std::ferror(file.get()) == 0;
  return std::fclose(file.release()) == 0 && flushed;
}
