// Ownership of standard I/O streams.
#ifndef TARVO_COMMON_FILE_H_
#define TARVO_COMMON_FILE_H_

#include <cstdio>
#include <memory>

/// Closes a stream at the end of its owner's life.
struct CFileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

using FileOwner = std::unique_ptr<std::FILE, CFileCloser>;

#endif  // TARVO_COMMON_FILE_H_
