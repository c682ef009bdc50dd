// Files that are written where others may have planted something.
#include "common/file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <utility>

#include "planted.h"
#include "support/descriptors.h"
#include "support/folder.h"

namespace {

/// The mask of a process, put back at the end.
class Mask {
 public:
  explicit Mask(mode_t mask) : before_(umask(mask)) {}
  ~Mask() { umask(before_); }
  Mask(const Mask&) = delete;
  Mask& operator=(const Mask&) = delete;

 private:
  mode_t before_;
};

mode_t accessOf(const std::filesystem::path& path) {
  struct stat status {};
  EXPECT_EQ(lstat(path.c_str(), &status), 0);
  return status.st_mode & 07777U;
}

// What is printed is nobody else's to read.
TEST(OwnFile, IsForItsOwnerAlone) {
  const support::Folder folder;
  for (const mode_t mask : {mode_t{0}, mode_t{022}, mode_t{077}}) {
    const Mask set(mask);
    const std::string path = folder / ("made" + std::to_string(mask));
    ASSERT_NE(tarvoOpenOwnFile(path.c_str()), nullptr);
    EXPECT_EQ(accessOf(path), 0600U);
    // One that was there before and open to all.
    ASSERT_EQ(chmod(path.c_str(), 0666), 0);
    ASSERT_NE(tarvoOpenUnsharedFile(path.c_str()), nullptr);
    EXPECT_EQ(accessOf(path), 0600U);
  }
}

TEST(UnsharedFile, IsLeftAsItIsWhileAnotherHasIt) {
  const support::Folder folder;
  const std::string path = folder / "file";
  FileOwner first = tarvoOpenUnsharedFile(path.c_str());
  ASSERT_NE(first, nullptr);
  std::fputs("first", first.get());
  std::fflush(first.get());
  errno = 0;
  EXPECT_EQ(tarvoOpenUnsharedFile(path.c_str()), nullptr);
  EXPECT_EQ(errno, EWOULDBLOCK);
  EXPECT_EQ(support::readFile(path), "first");
  EXPECT_TRUE(tarvoCloseWhole(std::move(first)));
  EXPECT_NE(tarvoOpenUnsharedFile(path.c_str()), nullptr) << "once it is closed it is free";
  EXPECT_EQ(support::readFile(path), "");
}

TEST(CloseWhole, TellsWhetherAllIsInTheFile) {
  const support::Folder folder;
  FileOwner file = tarvoOpenOwnFile((folder / "file").c_str());
  std::fputs("content", file.get());
  EXPECT_TRUE(tarvoCloseWhole(std::move(file)));
  EXPECT_EQ(support::readFile(folder / "file"), "content");

  const auto full = [] { return FileOwner(std::fopen("/dev/full", "we")); };
  FileOwner held = full();
  std::fputs("held until it is closed", held.get());
  EXPECT_FALSE(tarvoCloseWhole(std::move(held)));

  FileOwner failed = full();
  std::fputs("written", failed.get());
  std::fflush(failed.get());
  EXPECT_FALSE(tarvoCloseWhole(std::move(failed))) << "the loss lies behind it";

  // A file system of another machine may tell only then that it had no room.
  const auto close = [](void*) {
    errno = EDQUOT;
    return -1;
  };
  const auto write = [](void*, const char*, std::size_t size) {
    return static_cast<ssize_t>(size);
  };
  FileOwner remote(fopencookie(nullptr, "w", {nullptr, write, nullptr, close}));
  std::fputs("content", remote.get());
  EXPECT_FALSE(tarvoCloseWhole(std::move(remote))) << "lost while it is closed";
}

TEST(OwnFile, IsEmptiedAndWrittenTo) {
  const support::Folder folder;
  const std::string path = folder / "file";
  support::writeFile(path, "longer than what follows");
  {
    const FileOwner file = tarvoOpenOwnFile(path.c_str());
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(fcntl(fileno(file.get()), F_GETFD), FD_CLOEXEC);
    std::fputs("short", file.get());
  }
  EXPECT_EQ(support::readFile(path), "short");
}

TEST(OwnFile, CanBeReadBack) {
  const support::Folder folder;
  const std::string path = folder / "file";
  const FileOwner file = tarvoOpenOwnFile(path.c_str());
  ASSERT_NE(file, nullptr);
  std::fputs("x", file.get());
  std::rewind(file.get());
  EXPECT_EQ(std::fgetc(file.get()), 'x');
}

TEST(OwnFile, WhatWasPlantedIsLeftAsItWas) {
  const support::Folder folder;
  const std::string target = folder / "target", path = folder / "path";
  support::writeFile(target, "content");
  const std::size_t open = support::openDescriptors();
  for (const auto& [what, plant] : kPlanted) {
    plant(target, path);
    const auto kind = std::filesystem::symlink_status(path).type();
    EXPECT_TRUE(tarvoIsOccupied(path.c_str())) << what;
    EXPECT_EQ(tarvoOpenOwnFile(path.c_str()), nullptr) << what;
    EXPECT_EQ(tarvoOpenUnsharedFile(path.c_str()), nullptr) << what;
    EXPECT_EQ(support::readFile(target), "content") << what;
    EXPECT_EQ(std::filesystem::symlink_status(path).type(), kind) << what;
    EXPECT_EQ(support::openDescriptors(), open) << what;
    std::filesystem::remove(path);
  }
  EXPECT_EQ(tarvoOpenOwnFile((folder / "none" / "file").c_str()), nullptr);
}

}  // namespace
