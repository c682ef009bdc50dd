// rastertotarvo with a reader that takes its output one write at a time.
#ifndef TARVO_TESTS_CANCEL_CANCELLED_FILTER_H_
#define TARVO_TESTS_CANCEL_CANCELLED_FILTER_H_

#include <sys/types.h>

#include <filesystem>
#include <string>

/// How much the filter writes at a time: each piece of a command by itself, or blocks.
enum class Writes { kPieces, kBlocks };

/// The filter at work. Its output is a pipe that keeps its writes apart and holds one: the next one
/// waits until that is read.
class RunningFilter {
 public:
  /// `folder` takes its dumps. `input` is a raster file, or empty for a pipe that feed() fills.
  RunningFilter(const std::filesystem::path& folder, const std::filesystem::path& ppd,
                const std::filesystem::path& input, Writes writes);

  /// Ends it, if it has not ended.
  ~RunningFilter();
  RunningFilter(const RunningFilter&) = delete;
  RunningFilter& operator=(const RunningFilter&) = delete;

  void feed(const std::string& bytes) const;

  /// Takes one write; empty at the end.
  std::string take() const;

  /// Takes all that is left.
  std::string takeRest() const;

  /// Waits until the filter itself waits, for its reader or for input, or has ended.
  void settle() const;

  void terminate() const;

  /// Nobody reads on.
  void hangUp();

  /// How it ended, as waitpid has it; -1 when it did not within some seconds.
  int end();

 private:
  pid_t process_ = -1;
  int input_ = -1;
  int output_ = -1;
};

#endif  // TARVO_TESTS_CANCEL_CANCELLED_FILTER_H_
