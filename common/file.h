// Standard I/O streams: who owns them, and which files may be written to.
#ifndef TARVO_COMMON_FILE_H_
#define TARVO_COMMON_FILE_H_

#include <cstdio>
#include <memory>

/// Closes a stream at the end of its owner's life.
struct CFileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

using FileOwner = std::unique_ptr<std::FILE, CFileCloser>;

/// Opens the file at `path` for writing, created or emptied, where others may write to its folder
/// too. Null when it can't be opened, or when what is there is not a plain file of this process's
/// user with no other name: nothing that was planted there is followed, emptied or waited for.
FileOwner tarvoOpenOwnFile(const char* path);

#endif  // TARVO_COMMON_FILE_H_
