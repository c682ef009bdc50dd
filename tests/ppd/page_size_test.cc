// What Ghostscript's raster device makes of each page size.
#include <cups/ppd.h>
#include <cups/raster.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <fstream>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "command.h"

namespace {

struct PageSize {
  const char* name;
  double widthMm;
  double heightMm;
  unsigned widthDots;
  unsigned heightDots;
};

struct SizesOfModel {
  const char* model;
  const char* ppd;
  double dpi;
  std::vector<PageSize> sizes;
};

void PrintTo(const SizesOfModel& model, std::ostream* out) { *out << model.ppd; }

const SizesOfModel kModels[] = {
    {"Label203",
     TARVO_PPD_DIR "/tarvo-label-203dpi.ppd",
     203,
     {
         {"4x6", 101.6, 152.4, 812, 1218},
         {"4x4", 101.6, 101.6, 812, 812},
         {"4x3", 101.6, 76.2, 812, 609},
         {"3x2", 76.2, 50.8, 609, 406},
         {"2.25x1.25", 57.15, 31.75, 457, 254},
         {"2x1", 50.8, 25.4, 406, 203},
         {"100x150mm", 100, 150, 799, 1199},
         {"100x100mm", 100, 100, 799, 799},
         {"80x50mm", 80, 50, 639, 400},
         {"76x51mm", 76, 51, 607, 408},
         {"60x40mm", 60, 40, 480, 320},
         {"58x40mm", 58, 40, 464, 320},
         {"50x30mm", 50, 30, 400, 240},
         {"40x30mm", 40, 30, 320, 240},
     }},
    {"Label300",
     TARVO_PPD_DIR "/tarvo-label-300dpi.ppd",
     300,
     {
         {"4x6", 101.6, 152.4, 1200, 1800},
         {"4x4", 101.6, 101.6, 1200, 1200},
         {"4x3", 101.6, 76.2, 1200, 900},
         {"3x2", 76.2, 50.8, 900, 600},
         {"2.25x1.25", 57.15, 31.75, 675, 375},
         {"2x1", 50.8, 25.4, 600, 300},
         {"100x150mm", 100, 150, 1181, 1772},
         {"100x100mm", 100, 100, 1181, 1181},
         {"80x50mm", 80, 50, 945, 591},
         {"76x51mm", 76, 51, 898, 602},
         {"60x40mm", 60, 40, 709, 472},
         {"58x40mm", 58, 40, 685, 472},
         {"50x30mm", 50, 30, 591, 354},
         {"40x30mm", 40, 30, 472, 354},
     }},
    {"Stencil300",
     TARVO_PPD_DIR "/tarvo-stencil-a4-300dpi.ppd",
     300,
     {
         {"A4", 210, 297, 2480, 3508},
         {"Letter", 215.9, 279.4, 2550, 3300},
         {"Tattoo_A5", 210, 148, 2480, 1748},
         {"Tattoo_A6", 105, 148, 1240, 1748},
     }},
};

class PageSizes : public testing::TestWithParam<SizesOfModel> {};

INSTANTIATE_TEST_SUITE_P(All, PageSizes, testing::ValuesIn(kModels),
                         [](const auto& model) { return model.param.model; });

TEST_P(PageSizes, AreAllThatTheModelOffers) {
  ppd_file_t* ppd = ppdOpenFile(GetParam().ppd);
  ASSERT_NE(ppd, nullptr);
  std::map<std::string, int> offered;
  for (int i = 0; i < ppd->num_sizes; ++i) ++offered[ppd->sizes[i].name];
  ppdClose(ppd);
  std::map<std::string, int> expected = {{"Custom", 1}};
  for (const PageSize& size : GetParam().sizes) ++expected[size.name];
  EXPECT_EQ(offered, expected);
}

TEST_P(PageSizes, AreThoseOfTheirNames) {
  for (const PageSize& size : GetParam().sizes) {
    EXPECT_EQ(size.widthDots, std::floor(size.widthMm / 25.4 * GetParam().dpi + 0.5)) << size.name;
    EXPECT_EQ(size.heightDots, std::floor(size.heightMm / 25.4 * GetParam().dpi + 0.5))
        << size.name;
  }
}

TEST_P(PageSizes, AreRasterisedToTheDot) {
  const TemporaryFolder folder;
  const std::string document = folder.path() + "/page.ps";
  std::ofstream(document) << "%!PS\n10 10 20 20 rectfill showpage\n";

  for (const PageSize& size : GetParam().sizes) {
    SCOPED_TRACE(size.name);
    const std::string raster = folder.path() + "/page.ras";
    const std::string log = folder.path() + "/log";
    const CommandResult result =
        runCommand("cupsfilter -p " + std::string(GetParam().ppd) +
                   " -m application/vnd.cups-raster -o PageSize=" + size.name + " " + document +
                   " 2>" + log + " >" + raster);
    ASSERT_EQ(result.status, 0) << runCommand("tail -n 20 " + log).output;

    const int file = open(raster.c_str(), O_RDONLY);
    ASSERT_GE(file, 0);
    const std::unique_ptr<cups_raster_t, decltype(&cupsRasterClose)> stream(
        cupsRasterOpen(file, CUPS_RASTER_READ), &cupsRasterClose);
    cups_page_header2_t header = {};
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(cupsRasterReadHeader2(stream.get(), &header), 1u);
    close(file);

    EXPECT_EQ(header.cupsWidth, size.widthDots);
    EXPECT_EQ(header.cupsHeight, size.heightDots);
    EXPECT_EQ(header.cupsBytesPerLine, size.widthDots);
    EXPECT_EQ(header.cupsBitsPerPixel, 8u);
    EXPECT_EQ(header.cupsColorSpace, CUPS_CSPACE_K);
    EXPECT_EQ(header.HWResolution[0], static_cast<unsigned>(GetParam().dpi));
    EXPECT_EQ(header.HWResolution[1], static_cast<unsigned>(GetParam().dpi));
    EXPECT_STREQ(header.cupsPageSizeName, size.name);
  }
}

}  // namespace
