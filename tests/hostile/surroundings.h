// A small job that works, and worse surroundings for it.
#ifndef TARVO_TESTS_HOSTILE_SURROUNDINGS_H_
#define TARVO_TESTS_HOSTILE_SURROUNDINGS_H_

#include <optional>
#include <string>
#include <vector>

#include "jobs/filter_job.h"
#include "support/process.h"

namespace hostile {

/// The files that the good job writes, each in place of the fixed path that the filter knows.
struct Places {
  explicit Places(const jobs::FilterJob& job);

  std::filesystem::path origin, dithered;  ///< the page's two dumps
  std::filesystem::path trace;
  std::filesystem::path recording;
};

/// Gives the job's queue the good PPD, with a recording.
void recordJob(jobs::FilterJob& job);

/// The program of the good job of `pages` pages, read from standard input.
support::Program goodProgram(const jobs::FilterJob& job, int pages = 1);

/// What it sends.
std::string goodStream(int pages = 1);

/// What a printer can't read in `stream`; empty when it can read all of it.
std::string damageOf(const std::string& stream);

/// What the log of one page says when these can't be written.
struct Unwritable {
  bool origin = false;
  bool dithered = false;
  bool recording = false;
};
std::string logWithout(const Unwritable& unwritable);

/// The program started by another one, whose arguments these are.
support::Program through(const std::vector<std::string>& starter, support::Program program);

/// Starts a program as a user who may not write where it is not allowed: root may. Nothing to start
/// it with for an ordinary user; no value where a test that needs one has to be skipped.
std::optional<std::vector<std::string>> asOrdinaryUser();

/// Starts a program after `script`, with a small file system of its own mounted on `folder` with
/// `options`. No value where this system does not let the test mount anything.
std::optional<std::vector<std::string>> withFileSystem(const std::filesystem::path& folder,
                                                       const std::string& options,
                                                       const std::string& script);

}  // namespace hostile

#endif  // TARVO_TESTS_HOSTILE_SURROUNDINGS_H_
