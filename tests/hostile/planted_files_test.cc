// What others leave where the filter writes: none of it is followed, emptied, changed or waited
// for, and the job is printed.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "jobs/good_job.h"
#include "support/differences.h"
#include "surroundings.h"

namespace {

using namespace hostile;
using jobs::FilterJob;
namespace fs = std::filesystem;

const std::string kContent = "something that must stay as it is\n";

struct Place {
  const char* what;
  fs::path Places::*path;
  Unwritable unwritable;
};

const std::vector<Place>& places() {
  static const std::vector<Place> kPlaces = {
      {"the page's dump", &Places::origin, {.origin = true}},
      {"the result's dump", &Places::dithered, {.dithered = true}},
      {"the recording", &Places::recording, {.recording = true}},
      {"the trace", &Places::trace, {}},
  };
  return kPlaces;
}

/// The job with `plant(place, victim)` done to one place after another; `check` then looks at both.
/// The victim is a file of somebody else's that the filter may write to.
void expectUnharmed(const std::function<void(const fs::path&, const fs::path&)>& plant,
                    const std::function<void(const fs::path&, const fs::path&)>& check) {
  for (const Place& place : places()) {
    SCOPED_TRACE(place.what);
    FilterJob job;
    recordJob(job);
    const fs::path path = Places(job).*place.path;
    const fs::path victim = job.folder() / "victim";
    plant(path, victim);
    const support::Outcome outcome = job.runAlone(goodProgram(job));
    EXPECT_EQ(outcome.ending(), "exit status 0");
    EXPECT_EQ(support::firstDifference(goodStream(), outcome.output), "");
    EXPECT_EQ(support::firstDifference(logWithout(place.unwritable), jobs::masked(outcome.error)),
              "");
    check(path, victim);
    // The other files are as ever.
    for (const Place& other : places()) {
      const fs::path written = Places(job).*other.path;
      EXPECT_TRUE(written == path || fs::file_size(written) > 0) << other.what;
    }
  }
}

TEST(PlantedFile, LinkToAFile) {
  expectUnharmed(
      [](const fs::path& path, const fs::path& victim) {
        support::writeFile(victim, kContent);
        fs::create_symlink(victim, path);
      },
      [](const fs::path& path, const fs::path& victim) {
        EXPECT_EQ(support::readFile(victim), kContent);
        EXPECT_TRUE(fs::is_symlink(path));
      });
}

TEST(PlantedFile, LinkToNothing) {
  expectUnharmed(
      [](const fs::path& path, const fs::path& victim) { fs::create_symlink(victim, path); },
      [](const fs::path&, const fs::path& victim) { EXPECT_FALSE(fs::exists(victim)); });
}

TEST(PlantedFile, SecondNameOfAFile) {
  expectUnharmed(
      [](const fs::path& path, const fs::path& victim) {
        support::writeFile(victim, kContent);
        fs::create_hard_link(victim, path);
      },
      [](const fs::path&, const fs::path& victim) {
        EXPECT_EQ(support::readFile(victim), kContent);
      });
}

TEST(PlantedFile, PipeIsNotWaitedFor) {
  expectUnharmed(
      [](const fs::path& path, const fs::path&) { ASSERT_EQ(::mkfifo(path.c_str(), 0666), 0); },
      [](const fs::path& path, const fs::path&) { EXPECT_TRUE(fs::is_fifo(path)); });
}

TEST(PlantedFile, Folder) {
  expectUnharmed([](const fs::path& path, const fs::path&) { fs::create_directory(path); },
                 [](const fs::path& path, const fs::path&) { EXPECT_TRUE(fs::is_empty(path)); });
}

TEST(PlantedFile, LinkToADevice) {
  expectUnharmed(
      [](const fs::path& path, const fs::path&) { fs::create_symlink("/dev/full", path); },
      [](const fs::path& path, const fs::path&) { EXPECT_TRUE(fs::is_symlink(path)); });
}

TEST(PlantedFile, FileOfAnotherUser) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can make a file of another user";
  expectUnharmed(
      [](const fs::path& path, const fs::path&) {
        support::writeFile(path, kContent);
        ASSERT_EQ(::chown(path.c_str(), 65534, 65534), 0);
        fs::permissions(path, fs::perms{0666});
      },
      [](const fs::path& path, const fs::path&) {
        EXPECT_EQ(support::readFile(path), kContent);
        struct stat status {};
        EXPECT_EQ(::stat(path.c_str(), &status), 0);
        EXPECT_EQ(status.st_uid, 65534U);
      });
}

// Two jobs of one second share their names: the later one's files stay.
TEST(PlantedFile, PlainFileOfTheFiltersOwnIsReplaced) {
  FilterJob undisturbed, job;
  recordJob(undisturbed);
  recordJob(job);
  EXPECT_EQ(undisturbed.runAlone(goodProgram(undisturbed)).ending(), "exit status 0");
  for (const Place& place : places()) {
    support::writeFile(Places(job).*place.path, std::string(100000, 'x'));
  }
  const support::Outcome outcome = job.runAlone(goodProgram(job));
  EXPECT_EQ(support::firstDifference(logWithout({}), jobs::masked(outcome.error)), "");
  for (const Place& place : places()) {
    EXPECT_EQ(support::firstDifference(*support::readFile(Places(undisturbed).*place.path),
                                       *support::readFile(Places(job).*place.path)),
              "")
        << place.what;
  }
}

TEST(PlantedFile, FolderThatMayNotBeWritten) {
  const auto user = asOrdinaryUser();
  if (!user) GTEST_SKIP() << "no ordinary user to run the filter as";
  FilterJob job;
  recordJob(job);
  fs::permissions(job.ppd(), fs::perms{0644});
  fs::permissions(job.spool(), fs::perms{0555});
  fs::permissions(job.folder().path(), fs::perms{0555});
  const support::Outcome outcome = job.runAlone(through(*user, goodProgram(job)));
  fs::permissions(job.folder().path(), fs::perms{0755});
  fs::permissions(job.spool(), fs::perms{0755});
  EXPECT_EQ(outcome.ending(), "exit status 0");
  EXPECT_EQ(support::firstDifference(goodStream(), outcome.output), "");
  EXPECT_EQ(
      support::firstDifference(logWithout({.origin = true, .dithered = true, .recording = true}),
                               jobs::masked(outcome.error)),
      "");
  EXPECT_TRUE(fs::is_empty(job.spool()));
  EXPECT_FALSE(fs::exists(job.trace()));
}

}  // namespace
