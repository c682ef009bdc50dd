// The same headers on the road that a queue has: by way of rastertoaligned, which lets no page pass
// that is too large for the model.
#include <gtest/gtest.h>

#include <iostream>
#include <string>

#include "header_fields.h"
#include "hostile_job.h"
#include "jobs/good_job.h"
#include "support/differences.h"
#include "tspl/reader.h"

namespace {

using namespace hostile;
using support::Outcome;
using support::Packing;

/// What goes on is at the most what came, rows filled up to 8 dots, and paper for a page that was
/// cut short.
constexpr std::size_t kMostBytes = std::size_t{72} << 20U;

/// By which a stream of raster is known; pages follow.
constexpr std::size_t kStreamStartBytes = 4;

/// What rastertoaligned does with the raster on the job's queue.
Outcome align(const jobs::FilterJob& job, const std::string& raster) {
  support::Program program;
  program.executable = RASTERTOALIGNED;
  program.arguments = {"rastertoaligned", "1", "user", "title", "1", ""};
  program.input = support::PipedBytes{raster};
  program.environment = {{"PPD", job.ppd()}};
  // The sanitizer can't throw what the lack of memory would.
  if (!jobs::kAddressSanitizer) jobs::limitMemory(program, kAddressSpaceBytes);
  return support::run(program);
}

/// Whether a page is one that may pass: the model's largest sheet has 4 x 6 inches.
bool isAdmitted(const cups_page_header2_t& header) {
  const double width = header.cupsWidth, height = header.cupsHeight;
  const double acrossDpi = header.HWResolution[0], downDpi = header.HWResolution[1];
  const auto fits = [&](double acrossInches, double downInches) {
    return width <= acrossInches * acrossDpi && height <= downInches * downDpi;
  };
  return header.NumCopies <= 9999 && height * header.cupsBytesPerLine <= 256.0 * (1U << 20U) &&
         (acrossDpi == 0 || downDpi == 0 || fits(8, 12) || fits(12, 8));
}

void expectNoHarm(const Outcome& outcome) {
  EXPECT_EQ(outcome.signal, 0) << outcome.error;
  EXPECT_FALSE(outcome.timedOut);
  EXPECT_TRUE(outcome.status == 0 || outcome.status == 1) << outcome.ending();
  EXPECT_EQ(outcome.error.find("runtime error"), std::string::npos) << outcome.error;
  EXPECT_EQ(outcome.error.find("Sanitizer: "), std::string::npos) << outcome.error;
}

TEST(AlignedFields, NeverHarm) {
  jobs::FilterJob job;
  job.setPpd(jobs::goodPpd().text());
  int cases = 0, refusals = 0;
  for (const Field& field : fieldsInUse()) {
    for (const Value& value : valuesOf(field)) {
      const Packing packing = ++cases % 2 == 0 ? Packing::Compressed : Packing::Uncompressed;
      if (jobs::kAddressSanitizer && cases % 5 != 0) continue;
      SCOPED_TRACE(field.name + " = " + value.shown);
      cups_page_header2_t header = jobs::goodPage().header;
      set(header, field, value);
      const Outcome aligned = align(job, rasterOf(header, packing));
      expectNoHarm(aligned);
      EXPECT_LE(aligned.output.size(), kMostBytes);
      const bool refused = aligned.error.find("ERROR: Page 1 is too large: ") != std::string::npos;
      refusals += refused ? 1 : 0;
      if (refused) {
        EXPECT_EQ(aligned.output.size(), kStreamStartBytes);
      }
      for (const support::Page& page : hostile::pagesOf(aligned.output)) {
        EXPECT_TRUE(isAdmitted(page.header));
      }
      if (aligned.status == 1) {
        const auto lines = support::linesOf(jobs::withoutSanitizerLines(aligned.error));
        EXPECT_EQ(lines.back().substr(0, 7), "ERROR: ") << aligned.error;
      }
      support::Program program = job.program();
      program.input = support::PipedBytes{aligned.output};
      jobs::limitMemory(program, kAddressSpaceBytes);
      const Outcome printed = job.runAlone(program);
      expectNoHarm(printed);
      const tspl::Stream stream = tspl::Read(
          {reinterpret_cast<const std::uint8_t*>(printed.output.data()), printed.output.size()});
      EXPECT_FALSE(stream.malformed) << stream.malformed->expected << stream.malformed->found;
    }
  }
  std::cout << cases << " jobs, " << refusals << " refused\n";
  EXPECT_GT(cases, 200);
  EXPECT_GT(refusals, jobs::kAddressSanitizer ? 1 : 5);  // of each fifth job there
}

}  // namespace
