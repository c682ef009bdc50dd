#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "support/capture.h"
#include "support/differences.h"
#include "support/folder.h"
#include "support/raster.h"
#include "test_printer.h"

namespace {

/// Addresses differ from run to run: each becomes the word ADDRESS. A null one stays.
std::string masked(const std::string& log) {
  const std::string pointer =
      std::regex_replace(log, std::regex("pointer address: [0-9]+,"), "pointer address: ADDRESS,");
  return std::regex_replace(pointer, std::regex("result, address: 0x[0-9a-f]+"),
                            "result, address: ADDRESS");
}

std::string lines(const std::vector<std::string>& messages) {
  std::string text;
  for (const std::string& message : messages) text += "DEBUG:" + message + "\n";
  return text;
}

/// The lines that only printImage writes, without those of the steps it calls.
std::string ownLines(const std::string& log) {
  std::string own;
  for (const std::string& line : support::linesOf(log)) {
    if (line.find("printImage: ") != std::string::npos) own += line + "\n";
  }
  return own;
}

class PrintImage : public testing::Test {
 protected:
  PrintImage() {
    std::filesystem::create_directory(folder_ / "spool");
    ::setenv("TARVO_TEST_FOLDER", folder_.path().c_str(), 1);
    ::setenv("TZ", "UTC", 1);
    ::tzset();
    ::setenv("TARVO_TEST_TIME", "1000000000", 1);  // 2001-09-09 01:46:40
  }
  ~PrintImage() override {
    ::unsetenv("TARVO_TEST_FOLDER");
    ::unsetenv("TARVO_TEST_TIME");
  }

  std::string print(const Bytes& page, unsigned long bytesPerLine, unsigned long height,
                    unsigned long width) {
    return masked(support::standardErrorOf(
        [&] { printer_.printImage(page.data(), bytesPerLine, height, width); }));
  }

  /// The bytes after the palette of the dumps whose name begins with `stem`, in order of number.
  std::vector<std::string> dumped(const std::string& stem) {
    std::vector<std::pair<long, std::string>> found;
    for (const std::string& name : support::namesIn(folder_ / "spool")) {
      if (name.rfind(stem, 0) != 0) continue;
      const std::string bytes = *support::readFile(folder_ / "spool" / name);
      found.emplace_back(std::stol(name.substr(name.rfind('_') + 1)), bytes.substr(1078));
    }
    std::sort(found.begin(), found.end());
    std::vector<std::string> pixels;
    for (const auto& [number, bytes] : found) pixels.push_back(bytes);
    return pixels;
  }

  support::Folder folder_;
  TestPrinter printer_;
};

TEST_F(PrintImage, LogOfAPage) {
  const std::string log = print(Bytes(5 * 3, 0), 5, 3, 5);
  // size 5 x 3 = 15; rows of the result have 8 bytes, 3 x 8 = 24. Width and bytes per line have
  // changed places, the size of the result buffer is that of the page, and the first block's
  // address is logged after it was forgotten: all kept.
  EXPECT_EQ(
      support::firstDifference(
          lines({"printImage: Start processing image, input width: 5, height: 3, bytes per line: 5",
                 "printImage: Memory allocated successfully, size: 15 bytes",
                 "printImage: Saving original image, file path will be generated based on time",
                 "printImage: Memory for processing result allocated successfully, size: 15 bytes",
                 "PageProcess: Lumo dithering is disabled",
                 "PageProcess: Successfully created CxImage from array with stride 5",
                 "PageProcess: Applied default dithering and increased bit depth",
                 "PageProcess: negativePrint_ 0",
                 "PageProcess: Filled the output buffer with processed pixels, length: 24",
                 "printImage: Processed image information - pointer address: ADDRESS, width: 5, "
                 "height: 3, bytes per line: 5, number of top blank lines: 0, number of bottom "
                 "blank lines: 0, adjusted height: 3",
                 "printImage: Saving processed image, file path will be generated based on time",
                 "printImage: Starting to print the processed image",
                 "printImage: Freed the allocated memory, address: (nil)",
                 "printImage: Freed the memory for processing result, address: ADDRESS",
                 "printImage: Image processing completed"}),
          log),
      "");
}

TEST_F(PrintImage, WidthAndBytesPerLineChangePlacesInTheLogIsKept) {
  const std::string log = print(Bytes(8 * 2, 0), 8, 2, 5);
  EXPECT_NE(log.find("Start processing image, input width: 5, height: 2, bytes per line: 8\n"),
            std::string::npos);
  EXPECT_NE(log.find("pointer address: ADDRESS, width: 8, height: 2, bytes per line: 5, "),
            std::string::npos)
      << log;
}

TEST_F(PrintImage, PrintsTheProcessedImageWithItsOwnRows) {
  const Bytes page = {255, 0,   255, 0,   255,  //
                      0,   255, 0,   255, 0};
  print(page, 5, 2, 5);
  ASSERT_EQ(printer_.printed.size(), 1U);
  EXPECT_EQ(printer_.printed[0].width, 5U);
  EXPECT_EQ(printer_.printed[0].height, 2U);
  EXPECT_EQ(printer_.printed[0].bytesPerLine, 8U);
  EXPECT_EQ(printer_.printed[0].rows, (Bytes{1, 0, 1, 0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0}));
}

TEST_F(PrintImage, DumpsThePageBeforeAndAfter) {
  const Bytes page = {255, 10, 200, 20, 129, 128, 255, 3};
  print(page, 4, 2, 4);
  EXPECT_EQ(dumped("origin_2001-9-9_1_46_40_"), (std::vector<std::string>{text(page)}));
  EXPECT_EQ(dumped("dithered_2001-9-9_1_46_40_"),
            (std::vector<std::string>{text({1, 0, 1, 0, 1, 0, 1, 0})}));
  EXPECT_STREQ(printer_.imagePath_, "/var/spool/cups/tmp/dithered_%d-%d-%d_%d_%d_%d_%ld.bmp");
}

TEST_F(PrintImage, ProcessedDumpOfAnOddWidthIsShearedIsKept) {
  // 5 x 2 bytes from rows that lie 8 bytes apart.
  const Bytes page(10, 255);
  print(page, 5, 2, 5);
  EXPECT_EQ(dumped("dithered_"), (std::vector<std::string>{text({1, 1, 1, 1, 1, 0, 0, 0, 1, 1})}));
}

TEST_F(PrintImage, DumpsOfSeveralPagesAreNumberedInTurn) {
  for (int page = 0; page < 3; ++page) print(Bytes(4, 0), 4, 1, 4);
  std::vector<long> origin, dithered;
  for (const std::string& name : support::namesIn(folder_ / "spool")) {
    (name[0] == 'o' ? origin : dithered).push_back(std::stol(name.substr(name.rfind('_') + 1)));
  }
  std::sort(origin.begin(), origin.end());
  std::sort(dithered.begin(), dithered.end());
  ASSERT_EQ(origin.size(), 3U);
  ASSERT_EQ(dithered.size(), 3U);
  for (std::size_t page = 0; page < 3; ++page) {
    EXPECT_EQ(origin[page], origin[0] + 2 * static_cast<long>(page));
    EXPECT_EQ(dithered[page], origin[page] + 1);
  }
}

TEST_F(PrintImage, WithoutTheSpoolFolderThePageIsPrintedAllTheSame) {
  std::filesystem::remove(folder_ / "spool");
  const std::string log = print(Bytes(4, 0), 4, 1, 4);
  EXPECT_EQ(printer_.printed.size(), 1U);
  const std::regex failure(
      "TarvoPrinter::saveImage: unable to open the file "
      "/var/spool/cups/tmp/(origin|dithered)_2001-9-9_1_46_40_\\d+\\.bmp\n");
  EXPECT_EQ(std::distance(std::sregex_iterator(log.begin(), log.end(), failure), {}), 2) << log;
}

// Blank edges

/// 300 rows of 12 bytes: rows 100 to 199 carry ink.
Bytes bandPage() {
  Bytes page(std::size_t{300} * 12, 0);
  std::fill(page.begin() + 100 * 12, page.begin() + 200 * 12, std::uint8_t{255});
  return page;
}

constexpr char kBottom[] =
    "printImage: Removal of bottom blank edges detected, number of bottom blank lines: ";
constexpr char kTop[] =
    "printImage: Removal of top blank edges detected, number of top blank lines: ";

TEST_F(PrintImage, BlankEdgesReachTheLogAlone) {
  const struct {
    const char* what;
    int edges;
    unsigned long skipRight;
    Bytes page;
    std::vector<std::string> counted;
    std::string adjusted;  ///< empty: no adjustment
    const char* summary;
  } cases[] = {
      {"off",
       0,
       0,
       bandPage(),
       {},
       "",
       "number of top blank lines: 0, number of bottom blank lines: 0, adjusted height: 300\n"},
      {"bits that mean nothing",
       0xF5,
       0,
       bandPage(),
       {},
       "",
       "number of top blank lines: 0, number of bottom blank lines: 0, adjusted height: 300\n"},
      // Top 99 (line 0 is never looked at), bottom 200, 200 - 99 = 101, 99 x 12 = 1188.
      {"both",
       10,
       0,
       bandPage(),
       {kBottom + std::string("200"), kTop + std::string("99")},
       "printImage: Adjusted image height to 101, pointer offset by 1188 bytes",
       "number of top blank lines: 99, number of bottom blank lines: 200, adjusted height: 101\n"},
      {"bottom alone",
       8,
       0,
       bandPage(),
       {kBottom + std::string("200")},
       "printImage: Adjusted image height to 200, pointer offset by 0 bytes",
       "number of top blank lines: 0, number of bottom blank lines: 200, adjusted height: 200\n"},
      // Bottom stays 0, which is not above 99.
      {"top alone",
       2,
       0,
       bandPage(),
       {kTop + std::string("99")},
       "",
       "number of top blank lines: 99, number of bottom blank lines: 0, adjusted height: 300\n"},
      {"blank page",
       10,
       0,
       Bytes(std::size_t{300} * 12, 0),
       {kBottom + std::string("0"), kTop + std::string("300")},
       "",
       "number of top blank lines: 300, number of bottom blank lines: 0, adjusted height: 300\n"},
      {"skip more than a line has",
       10,
       13,
       bandPage(),
       {kBottom + std::string("200"), kTop + std::string("99")},
       "printImage: Adjusted image height to 101, pointer offset by 1188 bytes",
       "number of top blank lines: 99, number of bottom blank lines: 200, adjusted height: 101\n"},
  };
  for (const auto& row : cases) {
    printer_.printed.clear();
    printer_.setRemoveBlankEdges(static_cast<unsigned char>(row.edges));
    printer_.setSkipRightPixels(row.skipRight);
    const std::string log = print(row.page, 12, 300, 12);
    std::vector<std::string> expected = {
        "printImage: Start processing image, input width: 12, height: 300, bytes per line: 12",
        "printImage: Memory allocated successfully, size: 3600 bytes"};
    expected.insert(expected.end(), row.counted.begin(), row.counted.end());
    expected.insert(
        expected.end(),
        {"printImage: Saving original image, file path will be generated based on time",
         "printImage: Memory for processing result allocated successfully, size: 3600 bytes"});
    if (!row.adjusted.empty()) expected.push_back(row.adjusted);
    const std::string own = ownLines(log);
    EXPECT_EQ(own.rfind(lines(expected), 0), 0U) << row.what << "\n" << own;
    EXPECT_EQ(own.find("Adjusted") != std::string::npos, !row.adjusted.empty()) << row.what;
    EXPECT_NE(own.find(row.summary), std::string::npos) << row.what << "\n" << own;

    // Whatever was counted, the whole page is printed.
    ASSERT_EQ(printer_.printed.size(), 1U);
    EXPECT_EQ(printer_.printed[0].height, 300U);
    EXPECT_EQ(printer_.printed[0].width, 12U);
  }
}

/// The address that `log` gives after `words`.
unsigned long addressAfter(const std::string& log, const std::string& words, int base) {
  const std::size_t found = log.find(words);
  if (found == std::string::npos) return 0;
  return std::stoul(log.substr(found + words.size()), nullptr, base);
}

TEST_F(PrintImage, AddressInTheLogIsThatOfTheFirstLineThatIsLeft) {
  const struct {
    int edges;
    unsigned long offset;
  } cases[] = {{0, 0}, {8, 0}, {10, 99 * 12}};
  for (const auto& [edges, offset] : cases) {
    printer_.setRemoveBlankEdges(static_cast<unsigned char>(edges));
    const Bytes page = bandPage();
    const std::string log =
        support::standardErrorOf([&] { printer_.printImage(page.data(), 12, 300, 12); });
    const unsigned long result = addressAfter(log, "memory for processing result, address: ", 16);
    EXPECT_NE(result, 0U) << log;
    EXPECT_EQ(addressAfter(log, "pointer address: ", 10) - result, offset) << log;
  }
}

TEST_F(PrintImage, InkInTheSkippedBytesCountsAsBlank) {
  Bytes page(std::size_t{20} * 8, 0);
  for (std::size_t y = 0; y < 20; ++y) page[y * 8 + 6] = page[y * 8 + 7] = 255;
  printer_.setRemoveBlankEdges(10);
  printer_.setSkipRightPixels(2);
  const std::string log = print(page, 8, 20, 8);
  EXPECT_NE(log.find(kBottom + std::string("0\n")), std::string::npos) << log;
  EXPECT_NE(log.find(kTop + std::string("20\n")), std::string::npos) << log;
  EXPECT_EQ(log.find("Adjusted"), std::string::npos);
  printer_.setSkipRightPixels(1);
  EXPECT_NE(print(page, 8, 20, 8).find(kBottom + std::string("20\n")), std::string::npos);
}

TEST_F(PrintImage, LinesAreCountedOneWidthApartIsKept) {
  // Lines of 8 bytes, 4 dots wide: line r is looked for at byte 4 r, 8 bytes long.
  Bytes page(std::size_t{10} * 8, 0);
  page[4 * 8] = 255;  // byte 32: lines 7 (bytes 28 to 35) and 8 (32 to 39)
  printer_.setRemoveBlankEdges(10);
  const std::string log = print(page, 8, 10, 4);
  EXPECT_NE(log.find(kBottom + std::string("9\n")), std::string::npos) << log;
  EXPECT_NE(log.find(kTop + std::string("6\n")), std::string::npos) << log;
  // 9 - 6 = 3 lines, 6 x 8 = 48 bytes.
  EXPECT_NE(log.find("Adjusted image height to 3, pointer offset by 48 bytes\n"), std::string::npos)
      << log;
}

// Pages that fail

const std::string kNothingToPrint = "ERROR:printImage: pimage is NULL, unable to print the image\n";

TEST_F(PrintImage, FirstPageThatFailsIsNotPrinted) {
  const std::string log = print(Bytes(4, 0), 4, 0, 4);
  EXPECT_TRUE(printer_.printed.empty());
  EXPECT_EQ(
      support::firstDifference(
          lines({"printImage: Start processing image, input width: 4, height: 0, bytes per line: 4",
                 "printImage: Memory allocated successfully, size: 0 bytes",
                 "printImage: Saving original image, file path will be generated based on time",
                 "printImage: Memory for processing result allocated successfully, size: 0 bytes",
                 "printImage: Processed image information - pointer address: ADDRESS, width: 4, "
                 "height: 0, bytes per line: 4, number of top blank lines: 0, number of bottom "
                 "blank lines: 0, adjusted height: 0",
                 "printImage: Saving processed image, file path will be generated based on time",
                 "printImage: Starting to print the processed image"}) +
              kNothingToPrint +
              lines({"printImage: Freed the allocated memory, address: (nil)",
                     "printImage: Freed the memory for processing result, address: ADDRESS",
                     "printImage: Image processing completed"}),
          ownLines(log)),
      "");
  EXPECT_NE(log.find("CRIT:cximage.CreateFromArray with grey failed!\n"), std::string::npos);
  EXPECT_EQ(dumped("origin_").size(), 1U);
  EXPECT_TRUE(dumped("dithered_").empty());
}

TEST_F(PrintImage, PageOfLinesWithoutBytesIsNotPrinted) {
  const std::string log = print(Bytes(4, 0), 0, 3, 0);
  EXPECT_TRUE(printer_.printed.empty());
  EXPECT_NE(log.find("DEBUG:printImage: Memory allocated successfully, size: 0 bytes\n"),
            std::string::npos)
      << log;
  EXPECT_NE(log.find(kNothingToPrint), std::string::npos) << log;
}

TEST_F(PrintImage, FailedPageAfterADitheredOneIsNotPrinted) {
  print(Bytes(4, 0), 4, 1, 4);
  ASSERT_EQ(printer_.printed.size(), 1U);
  const std::string log = print(Bytes(4, 0), 4, 0, 4);
  EXPECT_EQ(printer_.printed.size(), 1U);
  EXPECT_NE(log.find(kNothingToPrint), std::string::npos) << log;
  EXPECT_EQ(dumped("dithered_").size(), 1U);
}

TEST_F(PrintImage, FailedPageAfterATattooPagePrintsThatOneAgainIsKept) {
  printer_.setHalftoneType(Tattoo);
  print(Bytes(16, 255), 4, 4, 4);
  const std::string log = print(Bytes(4, 0), 4, 0, 4);
  ASSERT_EQ(printer_.printed.size(), 2U);
  EXPECT_EQ(printer_.printed[1].rows, printer_.printed[0].rows);
  EXPECT_EQ(printer_.printed[1].height, 4U);
  EXPECT_EQ(log.find(kNothingToPrint), std::string::npos) << log;
  EXPECT_EQ(dumped("dithered_").size(), 2U);
}

}  // namespace
