// What the filter left behind against what it should have left behind.
#ifndef TARVO_TESTS_FUZZ_COMPARISON_H_
#define TARVO_TESTS_FUZZ_COMPARISON_H_

#include <string>

#include "fuzz/filter_run.h"
#include "fuzz/job_case.h"
#include "reference/reference.h"

namespace fuzz {

/// The job as the plain version of the filter takes it: libcups reads PPD, options and raster.
/// Call it behind runFilter, which leaves the PPD to be opened.
reference::Job plainJob(const JobCase& job);

/// The first thing in which the filter differs from its plain version; empty when in nothing.
std::string difference(const FilterRun& run, const reference::Result& expected);

/// What is wrong with the stream as tsplview reads it: that it can't be read, or that the dots of a
/// page are not those of the processed page as it was dumped. Empty when all is right.
std::string unreadable(const FilterRun& run);

}  // namespace fuzz

#endif  // TARVO_TESTS_FUZZ_COMPARISON_H_
