// Jobs that come as they should: what is said, saved and drawn, and when.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "printer_process.h"
#include "streams.h"
#include "temporary_folder.h"
#include "tool_run.h"

namespace {

using test::BarePage;
using test::Client;
using test::FullPage;
using test::Join;
using test::kDots;
using test::kPreamble;
using test::PrinterProcess;
using ::testing::HasSubstr;
using ::testing::StartsWith;

const std::string kJob = kPreamble + Join(FullPage()) + Join(BarePage());

class Tsplprinter : public ::testing::Test {
 protected:
  bool Exists(const std::string& name) const { return std::filesystem::exists(folder_.File(name)); }

  test::TemporaryFolder folder_;
};

TEST_F(Tsplprinter, SaysSavesAndDrawsAJob) {
  PrinterProcess printer(folder_, {"--port", "0", "--out", "made/here", "--jobs", "1"});
  EXPECT_EQ(Client(printer.ListeningPort()).Print(kJob), "closed");
  EXPECT_EQ(printer.Wait(), 0);
  // 64 + 204 + 105 bytes.
  EXPECT_EQ(printer.Rest(),
            "job 1: begins\n"
            "job 1 page 1: 1.0 x 0.5 mm, 8 x 4 dots at 203 dpi, 1 copy\n"
            "job 1 page 2: 1.0 x 0.5 mm, 8 x 4 dots at 203 dpi, turned by 180 degrees, 3 copies\n"
            "job 1: ended, 2 pages, 373 bytes\n");
  EXPECT_EQ(folder_.Read("err"), "");

  EXPECT_EQ(folder_.Read("made/here/job-1.tspl"), kJob);
  const test::ToolRun view =
      test::RunIn(folder_, std::string(TSPLVIEW) + " --png seen --name job-1 made/here/job-1.tspl");
  ASSERT_EQ(view.status, 0) << view.err;
  for (const std::string name : {"job-1-1.png", "job-1-2.png"}) {
    EXPECT_THAT(folder_.Read("seen/" + name), StartsWith("\x89PNG"));
    EXPECT_EQ(folder_.Read("made/here/" + name), folder_.Read("seen/" + name)) << name;
  }
  EXPECT_FALSE(Exists("made/here/job-1-3.png"));
}

TEST_F(Tsplprinter, TheResolutionCanBeGiven) {
  PrinterProcess printer(folder_, {"--port", "0", "--jobs", "1", "--dpi", "300"});
  EXPECT_EQ(Client(printer.ListeningPort()).Print(kPreamble + Join(FullPage())), "closed");
  EXPECT_EQ(printer.Wait(), 0);
  EXPECT_THAT(printer.Rest(), HasSubstr("page 1: 1.0 x 0.5 mm, 8 x 4 dots at 300 dpi, 1 copy\n"));
  EXPECT_EQ(
      test::RunIn(folder_, std::string(TSPLVIEW) + " --dpi 300 --png . printed/job-1.tspl").status,
      0);
  EXPECT_EQ(folder_.Read("printed/job-1-1.png"), folder_.Read("job-1-1.png"));
}

TEST_F(Tsplprinter, ALabelIsThereAsSoonAsItsPrintIs) {
  PrinterProcess printer(folder_, {"--port", "0"});
  const Client client(printer.ListeningPort());
  client.Send(kPreamble + Join(FullPage()));
  EXPECT_EQ(printer.Line(), "job 1: begins");
  EXPECT_EQ(printer.Line(), "job 1 page 1: 1.0 x 0.5 mm, 8 x 4 dots at 203 dpi, 1 copy");
  EXPECT_TRUE(Exists("printed/job-1-1.png"));
  // Its stream is there when it is whole.
  EXPECT_FALSE(Exists("printed/job-1.tspl"));
  client.Finish();
  EXPECT_EQ(printer.Line(), "job 1: ended, 1 page, 268 bytes");
  EXPECT_EQ(folder_.Read("printed/job-1.tspl"), kPreamble + Join(FullPage()));
}

TEST_F(Tsplprinter, TheFilesAreThereWhenTheConnectionIsClosed) {
  PrinterProcess printer(folder_, {"--port", "0"});
  const int port = printer.ListeningPort();
  for (const std::string job : {"1", "2", "3"}) {
    EXPECT_EQ(Client(port).Print(kJob), "closed");
    EXPECT_EQ(folder_.Read("printed/job-" + job + ".tspl"), kJob);
    EXPECT_TRUE(Exists("printed/job-" + job + "-2.png"));
  }
}

TEST_F(Tsplprinter, APageThatIsNotPrintedIsSaidAndNotDrawn) {
  const std::string no_dots =
      "SIZE 9.0 mm, 8.0 mm\r\nREFERENCE 0,0\r\nDIRECTION 0,0\r\nOFFSET 0.0 mm\r\nCLS\r\n";
  const std::string no_print = "BITMAP 0,0,1,4,0," + kDots + "\r\n";
  PrinterProcess printer(folder_, {"--port", "0", "--jobs", "1"});
  EXPECT_EQ(Client(printer.ListeningPort()).Print(kPreamble + no_dots + no_dots + no_print),
            "closed");
  EXPECT_EQ(printer.Wait(), 0);
  // 8 dots in 9.0 mm are 22.6 an inch, and 4 in 8.0 mm 12.7; 64 + 71 + 71 + 23 bytes.
  EXPECT_EQ(printer.Rest(),
            "job 1: begins\n"
            "job 1 page 1: 9.0 x 8.0 mm, not printed: no BITMAP follows its CLS\n"
            "job 1 page 2: 9.0 x 8.0 mm, 8 x 4 dots at 22.6 x 12.7 dpi, "
            "not printed: the stream ends before PRINT\n"
            "job 1: ended, 2 pages, 229 bytes\n");
  EXPECT_FALSE(Exists("printed/job-1-1.png"));
  EXPECT_FALSE(Exists("printed/job-1-2.png"));
}

TEST_F(Tsplprinter, AJobMayHaveSeveralDocuments) {
  const std::string job = kPreamble + Join(FullPage()) + kPreamble + Join(BarePage());
  PrinterProcess printer(folder_, {"--port", "0", "--jobs", "1"});
  EXPECT_EQ(Client(printer.ListeningPort()).Print(job), "closed");
  EXPECT_EQ(printer.Wait(), 0);
  EXPECT_EQ(printer.Rest(),
            "job 1: begins\n"
            "job 1 page 1: 1.0 x 0.5 mm, 8 x 4 dots at 203 dpi, 1 copy\n"
            "job 1 page 2: 1.0 x 0.5 mm, 8 x 4 dots at 203 dpi, turned by 180 degrees, 3 copies\n"
            "job 1: ended, 2 pages, 437 bytes\n");
  EXPECT_EQ(folder_.Read("err"), "");
  EXPECT_TRUE(Exists("printed/job-1-2.png"));
}

TEST_F(Tsplprinter, AJobLargerThanAnyBufferComesThrough) {
  // 3 pages of 1,000 x 1,024 bytes of dots, each byte another value than its neighbours.
  std::string dots(1000 * 1024, '\0');
  for (std::size_t i = 0; i < dots.size(); ++i) dots[i] = static_cast<char>(i * 7 + i / 251);
  std::string job = kPreamble;
  for (int i = 0; i < 3; ++i) job += test::PageOf("128.1 mm, 1001.0 mm", 128, 8000, dots);
  PrinterProcess printer(folder_, {"--port", "0", "--jobs", "1"});
  EXPECT_EQ(Client(printer.ListeningPort()).Print(job), "closed");
  EXPECT_EQ(printer.Wait(), 0);
  EXPECT_THAT(printer.Rest(), HasSubstr("job 1: ended, 3 pages, " + std::to_string(job.size())));
  EXPECT_TRUE(folder_.Read("printed/job-1.tspl") == job);
}

TEST_F(Tsplprinter, TakesOneClientAtATime) {
  PrinterProcess printer(folder_, {"--port", "0", "--jobs", "3"});
  const int port = printer.ListeningPort();
  const Client first(port);
  const Client second(port);
  const Client third(port);
  // The others send all they have while the first one is silent.
  ASSERT_EQ(third.error(), 0);
  third.Send(kPreamble);
  third.Finish();
  second.Send(kPreamble + Join(BarePage()));
  second.Finish();
  EXPECT_EQ(first.Print(kPreamble + Join(FullPage())), "closed");
  EXPECT_EQ(second.Ending(), "closed");
  EXPECT_EQ(third.Ending(), "closed");
  EXPECT_EQ(printer.Wait(), 0);
  EXPECT_EQ(printer.Rest(),
            "job 1: begins\n"
            "job 1 page 1: 1.0 x 0.5 mm, 8 x 4 dots at 203 dpi, 1 copy\n"
            "job 1: ended, 1 page, 268 bytes\n"
            "job 2: begins\n"
            "job 2 page 1: 1.0 x 0.5 mm, 8 x 4 dots at 203 dpi, turned by 180 degrees, 3 copies\n"
            "job 2: ended, 1 page, 169 bytes\n"
            "job 3: begins\n"
            "job 3: ended, 0 pages, 64 bytes\n");
}

TEST_F(Tsplprinter, AConnectionWithoutAByteIsNoJob) {
  PrinterProcess printer(folder_, {"--port", "0", "--jobs", "1"});
  const int port = printer.ListeningPort();
  EXPECT_EQ(Client(port).Print(""), "closed");
  Client(port).Reset();
  EXPECT_EQ(Client(port).Print(kPreamble), "closed");
  EXPECT_EQ(printer.Wait(), 0);
  EXPECT_EQ(printer.Rest(), "job 1: begins\njob 1: ended, 0 pages, 64 bytes\n");
}

TEST_F(Tsplprinter, CountsOnBehindTheJobsInItsFolder) {
  std::filesystem::create_directories(folder_.File("out/job-3"));
  folder_.Write("out/job-6.tspl", "six");
  folder_.Write("out/job-7-12.png", "seven");
  folder_.Write("out/.job-8.part", "of a printer that crashed, or that is at it");
  for (const char* other : {"job-99", "job-.tspl", "job-x.tspl", "my-job-99.tspl", "job-99x.tspl",
                            "job-99999999999999999999.tspl", ".job-99.tspl"}) {
    folder_.Write(std::string("out/") + other, "");
  }
  PrinterProcess printer(folder_, {"--port", "0", "--out", "out", "--jobs", "1"});
  EXPECT_EQ(Client(printer.ListeningPort()).Print(kPreamble), "closed");
  EXPECT_EQ(printer.Wait(), 0);
  EXPECT_EQ(printer.Rest(), "job 9: begins\njob 9: ended, 0 pages, 64 bytes\n");
  EXPECT_EQ(folder_.Read("out/job-9.tspl"), kPreamble);
  EXPECT_EQ(folder_.Read("out/job-6.tspl"), "six");
}

TEST_F(Tsplprinter, TwoPrintersCanShareAFolder) {
  PrinterProcess one(folder_, {"--port", "0", "--jobs", "1"});
  PrinterProcess other(folder_, {"--port", "0", "--jobs", "1"});
  const int one_port = one.ListeningPort();
  const int other_port = other.ListeningPort();
  EXPECT_NE(one_port, other_port);
  EXPECT_EQ(Client(one_port).Print(kPreamble + Join(FullPage())), "closed");
  EXPECT_EQ(Client(other_port).Print(kPreamble), "closed");
  EXPECT_EQ(folder_.Read("printed/job-1.tspl"), kPreamble + Join(FullPage()));
  EXPECT_EQ(folder_.Read("printed/job-2.tspl"), kPreamble);
}

TEST_F(Tsplprinter, HelpAndVersionAreStatus0) {
  const test::ToolRun help = test::RunIn(folder_, TSPLPRINTER " --help");
  EXPECT_EQ(help.status, 0);
  EXPECT_EQ(help.err, "");
  for (const char* word :
       {"--port N", "--out DIR", "--dpi N", "--jobs N", "--max-job-mib N", "--limit PICTURES[,MIB]",
        "1000,512", "--bytes-per-second N", "--absent SECONDS", "--drop-after N", "--drop-jobs N",
        "--version", "SIGTERM", "Exit status", "job-1-1.png", "socket://127.0.0.1:9100"}) {
    EXPECT_THAT(help.out, HasSubstr(word));
  }
  const test::ToolRun version = test::RunIn(folder_, TSPLPRINTER " --version");
  EXPECT_EQ(version.status, 0);
  EXPECT_THAT(version.out, ::testing::MatchesRegex("tsplprinter [0-9]+\\.[0-9]+\\.[0-9]+\n"));
  EXPECT_FALSE(Exists("printed"));
}

}  // namespace
