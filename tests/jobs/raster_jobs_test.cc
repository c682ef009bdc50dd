// Jobs by the shape of their raster: numbers and sizes of pages, long lines, resolutions, copies,
// pages that are plain, and pages that end a job.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include "compared_job.h"

namespace {

using jobs::ComparedJob;
using jobs::Source;
using support::Drawing;
using support::Packing;
using support::Page;

const char* const kHalftones[] = {"None",   "FloydSteinberg",    "Ordered", "Burkes",
                                  "Stucki", "JarvisJudiceNinke", "Sierra",  "StevensonArce",
                                  "Tattoo", "Tattoo_X8"};

class RasterJobs : public testing::Test {
 protected:
  static void TearDownTestSuite() {
    std::cout << "compared: " << jobs::count().jobs << " jobs, " << jobs::count().pages
              << " pages\n";
  }
};

TEST_F(RasterJobs, OneToFourPagesOfDifferentSizes) {
  const std::vector<Page> all = {
      support::grayPage(120, 40, Drawing::Text, 1), support::grayPage(33, 61, Drawing::Gradient, 2),
      support::grayPage(401, 9, Drawing::Random, 3), support::grayPage(8, 200, Drawing::Text, 4)};
  for (std::size_t pages = 1; pages <= all.size(); ++pages) {
    for (const Packing packing : {Packing::Uncompressed, Packing::Compressed}) {
      for (const Source source : {Source::StandardInput, Source::FileArgument}) {
        for (const bool record : {false, true}) {
          for (const char* halftone : {"None", "Sierra", "Tattoo_X8"}) {
            ComparedJob job;
            job.choices = {{"HalftoneType", halftone}};
            job.pages.assign(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(pages));
            job.packing = packing;
            job.source = source;
            job.record = record;
            if (pages == 2) job.recordingAttribute = "";  // a name that begins with "-"
            ASSERT_EQ(jobs::difference(job), "") << pages << " pages, " << halftone;
          }
        }
      }
    }
  }
}

TEST_F(RasterJobs, LinesLongerThanTheWidth) {
  for (const char* halftone : kHalftones) {
    for (const char* mirror : {"False", "True"}) {
      ComparedJob job;
      job.choices = {
          {"HalftoneType", halftone}, {"MirrorImage", mirror}, {"NegativeImage", mirror}};
      unsigned number = 0;
      for (const unsigned width : {1U, 2U, 3U, 4U, 5U, 7U, 8U, 9U, 31U, 33U, 203U}) {
        for (const unsigned more : {1U, 2U, 3U, 4U, 5U, 60U}) {
          Page page = support::grayPage(width, 1 + number % 11, Drawing::Random, number);
          support::padLines(page, width + more, number);
          job.pages.push_back(std::move(page));
          ++number;
        }
      }
      ASSERT_EQ(jobs::difference(job), "") << halftone << ", mirror and negative " << mirror;
    }
  }
}

TEST_F(RasterJobs, PlainPages) {
  // Blank, full, one level, one dot, two levels in equal numbers: what thresholds trip over.
  for (const char* halftone : kHalftones) {
    for (const char* brightness : {"-100", "0", "20"}) {
      ComparedJob job;
      job.choices = {{"HalftoneType", halftone}, {"Brightness", brightness}};
      for (const unsigned level : {0U, 1U, 2U, 63U, 64U, 65U, 127U, 128U, 129U, 254U, 255U}) {
        Page page = support::grayPage(20, 12, Drawing::Blank);
        std::fill(page.pixels.begin(), page.pixels.end(), static_cast<std::uint8_t>(level));
        job.pages.push_back(page);
        page.pixels[5 * 20 + 7] = 255;  // one dot of ink
        job.pages.push_back(page);
        page.pixels[5 * 20 + 7] = static_cast<std::uint8_t>(255 - level);
        job.pages.push_back(page);
        // Half of the page at another level.
        std::fill_n(page.pixels.begin(), 120, static_cast<std::uint8_t>(255 - level));
        job.pages.push_back(page);
      }
      ASSERT_EQ(jobs::difference(job), "") << halftone << ", brightness " << brightness;
    }
  }
}

TEST_F(RasterJobs, EveryBrightness) {
  for (int brightness = -101; brightness <= 101; brightness += 7) {
    ComparedJob job;
    job.choices = {{"HalftoneType", brightness % 2 == 0 ? "None" : "Tattoo"},
                   {"Brightness", std::to_string(brightness)}};
    job.pages = {support::grayPage(256, 6, Drawing::Gradient, 1)};
    ASSERT_EQ(jobs::difference(job), "") << brightness;
  }
}

TEST_F(RasterJobs, ResolutionsCopiesAndTheRestOfTheHeader) {
  ComparedJob job;
  for (const unsigned copies : {0U, 1U, 2U, 999U, 2147483647U}) {
    Page page = support::grayPage(600, 2, Drawing::Text, copies);
    page.header.NumCopies = copies;
    page.header.HWResolution[0] = 203;
    page.header.HWResolution[1] = 300;
    page.header.cupsMediaType = copies + 1;
    page.header.cupsCompression = 2;
    page.header.cupsRowCount = 3;
    page.header.cupsRowFeed = 4;
    page.header.cupsRowStep = 5;
    job.pages.push_back(std::move(page));
  }
  for (const cups_cspace_t space : {CUPS_CSPACE_W, CUPS_CSPACE_SW}) {
    Page page = support::grayPage(24, 3, Drawing::Random, 5);
    page.header.cupsColorSpace = space;
    job.pages.push_back(std::move(page));
  }
  for (const unsigned dpi : {1U, 72U, 203U, 300U, 600U, 100000U}) {
    job.pages.push_back(support::grayPage(48, 2, Drawing::Gradient, 1, dpi));
  }
  for (const Packing packing : {Packing::Uncompressed, Packing::Compressed}) {
    job.packing = packing;
    ASSERT_EQ(jobs::difference(job), "");
  }
}

TEST_F(RasterJobs, PageThatEndsTheJob) {
  const Page good = support::grayPage(24, 5, Drawing::Text, 1);
  std::vector<Page> bad(5, good);
  bad[0].header.cupsBitsPerPixel = bad[0].header.cupsBitsPerColor = 1;
  bad[0].header.cupsBytesPerLine = 3;
  bad[0].pixels.resize(15);
  bad[1].header.cupsBitsPerPixel = 24;
  bad[1].header.cupsColorSpace = CUPS_CSPACE_RGB;
  bad[1].header.cupsNumColors = 3;
  bad[1].header.cupsBytesPerLine = 72;
  bad[1].pixels.resize(360);
  bad[2].header.HWResolution[1] = 0;
  bad[3].header.cupsWidth = 25;
  bad[4].header.cupsHeight = 7;  // cut short: the raster ends inside it
  for (const Page& page : bad) {
    for (std::size_t before = 0; before <= 2; ++before) {
      ComparedJob job;
      job.record = true;
      job.pages.assign(before, good);
      job.pages.push_back(page);
      const std::string raster = support::uncheckedRasterFile(job.pages);
      ASSERT_EQ(jobs::difference(job, raster), "") << before << " good pages before";
    }
  }
}

TEST_F(RasterJobs, JobWithoutPages) {
  ComparedJob job;
  job.record = true;
  EXPECT_EQ(jobs::difference(job), "");
  EXPECT_EQ(jobs::difference(job, ""), "");
}

}  // namespace
