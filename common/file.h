// Standard I/O streams: who owns them, and which files may be written to.
//
// What the filters write holds what people print: addresses, names. Their files are made for their
// own user alone, whatever the mask.
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

/// As tarvoOpenOwnFile, and keeps the file from others who open it so, as long as it is open. Null
/// with errno EWOULDBLOCK when another process has it: it is left as it is.
FileOwner tarvoOpenUnsharedFile(const char* path);

/// Whether something is at `path` that tarvoOpenOwnFile would refuse to write to.
bool tarvoIsOccupied(const char* path);

/// Closes the stream. False when not all that was written to it since it was opened is in the file.
bool tarvoCloseWhole(FileOwner file);

#endif  // TARVO_COMMON_FILE_H_
