// The files of a job: how many, for whom, what they never touch, and what is left when they fail.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <random>
#include <set>
#include <string>

#include "printer_process.h"
#include "streams.h"
#include "temporary_folder.h"

namespace {

using test::Client;
using test::FullPage;
using test::Join;
using test::kPreamble;
using test::PageOf;
using test::PrinterProcess;
using ::testing::HasSubstr;
using Names = std::set<std::string>;
namespace fs = std::filesystem;

const std::string kPage = kPreamble + Join(FullPage());
// An empty label of 8,000 x 8,000 dots: a stream of some bytes, and a picture of some kilobytes.
const std::string kEmptyLabel = kPreamble + PageOf("1001.0 mm, 1001.0 mm", 1, 1, "\xFF");
const std::vector<std::string> kOneJob = {"--port", "0", "--jobs", "1", "--dpi", "203"};
const std::vector<std::string> kTwoJobs = {"--port", "0", "--jobs", "2", "--dpi", "203"};

// A page of 8,192 x 700 dots without any order, which no compression makes small: its picture takes
// nearly a mebibyte.
std::string NoisyPage() {
  std::mt19937 generator(1);
  std::string noise(std::size_t{1024} * 700, '\0');
  for (char& byte : noise) byte = static_cast<char>(generator());
  return PageOf("1025.0 mm, 87.6 mm", 1024, 700, noise);
}

class TsplprinterFiles : public ::testing::Test {
 protected:
  Names Printed() const {
    Names names;
    for (const auto& entry : fs::directory_iterator(folder_.File("printed"))) {
      names.insert(entry.path().filename().string());
    }
    return names;
  }

  test::TemporaryFolder folder_;
};

TEST_F(TsplprinterFiles, AreForTheirOwnerAlone) {
  PrinterProcess printer(folder_, kOneJob);
  EXPECT_EQ(Client(printer.ListeningPort()).Print(kPage), "closed");
  EXPECT_EQ(printer.Wait(), 0);
  EXPECT_EQ(Printed(), (Names{"job-1.tspl", "job-1-1.png"}));
  for (const std::string& name : Printed()) {
    EXPECT_EQ(fs::status(folder_.File("printed/" + name)).permissions(),
              fs::perms::owner_read | fs::perms::owner_write)
        << name;
  }
}

TEST_F(TsplprinterFiles, NothingThatWasPlantedIsTouched) {
  const struct {
    const char* name;
    std::function<void(const std::string& path)> plant;
  } kCases[] = {
      {"a symbolic link",
       [&](const std::string& path) { fs::create_symlink(folder_.File("stolen"), path); }},
      {"a pipe", [](const std::string& path) { mkfifo(path.c_str(), 0600); }},
      {"a folder", [](const std::string& path) { fs::create_directory(path); }},
      {"a file", [&](const std::string& path) { fs::copy(folder_.Write("other", "other"), path); }},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.name);
    PrinterProcess printer(folder_, kTwoJobs);
    const int port = printer.ListeningPort();
    // Planted after the printer has seen what its folder holds. What has a stream's name takes the
    // job's number; what has a picture's is instead of it.
    c.plant(folder_.File("printed/job-1.tspl"));
    c.plant(folder_.File("printed/job-3-1.png"));
    const auto before = fs::symlink_status(folder_.File("printed/job-1.tspl")).type();
    EXPECT_EQ(Client(port).Print(kPage), "closed");
    EXPECT_EQ(Client(port).Print(kPage), "closed");
    EXPECT_EQ(printer.Wait(), 2);
    EXPECT_FALSE(fs::exists(folder_.File("stolen")));
    for (const char* planted : {"printed/job-1.tspl", "printed/job-3-1.png"}) {
      EXPECT_EQ(fs::symlink_status(folder_.File(planted)).type(), before) << planted;
    }
    EXPECT_EQ(Printed(),
              (Names{"job-1.tspl", "job-2.tspl", "job-2-1.png", "job-3.tspl", "job-3-1.png"}));
    EXPECT_EQ(folder_.Read("printed/job-2.tspl"), kPage);
    EXPECT_EQ(folder_.Read("printed/job-3.tspl"), kPage);
    EXPECT_EQ(folder_.Read("err"), std::string("tsplprinter: printed/job-3-1.png: ") + c.name +
                                       " has this name and is left alone\n");
    fs::remove_all(folder_.File("printed"));
  }
}

TEST_F(TsplprinterFiles, AStreamForWhichThereIsNoRoomLeavesNothing) {
  const struct {
    const char* what;
    std::string job;
    bool whole;  // it ends at once when there is more to come
  } kCases[] = {
      {"what is written at its end", kPage, true},
      {"what is written while it comes",
       kPreamble + PageOf("1024.0 mm, 125.0 mm", 1024, 1000, std::string(1024000, 'A')), false},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.what);
    PrinterProcess printer(folder_, kTwoJobs);
    const int port = printer.ListeningPort();
    printer.LimitFiles(200);
    const Client client(port);
    client.Send(c.job);
    if (c.whole) client.Finish();
    EXPECT_EQ(printer.Wait(), 2);
    EXPECT_THAT(folder_.Read("err"),
                HasSubstr("tsplprinter: printed/job-1.tspl: File too large\n"));
    EXPECT_THAT(printer.Rest(), ::testing::Not(HasSubstr("job 1: ended")));
    Names left = Printed();
    left.erase("job-1-1.png");
    EXPECT_EQ(left, Names{});
    fs::remove_all(folder_.File("printed"));
  }
}

TEST_F(TsplprinterFiles, APictureForWhichThereIsNoRoomLeavesNothing) {
  PrinterProcess printer(folder_, kTwoJobs);
  const int port = printer.ListeningPort();
  printer.LimitFiles(2000);
  EXPECT_EQ(Client(port).Print(kEmptyLabel), "closed");
  EXPECT_EQ(Client(port).Print(kPage), "closed");
  EXPECT_EQ(printer.Wait(), 2);
  EXPECT_EQ(folder_.Read("err"), "tsplprinter: printed/job-1-1.png: File too large\n");
  EXPECT_EQ(Printed(), (Names{"job-1.tspl", "job-2.tspl", "job-2-1.png"}));
}

TEST_F(TsplprinterFiles, AJobHasNoMorePicturesThanTheLimit) {
  PrinterProcess printer(folder_, {"--port", "0", "--jobs", "2", "--limit", "2"});
  const int port = printer.ListeningPort();
  std::string job = kPage;
  for (int i = 0; i < 3; ++i) job += Join(FullPage());
  EXPECT_EQ(Client(port).Print(job), "closed");
  EXPECT_EQ(Client(port).Print(kPage), "closed");
  EXPECT_EQ(printer.Wait(), 1);
  EXPECT_EQ(folder_.Read("err"),
            "tsplprinter: printed/job-1-3.png: the job has its 2 pictures (--limit); "
            "no more of the job is drawn\n");
  EXPECT_EQ(Printed(),
            (Names{"job-1.tspl", "job-1-1.png", "job-1-2.png", "job-2.tspl", "job-2-1.png"}));
  EXPECT_EQ(folder_.Read("printed/job-1.tspl"), job);
  const std::string lines = printer.Rest();
  EXPECT_THAT(lines, HasSubstr("job 1 page 4: 1.0 x 0.5 mm, 8 x 4 dots at 203 dpi, 1 copy\n"));
  EXPECT_THAT(lines,
              HasSubstr("job 1: ended, 4 pages, " + std::to_string(job.size()) + " bytes\n"));
}

TEST_F(TsplprinterFiles, TheLimitIs1000PicturesWhenNothingIsSaid) {
  PrinterProcess printer(folder_, kOneJob);
  std::string job = kPreamble;
  for (int i = 0; i < 1001; ++i) job += Join(FullPage());
  EXPECT_EQ(Client(printer.ListeningPort()).Print(job), "closed");
  EXPECT_THAT(folder_.Read("err"),
              HasSubstr("printed/job-1-1001.png: the job has its 1000 pictures (--limit)"));
  EXPECT_EQ(Printed().size(), 1001U);  // 1,000 and the stream
}

TEST_F(TsplprinterFiles, TheLimitIsOneOfBytesToo) {
  const std::string noisy = NoisyPage();
  PrinterProcess printer(folder_, {"--port", "0", "--jobs", "2", "--dpi", "203", "--limit", "9,1"});
  const int port = printer.ListeningPort();
  EXPECT_EQ(Client(port).Print(kPage + noisy + noisy + Join(FullPage())), "closed");
  EXPECT_EQ(Client(port).Print(kPreamble + noisy), "closed");
  EXPECT_EQ(printer.Wait(), 1);
  EXPECT_EQ(folder_.Read("err"),
            "tsplprinter: printed/job-1-3.png: the job's pictures are 1 MiB and more (--limit); "
            "no more of the job is drawn\n");
  EXPECT_EQ(Printed(),
            (Names{"job-1.tspl", "job-1-1.png", "job-1-2.png", "job-2.tspl", "job-2-1.png"}));
  EXPECT_LT(fs::file_size(folder_.File("printed/job-1-2.png")), 1U << 20);
  EXPECT_GT(fs::file_size(folder_.File("printed/job-1-2.png")), 1U << 19);
}

}  // namespace
