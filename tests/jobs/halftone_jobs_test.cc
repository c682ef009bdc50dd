// Every halftone with every way of turning, inverting and lightening the page, at widths around
// each boundary of the pipeline: bytes of eight dots, rows of four bytes, and the widths of labels.
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "compared_job.h"

namespace {

using support::Drawing;

constexpr unsigned kWidths[] = {1,  2,  3,  4,  5,   6,   7,   8,   9,   15,  16,
                                17, 31, 32, 33, 100, 203, 575, 576, 812, 2480};
constexpr unsigned kHeights[] = {1, 2, 3, 4, 5, 7, 8, 9, 12, 16, 17, 24, 33, 70};
constexpr Drawing kDrawings[] = {Drawing::Gradient, Drawing::Random, Drawing::Text,
                                 Drawing::Gradient, Drawing::Random, Drawing::Blank,
                                 Drawing::Text,     Drawing::Full};
/// So that no page takes long: the largest are a few rows of the widest.
constexpr unsigned kMostDots = 8000;

/// One page of each width; heights and drawings change from job to job.
std::vector<support::Page> pagesOf(unsigned job) {
  std::vector<support::Page> pages;
  unsigned number = 0;
  for (const unsigned width : kWidths) {
    const unsigned height = kHeights[(job * 5 + number * 3) % std::size(kHeights)];
    const Drawing drawing = kDrawings[(job + number) % std::size(kDrawings)];
    pages.push_back(support::grayPage(width, std::min(height, std::max(kMostDots / width, 1U)),
                                      drawing, job * 100 + number, number % 2 == 0 ? 203 : 300));
    pages.back().header.NumCopies = 1 + (job + number) % 3;
    ++number;
  }
  return pages;
}

class Halftone : public testing::TestWithParam<const char*> {};

TEST_P(Halftone, MirrorNegativeBrightnessAndOrigin) {
  unsigned number = 0;
  for (const char* mirror : {"False", "True"}) {
    for (const char* negative : {"False", "True"}) {
      for (const char* brightness : {"-100", "-37", "0", "20", "100"}) {
        for (const char* origin : {"Normal", "Rotation180"}) {
          jobs::ComparedJob job;
          job.choices = {
              {"HalftoneType", GetParam()}, {"MirrorImage", mirror}, {"NegativeImage", negative},
              {"Brightness", brightness},   {"Origin", origin},      {"PaperType", "LabelGaps"},
              {"GapsHeight", "3"},          {"PrintSpeed", "4"},     {"Darkness", "8"},
              {"PostAction", "TearOff"}};
          job.pages = pagesOf(number);
          job.packing =
              number % 2 == 0 ? support::Packing::Uncompressed : support::Packing::Compressed;
          job.source =
              number / 2 % 2 == 0 ? jobs::Source::StandardInput : jobs::Source::FileArgument;
          job.record = number % 3 == 0;
          ASSERT_EQ(jobs::difference(job), "")
              << GetParam() << ", mirror " << mirror << ", negative " << negative << ", brightness "
              << brightness << ", origin " << origin;
          ++number;
        }
      }
    }
  }
  std::cout << "compared: " << jobs::count().jobs << " jobs, " << jobs::count().pages << " pages\n";
}

INSTANTIATE_TEST_SUITE_P(Jobs, Halftone,
                         testing::Values("None", "FloydSteinberg", "Ordered", "Burkes", "Stucki",
                                         "JarvisJudiceNinke", "Sierra", "StevensonArce", "Tattoo",
                                         "Tattoo_X8"),
                         [](const auto& halftone) { return std::string(halftone.param); });

}  // namespace
