// Whole jobs against the plain version of the filter: everything that they leave behind is the
// same.
#include "fuzz/comparison.h"
#include "fuzz/filter_run.h"
#include "fuzz/finding.h"
#include "fuzz/job_case.h"
#include "fuzz/target.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzz::Watch watch;
  fuzz::Input input({data, size});
  fuzz::JobCase job = fuzz::drawJob(input);
  // The plain version knows no disk that fills up, and always gets the memory that it asks for.
  job.surroundings.room = fuzz::Surroundings().room;
  if (!fuzz::isSmall(job.raster, 1U << 27U)) return -1;
  const fuzz::FilterRun run = fuzz::runFilter(job);
  const reference::Result expected = reference::run(fuzz::plainJob(job));
  const std::string wrong = fuzz::difference(run, expected);
  fuzz::require(wrong.empty(), wrong);
  return 0;
}
