// The setup commands of a page as a whole: from a record, and from a PPD with job options.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstring>
#include <string>

#include "captured_printer.h"
#include "filter/settings.h"
#include "filter/setup_commands.h"
#include "support/differences.h"
#include "support/folder.h"
#include "support/ppd_text.h"

namespace {

std::string setupOf(const Settings& settings) {
  std::string sent;
  support::standardErrorOf([&] { sent = sentBy([&] { jobSetup(settings); }); });
  return sent;
}

TEST(JobSetup, EmptySettingsSendWhatIsAlwaysSent) {
  // Density 0 lies in 0..30, so it is sent.
  EXPECT_EQ(setupOf(Settings{}),
            "SIZE 0.0 mm, 0.0 mm\r\n"
            "GAP 0, 0\r\n"
            "REFERENCE 0,0\r\n"
            "DIRECTION 0,0\r\n"
            "DENSITY 0\r\n"
            "OFFSET 0.0 mm\r\n");
}

TEST(JobSetup, AllCommandsInTheirOrder) {
  Settings settings{};
  settings.pageWidth = 101.6F;
  settings.pageHeight = 152.4F;
  std::strcpy(settings.PaperType, "LabelMark");
  settings.GapsHeight = 3;
  std::strcpy(settings.Origin, "Rotation180");
  std::strcpy(settings.PrintSpeed, "5");
  settings.Darkness = 12;
  std::strcpy(settings.MediaMethod, "Transfer");
  std::strcpy(settings.PostAction, "PeelOff");
  const char* const expected =
      "SIZE 101.6 mm, 152.4 mm\r\n"
      "BLINE 3.0 mm, 0.0 mm\r\n"
      "REFERENCE 0,0\r\n"
      "DIRECTION 1,0\r\n"
      "SPEED 5\r\n"
      "DENSITY 12\r\n"
      "SET RIBBON ON\r\n"
      "OFFSET 0.0 mm\r\n"
      "SET TEAR OFF\r\n"
      "SET PEEL ON\r\n"
      "SET CUTTER OFF\r\n";
  EXPECT_EQ(setupOf(settings), expected);

  // These take no part.
  settings.ForceRotation = 90;
  settings.Brightness = 50;
  settings.MirrorImage = 1;
  settings.NegativeImage = 1;
  std::strcpy(settings.Occurrence, "AfterJob");
  std::strcpy(settings.Resolution, "300dpi");
  settings.halftoneType = Tattoo;
  EXPECT_EQ(setupOf(settings), expected);
}

TEST(JobSetup, SendingAgainSendsTheSame) {
  const Settings settings{};
  EXPECT_EQ(sentBy([&] {
              jobSetup(settings);
              jobSetup(settings);
            }),
            setupOf(settings) + setupOf(settings));
}

TEST(JobSetup, ChoicesOfAPpdReachThePrinter) {
  const support::Folder folder;
  support::writeFile(
      folder / "test.ppd",
      support::PpdText()
          .pageSize("w288h432", 288, 432)
          .option("PaperType", "LabelGaps", {"LabelGaps", "LabelMark", "Continue", "Normal", "Odd"})
          .option("GapsHeight", "3", {"0", "3"})
          .option("Origin", "Normal", {"Normal", "Rotation180"})
          .option("PrintSpeed", "4", {"Normal", "0", "2.5", "4"})
          .option("Darkness", "8", {"-1", "0", "8", "30", "31"})
          .option("MediaMethod", "Direct", {"Direct", "Transfer", "Odd"})
          .option("PostAction", "None",
                  {"None", "Normal", "TearOff", "PeelOff", "Cut", "PartialCut", "Odd"})
          .text());
  ::setenv("PPD", (folder / "test.ppd").c_str(), 1);

  // 288 x 0.3528 = 101.6064 mm, 432 x 0.3528 = 152.4096 mm
  const struct Lines {
    const char* options;
    std::string gap = "GAP 3.0 mm, 0.0 mm\r\n";
    std::string direction = "DIRECTION 0,0\r\n";
    std::string speed = "SPEED 4\r\n";
    std::string density = "DENSITY 8\r\n";
    std::string ribbon = "SET RIBBON OFF\r\n";
    std::string action = "SET TEAR OFF\r\nSET PEEL OFF\r\nSET CUTTER OFF\r\n";
  } cases[] = {
      {.options = ""},
      {.options = "PaperType=LabelMark", .gap = "BLINE 3.0 mm, 0.0 mm\r\n"},
      {.options = "PaperType=Continue", .gap = "GAP 0, 0\r\n"},
      {.options = "PaperType=Normal", .gap = ""},
      {.options = "PaperType=Odd", .gap = ""},
      {.options = "GapsHeight=0", .gap = "GAP 0, 0\r\n"},
      {.options = "GapsHeight=0 PaperType=Odd", .gap = "GAP 0, 0\r\n"},
      {.options = "Origin=Rotation180", .direction = "DIRECTION 1,0\r\n"},
      {.options = "PrintSpeed=2.5", .speed = "SPEED 2.5\r\n"},
      {.options = "PrintSpeed=0", .speed = ""},
      {.options = "PrintSpeed=Normal", .speed = ""},
      {.options = "Darkness=-1", .density = ""},
      {.options = "Darkness=0", .density = "DENSITY 0\r\n"},
      {.options = "Darkness=30", .density = "DENSITY 30\r\n"},
      {.options = "Darkness=31", .density = ""},
      {.options = "MediaMethod=Transfer", .ribbon = "SET RIBBON ON\r\n"},
      {.options = "MediaMethod=Odd", .ribbon = ""},
      {.options = "PostAction=Normal"},
      {.options = "PostAction=TearOff",
       .action = "SET TEAR ON\r\nSET PEEL OFF\r\nSET CUTTER OFF\r\n"},
      {.options = "PostAction=PeelOff",
       .action = "SET TEAR OFF\r\nSET PEEL ON\r\nSET CUTTER OFF\r\n"},
      {.options = "PostAction=Cut", .action = "SET TEAR OFF\r\nSET PEEL OFF\r\nSET CUTTER ON\r\n"},
      {.options = "PostAction=PartialCut",
       .action = "SET TEAR OFF\r\nSET PEEL OFF\r\nSET CUTTER ON\r\n"},
      {.options = "PostAction=Odd", .action = ""},
      {.options = "PaperType=LabelMark Origin=Rotation180 Darkness=31 PostAction=Odd",
       .gap = "BLINE 3.0 mm, 0.0 mm\r\n",
       .direction = "DIRECTION 1,0\r\n",
       .density = "",
       .action = ""},
  };
  for (const Lines& lines : cases) {
    Settings settings{};
    support::standardErrorOf([&] { parseSettings(settings, lines.options); });
    const std::string expected = "SIZE 101.6 mm, 152.4 mm\r\n" + lines.gap + "REFERENCE 0,0\r\n" +
                                 lines.direction + lines.speed + lines.density + lines.ribbon +
                                 "OFFSET 0.0 mm\r\n" + lines.action;
    EXPECT_EQ(support::firstDifference(expected, setupOf(settings)), "") << lines.options;
  }
  ::unsetenv("PPD");
}

}  // namespace
