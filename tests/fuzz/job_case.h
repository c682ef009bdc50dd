// Whole jobs that are drawn from bytes.
#ifndef TARVO_TESTS_FUZZ_JOB_CASE_H_
#define TARVO_TESTS_FUZZ_JOB_CASE_H_

#include <cstdint>
#include <limits>
#include <string>

#include "fuzz/captured_process.h"
#include "fuzz/input.h"

namespace fuzz {

/// What a filter is given.
struct JobCase {
  Surroundings surroundings;
  std::string ppd;      ///< empty: there is none
  std::string options;  ///< the text of the job's options
  std::string raster;
  bool fromStandardInput = false;
};

/// Most inputs are a job as the spooler sends it, of up to three small pages, with the choices that
/// the models have; some break it in one place: a field of a header, a choice, the end of the
/// raster. Some are bytes that stand for the PPD's options, the job's options or the raster as they
/// are.
JobCase drawJob(Input& input);

/// The PPD and the options of such a job alone.
void drawSettings(Input& input, JobCase& job);

/// The raster of such a job alone.
std::string drawRaster(Input& input);

/// Whether the pages that the raster really has the bytes of are small enough to be printed
/// quickly: a few bytes can be packed megabytes. Pages that only claim to be large are, up to
/// `mostClaimed` bytes.
bool isSmall(const std::string& raster,
             std::uint64_t mostClaimed = std::numeric_limits<std::uint64_t>::max());

}  // namespace fuzz

#endif  // TARVO_TESTS_FUZZ_JOB_CASE_H_
