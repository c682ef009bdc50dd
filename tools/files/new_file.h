// A file that has its name only when it is whole.
#ifndef TARVO_FILES_NEW_FILE_H_
#define TARVO_FILES_NEW_FILE_H_

#include <sys/types.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "files/unfinished.h"

namespace files {

/// What becomes of a plain file that has the name already.
enum class Existing {
  kReplace,  // in one step, when the new one is whole
  kKeep,     // and the new one is refused
};

/// Until Finish() it is a hidden file in the same folder, which goes when its owner goes. Whatever
/// else has the name - a link, a pipe, a device, a folder - is left alone and refuses the file: who
/// may write to the folder may have planted it. No link is followed and nothing is waited for.
class NewFile {
 public:
  /// Begins the file for `path`, empty; error() says when that failed. `mode` are its permissions,
  /// less the process's umask.
  NewFile(const std::string& path, Existing existing, mode_t mode);

  /// Likewise, with `hidden`, a name without a folder, for the hidden file. Of those who begin a
  /// file by one hidden name at a time, one succeeds.
  NewFile(const std::string& path, Existing existing, mode_t mode, const std::string& hidden);

  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  const std::string& path() const { return path_; }

  /// Why there is no file, which then has no stream; empty when there is one.
  const std::string& error() const { return error_; }

  /// Whether that was because the name, or the hidden one, is taken.
  bool taken() const { return taken_; }

  /// To be written to; null behind Finish().
  std::FILE* stream() const { return stream_; }

  /// The bytes that were written to the stream.
  std::uint64_t size() const;

  /// Gives the file its name. Returns an empty text, or why it can't have it: a byte could not be
  /// written, or the name was taken meanwhile. Nothing is left of the file then.
  std::string Finish();

 private:
  int Begin(const std::string& hidden, mode_t mode);
  bool Refused();
  void Remove();

  std::string path_;
  std::string hidden_;
  Existing existing_;
  std::FILE* stream_ = nullptr;
  std::string error_;
  bool taken_ = false;
  Unfinished mark_;
};

}  // namespace files

#endif  // TARVO_FILES_NEW_FILE_H_
