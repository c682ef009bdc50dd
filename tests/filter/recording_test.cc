// The recording file: its name while others record, and what becomes of one that is not whole.
#include "filter/recording.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <list>
#include <string>
#include <vector>

#include "captured_printer.h"
#include "support/capture.h"
#include "support/folder.h"

namespace {

using Names = std::vector<std::string>;

/// What is logged by attaching a recording `name` to a printer that then prints `text`.
std::string logOf(Recording& recording, CapturedPrinter& printer, const std::string& name,
                  const std::string& text) {
  return support::standardErrorOf([&] {
    recording.attach(printer, name.c_str());
    printer.printStr(text.c_str());
  });
}

TEST(Recording, GetsWhatThePrinterGets) {
  const support::Folder folder;
  const std::string name = folder / "job.bin";
  {
    CapturedPrinter printer;
    Recording recording;
    EXPECT_EQ(logOf(recording, printer, name, "CLS\r\n"),
              "DEBUG:Filter data output to: " + name + "\n");
    EXPECT_EQ(printer.sent(), "CLS\r\n");
    EXPECT_EQ(fcntl(fileno(printer.getOutputStreams().back()), F_GETFD), FD_CLOEXEC);
  }
  EXPECT_EQ(support::readFile(name), "CLS\r\n");
  EXPECT_EQ(std::filesystem::status(name).permissions(), std::filesystem::perms{0600});
}

TEST(Recording, IsNoneWithoutAName) {
  CapturedPrinter printer;
  Recording recording;
  EXPECT_EQ(logOf(recording, printer, "", "CLS\r\n"), "");
  EXPECT_EQ(printer.getOutputStreams().size(), 1U);
}

TEST(Recording, HasANumberWhileAnotherJobHasItsName) {
  const struct {
    const char *name, *second, *third;
  } kCases[] = {
      {"job.bin", "job-2.bin", "job-3.bin"},
      {"-20250305090703.bin", "-20250305090703-2.bin", "-20250305090703-3.bin"},
      {"cut-as-too-long.bi", "cut-as-too-long.bi-2", "cut-as-too-long.bi-3"},
  };
  for (const auto& [name, second, third] : kCases) {
    SCOPED_TRACE(name);
    const support::Folder folder;
    {
      std::list<CapturedPrinter> printers;
      std::list<Recording> recordings;
      for (const char* job : {"first", "second", "third"}) {
        logOf(recordings.emplace_back(), printers.emplace_back(), folder / name, job);
      }
    }
    EXPECT_EQ(support::readFile(folder / name), "first");
    EXPECT_EQ(support::readFile(folder / second), "second");
    EXPECT_EQ(support::readFile(folder / third), "third");
    EXPECT_EQ(support::namesIn(folder.path()).size(), 3U);
  }
}

TEST(Recording, NameOfAJobThatHasEndedIsFree) {
  const support::Folder folder;
  const std::string name = folder / "job.bin";
  for (const char* job : {"first", "second"}) {
    CapturedPrinter printer;
    Recording recording;
    EXPECT_EQ(logOf(recording, printer, name, job), "DEBUG:Filter data output to: " + name + "\n");
  }
  EXPECT_EQ(support::namesIn(folder.path()), Names{"job.bin"});
  EXPECT_EQ(support::readFile(name), "second");
}

TEST(Recording, LogNamesTheFileThatItIs) {
  const support::Folder folder;
  const std::string name = folder / "job.bin";
  CapturedPrinter printer, other;
  Recording recording, another;
  logOf(recording, printer, name, "");
  EXPECT_EQ(logOf(another, other, name, ""),
            "DEBUG:Filter data output to: " + (folder / "job-2.bin").string() + "\n");
}

TEST(Recording, OfWhatIsPlantedIsReportedAndNotNumbered) {
  const support::Folder folder;
  const std::string name = folder / "job.bin";
  std::filesystem::create_symlink("/dev/full", name);
  CapturedPrinter printer;
  Recording recording;
  EXPECT_EQ(logOf(recording, printer, name, "CLS\r\n"),
            "ERROR:Unable to create the output file: " + name + "\n");
  EXPECT_EQ(printer.getOutputStreams().size(), 1U);
  EXPECT_EQ(support::namesIn(folder.path()), Names{"job.bin"});
}

}  // namespace
