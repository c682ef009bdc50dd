#include "common/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool isOurPlainFile(int descriptor) {
  struct stat status;
  return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1 &&
         status.st_uid == geteuid();
}

}  // namespace

FileOwner tarvoOpenOwnFile(const char* path) {
  // Emptied only once it is known to be ours; without O_NONBLOCK a pipe would be waited for.
  const int descriptor = open(path, O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0666);
  if (descriptor == -1) return nullptr;
  FileOwner file;
  if (isOurPlainFile(descriptor) && ftruncate(descriptor, 0) == 0) {
    file.reset(fdopen(descriptor, "w+"));
  }
  if (file == nullptr) close(descriptor);
  return file;
}
