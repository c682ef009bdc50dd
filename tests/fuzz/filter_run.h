// The filters' own main functions in this process.
#ifndef TARVO_TESTS_FUZZ_FILTER_RUN_H_
#define TARVO_TESTS_FUZZ_FILTER_RUN_H_

#include "fuzz/captured_process.h"
#include "fuzz/job_case.h"

namespace fuzz {

struct FilterRun {
  int status;
  Captured captured;
  long firstDump;  ///< the number of this job's first dump: a process counts its dumps
};

/// Runs the job. A descriptor that stays open is a finding.
FilterRun runFilter(const JobCase& job);

struct AlignedRun {
  int status;
  std::string output;  ///< standard output: raster
  std::string error;   ///< standard error
};

/// Passes the job's raster through the filter that stands before, on a queue with its PPD. A
/// descriptor that stays open is a finding.
AlignedRun runAligned(const JobCase& job);

/// The PPD of the job that ran last, for libcups to open.
const std::string& ppdPath();

}  // namespace fuzz

#endif  // TARVO_TESTS_FUZZ_FILTER_RUN_H_
