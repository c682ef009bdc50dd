// Who can connect to the printer, what it makes of false alarms, and what it leaves to others.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <string>

#include "printer_process.h"
#include "streams.h"
#include "temporary_folder.h"

namespace {

using test::Client;
using test::FullPage;
using test::Join;
using test::kPreamble;
using test::PrinterProcess;

const std::string kPage = kPreamble + Join(FullPage());

class TsplprinterNetwork : public ::testing::Test {
 protected:
  test::TemporaryFolder folder_;
};

TEST_F(TsplprinterNetwork, ListensOnOneAddressOfThisMachineOnly) {
  PrinterProcess printer(folder_, {"--port", "0"});
  const int port = printer.ListeningPort();
  // All of 127.0.0.0/8 is this machine, and a printer that listens everywhere would answer here.
  EXPECT_EQ(Client(port, "127.0.0.2").error(), ECONNREFUSED);
  EXPECT_EQ(Client(port, "127.0.0.1").error(), 0);
}

TEST_F(TsplprinterNetwork, AFalseAlarmIsNeitherAClientNorBytesNorAnError) {
  PrinterProcess printer(folder_, {"--port", "0", "--jobs", "2"}, FALSE_ALARMS);
  const int port = printer.ListeningPort();
  for (int i = 0; i < 2; ++i) {
    const Client client(port);
    for (std::size_t at = 0; at < kPage.size(); at += 67) client.Send(kPage.substr(at, 67));
    client.Finish();
    EXPECT_EQ(client.Ending(), "closed");
  }
  EXPECT_EQ(printer.Wait(), 0);
  EXPECT_EQ(folder_.Read("err"), "");
  EXPECT_EQ(folder_.Read("printed/job-1.tspl"), kPage);
  EXPECT_EQ(folder_.Read("printed/job-2.tspl"), kPage);
}

// Nothing may block but the waiting itself: a signal could not end it there.
TEST_F(TsplprinterNetwork, ASignalBehindAFalseAlarmEndsIt) {
  const struct {
    const char* what;
    bool listens;  // the socket of which the alarm is
  } kCases[] = {{"a client that is gone again", true},
                {"bytes of a client that has sent all so far", false}};
  for (const auto& c : kCases) {
    const test::TemporaryFolder folder;
    setenv("TARVO_TEST_SIGTERM", c.listens ? "1" : "0", 1);
    PrinterProcess printer(folder, {"--port", "0"}, FALSE_ALARMS);
    unsetenv("TARVO_TEST_SIGTERM");
    const int port = printer.ListeningPort();
    if (!c.listens) {
      const Client client(port);
      client.Send(kPage);  // which may come too late
      client.Ending();
      EXPECT_THAT(printer.Rest(), ::testing::Not(::testing::HasSubstr("broken off")));
    }
    EXPECT_EQ(printer.Wait(), 0) << c.what;
    EXPECT_EQ(folder.Read("err"), "") << c.what;
  }
}

TEST_F(TsplprinterNetwork, LeavesNoDescriptorToOtherPrograms) {
  PrinterProcess printer(folder_, {"--port", "0"});
  const Client client(printer.ListeningPort());
  client.Send(kPage);
  EXPECT_EQ(printer.Line(), "job 1: begins");
  EXPECT_THAT(printer.Line(), ::testing::StartsWith("job 1 page 1: "));
  EXPECT_THAT(printer.Descriptors(true), ::testing::IsEmpty());
  // Those that there are: for the signals, for its end, to listen, the client's, and the stream.
  EXPECT_THAT(printer.Descriptors(false),
              ::testing::UnorderedElementsAre(
                  "anon_inode:[signalfd]", "anon_inode:[eventfd]", ::testing::StartsWith("socket:"),
                  ::testing::StartsWith("socket:"), folder_.File("printed/.job-1.part")));
}

}  // namespace
