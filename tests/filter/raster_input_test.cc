#include "filter/raster_input.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "support/descriptors.h"
#include "support/folder.h"
#include "support/raster.h"

namespace {

TEST(RasterInput, ReadsThePagesOfAFileAndClosesIt) {
  const support::Folder folder;
  const std::vector<support::Page> pages = {support::grayPage(16, 3, support::Drawing::Random),
                                            support::grayPage(8, 2, support::Drawing::Text)};
  support::writeFile(folder / "pages", support::rasterFile(pages));
  const std::string path = folder / "pages";

  const std::size_t before = support::openDescriptors();
  {
    RasterInput input;
    ASSERT_TRUE(input.openFile(path.c_str()));
    EXPECT_EQ(support::openDescriptors(), before + 1);
    input.openRaster();
    cups_page_header2_t header;
    for (const support::Page& page : pages) {
      ASSERT_TRUE(input.readHeader(header));
      EXPECT_EQ(header.cupsWidth, page.header.cupsWidth);
      std::vector<unsigned char> pixels(page.pixels.size());
      EXPECT_TRUE(input.readPixels(pixels.data(), static_cast<std::uint32_t>(pixels.size())));
      EXPECT_EQ(pixels, page.pixels);
    }
    EXPECT_FALSE(input.readHeader(header));
  }
  EXPECT_EQ(support::openDescriptors(), before);
}

TEST(RasterInput, StandardInputStaysOpen) {
  ASSERT_NE(fcntl(STDIN_FILENO, F_GETFD), -1);
  { const RasterInput input; }
  EXPECT_NE(fcntl(STDIN_FILENO, F_GETFD), -1);
}

TEST(RasterInput, FileThatIsNotThereIsSaid) {
  const support::Folder folder;
  const std::string path = folder / "missing";
  RasterInput input;
  EXPECT_FALSE(input.openFile(path.c_str()));
}

}  // namespace
