// Files that are being written, and what becomes of them when the program is ended meanwhile.
#ifndef TARVO_FILES_UNFINISHED_H_
#define TARVO_FILES_UNFINISHED_H_

#include <csignal>
#include <string>

namespace files {

/// Removes the files that are marked. A signal handler may call it, and a thread that is about to
/// end the process; what the others of its threads have begun meanwhile may stay.
void RemoveUnfinished();

/// From now on SIGHUP, SIGINT, SIGQUIT and SIGTERM remove the marked files and then do what they
/// did before; those that are ignored stay ignored.
void RemoveUnfinishedAtSignals();

/// While it lives, no signal comes to this thread.
class SignalsHeld {
 public:
  SignalsHeld();
  ~SignalsHeld();
  SignalsHeld(const SignalsHeld&) = delete;
  SignalsHeld& operator=(const SignalsHeld&) = delete;

 private:
  sigset_t before_;
};

/// Marks one file while it lives. Of more than four at a time, some are not marked.
class Unfinished {
 public:
  Unfinished() = default;
  ~Unfinished() { Clear(); }
  Unfinished(const Unfinished&) = delete;
  Unfinished& operator=(const Unfinished&) = delete;

  /// Marks the file at `path`. REQUIRES: none is.
  void Set(const std::string& path);

  /// The file is marked no longer, if one was.
  void Clear();

 private:
  int slot_ = -1;
};

}  // namespace files

#endif  // TARVO_FILES_UNFINISHED_H_
