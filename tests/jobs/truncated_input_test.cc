// A raster of two pages cut after each of its bytes.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "good_job.h"
#include "support/differences.h"

namespace {

using namespace jobs;

constexpr std::size_t kSync = 4;
constexpr std::size_t kHeader = 1796;
constexpr std::size_t kPixels = 32;
constexpr std::size_t kPage = kHeader + kPixels;

static_assert(sizeof(cups_page_header2_t) == kHeader);

/// What is sent of a raster cut to `size` bytes: setup commands for each header that is whole, a
/// bitmap for each page that is whole.
std::string streamOf(std::size_t size) {
  std::string stream = preamble();
  for (std::size_t page = 0; page < 2; ++page) {
    if (size >= kSync + page * kPage + kPage) {
      stream += goodPageCommands();
    } else if (size >= kSync + page * kPage + kHeader) {
      stream += setupCommands("2.0 mm, 0.3 mm");
    }
  }
  return stream;
}

std::string logOf(std::size_t size) {
  std::string log = settingsLog();
  for (std::size_t page = 0; page < 2; ++page) {
    if (size >= kSync + page * kPage + kHeader) log += goodHeaderLog(static_cast<int>(page) + 1);
    if (size >= kSync + page * kPage + kPage) log += goodImageLog();
  }
  return log;
}

/// Each case is one share of all cuts, so that they can run side by side.
class Truncated : public testing::TestWithParam<std::size_t> {};

constexpr std::size_t kShares = 4;

/// Every byte of the first page, the sync word before it and the second page's edges. The sanitized
/// filter starts slowly: of the headers' inside it gets every 23rd byte.
bool isCut(std::size_t size) {
  const std::size_t inPage = size < kSync ? 0 : (size - kSync) % kPage;
  const bool edge = inPage < 8 || inPage + 8 > kHeader;
  if (edge) return true;
  if (kAddressSanitizer) return size % 23 == 0;
  return size < kSync + kPage || size % 7 == 0;
}

TEST_P(Truncated, AfterEachByte) {
  const std::string raster = support::rasterFile({goodPage(), goodPage()});
  ASSERT_EQ(raster.size(), kSync + 2 * kPage);
  FilterJob job;
  job.setPpd(goodPpd().text());
  std::size_t cuts = 0;
  for (std::size_t size = GetParam(); size <= raster.size(); size += kShares) {
    if (!isCut(size)) continue;
    const JobRun run = job.run(raster.substr(0, size), "",
                               size % 8 < 4 ? Source::StandardInput : Source::FileArgument);
    expectRun(run, 0, streamOf(size), logOf(size));
    ASSERT_FALSE(HasFailure()) << "cut to " << size << " of " << raster.size() << " bytes";
    ++cuts;
  }
  EXPECT_GT(cuts, 50U);
}

INSTANTIATE_TEST_SUITE_P(Shares, Truncated, testing::Range(std::size_t{0}, kShares));

TEST(TruncatedCompressed, AfterEachByteOfThePixels) {
  const std::string raster =
      support::rasterFile({goodPage(), goodPage()}, support::Packing::Compressed);
  const std::size_t page = (raster.size() - kSync) / 2;
  for (std::size_t size = kSync + kHeader; size < kSync + page; ++size) {
    FilterJob job;
    job.setPpd(goodPpd().text());
    expectRun(job.run(raster.substr(0, size)), 0, preamble() + setupCommands("2.0 mm, 0.3 mm"),
              settingsLog() + goodHeaderLog(1));
    ASSERT_FALSE(HasFailure()) << "cut to " << size << " of " << raster.size() << " bytes";
  }
}

}  // namespace
