#include "common/job_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "support/descriptors.h"
#include "support/folder.h"

namespace {

TEST(JobFile, IsReadAndClosedAndNotLeftToOtherPrograms) {
  const support::Folder folder;
  support::writeFile(folder / "job", "pages");
  const std::string path = folder / "job";
  const std::size_t before = support::openDescriptors();
  {
    JobFile file;
    ASSERT_TRUE(file.open(path.c_str()));
    EXPECT_EQ(support::openDescriptors(), before + 1);
    EXPECT_EQ(fcntl(file.descriptor(), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    EXPECT_EQ(fcntl(file.descriptor(), F_GETFL) & O_ACCMODE, O_RDONLY);
    char bytes[10];
    EXPECT_EQ(
        std::string(bytes, static_cast<std::size_t>(read(file.descriptor(), bytes, sizeof bytes))),
        "pages");
  }
  EXPECT_EQ(support::openDescriptors(), before);
}

TEST(JobFile, IsStandardInputWhenNoneIsNamedWhichStaysOpen) {
  ASSERT_NE(fcntl(STDIN_FILENO, F_GETFD), -1);
  {
    const JobFile file;
    EXPECT_EQ(file.descriptor(), STDIN_FILENO);
  }
  EXPECT_NE(fcntl(STDIN_FILENO, F_GETFD), -1);
}

TEST(JobFile, ThatIsNotThereIsSaidWithTheReason) {
  const support::Folder folder;
  const std::string path = folder / "missing";
  JobFile file;
  errno = 0;
  EXPECT_FALSE(file.open(path.c_str()));
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(file.descriptor(), -1);
}

}  // namespace
