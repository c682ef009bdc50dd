// How large a page may be and how often it may be printed, and what is said of more.
#include "align/page_limits.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "support/capture.h"
#include "support/raster.h"

namespace {

constexpr PpdSheet kAnySheet{};
constexpr PpdSheet kTwoByThreeInches{144, 216};

cups_page_header2_t headerOf(unsigned width, unsigned height, unsigned acrossDpi,
                             unsigned downDpi) {
  cups_page_header2_t header = support::grayHeader(width, height);
  header.HWResolution[0] = acrossDpi;
  header.HWResolution[1] = downDpi;
  return header;
}

/// What is said of the third page of a job; "admitted" when it may pass, of which nothing is said.
std::string saidOf(const PpdSheet& largest, const cups_page_header2_t& header, std::uint64_t rows) {
  bool admitted = false;
  const std::string said =
      support::standardErrorOf([&] { admitted = PageLimits(largest).admit(3, header, rows); });
  return (admitted ? "admitted" : "") + said;
}

TEST(PageLimits, APageHasAtMost256MiB) {
  constexpr unsigned kMiB = 1U << 20U;
  const auto refused = [](const char* bytes) {
    return std::string("ERROR: Page 3 is too large: ") + bytes +
           " bytes, at most 268435456 can be printed.\n";
  };
  const struct {
    const char* what;
    unsigned width, bytesPerLine;
    std::uint64_t rows;
    std::string said;
  } cases[] = {
      {"one row of 256 MiB", 256 * kMiB, 256 * kMiB, 1, "admitted"},
      {"one row of more", 256 * kMiB + 8, 256 * kMiB + 8, 1, refused("268435464")},
      {"two rows of 128 MiB", 128 * kMiB, 128 * kMiB, 2, "admitted"},
      {"three of them", 128 * kMiB, 128 * kMiB, 3, refused("402653184")},
      {"rows of 8 bytes", 8, 8, 32 * kMiB, "admitted"},
      {"one row of 8 bytes more", 8, 8, 32 * kMiB + 1, refused("268435464")},
      {"rows of one dot are passed on with 8", 1, 1, 32 * kMiB, "admitted"},
      {"and one more of them", 1, 1, 32 * kMiB + 1, refused("268435464")},
      {"what rows hold past the page's width counts, too", 8, 128 * kMiB, 3, refused("402653184")},
      {"no rows of many bytes", 8, UINT_MAX, 0, "admitted"},
      {"more than 64 bits can count", 1U << 31U, 1U << 31U, std::uint64_t{1} << 62U,
       refused("9903520314283042199192993792")},
  };
  for (const auto& [what, width, bytesPerLine, rows, said] : cases) {
    cups_page_header2_t header = headerOf(width, 1, 203, 203);
    header.cupsBytesPerLine = bytesPerLine;
    EXPECT_EQ(saidOf(kAnySheet, header, rows), said) << what;
  }
}

// 4 x 6 inches are the most on a model whose largest label has 2 x 3.
TEST(PageLimits, APageIsAtMostTwiceAsLargeAsTheModelsLargest) {
  const auto refused = [](const char* page, const char* most) {
    return std::string("ERROR: Page 3 is too large: ") + page +
           " dots, twice the model's largest size is " + most + ".\n";
  };
  const struct {
    const char* what;
    unsigned width, height, acrossDpi, downDpi;
    std::string said;
  } cases[] = {
      {"the largest label", 400, 600, 200, 200, "admitted"},
      {"twice as wide and long", 800, 1200, 200, 200, "admitted"},
      {"a dot wider", 801, 1200, 200, 200, refused("801 x 1200", "800 x 1200")},
      {"a dot longer", 800, 1201, 200, 200, refused("800 x 1201", "800 x 1200")},
      {"that turned", 1200, 800, 200, 200, "admitted"},
      {"turned, a dot wider", 1201, 800, 200, 200, refused("1201 x 800", "1200 x 800")},
      {"turned, a dot longer", 1200, 801, 200, 200, refused("1200 x 801", "1200 x 800")},
      {"a square", 800, 800, 200, 200, "admitted"},
      {"a larger square", 801, 801, 200, 200, refused("801 x 801", "800 x 1200")},
      {"finer dots", 1600, 2400, 400, 400, "admitted"},
      {"finer dots, one more", 1601, 2400, 400, 400, refused("1601 x 2400", "1600 x 2400")},
      {"dots that are finer across", 1600, 1200, 400, 200, "admitted"},
      {"such dots, turned", 2400, 800, 400, 200, "admitted"},
      {"such dots, one too many", 1601, 1200, 400, 200, refused("1601 x 1200", "1600 x 1200")},
      {"such dots turned, one too many", 2400, 801, 400, 200, refused("2400 x 801", "2400 x 800")},
      {"dots that are finer down", 800, 2400, 200, 400, "admitted"},
      {"such dots down, one too many", 800, 2401, 200, 400, refused("800 x 2401", "800 x 2400")},
      {"the coarsest dots", 4, 6, 1, 1, "admitted"},
      {"the coarsest dots, one too many", 5, 6, 1, 1, refused("5 x 6", "4 x 6")},
      {"the finest dots", 60000, 4000, UINT_MAX, UINT_MAX, "admitted"},
      {"no resolution across", 5000, 5000, 0, 200, "admitted"},
      {"no resolution down", 5000, 5000, 200, 0, "admitted"},
  };
  for (const auto& [what, width, height, acrossDpi, downDpi, said] : cases) {
    EXPECT_EQ(saidOf(kTwoByThreeInches, headerOf(width, height, acrossDpi, downDpi), height), said)
        << what;
  }
}

// 100 mm are 283.46 points, twice of which at 203 dpi are 1598.4 dots.
TEST(PageLimits, APartOfADotIsNone) {
  const PpdSheet sheet{283.46, 425.2};
  EXPECT_EQ(saidOf(sheet, headerOf(1598, 2397, 203, 203), 1), "admitted");
  EXPECT_EQ(saidOf(sheet, headerOf(1599, 2397, 203, 203), 1),
            "ERROR: Page 3 is too large: 1599 x 2397 dots, twice the model's largest size is "
            "1598 x 2397.\n");
}

TEST(PageLimits, TheSmallestModelIsOne) {
  const PpdSheet sheet{1, 1};
  EXPECT_EQ(saidOf(sheet, headerOf(2, 2, 72, 72), 2), "admitted");
  EXPECT_EQ(saidOf(sheet, headerOf(3, 2, 72, 72), 2),
            "ERROR: Page 3 is too large: 3 x 2 dots, twice the model's largest size is 2 x 2.\n");
}

TEST(PageLimits, OfAModelThatNothingIsKnownOfOnlyTheBytesAreLimited) {
  EXPECT_EQ(saidOf(kAnySheet, headerOf(16000, 16000, 1, 1), 16000), "admitted");
}

TEST(PageLimits, NoPageIsPrintedMoreThan9999Times) {
  const struct {
    unsigned asked, printed;
    const char* said;
  } cases[] = {
      {0, 0, ""},
      {1, 1, ""},
      {9999, 9999, ""},
      {10000, 9999, "WARNING: Page 3 asks for 10000 copies: 9999 are printed.\n"},
      {UINT_MAX, 9999, "WARNING: Page 3 asks for 4294967295 copies: 9999 are printed.\n"},
  };
  for (const auto& [asked, printed, said] : cases) {
    unsigned copies = 0;
    EXPECT_EQ(support::standardErrorOf([&, count = asked] { copies = limitCopies(3, count); }),
              said);
    EXPECT_EQ(copies, printed);
  }
}

}  // namespace
