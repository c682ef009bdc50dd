#include "filter/setup_commands.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "captured_printer.h"

namespace {

TEST(SetSize, MillimetresWithOneDecimal) {
  const struct {
    double width;
    double height;
    const char* expected;
  } cases[] = {
      {101.6064, 152.4096, "SIZE 101.6 mm, 152.4 mm\r\n"},
      // 600 dots at 203 dpi: 600 x 25.4 / 203 = 75.07
      {600 * 25.4 / 203, 1200 * 25.4 / 203, "SIZE 75.1 mm, 150.1 mm\r\n"},
      {1.0, 0.0, "SIZE 1.0 mm, 0.0 mm\r\n"},
      {0.04, 0.06, "SIZE 0.0 mm, 0.1 mm\r\n"},
      {99.95, 99.96, "SIZE 99.9 mm, 100.0 mm\r\n"},  // as float 99.95 is 99.9499...
      {0.25, 0.75, "SIZE 0.2 mm, 0.8 mm\r\n"},       // ties go to the even digit
  };
  for (const auto& row : cases) {
    EXPECT_EQ(
        sentBy([&] { setSize(static_cast<float>(row.width), static_cast<float>(row.height)); }),
        row.expected);
  }
}

TEST(SetGap, PaperTypeAndGapChooseTheCommand) {
  const struct {
    float gap;
    float offset;
    const char* paperType;
    const char* sent;
    const char* logged;
  } cases[] = {
      // "Normal" is looked for first, whatever else the text holds and however large the gap is.
      {3, 0, "Normal", "", "DEBUG:Skip the GAP cmd by Normal paper type\n"},
      {0, 0, "Normal", "", "DEBUG:Skip the GAP cmd by Normal paper type\n"},
      {3, 0, "NormalLabelGaps", "", "DEBUG:Skip the GAP cmd by Normal paper type\n"},
      {3, 0, "LabelGapsNormal", "", "DEBUG:Skip the GAP cmd by Normal paper type\n"},
      {3, 0, "ContinueNormal", "", "DEBUG:Skip the GAP cmd by Normal paper type\n"},
      // Then "Continue", or no gap.
      {3, 0, "Continue", "GAP 0, 0\r\n", ""},
      {3, 0, "MyContinuePaper", "GAP 0, 0\r\n", ""},
      {3, 0, "LabelMarkContinue", "GAP 0, 0\r\n", ""},
      {0, 0, "", "GAP 0, 0\r\n", ""},
      {0, 0, "LabelGaps", "GAP 0, 0\r\n", ""},
      {0, 2, "LabelMark", "GAP 0, 0\r\n", ""},
      {0, 0, "Whatever", "GAP 0, 0\r\n", ""},
      {-1, 0, "LabelGaps", "GAP 0, 0\r\n", ""},
      {1e-6F, 0, "LabelGaps", "GAP 0, 0\r\n", ""},
      {1e-7F, 0, "LabelGaps", "GAP 0, 0\r\n", ""},
      // Then the labels.
      {1.0005e-6F, 0, "LabelGaps", "GAP 0.0 mm, 0.0 mm\r\n", ""},
      {2e-6F, 0, "LabelGaps", "GAP 0.0 mm, 0.0 mm\r\n", ""},
      {3, 0, "LabelGaps", "GAP 3.0 mm, 0.0 mm\r\n", ""},
      {2.54F, 1.25F, "LabelGaps", "GAP 2.5 mm, 1.2 mm\r\n", ""},
      {3, 0, "LabelMark", "BLINE 3.0 mm, 0.0 mm\r\n", ""},
      {12, -1, "LabelMark", "BLINE 12.0 mm, -1.0 mm\r\n", ""},
      {3, 0, "LabelMarkLabelGaps", "GAP 3.0 mm, 0.0 mm\r\n", ""},
      {3, 0, "xxLabelMarkxx", "BLINE 3.0 mm, 0.0 mm\r\n", ""},
      // Then nothing; keywords match with case.
      {2, 0, "", "", "DEBUG:Unknown paper type: !\n"},
      {2, 0, "labelgaps", "", "DEBUG:Unknown paper type: labelgaps!\n"},
      {2, 0, "normal", "", "DEBUG:Unknown paper type: normal!\n"},
      {2, 0, "Label Gaps", "", "DEBUG:Unknown paper type: Label Gaps!\n"},
      {2, 0, "100%d", "", "DEBUG:Unknown paper type: 100%d!\n"},
  };
  for (const auto& row : cases) {
    std::string sent;
    const std::string logged = support::standardErrorOf(
        [&] { sent = sentBy([&] { setGap(row.gap, row.offset, row.paperType); }); });
    EXPECT_EQ(sent, row.sent) << row.paperType << ", gap " << row.gap;
    EXPECT_EQ(logged, row.logged) << row.paperType << ", gap " << row.gap;
  }
}

TEST(SetReference, IsTheOrigin) { EXPECT_EQ(sentBy(setReference), "REFERENCE 0,0\r\n"); }

TEST(SetDirection, OnlyRotation180TurnsThePage) {
  const struct {
    const char* origin;
    const char* expected;
  } cases[] = {
      {"Rotation180", "DIRECTION 1,0\r\n"},
      {"MyRotation180Deg", "DIRECTION 1,0\r\n"},
      {"", "DIRECTION 0,0\r\n"},
      {"Normal", "DIRECTION 0,0\r\n"},
      {"rotation180", "DIRECTION 0,0\r\n"},
      {"Rotation90", "DIRECTION 0,0\r\n"},
      {"Rotation18", "DIRECTION 0,0\r\n"},
      {"Rotation 180", "DIRECTION 0,0\r\n"},
  };
  for (const auto& [origin, expected] : cases) {
    EXPECT_EQ(sentBy([&text = origin] { setDirection(text, 0); }), expected) << origin;
  }
}

TEST(SetDirection, MirrorArgumentIsIgnoredIsKept) {
  for (const int mirror : {-1, 0, 1, 180}) {
    EXPECT_EQ(sentBy([&] { setDirection("Rotation180", mirror); }), "DIRECTION 1,0\r\n");
    EXPECT_EQ(sentBy([&] { setDirection("", mirror); }), "DIRECTION 0,0\r\n");
  }
}

TEST(SetSpeed, TextIsCopiedWhenItIsANumberAboveZero) {
  const struct {
    const char* speed;
    const char* expected;
  } cases[] = {
      {"4", "SPEED 4\r\n"},
      {"2.5", "SPEED 2.5\r\n"},
      {"2.50", "SPEED 2.50\r\n"},
      {"3ips", "SPEED 3ips\r\n"},
      {"1e-14", "SPEED 1e-14\r\n"},
      {"15", "SPEED 15\r\n"},
      {"100%s", "SPEED 100%s\r\n"},
      {"Normal", ""},
      {"4Normal", ""},  // "Normal" anywhere in the text
      {"Normal4", ""},
      {"4normal", "SPEED 4normal\r\n"},
      {"0", ""},
      {"0.0", ""},
      {"-4", ""},
      {"1e-15", ""},  // not above 1e-15
      {"1.0005e-15", "SPEED 1.0005e-15\r\n"},
      {"1e-16", ""},
      {"", ""},
      {"Fast", ""},
  };
  for (const auto& [speed, expected] : cases) {
    EXPECT_EQ(sentBy([&text = speed] { setSpeedAndDensity(text, -1); }), expected) << speed;
  }
}

TEST(SetDensity, IsSentFrom0To30) {
  const struct {
    int density;
    const char* expected;
  } cases[] = {{-100, ""},
               {-1, ""},
               {0, "DENSITY 0\r\n"},
               {1, "DENSITY 1\r\n"},
               {15, "DENSITY 15\r\n"},
               {16, "DENSITY 16\r\n"},
               {30, "DENSITY 30\r\n"},
               {31, ""},
               {1000, ""}};
  for (const auto& [density, expected] : cases) {
    EXPECT_EQ(sentBy([&number = density] { setSpeedAndDensity("", number); }), expected) << density;
  }
}

TEST(SetSpeedAndDensity, AreIndependentAndSpeedComesFirst) {
  EXPECT_EQ(sentBy([] { setSpeedAndDensity("4", 8); }), "SPEED 4\r\nDENSITY 8\r\n");
  EXPECT_EQ(sentBy([] { setSpeedAndDensity("Normal", 8); }), "DENSITY 8\r\n");
  EXPECT_EQ(sentBy([] { setSpeedAndDensity("4", 31); }), "SPEED 4\r\n");
  EXPECT_EQ(sentBy([] { setSpeedAndDensity("0", -1); }), "");
}

TEST(SetRibbon, DirectIsOffTransferIsOn) {
  const struct {
    const char* method;
    const char* expected;
  } cases[] = {{"Direct", "SET RIBBON OFF\r\n"},
               {"DirectThermal", "SET RIBBON OFF\r\n"},
               {"Transfer", "SET RIBBON ON\r\n"},
               {"ThermalTransferRibbon", "SET RIBBON ON\r\n"},
               {"TransferDirect", "SET RIBBON OFF\r\n"},  // "Direct" is looked for first
               {"direct", ""},
               {"transfer", ""},
               {"None", ""},
               {"", ""}};
  for (const auto& [method, expected] : cases) {
    EXPECT_EQ(sentBy([&text = method] { setRibbon(text); }), expected) << method;
  }
}

TEST(SetOffset, MillimetresWithOneDecimal) {
  EXPECT_EQ(sentBy([] { setOffset(0.0F); }), "OFFSET 0.0 mm\r\n");
  EXPECT_EQ(sentBy([] { setOffset(2.54F); }), "OFFSET 2.5 mm\r\n");
  EXPECT_EQ(sentBy([] { setOffset(-3.0F); }), "OFFSET -3.0 mm\r\n");
}

TEST(SetPostAction, FirstKeywordOfTheTableWins) {
  const std::string off = "SET TEAR OFF\r\nSET PEEL OFF\r\nSET CUTTER OFF\r\n";
  const std::string tear = "SET TEAR ON\r\nSET PEEL OFF\r\nSET CUTTER OFF\r\n";
  const std::string peel = "SET TEAR OFF\r\nSET PEEL ON\r\nSET CUTTER OFF\r\n";
  const std::string cut = "SET TEAR OFF\r\nSET PEEL OFF\r\nSET CUTTER ON\r\n";
  const struct {
    const char* action;
    std::string expected;
  } cases[] = {
      {"Normal", off},
      {"None", off},
      {"NoneAtAll", off},
      {"TearOff", tear},
      {"PeelOff", peel},
      {"Cut", cut},
      {"Cutter", cut},
      {"PartialCut", cut},
      {"FullCut", cut},
      // Two keywords in a text: the order of the table decides, not that of the text.
      {"CutNone", off},
      {"TearOffNormal", off},
      {"PeelOffTearOff", tear},
      {"CutTearOff", tear},
      {"CutPeelOff", peel},
      // No keyword.
      {"", ""},
      {"none", ""},
      {"tearoff", ""},
      {"Tear", ""},
      {"Peel", ""},
      {"cut", ""},
      {"Rewind", ""},
  };
  for (const auto& [action, expected] : cases) {
    EXPECT_EQ(sentBy([&text = action] { setPostAction(text); }), expected) << action;
  }
}

TEST(SetCls, IsOneLine) { EXPECT_EQ(sentBy(setCls), "CLS\r\n"); }

}  // namespace
