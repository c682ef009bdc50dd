// The command line: what is printed where, what is drawn, and the exit status.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "png_file.h"
#include "streams.h"
#include "temporary_folder.h"
#include "tool_run.h"

namespace {

using test::BarePage;
using test::FullPage;
using test::Join;
using test::kDots;
using test::kPreamble;
using test::PageOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class Tsplview : public ::testing::Test {
 protected:
  Tsplview() { folder_.Write("job.tspl", kPreamble + Join(FullPage()) + Join(BarePage())); }

  test::ToolRun Run(const std::string& arguments) {
    return test::RunIn(folder_, std::string(TSPLVIEW) + " " + arguments);
  }

  // What is said of a stream in the file "it", which must be good.
  std::string Say(const std::string& stream, const std::string& option = "") {
    folder_.Write("it", stream);
    const test::ToolRun run = Run("it " + option);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.err, "");
    return run.out;
  }

  bool Exists(const std::string& name) { return std::filesystem::exists(folder_.File(name)); }

  test::TemporaryFolder folder_;
};

TEST_F(Tsplview, SaysALineAPage) {
  const test::ToolRun run = Run("job.tspl");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(run.out,
            "page 1: 1.0 x 0.5 mm, 8 x 4 dots at 203 dpi, 1 copy\n"
            "page 2: 1.0 x 0.5 mm, 8 x 4 dots at 203 dpi, turned by 180 degrees, 3 copies\n");
}

TEST_F(Tsplview, ReadsStandardInput) {
  const test::ToolRun run = Run("- <job.tspl");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, Run("job.tspl").out);
}

TEST_F(Tsplview, ListsALineACommand) {
  const test::ToolRun run = Run("--list job.tspl");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, "");
  // The CRC-32 of 01 7E 7E 00, computed by another program.
  EXPECT_EQ(run.out,
            "         0  64 line feeds\n"
            "        64  SIZE 1.0 mm, 0.5 mm\n"
            "        85  GAP 3.0 mm, 0.0 mm\n"
            "       105  REFERENCE 0,0\n"
            "       120  DIRECTION 0,0\n"
            "       135  SPEED 4\n"
            "       144  DENSITY 8\n"
            "       155  SET RIBBON OFF\n"
            "       171  OFFSET 0.0 mm\n"
            "       186  SET TEAR ON\n"
            "       199  SET PEEL OFF\n"
            "       213  SET CUTTER OFF\n"
            "       229  CLS\n"
            "       234  BITMAP 0,0,1,4,0,  8 x 4 dots, 4 bytes, CRC-32 762ba95b\n"
            "       257  PRINT 1,1\n"
            "       268  SIZE 1.0 mm, 0.5 mm\n"
            "       289  REFERENCE 0,0\n"
            "       304  DIRECTION 1,0\n"
            "       319  OFFSET 0.0 mm\n"
            "       334  CLS\n"
            "       339  BITMAP 0,0,1,4,0,  8 x 4 dots, 4 bytes, CRC-32 762ba95b\n"
            "       362  PRINT 1,3\n");
}

TEST_F(Tsplview, ABitmapsHashIsCrc32) {
  // The check value that CRC-32 is published with.
  EXPECT_THAT(Say(kPreamble + PageOf("0.9 mm, 0.1 mm", 9, 1, "123456789"), "--list"),
              HasSubstr("  72 x 1 dots, 9 bytes, CRC-32 cbf43926\n"));
}

TEST_F(Tsplview, SaysWhyAPageIsNotPrinted) {
  const struct {
    std::vector<std::string> commands;  // of the last page
    std::string line;
  } kCases[] = {
      {{"SIZE 9.0 mm, 8.0 mm\r\n"}, "9.0 x 8.0 mm, not printed: the stream ends after SIZE"},
      {{"SIZE 9.0 mm, 8.0 mm\r\n", "REFERENCE 0,0\r\n", "DIRECTION 1,0\r\n", "OFFSET 0.0 mm\r\n",
        "SET TEAR OFF\r\n"},
       "9.0 x 8.0 mm, turned by 180 degrees, not printed: the stream ends after SET TEAR"},
      {{"SIZE 9.0 mm, 8.0 mm\r\n", "REFERENCE 0,0\r\n", "DIRECTION 0,0\r\n", "OFFSET 0.0 mm\r\n",
        "CLS\r\n"},
       "9.0 x 8.0 mm, not printed: no BITMAP follows its CLS"},
      {{"SIZE 1.0 mm, 0.5 mm\r\n", "REFERENCE 0,0\r\n", "DIRECTION 0,0\r\n", "OFFSET 0.0 mm\r\n",
        "CLS\r\n", "BITMAP 0,0,1,4,0," + kDots + "\r\n"},
       "1.0 x 0.5 mm, 8 x 4 dots at 203 dpi, not printed: the stream ends before PRINT"},
  };
  const std::string first = "page 1: 1.0 x 0.5 mm, 8 x 4 dots at 203 dpi, 1 copy\n";
  for (const auto& c : kCases) {
    EXPECT_EQ(Say(kPreamble + Join(FullPage()) + Join(c.commands)),
              first + "page 2: " + c.line + "\n");
  }
  EXPECT_EQ(Say(kPreamble), "no pages\n");
}

TEST_F(Tsplview, SaysAResolutionThatFitsNoSquareDot) {
  const std::string dots(3000, '\xFF');
  EXPECT_EQ(Say(kPreamble + PageOf("50.8 mm, 5.0 mm", 75, 40, dots)),
            "page 1: 50.8 x 5.0 mm, 600 x 40 dots at 300 x 203 dpi, 1 copy\n");
  // 40 rows in 5.3 mm: 40 x 25.4 / 5.3 = 191.70
  EXPECT_EQ(Say(kPreamble + PageOf("50.8 mm, 5.3 mm", 75, 40, dots)),
            "page 1: 50.8 x 5.3 mm, 600 x 40 dots at 300 x 191.7 dpi, 1 copy\n");
  EXPECT_EQ(Say(kPreamble + PageOf("50.8 mm, 0.0 mm", 75, 40, dots)),
            "page 1: 50.8 x 0.0 mm, 600 x 40 dots at 300 x unknown dpi, 1 copy\n");
  EXPECT_EQ(Say(kPreamble + PageOf("50.8 mm, 5.0 mm", 75, 40, dots), "--dpi 600"),
            "page 1: 50.8 x 5.0 mm, 600 x 40 dots at 600 dpi, 1 copy\n");
}

TEST_F(Tsplview, DrawsEachPage) {
  const test::ToolRun run = Run("--png made/here job.tspl");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out, Run("job.tspl").out);
  for (const char* name : {"made/here/job-1.png", "made/here/job-2.png"}) {
    const test::PngFile png = test::ReadPng(folder_.File(name));
    ASSERT_EQ(png.width, 40U) << name;
    EXPECT_EQ(png.height, 36U) << name;
    EXPECT_EQ(png.pixels_per_metre_x, 7992U) << name;
  }
  // The corner dot that is missing: upper right, and lower left on the turned page.
  EXPECT_EQ(test::ReadPng(folder_.File("made/here/job-1.png")).At(23, 16), 0xFFFFFFU);
  EXPECT_EQ(test::ReadPng(folder_.File("made/here/job-2.png")).At(16, 19), 0xFFFFFFU);
  EXPECT_FALSE(Exists("made/here/job-3.png"));
}

TEST_F(Tsplview, NamesThePicturesAfterTheFile) {
  const struct {
    std::string arguments;
    std::string picture;
  } kCases[] = {
      {"job.tspl", "job-1.png"},
      {"./a.b.c", "a.b-1.png"},
      {"./plain", "plain-1.png"},
      {"- <job.tspl", "stdin-1.png"},
      {"--name label job.tspl", "label-1.png"},
      {"--name 'a b' - <job.tspl", "a b-1.png"},
  };
  folder_.Write("a.b.c", folder_.Read("job.tspl"));
  folder_.Write("plain", folder_.Read("job.tspl"));
  for (const auto& c : kCases) {
    EXPECT_EQ(Run("--png . " + c.arguments).status, 0) << c.arguments;
    EXPECT_TRUE(Exists(c.picture)) << c.picture;
  }
}

TEST_F(Tsplview, DrawsNothingForAPageWithoutDots) {
  const std::string no_dots =
      "SIZE 9.0 mm, 9.0 mm\r\nREFERENCE 0,0\r\nDIRECTION 0,0\r\nOFFSET 0.0 mm\r\nCLS\r\n";
  folder_.Write(
      "it", kPreamble + no_dots + PageOf("9.0 mm, 9.0 mm", 0, 2147483647, "") + Join(FullPage()));
  const test::ToolRun run = Run("--png . it");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_FALSE(Exists("it-1.png"));
  EXPECT_FALSE(Exists("it-2.png"));
  EXPECT_TRUE(Exists("it-3.png"));
}

TEST_F(Tsplview, AMalformedStreamIsStatus1) {
  folder_.Write("bad", kPreamble + "SIZE 1.0 mm, 0.5 mm\r\nREFERENCE 0,1\r\n");
  const std::string message =
      "byte 97: expected \"0\\r\\n\", found \"1\\r\\n\" and the end of the stream\n";

  test::ToolRun run = Run("--png . bad");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "tsplview: bad: " + message);
  EXPECT_FALSE(Exists("bad-1.png"));

  run = Run("- <bad");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "tsplview: -: " + message);

  run = Run("--list bad");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "         0  64 line feeds\n        64  SIZE 1.0 mm, 0.5 mm\n");
  EXPECT_EQ(run.err, "tsplview: bad: " + message);

  run = Run("- </dev/null");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err,
            "tsplview: -: byte 0: expected 64 line feeds, 64 more, found the end of the stream\n");
}

TEST_F(Tsplview, SaysAndDrawsTheGoodPagesBeforeTheDamage) {
  const std::string line = "1.0 x 0.5 mm, 8 x 4 dots at 203 dpi, 1 copy\n";
  const std::string two = kPreamble + Join(FullPage()) + kPreamble + Join(FullPage());
  const struct {
    std::string tail;  // behind two good pages
    std::string damage;
  } kCases[] = {
      {"FEED 1\r\n",
       "byte 536: expected \"SIZE \", 64 line feeds or the end of the stream, found "},
      // A page that is not printed is none when it is what breaks: its dots may not be all.
      {PageOf("1.0 mm, 0.5 mm", 1, 4, kDots).substr(0, 100) + "?", "byte "},
  };
  for (const auto& c : kCases) {
    folder_.Write("bad", two + c.tail);
    const test::ToolRun run = Run("--png drawn bad");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "page 1: " + line + "page 2: " + line);
    EXPECT_THAT(run.err, StartsWith("tsplview: bad: " + c.damage));
    for (const char* name : {"drawn/bad-1.png", "drawn/bad-2.png"}) {
      EXPECT_EQ(test::ReadPng(folder_.File(name)).height, 36U) << name;
    }
    EXPECT_FALSE(Exists("drawn/bad-3.png"));
    std::filesystem::remove_all(folder_.File("drawn"));
  }
}

TEST_F(Tsplview, APictureThatCannotBeDrawnHidesNoDamage) {
  folder_.Write("bad", kPreamble + Join(FullPage()) + "FEED");
  std::filesystem::create_directories(folder_.File("bad-1.png"));
  const test::ToolRun run = Run("--png . bad");
  EXPECT_EQ(run.status, 2);
  EXPECT_THAT(run.err, HasSubstr("./bad-1.png: "));
  EXPECT_THAT(run.err, HasSubstr("tsplview: bad: byte 268: "));
}

TEST_F(Tsplview, CountsThePagesOfAllDocuments) {
  const std::string two = kPreamble + Join(FullPage()) + kPreamble + Join(BarePage());
  EXPECT_EQ(Say(two), Run("job.tspl").out);
  EXPECT_THAT(Say(two, "--list"), HasSubstr("       257  PRINT 1,1\n"
                                            "       268  64 line feeds\n"
                                            "       332  SIZE 1.0 mm, 0.5 mm\n"));
}

TEST_F(Tsplview, WrongUsageIsStatus2) {
  for (const char* arguments :
       {"", "--list", "job.tspl job.tspl", "--frobnicate job.tspl", "job.tspl --png",
        "job.tspl --name label", "job.tspl --png . --name a/b", "job.tspl --png . --name ''",
        "job.tspl --dpi 0", "job.tspl --dpi -203", "job.tspl --dpi high", "job.tspl --dpi 203.2",
        "job.tspl --dpi 100001", "job.tspl --list=maybe"}) {
    const test::ToolRun run = Run(arguments);
    EXPECT_EQ(run.status, 2) << arguments;
    EXPECT_EQ(run.out, "") << arguments;
    EXPECT_THAT(run.err, StartsWith("tsplview: ")) << arguments;
    EXPECT_THAT(run.err, HasSubstr("tsplview --help")) << arguments;
  }
}

TEST_F(Tsplview, AFileThatCannotBeReadOrWrittenIsStatus2) {
  folder_.Write("file", "");
  std::filesystem::create_directories(folder_.File("taken/job-1.png"));
  folder_.Write("wide", kPreamble + PageOf("9999999.0 mm, 1.0 mm", 1, 1, "A"));
  const struct {
    std::string arguments;
    std::string error;
  } kCases[] = {
      {"missing.tspl", "tsplview: missing.tspl: No such file or directory\n"},
      {".", "tsplview: .: Is a directory\n"},
      {"- <.", "tsplview: standard input: Is a directory\n"},
      {"job.tspl --png file", "tsplview: file: Not a directory\n"},
      {"job.tspl --png taken",
       "tsplview: taken/job-1.png: a folder has this name and is left alone\n"},
      {"job.tspl --list >/dev/full", "tsplview: standard output: not all of it could be written\n"},
      {"job.tspl >/dev/full", "tsplview: standard output: not all of it could be written\n"},
      {"--help >/dev/full", "tsplview: standard output: not all of it could be written\n"},
      {"--version >/dev/full", "tsplview: standard output: not all of it could be written\n"},
      {"wide --dpi 203 --png .",
       "tsplview: ./wide-1.png: a label of 79921252 x 8 dots is too large to draw\n"},
  };
  for (const auto& c : kCases) {
    const test::ToolRun run = Run(c.arguments);
    EXPECT_EQ(run.status, 2) << c.arguments;
    EXPECT_EQ(run.err, c.error) << c.arguments;
  }
  EXPECT_FALSE(Exists("wide-1.png")) << "half a picture is left";
}

TEST_F(Tsplview, LeavesAloneWhatWasPlanted) {
  const struct {
    const char* name;
    std::string plant;
  } kCases[] = {
      {"a symbolic link", "ln -s ../stolen"},
      {"a symbolic link", "ln -s ../job.tspl"},
      {"a pipe", "mkfifo"},
      {"a folder", "mkdir"},
  };
  const std::string job = folder_.Read("job.tspl");
  for (const auto& c : kCases) {
    ASSERT_EQ(test::RunIn(folder_, "mkdir d && " + c.plant + " d/job-1.png").status, 0);
    const auto before = std::filesystem::symlink_status(folder_.File("d/job-1.png")).type();
    const test::ToolRun run = test::RunIn(folder_, "timeout 20 " TSPLVIEW " --png d job.tspl");
    EXPECT_EQ(run.status, 2) << c.plant;
    EXPECT_EQ(run.err, std::string("tsplview: d/job-1.png: ") + c.name +
                           " has this name and is left alone\n");
    EXPECT_EQ(std::filesystem::symlink_status(folder_.File("d/job-1.png")).type(), before);
    EXPECT_FALSE(Exists("stolen"));
    EXPECT_EQ(folder_.Read("job.tspl"), job);
    EXPECT_EQ(test::RunIn(folder_, "ls -A d").out, "job-1.png\n");
    std::filesystem::remove_all(folder_.File("d"));
  }
}

TEST_F(Tsplview, APictureReplacesAnOlderOne) {
  folder_.Write("job-1.png", "older");
  EXPECT_EQ(Run("--png . job.tspl").status, 0);
  EXPECT_EQ(test::ReadPng(folder_.File("job-1.png")).height, 36U);
  EXPECT_EQ(test::RunIn(folder_, "ls -A").out, "err\njob-1.png\njob-2.png\njob.tspl\nout\n");
}

TEST_F(Tsplview, APictureForWhichThereIsNoRoomLeavesNothing) {
  // Dots without any order, which no compression makes small. Files may have 512 or 1,024
  // bytes, as the shell has it: too few for the one picture when it is closed, and for the other
  // while it is drawn.
  std::mt19937 generator(1);
  std::string noise(std::size_t{64} * 600, '\0');
  for (char& byte : noise) byte = static_cast<char>(generator());
  const std::string few = PageOf("64.1 mm, 3.8 mm", 64, 30, noise.substr(0, std::size_t{64} * 30));
  const std::string many = PageOf("64.1 mm, 75.1 mm", 64, 600, noise);
  for (const std::string& page : {few, many}) {
    folder_.Write("noise", kPreamble + page);
    const test::ToolRun run = test::RunIn(folder_, "(ulimit -f 1; " TSPLVIEW " --png d noise)");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "tsplview: d/noise-1.png: File too large\n");
    EXPECT_EQ(test::RunIn(folder_, "ls -A d").out, "");
  }
}

TEST_F(Tsplview, ASignalLeavesNoPartOfAPicture) {
  // A label of 32,000 x 32,000 dots takes seconds to draw.
  folder_.Write("huge", kPreamble + PageOf("4003.9 mm, 4003.9 mm", 1, 1, "A"));
  const test::ToolRun run =
      test::RunIn(folder_, TSPLVIEW
                  " --dpi 203 --png d huge & viewer=$!;"
                  " until [ -n \"$(ls -A d 2>/dev/null)\" ]; do sleep 0.01; done;"
                  " ls -A d; kill -TERM $viewer; wait $viewer; echo $?; ls -A d");
  EXPECT_THAT(run.out, ::testing::MatchesRegex("page 1: .*\n\\.tarvo-[0-9]+-1\\.part\n143\n"));
}

TEST_F(Tsplview, LeavesNoDescriptorToOtherPrograms) {
  // It waits for the rest of the stream, with the stream's descriptor open.
  ASSERT_EQ(mkfifo(folder_.File("stream").c_str(), 0600), 0);
  const pid_t viewer = fork();
  if (viewer == 0) {
    execl(TSPLVIEW, TSPLVIEW, folder_.File("stream").c_str(), nullptr);
    _exit(127);
  }
  const int end = open(folder_.File("stream").c_str(), O_WRONLY | O_CLOEXEC);
  const std::filesystem::path process = "/proc/" + std::to_string(viewer);
  std::string flags;
  const auto patience = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (flags.empty() && std::chrono::steady_clock::now() < patience) {
    for (const auto& entry : std::filesystem::directory_iterator(process / "fd")) {
      if (std::filesystem::read_symlink(entry.path()) != folder_.File("stream")) continue;
      std::ifstream info(process / "fdinfo" / entry.path().filename());
      std::string word;
      while (info >> word && word != "flags:") {
      }
      info >> flags;
    }
  }
  ASSERT_NE(flags, "");
  EXPECT_EQ(std::stoul(flags, nullptr, 8) & O_CLOEXEC, static_cast<unsigned long>(O_CLOEXEC))
      << flags;
  close(end);
  waitpid(viewer, nullptr, 0);
}

TEST_F(Tsplview, HelpAndVersionAreStatus0) {
  const test::ToolRun help = Run("--help");
  EXPECT_EQ(help.status, 0);
  EXPECT_EQ(help.err, "");
  for (const char* word : {"--list", "--png DIR", "--name NAME", "--dpi N", "--version",
                           "DIRECTION 1", "Dot (0,0)", "CRC-32", "Exit status"}) {
    EXPECT_THAT(help.out, HasSubstr(word));
  }
  const test::ToolRun version = Run("--version");
  EXPECT_EQ(version.status, 0);
  EXPECT_THAT(version.out, ::testing::MatchesRegex("tsplview [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

}  // namespace
