// A signal while the printer is at something that takes its time.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <set>
#include <string>
#include <thread>

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
using ::testing::EndsWith;
using ::testing::HasSubstr;
using Clock = std::chrono::steady_clock;
using Names = std::set<std::string>;
namespace fs = std::filesystem;

// Within a second, says the printer, and a machine with much to do may make more of it: what is
// looked for here is whether it ends at all before its work is done, which would be minutes.
constexpr double kSeconds = 5;

class TsplprinterStop : public ::testing::Test {
 protected:
  Names Printed() const {
    Names names;
    if (!fs::exists(folder_.File("printed"))) return names;
    for (const auto& entry : fs::directory_iterator(folder_.File("printed"))) {
      names.insert(entry.path().filename().string());
    }
    return names;
  }

  // Waits until something in the folder has such a name.
  void WaitForFile(const std::string& start) const {
    const auto patience = Clock::now() + std::chrono::seconds(test::kPatienceSeconds);
    while (Clock::now() < patience) {
      const Names names = Printed();
      const auto found = names.lower_bound(start);
      if (found != names.end() && found->starts_with(start)) return;
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    FAIL() << "no " << start;
  }

  // The status with which SIGTERM ends it.
  static int Stop(PrinterProcess& printer) {
    const auto start = Clock::now();
    printer.Signal(SIGTERM);
    const int status = printer.Wait();
    EXPECT_LT(std::chrono::duration<double>(Clock::now() - start).count(), kSeconds);
    return status;
  }

  test::TemporaryFolder folder_;
};

// The largest labels that are drawn at all, 32,000 x 32,000 dots, one in a stream of some bytes. A
// picture takes seconds.
std::string HugeLabels(int count) {
  std::string job = kPreamble;
  for (int i = 0; i < count; ++i) job += PageOf("4003.9 mm, 4003.9 mm", 1, 1, "A");
  return job;
}

TEST_F(TsplprinterStop, EndsWhileItDrawsAHugeLabel) {
  PrinterProcess printer(folder_, {"--port", "0", "--dpi", "203"});
  const Client client(printer.ListeningPort());
  const std::string job = HugeLabels(30);
  client.Send(job);
  WaitForFile(".tarvo-");
  EXPECT_EQ(Stop(printer), 2);
  EXPECT_EQ(client.Ending(), "reset");
  EXPECT_EQ(Printed(), Names{"job-1.tspl"});
  EXPECT_EQ(folder_.Read("printed/job-1.tspl"), job);
  // Said once, of the picture that it was at.
  EXPECT_EQ(folder_.Read("err"),
            "tsplprinter: printed/job-1-1.png: the printer was told to stop; "
            "no more of the job is drawn\n");
  EXPECT_THAT(printer.Rest(),
              EndsWith("job 1: stopped, 30 pages, " + std::to_string(job.size()) + " bytes\n"));
}

TEST_F(TsplprinterStop, EndsWhileItDrawsManyPages) {
  // Blank labels of 2,000 x 2,000 dots: many of them in each piece of the job that is read.
  std::string job = kPreamble;
  for (int i = 0; i < 20000; ++i) job += PageOf("250.2 mm, 250.2 mm", 1, 1, "\xFF");
  PrinterProcess printer(folder_, {"--port", "0", "--dpi", "203", "--limit", "100000"});
  const Client client(printer.ListeningPort());
  std::thread sender([&] { client.Send(job); });
  WaitForFile("job-1-3.png");
  EXPECT_EQ(Stop(printer), 2);
  sender.join();
  const std::string stream = folder_.Read("printed/job-1.tspl");
  EXPECT_GT(stream.size(), 0U);
  EXPECT_EQ(stream, job.substr(0, stream.size()));
  for (const std::string& name : Printed()) EXPECT_TRUE(name.starts_with("job-1")) << name;
  EXPECT_THAT(folder_.Read("err"), HasSubstr("the printer was told to stop"));
}

// It hangs in a write that nobody can interrupt but by ending the process.
TEST_F(TsplprinterStop, EndsWhenNobodyReadsItsLines) {
  // More lines than a pipe holds, which the test does not read: 64 KiB, and 60 bytes a line.
  std::string job = kPreamble;
  for (int i = 0; i < 3000; ++i) job += Join(FullPage());
  PrinterProcess printer(folder_, {"--port", "0", "--limit", "1"});
  const Client client(printer.ListeningPort());
  client.Send(job);
  ASSERT_TRUE(printer.WaitForUnread(60000));
  EXPECT_EQ(Stop(printer), 2);
  EXPECT_EQ(Printed(), Names{"job-1-1.png"}) << "a part of a stream is left";
  EXPECT_THAT(folder_.Read("err"),
              EndsWith("tsplprinter: told to stop: what was not finished by now is removed\n"));
}

TEST_F(TsplprinterStop, ALostTerminalLeavesNoPartOfAFile) {
  PrinterProcess printer(folder_, {"--port", "0", "--dpi", "203"});
  const Client client(printer.ListeningPort());
  client.Send(HugeLabels(1));
  WaitForFile(".tarvo-");
  printer.Signal(SIGHUP);
  EXPECT_EQ(printer.Wait(), -1);
  EXPECT_EQ(Printed(), Names{});
}

}  // namespace
