// Which pages are aligned, and to what.
#include "align/page_alignment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "support/raster.h"

namespace {

using support::grayHeader;
using testing::ElementsAre;

cups_page_header2_t headerOf(cups_cspace_t space, unsigned width, unsigned bytesPerLine) {
  cups_page_header2_t header = grayHeader(width, 2);
  header.cupsColorSpace = space;
  header.cupsBytesPerLine = bytesPerLine;
  return header;
}

bool isSame(const cups_page_header2_t& one, const cups_page_header2_t& other) {
  return std::memcmp(&one, &other, sizeof one) == 0;
}

std::vector<std::uint8_t> align(const cups_page_header2_t& header, std::vector<std::uint8_t> row) {
  const PageAlignment alignment(header);
  std::vector<std::uint8_t> aligned(alignment.header().cupsBytesPerLine, 99);
  alignment.alignRow(row.data(), aligned.data());
  return aligned;
}

TEST(PageAlignment, RoundsTheWidthUpToAMultipleOf8) {
  const struct {
    unsigned width, aligned;
  } kCases[] = {{1, 8},
                {7, 8},
                {8, 8},
                {9, 16},
                {12, 16},
                {609, 616},
                {799, 800},
                {812, 816},
                {816, 816},
                {2480, 2480},
                {2550, 2552},
                {UINT_MAX - 8, UINT_MAX - 7},
                {UINT_MAX - 7, UINT_MAX - 7}};
  for (const auto& pages : kCases) {
    const PageAlignment alignment(headerOf(CUPS_CSPACE_K, pages.width, pages.width));
    EXPECT_TRUE(alignment.isNeeded());
    EXPECT_EQ(alignment.header().cupsWidth, pages.aligned);
    EXPECT_EQ(alignment.header().cupsBytesPerLine, pages.aligned);
  }
}

// Paper is 0 in K; in W and sW, where it is 255, the complement is K.
TEST(PageAlignment, PadsWithPaperAndTurnsWhiteIntoInk) {
  const std::vector<std::uint8_t> row = {0, 1, 100, 254, 255};
  EXPECT_THAT(align(headerOf(CUPS_CSPACE_K, 5, 5), row), ElementsAre(0, 1, 100, 254, 255, 0, 0, 0));
  for (const cups_cspace_t space : {CUPS_CSPACE_W, CUPS_CSPACE_SW}) {
    EXPECT_THAT(align(headerOf(space, 5, 5), row), ElementsAre(255, 254, 155, 1, 0, 0, 0, 0));
  }
}

TEST(PageAlignment, LeavesOutWhatLinesHoldPastTheWidth) {
  EXPECT_THAT(align(headerOf(CUPS_CSPACE_K, 3, 12), {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}),
              ElementsAre(1, 2, 3, 0, 0, 0, 0, 0));
}

TEST(PageAlignment, TellsTheTruthOfTheRowsAndKeepsAllElse) {
  for (const cups_cspace_t space : {CUPS_CSPACE_W, CUPS_CSPACE_K, CUPS_CSPACE_SW}) {
    cups_page_header2_t header;
    std::memset(&header, 0x5A, sizeof header);  // all that nobody thinks of
    header.cupsWidth = 609;
    header.cupsBytesPerLine = 640;
    header.cupsBitsPerColor = 8;
    header.cupsBitsPerPixel = 8;
    header.cupsNumColors = 0;  // as the first version of raster streams has it
    header.cupsColorSpace = space;
    cups_page_header2_t expected = header;
    expected.cupsWidth = 616;
    expected.cupsBytesPerLine = 616;
    expected.cupsColorSpace = CUPS_CSPACE_K;
    expected.cupsNumColors = 1;
    EXPECT_TRUE(isSame(PageAlignment(header).header(), expected)) << space;
  }
}

// What rastertotarvo refuses, or prints in its own way, gets there as it came.
TEST(PageAlignment, LeavesEveryOtherPageAsItIs) {
  struct Case {
    std::string what;
    void (*change)(cups_page_header2_t&);
  };
  const Case kCases[] = {
      {"1 bit", [](auto& h) { h.cupsBitsPerColor = h.cupsBitsPerPixel = 1; }},
      {"16 bits", [](auto& h) { h.cupsBitsPerColor = h.cupsBitsPerPixel = 16; }},
      {"8 bits of 2-bit colours", [](auto& h) { h.cupsBitsPerColor = 2; }},
      {"24 bits", [](auto& h) { h.cupsBitsPerPixel = 24; }},
      {"2 colours", [](auto& h) { h.cupsNumColors = 2; }},
      {"3 colours", [](auto& h) { h.cupsNumColors = 3; }},
      {"RGB", [](auto& h) { h.cupsColorSpace = CUPS_CSPACE_RGB; }},
      {"a device colour", [](auto& h) { h.cupsColorSpace = CUPS_CSPACE_DEVICE1; }},
      {"no colour space that there is",
       [](auto& h) { std::memset(&h.cupsColorSpace, 0xFF, sizeof h.cupsColorSpace); }},
      {"no width", [](auto& h) { h.cupsWidth = 0; }},
      {"a line shorter than the width", [](auto& h) { h.cupsBytesPerLine = 12; }},
      {"no multiple of 8 above the width",
       [](auto& h) { h.cupsWidth = h.cupsBytesPerLine = UINT_MAX - 6; }},
  };
  for (const Case& page : kCases) {
    cups_page_header2_t header = headerOf(CUPS_CSPACE_K, 13, 13);
    page.change(header);
    const PageAlignment alignment(header);
    EXPECT_FALSE(alignment.isNeeded()) << page.what;
    EXPECT_TRUE(isSame(alignment.header(), header)) << page.what;
  }
}

}  // namespace
