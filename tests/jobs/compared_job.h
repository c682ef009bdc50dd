// Runs a job through the filter and through the reference, and compares all that they leave behind.
#ifndef TARVO_TESTS_JOBS_COMPARED_JOB_H_
#define TARVO_TESTS_JOBS_COMPARED_JOB_H_

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "filter_job.h"
#include "reference/reference.h"
#include "support/raster.h"

namespace jobs {

struct ComparedJob {
  /// The choice of each option. The queue's PPD offers it and, as its default, another one.
  std::map<std::string, std::string> choices;
  /// Choices that are the PPD's own defaults, which the job does not name.
  std::map<std::string, std::string> defaults;
  std::vector<support::Page> pages;
  support::Packing packing = support::Packing::Uncompressed;
  Source source = Source::StandardInput;
  bool record = false;
  std::string recordingAttribute = "recording";
  /// The filter may map this much; a page as large is one that there is no memory for.
  std::optional<std::uint64_t> addressSpaceLimitBytes;
};

/// How many jobs and pages were compared by this process.
struct Count {
  long jobs = 0;
  long pages = 0;
};
Count& count();

/// Compares exit status, standard output, recording file, dumps, trace file and log; and reads
/// standard output as a printer would. Empty when nothing differs and all of it can be read; else
/// the first difference of each.
std::string difference(const ComparedJob& job);

/// The same for a job whose raster is not what the pages would make.
std::string difference(const ComparedJob& job, const std::string& raster);

}  // namespace jobs

#endif  // TARVO_TESTS_JOBS_COMPARED_JOB_H_
