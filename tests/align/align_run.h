// Runs rastertoaligned, and reads raster streams back.
#ifndef TARVO_TESTS_ALIGN_ALIGN_RUN_H_
#define TARVO_TESTS_ALIGN_ALIGN_RUN_H_

#include <string>
#include <vector>

#include "support/process.h"
#include "support/raster.h"

/// The filter with the arguments of a job and `raster` on standard input, for a queue without a
/// PPD.
support::Program alignProgram(std::string raster);

/// What it does with them.
support::Outcome align(std::string raster);

/// The whole pages of a raster stream, and the rows of a last one that is cut short.
std::vector<support::Page> pagesOf(const std::string& raster);

#endif  // TARVO_TESTS_ALIGN_ALIGN_RUN_H_
