// A printer that is slow, late, fails or is switched off, and jobs and folders that are bad.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "printer_process.h"
#include "streams.h"
#include "temporary_folder.h"
#include "tool_run.h"

namespace {

using test::BarePage;
using test::Client;
using test::FullPage;
using test::Join;
using test::kPreamble;
using test::PageOf;
using test::PrinterProcess;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using Clock = std::chrono::steady_clock;

const std::string kPage = kPreamble + Join(FullPage());  // 268 bytes
const std::string kPageLine = "job 1 page 1: 1.0 x 0.5 mm, 8 x 4 dots at 203 dpi, 1 copy\n";

double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

class TsplprinterTrouble : public ::testing::Test {
 protected:
  bool Exists(const std::string& name) const {
    return std::filesystem::exists(std::filesystem::symlink_status(folder_.File(name)));
  }

  test::TemporaryFolder folder_;
};

TEST_F(TsplprinterTrouble, ASlowPrinterTakesItsTime) {
  // 2,400 bytes of dots and some 170 others, at 5,000 bytes a second: half a second.
  const std::string job = kPreamble + PageOf("12.5 mm, 25.0 mm", 12, 200, std::string(2400, 'A'));
  PrinterProcess printer(folder_, {"--port", "0", "--jobs", "1", "--bytes-per-second", "5000"});
  const int port = printer.ListeningPort();
  const auto start = Clock::now();
  EXPECT_EQ(Client(port).Print(job), "closed");
  EXPECT_GE(SecondsSince(start), static_cast<double>(job.size()) / 5000);
  EXPECT_EQ(printer.Wait(), 0);
  EXPECT_EQ(folder_.Read("printed/job-1.tspl"), job);
  EXPECT_TRUE(Exists("printed/job-1-1.png"));
}

TEST_F(TsplprinterTrouble, AnAbsentPrinterRefusesConnectionsUntilItComes) {
  const auto start = Clock::now();
  PrinterProcess printer(folder_, {"--port", "0", "--jobs", "1", "--absent", "0.5"});
  const std::string absent = printer.Line();
  ASSERT_THAT(absent,
              ::testing::MatchesRegex("absent on 127\\.0\\.0\\.1:[0-9]+ for 0\\.5 seconds"));
  const int port = std::stoi(absent.substr(absent.find(':') + 1));
  EXPECT_EQ(Client(port).error(), ECONNREFUSED);
  EXPECT_EQ(printer.ListeningPort(), port);
  EXPECT_GE(SecondsSince(start), 0.5);
  EXPECT_EQ(Client(port).Print(kPage), "closed");
  EXPECT_EQ(printer.Wait(), 0);
}

TEST_F(TsplprinterTrouble, DropsTheConnectionAfterSoManyBytes) {
  PrinterProcess printer(folder_,
                         {"--port", "0", "--jobs", "4", "--drop-after", "268", "--drop-jobs", "2"});
  const int port = printer.ListeningPort();
  for (const std::string& job : {kPage + Join(BarePage()), kPage}) {
    const Client client(port);
    client.Send(job);  // which may fail already
    EXPECT_EQ(client.Ending(), "reset");
  }
  // A job that ends before is not dropped, and counts: it had its chance.
  EXPECT_EQ(Client(port).Print(kPage + Join(BarePage())), "closed");
  EXPECT_EQ(Client(port).Print(kPage), "closed");
  EXPECT_EQ(printer.Wait(), 0);
  EXPECT_EQ(folder_.Read("err"), "");
  for (const std::string job : {"1", "2", "4"}) {
    EXPECT_EQ(folder_.Read("printed/job-" + job + ".tspl"), kPage);
    EXPECT_TRUE(Exists("printed/job-" + job + "-1.png"));
  }
  EXPECT_EQ(folder_.Read("printed/job-3.tspl"), kPage + Join(BarePage()));
  EXPECT_THAT(printer.Rest(),
              StartsWith("job 1: begins\n" + kPageLine + "job 1: dropped, 1 page, 268 bytes\n"));
}

TEST_F(TsplprinterTrouble, AJobThatIsDroppedInItsDotsIsNotMalformed) {
  PrinterProcess printer(folder_, {"--port", "0", "--jobs", "2", "--drop-after", "255"});
  const int port = printer.ListeningPort();
  for (int i = 0; i < 2; ++i) {
    const Client client(port);
    client.Send(kPage);
    EXPECT_EQ(client.Ending(), "reset");
  }
  EXPECT_EQ(printer.Wait(), 0);
  EXPECT_EQ(folder_.Read("err"), "");
  EXPECT_EQ(printer.Rest(),
            "job 1: begins\njob 1: dropped, 0 pages, 255 bytes\n"
            "job 2: begins\njob 2: dropped, 0 pages, 255 bytes\n");
  EXPECT_EQ(folder_.Read("printed/job-2.tspl"), kPage.substr(0, 255));
}

TEST_F(TsplprinterTrouble, ASignalInABitmapSavesAndDrawsWhatThereIs) {
  for (const int signal : {SIGTERM, SIGINT}) {
    const test::TemporaryFolder folder;
    PrinterProcess printer(folder, {"--port", "0"});
    const Client client(printer.ListeningPort());
    const std::string all = kPage + PageOf("1.0 mm, 0.5 mm", 1, 4, "ABCD");
    const std::string part = all.substr(0, all.find("CD\r\n"));
    client.Send(kPage);
    EXPECT_EQ(printer.Line(), "job 1: begins");
    EXPECT_EQ(printer.Line() + "\n", kPageLine);
    client.Send(part.substr(kPage.size()));
    printer.Signal(signal);
    EXPECT_EQ(printer.Wait(), 0);
    EXPECT_EQ(client.Ending(), "reset");
    EXPECT_EQ(printer.Rest(),
              "job 1: stopped, 1 page, " + std::to_string(part.size()) + " bytes\n");
    EXPECT_EQ(folder.Read("err"), "");
    EXPECT_EQ(folder.Read("printed/job-1.tspl"), part);
    EXPECT_THAT(folder.Read("printed/job-1-1.png"), HasSubstr("IEND"));
    EXPECT_FALSE(std::filesystem::exists(folder.File("printed/job-1-2.png")));
  }
}

TEST_F(TsplprinterTrouble, WhatArrivedBeforeTheSignalIsPrinted) {
  // More than the printer takes at once, and less than what the system takes before it is read.
  const std::string big = PageOf("1.0 mm, 3.1 mm", 2000, 30, std::string(60000, '\xFF'));
  const struct {
    bool finished;
    const char* connection;
    const char* word;
  } kCases[] = {{true, "closed", "ended"}, {false, "reset", "stopped"}};
  for (const auto& c : kCases) {
    const test::TemporaryFolder folder;
    PrinterProcess printer(folder, {"--port", "0"});
    const Client client(printer.ListeningPort());
    client.Send(kPage);
    EXPECT_EQ(printer.Line(), "job 1: begins");
    EXPECT_EQ(printer.Line() + "\n", kPageLine);
    printer.Signal(SIGSTOP);
    client.Send(big);
    if (c.finished) client.Finish();
    printer.Signal(SIGTERM);
    printer.Signal(SIGCONT);
    EXPECT_EQ(printer.Wait(), 0);
    EXPECT_EQ(client.Ending(), c.connection);
    EXPECT_THAT(printer.Rest(), EndsWith(std::string("job 1: ") + c.word + ", 2 pages, " +
                                         std::to_string(kPage.size() + big.size()) + " bytes\n"));
    EXPECT_TRUE(folder.Read("printed/job-1.tspl") == kPage + big);
  }
}

TEST_F(TsplprinterTrouble, ASignalEndsItWhateverItWaitsFor) {
  const struct {
    const char* what;
    std::vector<std::string> arguments;
    std::string sent;
  } kCases[] = {
      {"a job", {}, ""},
      {"its time to come", {"--absent", "100"}, ""},
      {"its time to take the next byte", {"--bytes-per-second", "1"}, kPage},
      {"the rest of a job", {}, "\n"},
  };
  for (const auto& c : kCases) {
    const test::TemporaryFolder folder;
    std::vector<std::string> arguments = {"--port", "0"};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    PrinterProcess printer(folder, arguments);
    const std::string line = printer.Line();
    const Client client(std::stoi(line.substr(line.find(':') + 1)));
    client.Send(c.sent);
    if (!c.sent.empty()) {
      EXPECT_EQ(printer.Line(), "job 1: begins") << c.what;
    }
    const auto start = Clock::now();
    printer.Signal(SIGTERM);
    EXPECT_EQ(printer.Wait(), 0) << c.what;
    EXPECT_LT(SecondsSince(start), 1.0) << c.what;
    if (!c.sent.empty()) {
      EXPECT_EQ(printer.Rest(), "job 1: stopped, 0 pages, 1 byte\n") << c.what;
      EXPECT_EQ(folder.Read("printed/job-1.tspl"), "\n") << c.what;
    }
  }
}

TEST_F(TsplprinterTrouble, AMalformedJobIsSavedAndTheNextOneTaken) {
  const std::string behind(1000, '.');
  const struct {
    std::string job;
    std::string damage;
    bool drawn;
  } kCases[] = {
      {"GET / HTTP/1.1\r\n\r\n",
       "byte 0: expected 64 line feeds, 64 more, found \"GET / HTTP/1.1\\r\\n\"", false},
      {kPage + "FEED 1\r\n" + behind,
       "byte 268: expected \"SIZE \", 64 line feeds or the end of the stream, found \"FEED "
       "1\\r\\n........\"",
       true},
      // Cut in the dots, which begin at byte 251 and are 4.
      {kPage.substr(0, 253),
       "byte 253: expected 4 bytes of dots from byte 251 on, 2 more, found the end of the stream",
       false},
      {kPage + Join(FullPage()).substr(0, 30),
       "byte 298: expected \"m, 0.0 mm\\r\\n\", found the end of the stream", true},
  };
  for (const auto& c : kCases) {
    const test::TemporaryFolder folder;
    PrinterProcess printer(folder, {"--port", "0", "--jobs", "2"});
    const int port = printer.ListeningPort();
    EXPECT_EQ(Client(port).Print(c.job), "closed") << c.damage;
    EXPECT_EQ(Client(port).Print(kPage), "closed") << c.damage;
    EXPECT_EQ(printer.Wait(), 1) << c.damage;
    EXPECT_EQ(folder.Read("err"), "tsplprinter: printed/job-1.tspl: " + c.damage + "\n");
    EXPECT_THAT(printer.Rest(),
                StartsWith("job 1: begins\n" + (c.drawn ? kPageLine : "") + "job 1: malformed, " +
                           (c.drawn ? "1 page" : "0 pages") + ", " + std::to_string(c.job.size()) +
                           " bytes\njob 2: begins\n"));
    EXPECT_EQ(folder.Read("printed/job-1.tspl"), c.job);
    EXPECT_EQ(std::filesystem::exists(folder.File("printed/job-1-1.png")), c.drawn);
    EXPECT_TRUE(std::filesystem::exists(folder.File("printed/job-2-1.png"))) << c.damage;
  }
}

TEST_F(TsplprinterTrouble, DamageIsSaidWhileTheJobStillArrives) {
  PrinterProcess printer(folder_, {"--port", "0"});
  const Client client(printer.ListeningPort());
  client.Send(kPage + std::string(64, '?'));
  EXPECT_EQ(printer.Line(), "job 1: begins");
  EXPECT_EQ(printer.Line() + "\n", kPageLine);
  printer.Signal(SIGTERM);
  EXPECT_EQ(printer.Wait(), 1);
  EXPECT_THAT(folder_.Read("err"), StartsWith("tsplprinter: printed/job-1.tspl: byte 268: "));
  EXPECT_EQ(printer.Rest(), "job 1: stopped, 1 page, 332 bytes\n");
}

TEST_F(TsplprinterTrouble, AClientMayBreakOff) {
  const struct {
    std::string sent;
    std::string word;
    int status;
  } kCases[] = {{kPage, "broken off", 0}, {kPage + "SIZE", "malformed", 1}};
  for (const auto& c : kCases) {
    const test::TemporaryFolder folder;
    PrinterProcess printer(folder, {"--port", "0", "--jobs", "1"});
    Client client(printer.ListeningPort());
    client.Send(c.sent);
    EXPECT_EQ(printer.Line(), "job 1: begins");
    EXPECT_EQ(printer.Line() + "\n", kPageLine);
    client.Reset();
    EXPECT_EQ(printer.Wait(), c.status) << c.word;
    EXPECT_EQ(printer.Rest(),
              "job 1: " + c.word + ", 1 page, " + std::to_string(c.sent.size()) + " bytes\n");
  }
}

TEST_F(TsplprinterTrouble, AJobThatIsTooLargeIsCutOff) {
  // A page of 1,024,000 bytes of dots, and one of as many as it takes to make a mebibyte of both.
  std::string fits =
      kPreamble + PageOf("1024.0 mm, 125.0 mm", 1024, 1000, std::string(1024000, 'A'));
  const std::size_t left = 1048576 - fits.size() - PageOf("1.0 mm, 3000.0 mm", 1, 10000, "").size();
  ASSERT_THAT(left, ::testing::AllOf(::testing::Ge(10000U), ::testing::Lt(100000U)));
  fits += PageOf("1.0 mm, 3000.0 mm", 1, static_cast<int>(left), std::string(left, 'A'));
  ASSERT_EQ(fits.size(), 1048576U);

  PrinterProcess printer(folder_, {"--port", "0", "--jobs", "3", "--max-job-mib", "1"});
  const int port = printer.ListeningPort();
  EXPECT_EQ(Client(port).Print(fits), "closed");
  const Client client(port);
  client.Send(fits + "S");
  EXPECT_EQ(client.Ending(), "reset");
  EXPECT_EQ(Client(port).Print(kPage), "closed");
  EXPECT_EQ(printer.Wait(), 1);
  const std::string lines = printer.Rest();
  EXPECT_THAT(lines, HasSubstr("job 1: ended, 2 pages, 1048576 bytes\n"));
  EXPECT_THAT(lines, HasSubstr("job 2: too large, 2 pages, 1048576 bytes\n"));
  EXPECT_THAT(lines, HasSubstr("job 3: ended, 1 page, 268 bytes\n"));
  EXPECT_EQ(
      folder_.Read("err"),
      "tsplprinter: printed/job-2.tspl: the job is too large and was not taken beyond this\n");
  EXPECT_TRUE(folder_.Read("printed/job-2.tspl") == fits);
}

TEST_F(TsplprinterTrouble, APortThatIsTakenIsStatus2) {
  PrinterProcess printer(folder_, {"--port", "0"});
  const std::string port = std::to_string(printer.ListeningPort());
  const test::ToolRun second = test::RunIn(folder_, TSPLPRINTER " --port " + port);
  EXPECT_EQ(second.status, 2);
  EXPECT_EQ(second.out, "");
  EXPECT_EQ(second.err, "tsplprinter: 127.0.0.1:" + port + ": Address already in use\n");
}

TEST_F(TsplprinterTrouble, APictureThatCannotBeDrawnIsStatus2AndTheNextJobIsTaken) {
  PrinterProcess printer(folder_, {"--port", "0", "--jobs", "2", "--dpi", "203"});
  const int port = printer.ListeningPort();
  EXPECT_EQ(Client(port).Print(kPreamble + PageOf("9999999.0 mm, 1.0 mm", 1, 1, "A")), "closed");
  EXPECT_EQ(Client(port).Print(kPage), "closed");
  EXPECT_EQ(printer.Wait(), 2);
  EXPECT_EQ(
      folder_.Read("err"),
      "tsplprinter: printed/job-1-1.png: a label of 79921252 x 8 dots is too large to draw\n");
  EXPECT_FALSE(Exists("printed/job-1-1.png"));
  EXPECT_TRUE(Exists("printed/job-2-1.png"));
}

TEST_F(TsplprinterTrouble, AStreamThatCannotBeSavedEndsThePrinterWithStatus2) {
  PrinterProcess printer(folder_, {"--port", "0"});
  const int port = printer.ListeningPort();
  std::filesystem::remove(folder_.File("printed"));
  const Client client(port);
  client.Send(kPage);
  EXPECT_EQ(printer.Wait(), 2);
  EXPECT_EQ(folder_.Read("err"), "tsplprinter: printed/job-1.tspl: No such file or directory\n");
}

TEST_F(TsplprinterTrouble, LinesThatNobodyReadsAreStatus2AndNoJobIsLost) {
  PrinterProcess printer(folder_, {"--port", "0", "--jobs", "1"});
  const int port = printer.ListeningPort();
  printer.CloseOutput();
  EXPECT_EQ(Client(port).Print(kPage), "closed");
  EXPECT_EQ(printer.Wait(), 2);
  EXPECT_EQ(folder_.Read("err"), "tsplprinter: standard output: not all of it could be written\n");
  EXPECT_EQ(folder_.Read("printed/job-1.tspl"), kPage);
  EXPECT_TRUE(Exists("printed/job-1-1.png"));
}

TEST_F(TsplprinterTrouble, AFolderThatCannotBeMadeIsStatus2) {
  folder_.Write("file", "");
  for (const std::string out : {"file", "file/below"}) {
    const test::ToolRun run = test::RunIn(folder_, TSPLPRINTER " --port 0 --out " + out);
    EXPECT_EQ(run.status, 2) << out;
    EXPECT_EQ(run.err, "tsplprinter: " + out + ": Not a directory\n");
  }
}

TEST_F(TsplprinterTrouble, WrongUsageIsStatus2) {
  for (const char* arguments : {"--port",
                                "--port 65536",
                                "--port -1",
                                "--port high",
                                "--port 1x",
                                "--out",
                                "--out ''",
                                "--dpi 0",
                                "--jobs 0",
                                "--jobs -1",
                                "--jobs 1.5",
                                "--max-job-mib 0",
                                "--max-job-mib 1048577",
                                "--limit 0",
                                "--limit many",
                                "--limit 1.5",
                                "--limit ,1",
                                "--limit 1,",
                                "--limit 1,0",
                                "--limit 1,1048577",
                                "--limit 1,2,3",
                                "--bytes-per-second 0",
                                "--absent -1",
                                "--absent nan",
                                "--absent soon",
                                "--absent 1e9",
                                "--drop-after 0",
                                "--drop-jobs 1",
                                "--drop-after 9 --drop-jobs 0",
                                "--frobnicate",
                                "printed"}) {
    const test::ToolRun run =
        test::RunIn(folder_, std::string("timeout 5 " TSPLPRINTER " ") + arguments);
    EXPECT_EQ(run.status, 2) << arguments;
    EXPECT_EQ(run.out, "") << arguments;
    EXPECT_THAT(run.err, StartsWith("tsplprinter: ")) << arguments;
    EXPECT_THAT(run.err, HasSubstr("tsplprinter --help")) << arguments;
  }
  EXPECT_FALSE(Exists("printed"));
}

}  // namespace
