// Pages that do not fit in memory.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "failing_allocation.h"
#include "support/capture.h"
#include "support/differences.h"
#include "support/folder.h"
#include "test_printer.h"

#if defined(__SANITIZE_ADDRESS__)
// An allocation that fails is to return null here, too.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1"; }
#endif

namespace {

constexpr unsigned long kTooLong = 1UL << 50;

/// A page whose blocks count as large, also those of one bit a pixel.
constexpr unsigned long kLargeSide = 1024;
constexpr std::size_t kLargePage = kLargeSide * kLargeSide;

/// `log` without what the address sanitizer has to say.
std::string ownLines(const std::string& log) {
  std::string own;
  for (const std::string& line : support::linesOf(log)) {
    if (line.rfind("==", 0) != 0) own += line + "\n";
  }
  return own;
}

TEST(PrintImageMemory, PageThatHasNoMemoryIsLeftOut) {
  const support::Folder folder;
  std::filesystem::create_directory(folder / "spool");
  ::setenv("TARVO_TEST_FOLDER", folder.path().c_str(), 1);
  TestPrinter printer;
  const Bytes page(4, 0);
  const std::string log =
      support::standardErrorOf([&] { printer.printImage(page.data(), kTooLong, 1, 4); });
  ::unsetenv("TARVO_TEST_FOLDER");
  const std::string length = std::to_string(kTooLong);
  EXPECT_EQ(
      support::firstDifference(
          "DEBUG:printImage: Start processing image, input width: 4, height: 1, bytes per "
          "line: " +
              length +
              "\nERROR:printImage: Memory allocation failed, unable to process image, exiting "
              "processing\nDEBUG:printImage: Image processing completed\n",
          ownLines(log)),
      "");
  EXPECT_TRUE(printer.printed.empty());
  EXPECT_TRUE(support::namesIn(folder / "spool").empty());
}

TEST(PrintImageMemory, TattooPageWithoutMemoryForItsDotsPrintsTheCurrentImageIsKept) {
  const Bytes page(kLargePage, 200);
  const Bytes white(16, 255);
  // After a page of the other halftones the current image is where this page was copied to: its
  // levels are printed as they came.
  TestPrinter plain;
  support::standardErrorOf([&] {
    plain.printImage(white.data(), 4, 4, 4);
    plain.setHalftoneType(Tattoo);
    const FailingAllocation dots(4);  // after scratch, result and page
    plain.printImage(page.data(), kLargeSide, kLargeSide, kLargeSide);
  });
  ASSERT_EQ(plain.printed.size(), 2U);
  EXPECT_EQ(plain.printed[1].rows, page);

  // After a tattoo page it is the one that could not be made anew: there is nothing left of it.
  TestPrinter tattoo;
  tattoo.setHalftoneType(Tattoo);
  const std::string log = support::standardErrorOf([&] {
    tattoo.printImage(white.data(), 4, 4, 4);
    const FailingAllocation dots(4);
    tattoo.printImage(page.data(), kLargeSide, kLargeSide, kLargeSide);
  });
  EXPECT_EQ(tattoo.printed.size(), 1U);
  EXPECT_NE(log.find("ERROR:printImage: pimage is NULL, unable to print the image\n"),
            std::string::npos)
      << log;
}

/// Bytes of the process's addresses that are in use.
std::size_t mappedBytes() {
  std::size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  return pages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

TEST(PrintImageMemory, BlocksOfAPageGoWithIt) {
  // 24 pages of 16 MiB have blocks of 48 MiB each. (Sanitizers keep a quarter of a gigabyte of what
  // was freed.)
  constexpr unsigned long kWidth = 16384;
  constexpr unsigned long kHeight = 1024;
  constexpr std::size_t kMostKept = std::size_t{512} << 20;
  const Bytes page(kWidth * kHeight, 0);
  TestPrinter printer;
  const auto print = [&] { printer.printImage(page.data(), kWidth, kHeight, kWidth); };
  support::standardErrorOf(print);
  printer.printed.clear();
  const std::size_t before = mappedBytes();
  support::standardErrorOf([&] {
    for (int i = 0; i < 24; ++i) {
      print();
      printer.printed.clear();
    }
  });
  EXPECT_LT(mappedBytes(), before + kMostKept);
}

TEST(PrintImageMemory, PageOfMoreBytesThanThereAreNumbersIsLeftOut) {
  TestPrinter printer;
  const Bytes page(4, 0);
  // 2 to the 40th lines of 2 to the 40th bytes: the product is 0 in 64 bits.
  const std::string log =
      support::standardErrorOf([&] { printer.printImage(page.data(), 1UL << 40, 1UL << 40, 4); });
  EXPECT_NE(log.find("ERROR:printImage: Memory allocation failed, unable to process image"),
            std::string::npos)
      << log;
  EXPECT_TRUE(printer.printed.empty());
}

TEST(PrintImageMemory, PageWhoseResultHasNoMemoryIsDumpedAndLeftOut) {
  const support::Folder folder;
  std::filesystem::create_directory(folder / "spool");
  ::setenv("TARVO_TEST_FOLDER", folder.path().c_str(), 1);
  TestPrinter printer;
  const Bytes page(kLargePage, 7);
  const std::string log = support::standardErrorOf([&] {
    const FailingAllocation second(2);  // the scratch block is the first
    printer.printImage(page.data(), kLargeSide, kLargeSide, kLargeSide);
    EXPECT_EQ(second.bytes(), 2 * kLargePage);
  });
  ::unsetenv("TARVO_TEST_FOLDER");
  EXPECT_EQ(
      support::firstDifference(
          "DEBUG:printImage: Start processing image, input width: 1024, height: 1024, bytes per "
          "line: 1024\n"
          "DEBUG:printImage: Memory allocated successfully, size: 1048576 bytes\n"
          "DEBUG:printImage: Saving original image, file path will be generated based on time\n"
          "ERROR:printImage: Memory allocation for processing result failed, unable to continue "
          "processing\n"
          "DEBUG:printImage: Freed the allocated memory, address: (nil)\n"
          "DEBUG:printImage: Image processing completed\n",
          log),
      "");
  EXPECT_TRUE(printer.printed.empty());
  EXPECT_EQ(support::namesIn(folder / "spool").size(), 1U);
}

TEST(PrintImageMemory, TattooPageWithoutMemoryForItsDotsIsNotPrinted) {
  const support::Folder folder;
  std::filesystem::create_directory(folder / "spool");
  ::setenv("TARVO_TEST_FOLDER", folder.path().c_str(), 1);
  TestPrinter printer;
  printer.setHalftoneType(Tattoo);
  const Bytes page(kLargePage, 200);
  const std::string log = support::standardErrorOf([&] {
    const FailingAllocation dots(4);  // after scratch, result and page
    printer.printImage(page.data(), kLargeSide, kLargeSide, kLargeSide);
  });
  ::unsetenv("TARVO_TEST_FOLDER");
  EXPECT_NE(log.find("DEBUG:PageProcess: Applied Lumo dithering with stride 1024, width 1024\n"
                     "ERROR:PageProcess: Failed to create a new CxImage from Lumo dithered data\n"
                     "DEBUG:printImage: Processed image information"),
            std::string::npos)
      << log;
  EXPECT_NE(log.find("ERROR:printImage: pimage is NULL, unable to print the image\n"),
            std::string::npos)
      << log;
  EXPECT_TRUE(printer.printed.empty());

  support::standardErrorOf([&] {
    const FailingAllocation second(2);  // after the page
    EXPECT_EQ(printer.PageProcess(Tattoo, page.data(), kLargeSide, kLargeSide, kLargeSide, nullptr),
              0);
  });
}

TEST(PrintImageMemory, PageThatIsLostWhenItIsTurnedIsAll0) {
  const Bytes page(kLargePage, 200);
  Bytes out(2 * kLargePage);
  for (const bool with_buffer : {true, false}) {
    TestPrinter printer;
    printer.setHalftoneType(Tattoo);
    printer.setRotate180Print(true);
    support::standardErrorOf([&] {
      const FailingAllocation second(2);  // after the page
      printer.PageProcess(Tattoo, page.data(), kLargeSide, kLargeSide, kLargeSide,
                          with_buffer ? out.data() : nullptr);
    });
    ASSERT_FALSE(printer.cximage_.IsValid());
    EXPECT_EQ(support::firstDifference(text(Bytes(kLargePage, 0)),
                                       text(pixelsOf(printer.ditheredImage_))),
              "");
  }
}

TEST(PrintImageMemory, WhicheverBlockIsMissingNothingIsReadBeyondTheOthers) {
  // Scratch, result, page, and what the halftone needs: each large block fails in turn. A page is
  // printed whole or not at all. (The sanitizer sees what is read outside a block.)
  const support::Folder folder;
  std::filesystem::create_directory(folder / "spool");
  ::setenv("TARVO_TEST_FOLDER", folder.path().c_str(), 1);
  const Bytes page(kLargePage, 200);
  for (const DitherType type : {None, FloydSteinberg, Ordered, Sierra, Tattoo, Tattoo_X8}) {
    for (int failing = 1; failing <= 6; ++failing) {
      TestPrinter printer;
      printer.setHalftoneType(type);
      const std::string log = support::standardErrorOf([&] {
        const FailingAllocation allocation(failing);
        printer.printImage(page.data(), kLargeSide, kLargeSide, kLargeSide);
      });
      const bool failed = log.find("ERROR:") != std::string::npos;
      EXPECT_EQ(printer.printed.size(), failed ? 0U : 1U)
          << tarvoHalftoneTypeToStr(type) << ", block " << failing << "\n"
          << log;
      EXPECT_TRUE(log.ends_with("DEBUG:printImage: Image processing completed\n")) << log;
    }
  }
  ::unsetenv("TARVO_TEST_FOLDER");
}

}  // namespace
