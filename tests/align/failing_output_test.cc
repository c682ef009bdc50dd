// Output that can't be written, and memory that is not there: one line, and status 1.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "align_run.h"
#include "support/folder.h"

namespace {

constexpr rlim_t kMagicBytes = 4;
constexpr rlim_t kHeaderBytes = 1796;

struct Ending {
  int status = 0;  ///< as waitpid has it
  std::string log;
  std::size_t written = 0;
};

/// The filter with its output in a file that takes no more than `most` bytes, as a full disk does.
Ending passInto(rlim_t most, const std::string& raster) {
  const support::Folder folder;
  support::writeFile(folder / "in", raster);
  const std::string in = folder / "in", out = folder / "out";
  int pipes[2] = {-1, -1};
  if (pipe2(pipes, O_CLOEXEC) != 0) return {};
  const pid_t child = fork();
  if (child == 0) {
    const int written = open(out.c_str(), O_WRONLY | O_CREAT, 0600);
    dup2(written, 1);
    dup2(pipes[1], 2);
    signal(SIGXFSZ, SIG_IGN);  // the write fails instead
    const rlimit limit{most, most};
    setrlimit(RLIMIT_FSIZE, &limit);
    execl(RASTERTOALIGNED, "rastertoaligned", "7", "u", "t", "1", "", in.c_str(), nullptr);
    _exit(127);
  }
  close(pipes[1]);
  Ending ending;
  char text[256];
  for (ssize_t count = 0; (count = read(pipes[0], text, sizeof text)) > 0;) {
    ending.log.append(text, static_cast<std::size_t>(count));
  }
  close(pipes[0]);
  waitpid(child, &ending.status, 0);
  ending.written = support::readFile(out).value_or("").size();
  return ending;
}

TEST(FailingOutput, EndsTheJobWhereverItFails) {
  // 13 dots become rows of 16.
  const std::string raster =
      support::rasterFile({support::grayPage(13, 5, support::Drawing::Random)});
  const struct {
    const char* where;
    rlim_t most;
  } cases[] = {{"the first bytes of the stream", 0},
               {"the page header", kMagicBytes},
               {"inside the page header", kMagicBytes + 100},
               {"the first row", kMagicBytes + kHeaderBytes},
               {"the last row", kMagicBytes + kHeaderBytes + rlim_t{4} * 16}};
  for (const auto& [where, most] : cases) {
    SCOPED_TRACE(where);
    const Ending ending = passInto(most, raster);
    EXPECT_TRUE(WIFEXITED(ending.status));
    EXPECT_EQ(WEXITSTATUS(ending.status), 1);
    EXPECT_EQ(ending.written, most);
    EXPECT_THAT(ending.log,
                testing::HasSubstr("ERROR: Unable to pass the pages on: File too large.\n"));
  }
}

TEST(FailingOutput, OfTheRowsThatAreMissingIsSaidOnce) {
  // Two of five rows come; of the three that are filled in, one fits.
  std::string raster = support::rasterFile({support::grayPage(13, 5, support::Drawing::Random)});
  raster.resize(raster.size() - std::size_t{3} * 13);
  const Ending ending = passInto(kMagicBytes + kHeaderBytes + rlim_t{3} * 16, raster);
  EXPECT_TRUE(WIFEXITED(ending.status));
  EXPECT_EQ(WEXITSTATUS(ending.status), 1);
  EXPECT_THAT(ending.log,
              testing::HasSubstr("ERROR: Page 1 is cut short: 2 of its 5 rows came.\n"
                                 "ERROR: Unable to pass the pages on: File too large.\n"));
}

TEST(FailingOutput, FullDiskIsSaidOnce) {
  support::Program program =
      alignProgram(support::rasterFile({support::grayPage(13, 5, support::Drawing::Random)}));
  program.executable = "/bin/sh";
  program.arguments = {"sh", "-c", "exec '" RASTERTOALIGNED "' 7 u t 1 '' >/dev/full"};
  const support::Outcome outcome = support::run(program);
  EXPECT_EQ(outcome.ending(), "exit status 1");
  EXPECT_EQ(outcome.error, "ERROR: Unable to pass the pages on: No space left on device.\n");
}

TEST(FailingOutput, RowThatDoesNotFitInMemoryIsSaid) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the sanitizer ends a process that has no memory";
#endif
  // 200 MiB for the row that comes and as many for the one that goes on.
  const support::Page page{support::grayHeader(200U << 20U, 1), {}};
  support::Program program = alignProgram(support::uncheckedRasterFile({page}));
  program.addressSpaceLimitBytes = 256ULL << 20U;
  const support::Outcome outcome = support::run(program);
  EXPECT_EQ(outcome.ending(), "exit status 1");
  EXPECT_EQ(outcome.error, "ERROR: Out of memory.\n");
}

}  // namespace
