// Whole jobs in whatever surroundings: the filter ends in good order, with a stream that can be
// read.
#include "fuzz/comparison.h"
#include "fuzz/filter_run.h"
#include "fuzz/finding.h"
#include "fuzz/job_case.h"
#include "fuzz/target.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzz::Watch watch;
  fuzz::Input input({data, size});
  const fuzz::JobCase job = fuzz::drawJob(input);
  if (!fuzz::isSmall(job.raster)) return -1;
  const fuzz::FilterRun run = fuzz::runFilter(job);
  fuzz::require(run.status == 0 || run.status == 1, "an exit status that is none of the filter's");
  const fuzz::Captured& captured = run.captured;
  fuzz::require(captured.recordings.size() <= 1, "writes to a file that is none of its own");
  // On a disk that is full, too, what is left is whole.
  if (!captured.recordings.empty()) {
    fuzz::require(captured.recordings.front().second == captured.output,
                  "a recording that is not what was sent");
  }
  const std::string wrong = fuzz::unreadable(run);
  fuzz::require(wrong.empty(), wrong);
  return 0;
}
