// Files that are there whole or not at all.
#include "common/whole_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "planted.h"
#include "support/descriptors.h"
#include "support/folder.h"

namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

constexpr std::uint64_t kMiB = std::uint64_t{1} << 20U;

TEST(WholeFile, HasItsNameOnceItIsComplete) {
  const support::Folder folder;
  const std::string path = folder / "page.bmp";
  WholeFile file(path.c_str(), 4);
  ASSERT_NE(file.stream(), nullptr);
  std::fputs("page", file.stream());
  std::fflush(file.stream());
  const Names before = support::namesIn(folder.path());
  ASSERT_EQ(before.size(), 1U);
  EXPECT_TRUE(before[0].starts_with(".page.bmp-")) << before[0];
  EXPECT_EQ(before[0].size(), std::string(".page.bmp-XXXXXX").size());
  EXPECT_EQ(fcntl(fileno(file.stream()), F_GETFD), FD_CLOEXEC);
  EXPECT_TRUE(file.keep());
  EXPECT_EQ(support::namesIn(folder.path()), Names{"page.bmp"});
  EXPECT_EQ(support::readFile(path), "page");
  EXPECT_EQ(fs::status(path).permissions(), fs::perms{0600});
}

TEST(WholeFile, LeavesNothingUnlessItIsKept) {
  const support::Folder folder;
  const std::size_t open = support::openDescriptors();
  {
    WholeFile file((folder / "page.bmp").c_str(), 4);
    std::fputs("page", file.stream());
  }
  EXPECT_EQ(support::namesIn(folder.path()), Names{});
  EXPECT_EQ(support::openDescriptors(), open);
}

// Two filters that print in the same second have the same names.
TEST(WholeFile, OfTwoWithOneNameEachIsWhole) {
  const support::Folder folder;
  const std::string path = folder / "page.bmp";
  WholeFile first(path.c_str(), 9), second(path.c_str(), 9);
  std::fputs("one", first.stream());
  std::fputs("two and", second.stream());
  std::fputs(" one", first.stream());
  EXPECT_TRUE(first.keep());
  EXPECT_EQ(support::readFile(path), "one one");
  std::fputs(" two", second.stream());
  EXPECT_EQ(support::readFile(path), "one one");
  EXPECT_TRUE(second.keep());
  EXPECT_EQ(support::readFile(path), "two and two");
  EXPECT_EQ(support::namesIn(folder.path()), Names{"page.bmp"});
}

TEST(WholeFile, TakesNoPlaceOfSomethingElse) {
  const support::Folder folder;
  const std::string target = folder / "target", path = folder / "path";
  support::writeFile(target, "content");
  for (const auto& [what, plant] : kPlanted) {
    SCOPED_TRACE(what);
    for (const bool late : {false, true}) {
      if (!late) plant(target, path);
      const auto before = fs::symlink_status(path).type();
      {
        WholeFile file(path.c_str(), 4);
        EXPECT_EQ(file.stream() != nullptr, late);
        if (late) {
          plant(target, path);
          std::fputs("page", file.stream());
          EXPECT_FALSE(file.keep());
        }
      }
      if (!late) {
        EXPECT_EQ(fs::symlink_status(path).type(), before);
      }
      EXPECT_EQ(support::readFile(target), "content");
      EXPECT_EQ(support::namesIn(folder.path()), (Names{"path", "target"}));
      fs::remove(path);
    }
  }
  EXPECT_EQ(WholeFile((folder / "none" / "file").c_str(), 4).stream(), nullptr);
}

/// A limit on the size of files, lifted at the end.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit = {bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, SIG_DFL);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit before_{};
};

TEST(WholeFile, IsRemovedWhenItCanNotBeWrittenWhole) {
  // Lost while it is written, and only when it is closed.
  for (const std::size_t size : {std::size_t{100000}, std::size_t{100}}) {
    const support::Folder folder;
    support::writeFile(folder / "page.bmp", "an earlier page");
    {
      WholeFile file((folder / "page.bmp").c_str(), size);
      const std::string bytes(size, 'x');
      const FileSizeLimit limit(size / 2);
      std::fwrite(bytes.data(), 1, bytes.size(), file.stream());
      EXPECT_FALSE(file.keep());
    }
    EXPECT_EQ(support::namesIn(folder.path()), Names{"page.bmp"});
    EXPECT_EQ(support::readFile(folder / "page.bmp"), "an earlier page");
  }
}

// A relative name has no folder.
TEST(WholeFile, LandsInTheWorkingFolder) {
  const support::Folder folder;
  const fs::path before = fs::current_path();
  fs::current_path(folder.path());
  WholeFile file("page.bmp", 4);
  const Names names = support::namesIn(folder.path());
  EXPECT_TRUE(file.stream() != nullptr && file.keep());
  fs::current_path(before);
  ASSERT_EQ(names.size(), 1U);
  EXPECT_TRUE(names[0].starts_with(".page.bmp-"));
  EXPECT_EQ(support::namesIn(folder.path()), Names{"page.bmp"});
}

TEST(Room, IsFivePercentAndAQuarterOfAGibibyte) {
  const struct {
    const char* what;
    std::uint64_t blockBytes, blocks, available, bytes;
    bool room;
  } kCases[] = {
      {"5 % of 10 GiB, to the block", 4096, 2621440, 131072 + 1, 4096, true},
      {"one block less", 4096, 2621440, 131072, 4096, false},
      {"a byte takes a block", 4096, 2621440, 131072 + 1, 1, true},
      {"and so does the one behind a block", 4096, 2621440, 131072 + 1, 4097, false},
      {"nothing to write", 4096, 2621440, 131072, 0, true},
      {"256 MiB of 1 GiB are more than 5 %", 4096, 262144, 65536 + 1, 4096, true},
      {"one block less of these", 4096, 262144, 65536, 4096, false},
      {"5 % that are no whole block: 20 of 399", kMiB * 100, 399, 21, 1, true},
      {"20 of 399 are kept", kMiB * 100, 399, 20, 1, false},
      {"more than there is", 4096, 2621440, 1000, 100 * kMiB, false},
      {"more than can be counted in bytes", 4096, std::uint64_t{1} << 60U, std::uint64_t{1} << 59U,
       kMiB, true},
      {"a page of 4 GiB on a terabyte", 4096, 268435456, 134217728, 4096 * kMiB, true},
      {"a file system without a size", 4096, 0, 0, kMiB, true},
      {"one without a block size", 0, 1000000000, 500000000, kMiB, true},
  };
  for (const auto& [what, blockBytes, blocks, available, bytes, room] : kCases) {
    struct statvfs fileSystem {};
    fileSystem.f_frsize = blockBytes;
    fileSystem.f_bsize = 1;  // what a write should be, not what is counted
    fileSystem.f_blocks = blocks;
    fileSystem.f_bavail = available;
    fileSystem.f_bfree = blocks;  // root's share among them
    EXPECT_EQ(tarvoHasRoomFor(fileSystem, bytes), room) << what;
  }
}

}  // namespace
