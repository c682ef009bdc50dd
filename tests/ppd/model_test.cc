// The printer models: that they compile cleanly, conform, and offer what the filter knows.
#include <cups/ppd.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "command.h"
#include "common/halftone_type.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

const char kLabel203[] = "tarvo-label-203dpi.ppd";
const char kLabel300[] = "tarvo-label-300dpi.ppd";
const char kStencil[] = "tarvo-stencil-a4-300dpi.ppd";

using Ppd = std::unique_ptr<ppd_file_t, decltype(&ppdClose)>;

Ppd openPpd(const std::string& name) {
  Ppd ppd(ppdOpenFile((std::string(TARVO_PPD_DIR "/") + name).c_str()), &ppdClose);
  if (ppd) ppdMarkDefaults(ppd.get());
  return ppd;
}

std::vector<std::string> choicesOf(ppd_file_t* ppd, const char* keyword) {
  std::vector<std::string> choices;
  const ppd_option_t* option = ppdFindOption(ppd, keyword);
  if (option == nullptr) return choices;
  for (int i = 0; i < option->num_choices; ++i) choices.emplace_back(option->choices[i].choice);
  return choices;
}

TEST(Models, CompileToThreeFilesWithoutAWord) {
  const TemporaryFolder folder;
  const CommandResult ppdc = runCommand("ppdc -d " + folder.path() + " " TARVO_DRV " 2>&1");
  EXPECT_EQ(ppdc.status, 0);
  EXPECT_EQ(ppdc.output, "");

  std::vector<std::string> names;
  for (const auto& file : std::filesystem::directory_iterator(folder.path())) {
    names.push_back(file.path().filename().string());
  }
  EXPECT_THAT(names, testing::UnorderedElementsAre(kLabel203, kLabel300, kStencil));
}

class Model : public testing::TestWithParam<const char*> {
 protected:
  Model() : ppd_(openPpd(GetParam())) {}
  void SetUp() override { ASSERT_NE(ppd_, nullptr) << GetParam(); }

  Ppd ppd_;
};

INSTANTIATE_TEST_SUITE_P(All, Model, testing::Values(kLabel203, kLabel300, kStencil),
                         [](const auto& model) {
                           std::string name = std::filesystem::path(model.param).stem().string();
                           for (char& c : name) {
                             if (c == '-') c = '_';
                           }
                           return name;
                         });

// cupstestppd wants borderless sizes called "4x6.Fullbleed" and wide ones "30x50mmRotated"; what is
// sold as 50x30mm keeps that name. Nothing else may be remarked on.
TEST_P(Model, ConformsButForTheNamesOfSizes) {
  const TemporaryFolder root;
  const std::string filters = root.path() + "/usr/lib/cups/filter";
  // A filter has to be root's, so it is one of the system's programs.
  ASSERT_EQ(runCommand("mkdir -p " + filters + " && ln -s /bin/true " + filters +
                       "/rastertotarvo && chmod 755 " + root.path())
                .status,
            0);
  const CommandResult test =
      runCommand("cupstestppd -R " + root.path() + " " TARVO_PPD_DIR "/" + GetParam() + " 2>&1");
  EXPECT_EQ(test.status, 0) << test.output;

  std::istringstream lines(test.output);
  std::string line;
  ASSERT_TRUE(std::getline(lines, line));
  EXPECT_THAT(line, testing::EndsWith(": PASS"));
  while (std::getline(lines, line)) {
    EXPECT_THAT(line, testing::MatchesRegex(" *WARN    Size \".*\" should be .*"));
  }
}

TEST_P(Model, HalftonesAreTheFiltersTenNamesInItsOrder) {
  std::vector<std::string> names;
  for (int type = None; type <= Tattoo_X8; ++type) {
    names.emplace_back(tarvoHalftoneTypeToStr(static_cast<DitherType>(type)));
  }
  ASSERT_EQ(names.size(), 10u);
  EXPECT_THAT(choicesOf(ppd_.get(), "HalftoneType"), ElementsAreArray(names));
}

TEST_P(Model, OffersWhatTheFilterReadsAndNothingThatChangesNothing) {
  for (const char* keyword :
       {"PageSize", "Resolution", "MediaMethod", "PaperType", "GapsHeight", "PostAction", "Origin",
        "HalftoneType", "MirrorImage", "NegativeImage", "PrintSpeed", "Darkness", "Brightness",
        "RecordPrinterCommands", "KeepPages", "CenterOfPixel"}) {
    EXPECT_NE(ppdFindOption(ppd_.get(), keyword), nullptr) << keyword;
  }
  for (const char* keyword : {"Occurrence", "ForceRotation", "ColorModel", "Duplex"}) {
    EXPECT_EQ(ppdFindOption(ppd_.get(), keyword), nullptr) << keyword;
  }
}

TEST_P(Model, TellsTheSpoolerWhatItMustKnow) {
  const struct {
    const char* name;
    const char* value;
  } kAttributes[] = {
      {"cupsManualCopies", "False"},
      {"cupsSNMPSupplies", "False"},
      {"DefaultCenterOfPixel", "True"},  // or bars come out a dot too wide
      {"tarvoFilterOutputFile", "/var/spool/cups/tmp/tarvo"},
      {"cupsFilter2", "application/vnd.tarvo-raster application/octet-stream 0 rastertotarvo"},
  };
  for (const auto& expected : kAttributes) {
    const ppd_attr_t* attribute = ppdFindAttr(ppd_.get(), expected.name, nullptr);
    ASSERT_NE(attribute, nullptr) << expected.name;
    EXPECT_STREQ(attribute->value, expected.value) << expected.name;
  }
  // It would offer the spooler a way around rastertoaligned.
  EXPECT_EQ(ppdFindAttr(ppd_.get(), "cupsFilter", nullptr), nullptr);
}

// The filter takes the number at the front of these choices; each must be a whole one.
TEST_P(Model, ChoicesThatAreReadAsNumbersAreNumbers) {
  const struct {
    const char* keyword;
    int lowest;
    int highest;
  } kRanges[] = {
      {"GapsHeight", 0, 10},
      {"Darkness", -1, 30},  // -1 sends no density
      {"Brightness", -100, 100},
      {"RecordPrinterCommands", 0, 1},
  };
  for (const auto& range : kRanges) {
    int lowest = 1000;
    int highest = -1000;
    for (const std::string& choice : choicesOf(ppd_.get(), range.keyword)) {
      const int value = std::stoi(choice);
      EXPECT_EQ(std::to_string(value), choice) << range.keyword;
      lowest = std::min(lowest, value);
      highest = std::max(highest, value);
    }
    EXPECT_EQ(lowest, range.lowest) << range.keyword;
    EXPECT_EQ(highest, range.highest) << range.keyword;
  }
}

// The filter looks for words inside a choice, the first match winning; a choice that is to send
// nothing must hold none of them.
TEST_P(Model, WordsTheFilterLooksForStandWhereTheyAreMeant) {
  EXPECT_THAT(choicesOf(ppd_.get(), "MediaMethod"), ElementsAre("Direct", "Transfer", "Normal"));
  EXPECT_THAT(choicesOf(ppd_.get(), "PaperType"),
              ElementsAre("LabelGaps", "LabelMark", "Continue", "Normal"));
  EXPECT_THAT(choicesOf(ppd_.get(), "PostAction"),
              ElementsAre("None", "TearOff", "PeelOff", "Cut", "PartialCut", "Unchanged"));
  EXPECT_THAT(choicesOf(ppd_.get(), "Origin"), ElementsAre("Rotation0", "Rotation180"));
}

TEST_P(Model, NegativeGoesWithTheStencilHalftonesOnly) {
  for (const std::string& halftone : choicesOf(ppd_.get(), "HalftoneType")) {
    ppdMarkDefaults(ppd_.get());
    ppdMarkOption(ppd_.get(), "HalftoneType", halftone.c_str());
    EXPECT_EQ(ppdConflicts(ppd_.get()), 0) << halftone;
    const bool stencil = halftone == "Tattoo" || halftone == "Tattoo_X8";
    EXPECT_EQ(ppdMarkOption(ppd_.get(), "NegativeImage", "True") == 0, stencil) << halftone;
  }
}

TEST(Models, StartWithWhatTheOwnerOfANewPrinterWants) {
  const struct {
    const char* model;
    const char* halftone;
    const char* pageSize;
    const char* resolution;
    const char* paperType;
  } kDefaults[] = {
      {kLabel203, "None", "4x6", "203dpi", "LabelGaps"},
      {kLabel300, "None", "4x6", "300dpi", "LabelGaps"},
      {kStencil, "Tattoo", "A4", "300dpi", "Continue"},
  };
  for (const auto& expected : kDefaults) {
    const Ppd ppd = openPpd(expected.model);
    ASSERT_NE(ppd, nullptr);
    EXPECT_STREQ(ppdFindOption(ppd.get(), "HalftoneType")->defchoice, expected.halftone);
    EXPECT_STREQ(ppdFindOption(ppd.get(), "PageSize")->defchoice, expected.pageSize);
    EXPECT_STREQ(ppdFindOption(ppd.get(), "Resolution")->defchoice, expected.resolution);
    EXPECT_STREQ(ppdFindOption(ppd.get(), "PaperType")->defchoice, expected.paperType);
    EXPECT_STREQ(ppdFindOption(ppd.get(), "Darkness")->defchoice, "-1");
    EXPECT_STREQ(ppdFindOption(ppd.get(), "PrintSpeed")->defchoice, "Normal");
    EXPECT_STREQ(ppdFindOption(ppd.get(), "MirrorImage")->defchoice, "False");
    EXPECT_STREQ(ppdFindOption(ppd.get(), "NegativeImage")->defchoice, "False");
    EXPECT_STREQ(ppdFindOption(ppd.get(), "Brightness")->defchoice, "0");
    EXPECT_STREQ(ppdFindOption(ppd.get(), "RecordPrinterCommands")->defchoice, "0");
  }
}

TEST(Models, LabelHeadsAre104MillimetresWide) {
  for (const char* model : {kLabel203, kLabel300}) {
    const Ppd ppd = openPpd(model);
    ASSERT_NE(ppd, nullptr);
    // 104 mm are 104 / 25.4 * 72 = 294.80 points.
    EXPECT_NEAR(ppd->custom_max[0], 294.80, 0.01);
    EXPECT_NE(ppdPageSize(ppd.get(), "Custom.104x150mm"), nullptr);
  }
}

}  // namespace
