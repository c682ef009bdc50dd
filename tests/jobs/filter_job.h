// Runs the built filter on one job, in a folder of its own.
#ifndef TARVO_TESTS_JOBS_FILTER_JOB_H_
#define TARVO_TESTS_JOBS_FILTER_JOB_H_

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "support/folder.h"
#include "support/process.h"

namespace jobs {

/// The moment at which every job runs, UTC: 16 November 2026, 07:05:09.
std::tm moment();

/// The filter that the jobs run.
std::filesystem::path filterPath();

/// What they load before it: it puts the test's folder in the place of the system's.
std::filesystem::path redirectPath();

/// How the raster reaches the filter.
enum class Source { StandardInput, FileArgument };

/// What a job left behind.
struct JobRun {
  support::Outcome outcome;
  std::vector<std::pair<std::string, std::string>> dumps;  ///< name and bytes, in order of number
  std::optional<std::string> trace;
  std::vector<std::pair<std::string, std::string>> recordings;  ///< files in the working folder
};

/// One job, and the folder it runs in: `spool/` stands for the spooler's temporary folder,
/// `xxxxx.log` for the trace file, `work/` is the working folder. A test may change all of it
/// before it runs the job.
class FilterJob {
 public:
  FilterJob();

  /// Writes the PPD that the job's queue has; without it there is none.
  void setPpd(const std::string& text);

  /// Runs the job: five arguments, of which only `options` counts, and the raster.
  JobRun run(const std::string& raster, const std::string& options = "",
             Source source = Source::StandardInput) const;

  /// Runs the program as it stands, with its environment completed.
  JobRun run(support::Program program) const;

  /// The same without looking at the files it leaves.
  support::Outcome runAlone(support::Program program) const;

  /// The program of a job whose raster is still to be given.
  support::Program program(const std::string& options = "") const;

  /// Gives it the raster.
  void give(support::Program& program, const std::string& raster, Source source) const;

  std::filesystem::path spool() const { return folder_ / "spool"; }
  std::filesystem::path trace() const { return folder_ / "xxxxx.log"; }
  std::filesystem::path work() const { return folder_ / "work"; }
  std::filesystem::path ppd() const { return folder_ / "queue.ppd"; }
  const support::Folder& folder() const { return folder_; }

 private:
  support::Folder folder_;
};

/// True when the filter runs under the address sanitizer: it starts more slowly, and its own memory
/// defeats any limit.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kAddressSanitizer = true;
#else
inline constexpr bool kAddressSanitizer = false;
#endif

/// Limits what the program may map. The address sanitizer maps far more than any limit by itself;
/// under it the limit is on each block of memory that the program asks for.
void limitMemory(support::Program& program, std::uint64_t bytes);

/// `log` without the lines that the address sanitizer adds for a block that it refuses.
std::string withoutSanitizerLines(const std::string& log);

}  // namespace jobs

#endif  // TARVO_TESTS_JOBS_FILTER_JOB_H_
