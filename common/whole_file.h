// Files that are there whole or not at all.
#ifndef TARVO_COMMON_WHOLE_FILE_H_
#define TARVO_COMMON_WHOLE_FILE_H_

#include <sys/statvfs.h>

#include <cstdint>
#include <string>

#include "common/file.h"

/// Whether a file system keeps enough free room for others when `bytes` more are written to it: at
/// least 5 % of it, and at least 256 MiB. One that tells no size is taken to have room.
bool tarvoHasRoomFor(const struct statvfs& fileSystem, std::uint64_t bytes);

/// A file that gets its name when it is complete. Until then it has a temporary one in the same
/// folder, ".NAME-XXXXXX"; a process that is killed leaves that behind. Whoever writes to the same
/// name at the same time, the name always holds what one of them wrote, whole.
class WholeFile {
 public:
  /// Begins the file that is to be at `path`, of `bytes` bytes or so. There is no stream when it
  /// can't be created, when it would leave its file system too little room (tarvoHasRoomFor), or
  /// when something is at `path` that is not a plain file of this process's user.
  WholeFile(const char* path, std::uint64_t bytes);

  /// Removes the file unless it was kept.
  ~WholeFile();

  WholeFile(const WholeFile&) = delete;
  WholeFile& operator=(const WholeFile&) = delete;

  /// Where to write; null when there is none.
  std::FILE* stream() const { return file_.get(); }

  /// Completes the file: call it once, with a stream. False when not all of it could be written or
  /// it could not get its name; nothing is left of it then.
  bool keep();

 private:
  std::string path_;
  std::string temporary_;
  FileOwner file_;
};

#endif  // TARVO_COMMON_WHOLE_FILE_H_
