#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <string>
#include <vector>

#include "support/capture.h"
#include "support/differences.h"
#include "support/folder.h"
#include "test_printer.h"

namespace {

void append(std::string& bytes, std::uint64_t value, int size) {
  for (int i = 0; i < size; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFFU);
}

/// The two headers of a dump, 54 bytes.
std::string headers(std::uint32_t offBits, std::uint32_t width, std::uint32_t height,
                    std::uint32_t bitCount, std::uint32_t sizeImage, std::uint32_t colours) {
  std::string bytes = "BM";
  append(bytes, offBits + sizeImage, 4);  // bfSize
  append(bytes, 0, 4);                    // bfReserved1, bfReserved2
  append(bytes, offBits, 4);
  append(bytes, 40, 4);  // biSize
  append(bytes, width, 4);
  append(bytes, height, 4);
  append(bytes, 1, 2);  // biPlanes
  append(bytes, bitCount, 2);
  append(bytes, 0, 4);  // biCompression
  append(bytes, sizeImage, 4);
  append(bytes, 0, 8);        // pixels per metre
  append(bytes, colours, 4);  // biClrUsed
  append(bytes, colours, 4);  // biClrImportant
  return bytes;
}

std::string grayPalette() {
  std::string bytes;
  for (std::uint32_t level = 0; level < 256; ++level) append(bytes, level * 0x010101U, 4);
  return bytes;
}

const std::string kBlackWhite("\0\0\0\0\xff\xff\xff\0", 8);

/// A printer that dumps into a folder of the test's own.
class Dumping {
 public:
  Dumping() { setTemplate((folder_ / "dump_%d-%d-%d_%d_%d_%d_%ld.bmp").string()); }

  void setTemplate(const std::string& path) {
    std::snprintf(printer_.imagePath_, sizeof printer_.imagePath_, "%s", path.c_str());
  }

  /// The one file that this call makes.
  std::string save(const Bytes& data, unsigned long bytesPerLine, unsigned long height,
                   unsigned long width, unsigned short bitsPerPixel) {
    const std::uint8_t none = 0;
    printer_.saveImage(data.empty() ? &none : data.data(), bytesPerLine, height, width,
                       bitsPerPixel);
    const std::vector<std::string> names = support::namesIn(folder_.path());
    if (names.size() != 1) return "not one file but " + std::to_string(names.size());
    const std::string bytes = *support::readFile(folder_ / names.front());
    std::remove((folder_ / names.front()).c_str());
    return bytes;
  }

  TestPrinter& printer() { return printer_; }
  const support::Folder& folder() const { return folder_; }

 private:
  support::Folder folder_;
  TestPrinter printer_;
};

Bytes counting(std::size_t size) {
  Bytes bytes(size);
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<std::uint8_t>(i * 7);
  return bytes;
}

TEST(GrayDump, RowsAreNotPaddedIsKept) {
  // 10 x 2: rows of 12 bytes in the header (biSizeImage 24, bfSize 1078 + 24 = 1102), 20 bytes in
  // the file, which is 1098 long.
  const Bytes data = counting(20);
  const std::string file = Dumping().save(data, 10, 2, 10, 8);
  EXPECT_EQ(file.size(), 1098U);
  EXPECT_EQ(
      support::firstDifference(headers(1078, 10, 2, 8, 24, 256) + grayPalette() + text(data), file),
      "");
}

TEST(GrayDump, WidthThatIsAMultipleOfFourGivesAWholeFile) {
  const Bytes data = counting(24);
  const std::string file = Dumping().save(data, 12, 2, 12, 8);
  EXPECT_EQ(file.size(), 1102U);  // 1078 + 24, what bfSize says
  EXPECT_EQ(
      support::firstDifference(headers(1078, 12, 2, 8, 24, 256) + grayPalette() + text(data), file),
      "");
}

TEST(GrayDump, BytesAreTakenAsTheyLieWhateverTheLineLengthIsKept) {
  // Lines of 6 bytes, 4 dots wide: the file holds the first 4 x 2 bytes.
  const Bytes data = counting(12);
  const std::string file = Dumping().save(data, 6, 2, 4, 8);
  EXPECT_EQ(support::firstDifference(
                headers(1078, 4, 2, 8, 8, 256) + grayPalette() + text(data).substr(0, 8), file),
            "");
}

TEST(GrayDump, Sizes) {
  const struct {
    unsigned width;
    unsigned height;
    unsigned rowBytes;
  } cases[] = {{1, 1, 4}, {2, 3, 4}, {3, 5, 4}, {4, 1, 4}, {5, 2, 8}, {203, 3, 204}, {8, 0, 8}};
  for (const auto& [width, height, rowBytes] : cases) {
    const Bytes data = counting(std::size_t{width} * height);
    EXPECT_EQ(support::firstDifference(headers(1078, width, height, 8, rowBytes * height, 256) +
                                           grayPalette() + text(data),
                                       Dumping().save(data, width, height, width, 8)),
              "")
        << width << " x " << height;
  }
}

struct BitCase {
  const char* what;
  unsigned long bytesPerLine;
  unsigned height;
  unsigned width;
  Bytes data;
  unsigned rowBytes;
  Bytes rows;  ///< as in the file: the last source row first
};

const std::vector<BitCase>& bitCases() {
  static const std::vector<BitCase> kCases = {
      // Ten bytes, all 0: two data bytes, the second's six last bits forced to 1, then padding.
      {"ten blank dots", 10, 1, 10, Bytes(10, 0), 4, {0xFF, 0xFF, 0, 0}},
      {"ten dots of ink", 10, 1, 10, Bytes(10, 9), 4, {0x00, 0x3F, 0, 0}},
      {"eight dots", 8, 1, 8, {0, 1, 0, 1, 255, 255, 0, 0}, 4, {0xA3, 0, 0, 0}},
      {"rows in reverse",
       8,
       2,
       8,
       {0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0},
       4,
       {0x01, 0, 0, 0, 0x80, 0, 0, 0}},
      {"one dot", 1, 1, 1, {0}, 4, {0xFF, 0, 0, 0}},
      {"one dot of ink", 1, 1, 1, {1}, 4, {0x7F, 0, 0, 0}},
      {"32 dots fill the row", 32, 1, 32, Bytes(32, 0), 4, {0xFF, 0xFF, 0xFF, 0xFF}},
      {"33 dots need the next four bytes",
       33,
       1,
       33,
       Bytes(33, 0),
       8,
       {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0}},
      // The builder goes by the bytes of a line, not by the width.
      {"line shorter than the width", 10, 1, 20, Bytes(10, 0), 4, {0xFF, 0xFF, 0, 0}},
      {"line longer than the width", 20, 1, 10, Bytes(20, 0), 4, {0xFF, 0xFF, 0xFF, 0}},
      // What has no place in the row is left out.
      {"line longer than the row",
       100,
       2,
       10,
       Bytes(200, 0),
       4,
       {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}},
      {"no rows", 8, 0, 8, {}, 4, {}},
  };
  return kCases;
}

TEST(BitDump, ZeroBytesAreWhiteAndTheLastRowComesFirst) {
  for (const BitCase& row : bitCases()) {
    EXPECT_EQ(support::firstDifference(
                  headers(62, row.width, row.height, 1, row.rowBytes * row.height, 0) +
                      kBlackWhite + text(row.rows),
                  Dumping().save(row.data, row.bytesPerLine, row.height, row.width, 1)),
              "")
        << row.what;
  }
}

TEST(OtherDump, IsABitDumpWithoutItsPaletteIsKept) {
  for (const unsigned short bits : std::initializer_list<unsigned short>{0, 4, 24, 32}) {
    for (const BitCase& row : bitCases()) {
      EXPECT_EQ(
          support::firstDifference(
              headers(62, row.width, row.height, 1, row.rowBytes * row.height, 0) + text(row.rows),
              Dumping().save(row.data, row.bytesPerLine, row.height, row.width, bits)),
          "")
          << row.what << ", " << bits << " bits";
    }
  }
}

// Names

long counterOf(const std::string& name) { return std::stol(name.substr(name.rfind('_') + 1)); }

class DumpName : public testing::Test {
 protected:
  DumpName() {
    std::tm moment{};
    moment.tm_year = 2026 - 1900;
    moment.tm_mon = 11 - 1;
    moment.tm_mday = 16;
    moment.tm_hour = 7;
    moment.tm_min = 5;
    moment.tm_sec = 9;
    ::setenv("TZ", "UTC", 1);
    ::tzset();
    ::setenv("TARVO_TEST_TIME", std::to_string(::timegm(&moment)).c_str(), 1);
  }
  ~DumpName() override { ::unsetenv("TARVO_TEST_TIME"); }
};

TEST_F(DumpName, NumbersAreNotPadded) {
  Dumping dumping;
  const Bytes dot = {0};
  dumping.printer().saveImage(dot.data(), 1, 1, 1, 8);
  const std::vector<std::string> names = support::namesIn(dumping.folder().path());
  ASSERT_EQ(names.size(), 1U);
  EXPECT_EQ(names[0], "dump_2026-11-16_7_5_9_" + std::to_string(counterOf(names[0])) + ".bmp");
}

TEST_F(DumpName, TimeIsLocalTime) {
  ::setenv("TZ", "XXX-17:30", 1);  // seventeen and a half hours ahead: past midnight
  ::tzset();
  Dumping dumping;
  const Bytes dot = {0};
  dumping.printer().saveImage(dot.data(), 1, 1, 1, 8);
  const std::vector<std::string> names = support::namesIn(dumping.folder().path());
  ASSERT_EQ(names.size(), 1U);
  EXPECT_EQ(names[0].rfind("dump_2026-11-17_0_35_9_", 0), 0U) << names[0];
}

TEST_F(DumpName, DumpsOfOneSecondDifferInTheCounterAlone) {
  Dumping dumping;
  const Bytes dot = {0};
  dumping.printer().saveImage(dot.data(), 1, 1, 1, 8);
  const long first = counterOf(support::namesIn(dumping.folder().path()).front());
  TestPrinter other;  // the counter is the process's, not the printer's
  std::snprintf(other.imagePath_, sizeof other.imagePath_, "%s", dumping.printer().imagePath_);
  other.saveImage(dot.data(), 1, 1, 1, 1);
  const std::string stem = "dump_2026-11-16_7_5_9_";
  std::vector<std::string> expected = {stem + std::to_string(first) + ".bmp",
                                       stem + std::to_string(first + 1) + ".bmp"};
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(support::namesIn(dumping.folder().path()), expected);
}

TEST_F(DumpName, LongestTemplateGivesAWholeName) {
  // It grows as the year takes its place: six numbers and a counter.
  Dumping dumping;
  const std::string name = "dump_%d-%d-%d_%d_%d_%d_%ld.bmp";
  std::string path = dumping.folder().path().string() + "/";
  while (path.size() + 2 + name.size() < sizeof dumping.printer().imagePath_) path += "./";
  dumping.setTemplate(path + name);
  const Bytes dot = {0};
  dumping.printer().saveImage(dot.data(), 1, 1, 1, 8);
  const std::vector<std::string> names = support::namesIn(dumping.folder().path());
  ASSERT_EQ(names.size(), 1U);
  EXPECT_EQ(names[0], "dump_2026-11-16_7_5_9_" + std::to_string(counterOf(names[0])) + ".bmp");
}

TEST_F(DumpName, FileThatCannotBeCreatedCostsOneLineAndANumber) {
  Dumping dumping;
  const Bytes dot = {0};
  dumping.printer().saveImage(dot.data(), 1, 1, 1, 8);
  const long first = counterOf(support::namesIn(dumping.folder().path()).front());
  const std::string good = dumping.printer().imagePath_;

  const std::string missing = (dumping.folder() / "missing/").string();
  dumping.setTemplate(missing + "x_%d-%d-%d_%d_%d_%d_%ld.bmp");
  // Without a level: this line does not go through the log.
  EXPECT_EQ(support::standardErrorOf([&] { dumping.printer().saveImage(dot.data(), 1, 1, 1, 8); }),
            "TarvoPrinter::saveImage: unable to open the file " + missing + "x_2026-11-16_7_5_9_" +
                std::to_string(first + 1) + ".bmp\n");

  dumping.setTemplate(good);
  EXPECT_EQ(support::standardErrorOf([&] { dumping.printer().saveImage(dot.data(), 1, 1, 1, 8); }),
            "");
  const std::string next = "dump_2026-11-16_7_5_9_" + std::to_string(first + 2) + ".bmp";
  EXPECT_TRUE(support::readFile(dumping.folder() / next).has_value()) << next;
}

}  // namespace
