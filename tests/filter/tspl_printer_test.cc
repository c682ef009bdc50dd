#include "filter/tspl_printer.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "captured_printer.h"
#include "support/differences.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

std::string text(const Bytes& bytes) { return std::string(bytes.begin(), bytes.end()); }

cups_page_header2_t headerWithCopies(unsigned copies) {
  cups_page_header2_t header{};
  header.NumCopies = copies;
  return header;
}

/// Dots from a picture: '#' a printed dot (a byte that is not 0), '.' paper (0), rows cut by '/'.
Bytes dots(std::string_view picture) {
  Bytes bytes;
  for (const char dot : picture) {
    if (dot != '/') bytes.push_back(dot == '#' ? 255 : 0);
  }
  return bytes;
}

TEST(BitmapHead, EndsWithItsCommaAndNoLineEnd) {
  EXPECT_EQ(sentBy([] { setBitmapCmdHead(0, 0, 72, 800, 0); }), "BITMAP 0,0,72,800,0,");
  EXPECT_EQ(sentBy([] { setBitmapCmdHead(1, -2, 3, 4, 5); }), "BITMAP 1,-2,3,4,5,");
}

TEST(Print, GivesTheCountOfItsCharacters) {
  int count = 0;
  EXPECT_EQ(sentBy([&] { count = setPrint(1, 1); }), "PRINT 1,1\r\n");
  EXPECT_EQ(count, 11);
  EXPECT_EQ(sentBy([&] { count = setPrint(12, 345); }), "PRINT 12,345\r\n");
  EXPECT_EQ(count, 14);
}

TEST(EndPage, AlwaysPrintsOneCopy) {
  Settings settings{};
  settings.Darkness = 7;
  EXPECT_EQ(sentBy([&] { endPage(settings); }), "\r\nPRINT 1,1\r\n");
}

TEST(PrintImage, DotsArePackedWithPaperAsOne) {
  const struct {
    const char* what;
    unsigned long width;
    unsigned long height;
    Bytes data;
    const char* head;
    Bytes packed;
  } cases[] = {
      // 8 dots: one byte a row, no padding. Printed dots are 0 bits.
      {"width 8", 8, 2, dots("#......./.......#"), "BITMAP 0,0,1,2,0,", {0x7F, 0xFE}},
      {"picture", 8, 1, dots("##..#.#."), "BITMAP 0,0,1,1,0,", {0x35}},
      // 9 dots: two bytes a row, the second one dot and seven padding bits that are 1.
      {"width 9, last dot printed", 9, 1, dots("........#"), "BITMAP 0,0,2,1,0,", {0xFF, 0x7F}},
      {"width 9, last dot paper", 9, 1, dots("########."), "BITMAP 0,0,2,1,0,", {0x00, 0xFF}},
      {"width 7", 7, 1, dots("#######"), "BITMAP 0,0,1,1,0,", {0x01}},
      {"width 1, printed", 1, 1, dots("#"), "BITMAP 0,0,1,1,0,", {0x7F}},
      {"width 1, paper", 1, 1, dots("."), "BITMAP 0,0,1,1,0,", {0xFF}},
      {"width 16, all printed", 16, 1, Bytes(16, 255), "BITMAP 0,0,2,1,0,", {0x00, 0x00}},
      {"width 16, all paper", 16, 1, Bytes(16, 0), "BITMAP 0,0,2,1,0,", {0xFF, 0xFF}},
      {"any byte but 0 prints",
       8,
       1,
       {1, 2, 127, 128, 254, 255, 0, 3},
       "BITMAP 0,0,1,1,0,",
       {0x02}},
      {"width 0", 0, 3, {}, "BITMAP 0,0,0,3,0,", {}},
      {"height 0", 12, 0, {}, "BITMAP 0,0,2,0,0,", {}},
      {"both 0", 0, 0, {}, "BITMAP 0,0,0,0,0,", {}},
  };
  for (const auto& row : cases) {
    CapturedPrinter printer;
    cups_page_header2_t header = headerWithCopies(2);
    printer.setPageHeader(&header);
    const std::uint8_t none = 0;
    const int count = printer.doPrintImage(row.data.empty() ? &none : row.data.data(), row.width,
                                           row.height, row.width);
    EXPECT_EQ(
        support::firstDifference(row.head + text(row.packed) + "\r\nPRINT 1,2\r\n", printer.sent()),
        "")
        << row.what;
    EXPECT_EQ(count, 11) << row.what;
  }
}

TEST(PrintImage, EachDotHasItsBit) {
  for (unsigned long width = 1; width <= 24; ++width) {
    for (unsigned long dot = 0; dot < width; ++dot) {
      CapturedPrinter printer;
      cups_page_header2_t header = headerWithCopies(1);
      printer.setPageHeader(&header);
      Bytes row(width, 0);
      row[dot] = 255;
      printer.doPrintImage(row.data(), width, 1, width);
      Bytes packed((width + 7) / 8, 0xFF);
      packed[dot / 8] = static_cast<std::uint8_t>(0xFF ^ (0x80U >> (dot % 8)));
      const std::string head = "BITMAP 0,0," + std::to_string(packed.size()) + ",1,0,";
      ASSERT_EQ(support::firstDifference(head + text(packed) + "\r\nPRINT 1,1\r\n", printer.sent()),
                "")
          << "dot " << dot << " of " << width;
    }
  }
}

TEST(PrintImage, RowsAreTakenOneWidthApartIsKept) {
  // Two rows of five dots, eight bytes apart: the second row is read from byte 5, where the three
  // padding bytes of the first lie, so its dots come out three places late.
  const Bytes image = dots("#...#.../.#.#....");
  CapturedPrinter printer;
  cups_page_header2_t header = headerWithCopies(1);
  printer.setPageHeader(&header);
  printer.doPrintImage(image.data(), 8, 2, 5);
  // Row 0: #...#      -> 0 111 0 111 = 0x77; row 1: bytes 5 to 9, "....#" -> 1111 0 111 = 0xF7
  EXPECT_EQ(support::firstDifference("BITMAP 0,0,1,2,0,\x77\xF7\r\nPRINT 1,1\r\n", printer.sent()),
            "");
}

TEST(PrintImage, HeadOfA576DotPageOf800Rows) {
  CapturedPrinter printer;
  cups_page_header2_t header = headerWithCopies(1);
  printer.setPageHeader(&header);
  const Bytes page(std::size_t{576} * 800, 0);
  printer.doPrintImage(page.data(), 576, 800, 576);
  EXPECT_EQ(
      support::firstDifference(
          "BITMAP 0,0,72,800,0," + std::string(std::size_t{72} * 800, '\xFF') + "\r\nPRINT 1,1\r\n",
          printer.sent()),
      "");
}

TEST(PrintImage, CopiesAreThoseOfThePageHeader) {
  for (const unsigned copies : {0U, 1U, 2U, 99U, 65535U}) {
    CapturedPrinter printer;
    cups_page_header2_t header = headerWithCopies(copies);
    printer.setPageHeader(&header);
    const Bytes row(8, 0);
    printer.doPrintImage(row.data(), 8, 1, 8);
    EXPECT_EQ(
        support::firstDifference(
            "BITMAP 0,0,1,1,0,\xFF\r\nPRINT 1," + std::to_string(copies) + "\r\n", printer.sent()),
        "");
  }
}

TEST(PrintImage, OfACancelledJobBeginsNothing) {
  CapturedPrinter printer;
  cups_page_header2_t header = headerWithCopies(1);
  printer.setPageHeader(&header);
  const Bytes row(8, 0);

  sigset_t termination, before;
  sigemptyset(&termination);
  sigaddset(&termination, SIGTERM);
  sigprocmask(SIG_BLOCK, &termination, &before);
  raise(SIGTERM);
  const int result = printer.doPrintImage(row.data(), 8, 1, 8);
  int signal = 0;
  sigwait(&termination, &signal);  // the test goes on
  sigprocmask(SIG_SETMASK, &before, nullptr);

  EXPECT_EQ(signal, SIGTERM);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(printer.sent(), "");
}

TEST(TsplPrinter, PrintsThroughTheThirdPlaceOfItsVirtualTable) {
  // After the two destructors. A pointer to a virtual member function holds its place in bytes, in
  // the C++ ABI of GCC and Clang; on some processors with the lowest bit set.
  const auto function = &TsplPrinter::doPrintImage;
  std::uintptr_t place = 0;
  std::memcpy(&place, &function, sizeof place);
  EXPECT_EQ(place / sizeof(void*), 2U);
}

TEST(PrintImage, HeadAndPrintGoThroughThePublishedPrinterIsKept) {
  // Dots and their line end go through the object itself. In a job both are one.
  TsplPrinter other;
  const support::MemoryStream otherStream;
  other.getOutputStreams() = {otherStream.get()};
  cups_page_header2_t header = headerWithCopies(3);
  other.setPageHeader(&header);

  CapturedPrinter process;
  cups_page_header2_t processHeader = headerWithCopies(9);
  process.setPageHeader(&processHeader);

  const Bytes row(8, 255);
  other.doPrintImage(row.data(), 8, 1, 8);
  EXPECT_EQ(otherStream.bytes(), std::string("\0\r\n", 3));
  EXPECT_EQ(process.sent(), "BITMAP 0,0,1,1,0,PRINT 1,3\r\n");
}

TEST(PrintImage, EveryStreamGetsTheSameBytes) {
  CapturedPrinter printer;
  const support::MemoryStream second;
  printer.getOutputStreams().push_back(second.get());
  cups_page_header2_t header = headerWithCopies(1);
  printer.setPageHeader(&header);
  const Bytes page = dots("#..#..#..#/.#..#..#..");
  printer.doPrintImage(page.data(), 10, 2, 10);
  EXPECT_FALSE(second.bytes().empty());
  EXPECT_EQ(support::firstDifference(second.bytes(), printer.sent()), "");
}

TEST(TsplPrinter, IsAPrinterWithNoDataOfItsOwn) {
  static_assert(std::is_base_of_v<TarvoPrinter, TsplPrinter>);
  EXPECT_EQ(sizeof(TsplPrinter), sizeof(TarvoPrinter));
}

}  // namespace
