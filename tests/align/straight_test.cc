// After rastertoaligned, what rastertotarvo prints is straight.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

#include "align_run.h"
#include "support/folder.h"
#include "support/ppd_text.h"
#include "tspl/reader.h"

namespace {

constexpr unsigned kHeight = 24;

/// A page with one upright line of ink, one dot wide.
support::Page uprightLine(unsigned width, unsigned at) {
  support::Page page = support::grayPage(width, kHeight, support::Drawing::Blank);
  for (unsigned y = 0; y < kHeight; ++y) page.pixels[std::size_t{y} * width + at] = 255;
  return page;
}

class Straight : public testing::Test {
 protected:
  Straight() {
    support::writeFile(folder_ / "model.ppd",
                       support::PpdText()
                           .pageSize("4x6", 288, 432)
                           .option("HalftoneType", "None", {"None", "Tattoo"})
                           .text());
    std::filesystem::create_directory(folder_ / "spool");
  }

  /// The stream that rastertotarvo makes of a raster stream.
  std::string print(std::string raster) {
    support::Program program;
    program.executable = RASTERTOTARVO;
    program.arguments = {"rastertotarvo", "7", "user", "title", "1", ""};
    program.environment = {{"PPD", folder_ / "model.ppd"},
                           {"LD_PRELOAD", REDIRECT},
                           {"ASAN_OPTIONS", "verify_asan_link_order=0"},
                           {"TARVO_TEST_FOLDER", folder_.path()}};
    program.input = support::PipedBytes{std::move(raster)};
    const support::Outcome outcome = support::run(program);
    EXPECT_EQ(outcome.status, 0) << outcome.error;
    return outcome.output;
  }

  /// The columns with ink of each row: "5," for a line at 5; rows that do not differ are said once.
  static std::string inkOf(const std::string& output) {
    const tspl::Stream stream =
        tspl::Read({reinterpret_cast<const std::uint8_t*>(output.data()), output.size()});
    if (stream.malformed || stream.pages.size() != 1 || !stream.pages[0].bitmap) return "no page";
    const tspl::Bitmap& bitmap = *stream.pages[0].bitmap;
    std::string ink, last;
    for (unsigned y = 0; y < bitmap.height_dots; ++y) {
      std::string row;
      for (unsigned x = 0; x < bitmap.width_bytes * 8; ++x) {
        const unsigned byte = bitmap.data[y * bitmap.width_bytes + x / 8];
        if ((byte & 0x80U >> x % 8) == 0) row += std::to_string(x) + ",";
      }
      if (y == 0 || row != last) ink += (y == 0 ? "" : " then ") + row;
      last = row;
    }
    return ink;
  }

  support::Folder folder_;
};

TEST_F(Straight, AnUprightLineStaysUprightAtEveryWidth) {
  for (const unsigned width :
       {1U,  2U,  3U,  4U,  5U,  6U,   7U,   8U,   9U,   10U,  11U,   12U,
        13U, 14U, 15U, 16U, 17U, 203U, 575U, 609U, 799U, 812U, 1181U, 2550U}) {
    const unsigned at = width / 2;
    const std::string raster = support::rasterFile({uprightLine(width, at)});
    EXPECT_EQ(inkOf(print(align(raster).output)), std::to_string(at) + ",") << width;
  }
}

// What it is there for: without it, each row of a page of 799 dots begins a dot too early.
TEST_F(Straight, WithoutItTheLineLeansAnd799DotsAreNotStraight) {
  const std::string ink = inkOf(print(support::rasterFile({uprightLine(799, 399)})));
  EXPECT_EQ(ink.substr(0, 26), "399, then 400, then 401, t");
}

TEST_F(Straight, PaperOfPagesThatAreWhiteAtTheTopStaysPaper) {
  support::Page page = uprightLine(13, 6);
  for (std::uint8_t& pixel : page.pixels) pixel = static_cast<std::uint8_t>(255 - pixel);
  page.header.cupsColorSpace = CUPS_CSPACE_SW;
  EXPECT_EQ(inkOf(print(align(support::rasterFile({page})).output)), "6,");
}

}  // namespace
