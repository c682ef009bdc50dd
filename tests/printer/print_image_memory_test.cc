// Pages that do not fit in memory.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/resource.h>

#include <filesystem>
#include <string>

#include "support/capture.h"
#include "support/differences.h"
#include "support/folder.h"
#include "test_printer.h"

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kAddressSanitizer = true;
// An allocation that fails is to return null here, too.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1"; }
#else
constexpr bool kAddressSanitizer = false;
#endif

namespace {

constexpr unsigned long kTooLong = 1UL << 50;

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

/// How much this process may map, for one test.
class AddressSpace {
 public:
  explicit AddressSpace(rlim_t more) {
    ::getrlimit(RLIMIT_AS, &before_);
    rlimit limit = before_;
    limit.rlim_cur = used() + more;
    ::setrlimit(RLIMIT_AS, &limit);
  }
  ~AddressSpace() { ::setrlimit(RLIMIT_AS, &before_); }
  AddressSpace(const AddressSpace&) = delete;
  AddressSpace& operator=(const AddressSpace&) = delete;

 private:
  static rlim_t used() {
    const std::string pages = *support::readFile("/proc/self/statm");
    return std::stoul(pages) * 4096;
  }
  rlimit before_{};
};

TEST(PrintImageMemory, PageWhoseResultHasNoMemoryIsDumpedAndLeftOut) {
  if (kAddressSanitizer) GTEST_SKIP() << "the sanitizer's own memory is beyond any limit";
  const support::Folder folder;
  std::filesystem::create_directory(folder / "spool");
  ::setenv("TARVO_TEST_FOLDER", folder.path().c_str(), 1);
  TestPrinter printer;
  // 256 MiB for the first block, 512 for the second: room for one and a half of the first.
  constexpr unsigned long kSize = 256UL << 20;
  const Bytes page(4, 7);
  std::string log;
  {
    const AddressSpace limited(kSize + kSize / 2);
    log = support::standardErrorOf([&] { printer.printImage(page.data(), kSize, 1, 4); });
  }
  ::unsetenv("TARVO_TEST_FOLDER");
  EXPECT_EQ(
      support::firstDifference(
          "DEBUG:printImage: Start processing image, input width: 4, height: 1, bytes per line: "
          "268435456\n"
          "DEBUG:printImage: Memory allocated successfully, size: 268435456 bytes\n"
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

}  // namespace
