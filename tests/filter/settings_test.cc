#include "filter/settings.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <optional>
#include <string>
#include <type_traits>

#include "support/capture.h"
#include "support/differences.h"
#include "support/folder.h"
#include "support/ppd_text.h"

namespace {

using support::PpdText;

/// Sets an environment variable for one test.
class Variable {
 public:
  Variable(const char* name, const std::optional<std::string>& value) : name_(name) {
    if (const char* old = ::getenv(name)) old_ = old;
    set(value);
  }
  ~Variable() { set(old_); }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;

 private:
  void set(const std::optional<std::string>& value) const {
    if (value) {
      ::setenv(name_, value->c_str(), 1);
    } else {
      ::unsetenv(name_);
    }
    ::tzset();
  }
  const char* name_;
  std::optional<std::string> old_;
};

/// Settings as a filter gets them that is started with this PPD and these job options.
struct Parsed {
  Settings settings;
  std::string log;
};

Parsed parse(const std::optional<std::string>& ppdFile, const char* options) {
  const Variable ppd("PPD", ppdFile);
  Parsed parsed;
  std::memset(&parsed.settings, 0x55, sizeof parsed.settings);
  parsed.log = support::standardErrorOf([&] { parseSettings(parsed.settings, options); });
  return parsed;
}

Parsed parse(const PpdText& text, const char* options = "") {
  const support::Folder folder;
  support::writeFile(folder / "test.ppd", text.text());
  return parse((folder / "test.ppd").string(), options);
}

PpdText labelPpd() {
  return PpdText()
      .pageSize("w288h432", 288, 432)
      .pageSize("w100h200", 100, 200)
      .option("Resolution", "203dpi", {"203dpi", "300dpi"})
      .option("MediaMethod", "Direct", {"Direct", "Transfer"})
      .option("PaperType", "LabelGaps", {"LabelGaps", "LabelMark", "Continue", "Normal"})
      .option("GapsHeight", "3", {"0", "2", "3", "5mm"})
      .option("PostAction", "TearOff", {"None", "TearOff", "PeelOff", "Cut"})
      .option("Occurrence", "AfterPage", {"AfterPage", "AfterJob"})
      .option("Origin", "Normal", {"Normal", "Rotation180"})
      .option("HalftoneType", "Tattoo", {"None", "FloydSteinberg", "Tattoo", "Tattoo_X8"})
      .option("MirrorImage", "False", {"False", "True"})
      .option("NegativeImage", "False", {"False", "True"})
      .option("PrintSpeed", "4", {"Normal", "2.5", "4"})
      .option("Darkness", "8", {"0", "8", "15"})
      .option("Brightness", "20", {"-37", "0", "20"})
      .option("ForceRotation", "0", {"0", "90"})
      .option("RecordPrinterCommands", "0", {"0", "1", "-1"});
}

TEST(Settings, IsAPlainRecordWithTextsOfFortyCharacters) {
  static_assert(std::is_trivially_copyable_v<Settings> && std::is_standard_layout_v<Settings>);
  EXPECT_EQ(sizeof(Settings::PageSize), 41U);
  EXPECT_EQ(sizeof(Settings::Resolution), 41U);
  EXPECT_EQ(sizeof(Settings::MediaMethod), 41U);
  EXPECT_EQ(sizeof(Settings::PaperType), 41U);
  EXPECT_EQ(sizeof(Settings::PostAction), 41U);
  EXPECT_EQ(sizeof(Settings::Occurrence), 41U);
  EXPECT_EQ(sizeof(Settings::Origin), 41U);
  EXPECT_EQ(sizeof(Settings::PrintSpeed), 41U);
  EXPECT_EQ(sizeof(Settings::FilterOutputFile), 256U);
}

TEST(Settings, FieldsFollowEachOtherInTheirOrder) {
  const std::size_t offsets[] = {
      offsetof(Settings, PageSize),          offsetof(Settings, pageWidth),
      offsetof(Settings, pageHeight),        offsetof(Settings, Resolution),
      offsetof(Settings, MediaMethod),       offsetof(Settings, PaperType),
      offsetof(Settings, GapsHeight),        offsetof(Settings, PostAction),
      offsetof(Settings, Occurrence),        offsetof(Settings, Origin),
      offsetof(Settings, MirrorImage),       offsetof(Settings, NegativeImage),
      offsetof(Settings, halftoneType),      offsetof(Settings, PrintSpeed),
      offsetof(Settings, Darkness),          offsetof(Settings, Brightness),
      offsetof(Settings, DirectBuffer),      offsetof(Settings, StoredGraphics),
      offsetof(Settings, OptionDisplayUnit), offsetof(Settings, FilterOutputFile),
      offsetof(Settings, ForceRotation)};
  EXPECT_TRUE(std::is_sorted(std::begin(offsets), std::end(offsets)));
  EXPECT_EQ(offsets[0], 0U);
  // Each number has 32 bits, and so has the name of a halftone.
  EXPECT_EQ(sizeof(Settings::GapsHeight) + sizeof(Settings::MirrorImage) +
                sizeof(Settings::NegativeImage) + sizeof(Settings::halftoneType) +
                sizeof(Settings::Darkness) + sizeof(Settings::Brightness) +
                sizeof(Settings::DirectBuffer) + sizeof(Settings::StoredGraphics) +
                sizeof(Settings::OptionDisplayUnit) + sizeof(Settings::ForceRotation),
            10U * 4U);
}

void expectNothingAskedFor(const Settings& settings) {
  EXPECT_STREQ(settings.PageSize, "");
  EXPECT_EQ(settings.pageWidth, 0.0F);
  EXPECT_EQ(settings.pageHeight, 0.0F);
  EXPECT_STREQ(settings.Resolution, "");
  EXPECT_STREQ(settings.MediaMethod, "");
  EXPECT_STREQ(settings.PaperType, "");
  EXPECT_EQ(settings.GapsHeight, 0);
  EXPECT_STREQ(settings.PostAction, "");
  EXPECT_STREQ(settings.Occurrence, "");
  EXPECT_STREQ(settings.Origin, "");
  EXPECT_EQ(settings.MirrorImage, 0);
  EXPECT_EQ(settings.NegativeImage, 0);
  EXPECT_EQ(settings.halftoneType, None);
  EXPECT_STREQ(settings.PrintSpeed, "");
  EXPECT_EQ(settings.Darkness, 0);
  EXPECT_EQ(settings.Brightness, 0);
  EXPECT_EQ(settings.DirectBuffer, 0);
  EXPECT_EQ(settings.StoredGraphics, 0);
  EXPECT_EQ(settings.OptionDisplayUnit, 0);
  EXPECT_STREQ(settings.FilterOutputFile, "");
  EXPECT_EQ(settings.ForceRotation, 0);
}

constexpr char kLogOfNothing[] =
    "DEBUG:PageSizeName: \n"
    "DEBUG:settings->Resolution:\n"
    "DEBUG:settings->MediaMethod:\n"
    "DEBUG:settings->PaperType:\n"
    "DEBUG:settings->GapsHeight:0\n"
    "DEBUG:settings->PostAction:\n"
    "DEBUG:settings->Occurrence:\n"
    "DEBUG:settings->Origin:\n"
    "DEBUG:settings->MirrorImage:0\n"
    "DEBUG:settings->NegativeImage:0\n"
    "DEBUG:settings->PrintSpeed:\n"
    "DEBUG:settings->Darkness:0\n"
    "DEBUG:settings->halftoneType:0\n"
    "DEBUG:settings->DirectBuffer:0\n"
    "DEBUG:settings->StoredGraphics:0\n"
    "DEBUG:settings->OptionDisplayUnit:0\n"
    "DEBUG:settings->PageSize:\n"
    "DEBUG:settings->pageWidth:0.000000\n"
    "DEBUG:settings->pageHeight:0.000000\n";

TEST(Settings, WithoutPpdVariableAllIsEmptyOrZero) {
  const Parsed parsed = parse(std::nullopt, "");
  expectNothingAskedFor(parsed.settings);
  EXPECT_EQ(support::firstDifference(kLogOfNothing, parsed.log), "");
}

TEST(Settings, WithoutPpdFileOptionsHaveNothingToBeMarkedIn) {
  const Parsed parsed = parse("/no/such/file.ppd", "PageSize=A4 Darkness=5 MirrorImage");
  expectNothingAskedFor(parsed.settings);
  EXPECT_EQ(support::firstDifference(kLogOfNothing, parsed.log), "");
}

TEST(Settings, PpdWithoutAnyOfTheOptionsGivesNothing) {
  const Parsed parsed = parse(PpdText());
  expectNothingAskedFor(parsed.settings);
  EXPECT_EQ(support::firstDifference(kLogOfNothing, parsed.log), "");
}

TEST(Settings, PpdDefaultsStandWithoutJobOptions) {
  const Parsed parsed = parse(labelPpd());
  const Settings& settings = parsed.settings;
  EXPECT_STREQ(settings.PageSize, "w288h432");
  EXPECT_STREQ(settings.Resolution, "203dpi");
  EXPECT_STREQ(settings.MediaMethod, "Direct");
  EXPECT_STREQ(settings.PaperType, "LabelGaps");
  EXPECT_EQ(settings.GapsHeight, 3);
  EXPECT_STREQ(settings.PostAction, "TearOff");
  EXPECT_STREQ(settings.Occurrence, "AfterPage");
  EXPECT_STREQ(settings.Origin, "Normal");
  EXPECT_EQ(settings.MirrorImage, 0);
  EXPECT_EQ(settings.NegativeImage, 0);
  EXPECT_EQ(settings.halftoneType, Tattoo);
  EXPECT_STREQ(settings.PrintSpeed, "4");
  EXPECT_EQ(settings.Darkness, 8);
  EXPECT_EQ(settings.Brightness, 20);
  EXPECT_EQ(settings.ForceRotation, 0);
  EXPECT_STREQ(settings.FilterOutputFile, "");
}

TEST(Settings, JobOptionsWinOverPpdDefaults) {
  const Parsed parsed =
      parse(labelPpd(),
            "PageSize=w100h200 Resolution=300dpi MediaMethod=Transfer PaperType=LabelMark "
            "GapsHeight=5mm PostAction=Cut Occurrence=AfterJob Origin=Rotation180 "
            "HalftoneType=Tattoo_X8 MirrorImage=True NegativeImage=true PrintSpeed=2.5 Darkness=15 "
            "Brightness=-37 ForceRotation=90");
  const Settings& settings = parsed.settings;
  EXPECT_STREQ(settings.PageSize, "w100h200");
  EXPECT_STREQ(settings.Resolution, "300dpi");
  EXPECT_STREQ(settings.MediaMethod, "Transfer");
  EXPECT_STREQ(settings.PaperType, "LabelMark");
  EXPECT_EQ(settings.GapsHeight, 5);  // the number at the front of "5mm"
  EXPECT_STREQ(settings.PostAction, "Cut");
  EXPECT_STREQ(settings.Occurrence, "AfterJob");
  EXPECT_STREQ(settings.Origin, "Rotation180");
  EXPECT_EQ(settings.halftoneType, Tattoo_X8);
  EXPECT_EQ(settings.MirrorImage, 1);
  EXPECT_EQ(settings.NegativeImage, 1);
  EXPECT_STREQ(settings.PrintSpeed, "2.5");
  EXPECT_EQ(settings.Darkness, 15);
  EXPECT_EQ(settings.Brightness, -37);
  EXPECT_EQ(settings.ForceRotation, 90);

  // 100 points x 0.3528 = 35.28 mm, 200 x 0.3528 = 70.56 mm. Brightness, ForceRotation and the
  // recording file have no line.
  const std::string expected =
      "DEBUG:PageSizeName: w100h200\n"
      "DEBUG:Custom Size: (100.000000,200.000000,0.000000,0.000000,100.000000,200.000000)\n"
      "DEBUG:Set page size: width 35.279999 mm, height 70.559998 mm\n"
      "DEBUG:settings->Resolution:300dpi\n"
      "DEBUG:settings->MediaMethod:Transfer\n"
      "DEBUG:settings->PaperType:LabelMark\n"
      "DEBUG:settings->GapsHeight:5\n"
      "DEBUG:settings->PostAction:Cut\n"
      "DEBUG:settings->Occurrence:AfterJob\n"
      "DEBUG:settings->Origin:Rotation180\n"
      "DEBUG:settings->MirrorImage:1\n"
      "DEBUG:settings->NegativeImage:1\n"
      "DEBUG:settings->PrintSpeed:2.5\n"
      "DEBUG:settings->Darkness:15\n"
      "DEBUG:settings->halftoneType:9\n"
      "DEBUG:settings->DirectBuffer:0\n"
      "DEBUG:settings->StoredGraphics:0\n"
      "DEBUG:settings->OptionDisplayUnit:0\n"
      "DEBUG:settings->PageSize:w100h200\n"
      "DEBUG:settings->pageWidth:35.279999\n"
      "DEBUG:settings->pageHeight:70.559998\n";
  EXPECT_EQ(support::firstDifference(expected, parsed.log), "");
}

TEST(Settings, TruthValuesAreWidenedWithTheirSignIsKept) {
  const struct {
    const char* keyword;
    int expected;
  } cases[] = {{"2", 2}, {"255", -1}, {"256", 0}, {"YES", 1}, {"On", 0}};
  for (const auto& [keyword, expected] : cases) {
    const Parsed parsed = parse(PpdText()
                                    .option("MirrorImage", keyword, {keyword})
                                    .option("NegativeImage", keyword, {keyword}));
    EXPECT_EQ(parsed.settings.MirrorImage, expected) << keyword;
    EXPECT_EQ(parsed.settings.NegativeImage, expected) << keyword;
  }
}

TEST(Settings, HalftoneNamesMatchWithCase) {
  const struct {
    const char* choice;
    DitherType expected;
  } cases[] = {{"None", None},           {"FloydSteinberg", FloydSteinberg},
               {"Ordered", Ordered},     {"Burkes", Burkes},
               {"Stucki", Stucki},       {"JarvisJudiceNinke", JarvisJudiceNinke},
               {"Sierra", Sierra},       {"StevensonArce", StevensonArce},
               {"Tattoo", Tattoo},       {"Tattoo_X8", Tattoo_X8},
               {"floydsteinberg", None}, {"TATTOO", None},
               {"Tattoo_X9", None},      {"Unknown", None}};
  for (const auto& [choice, expected] : cases) {
    const Parsed parsed = parse(PpdText().option("HalftoneType", choice, {choice}));
    EXPECT_EQ(parsed.settings.halftoneType, expected) << choice;
  }
}

TEST(Settings, JobOptionTakesThePpdsOwnSpellingOfAChoice) {
  // libcups finds the choice without regard to case; its keyword is what arrives.
  const Parsed parsed = parse(PpdText().option("HalftoneType", "None", {"None", "FloydSteinberg"}),
                              "HalftoneType=floydsteinberg");
  EXPECT_EQ(parsed.settings.halftoneType, FloydSteinberg);
}

TEST(Settings, ChoiceTextsOfFortyCharactersArriveWhole) {
  // The longest that libcups takes, and that a record holds.
  const std::string choice = "LabelGaps-0123456789-0123456789-01234567";
  ASSERT_EQ(choice.size(), 40U);
  const Parsed parsed = parse(PpdText().option("PaperType", choice, {choice}));
  EXPECT_EQ(std::string(parsed.settings.PaperType), choice);
}

TEST(Settings, ReservedFieldsAreNotReadFromThePpd) {
  const Parsed parsed = parse(PpdText()
                                  .option("DirectBuffer", "1", {"1"})
                                  .option("StoredGraphics", "1", {"1"})
                                  .option("OptionDisplayUnit", "1", {"1"}));
  EXPECT_EQ(parsed.settings.DirectBuffer, 0);
  EXPECT_EQ(parsed.settings.StoredGraphics, 0);
  EXPECT_EQ(parsed.settings.OptionDisplayUnit, 0);
}

// The page size

TEST(PageSize, PointsTimes03528GiveMillimetres) {
  // 288 x 0.3528 = 101.6064, 432 x 0.3528 = 152.4096
  const Parsed parsed = parse(labelPpd(), "PageSize=w288h432");
  EXPECT_EQ(parsed.settings.pageWidth, static_cast<float>(288.0 * 0.3528));
  EXPECT_EQ(parsed.settings.pageHeight, static_cast<float>(432.0 * 0.3528));
  EXPECT_NEAR(parsed.settings.pageWidth, 101.6064, 1e-5);
  EXPECT_NEAR(parsed.settings.pageHeight, 152.4096, 1e-5);
}

TEST(PageSize, DefaultThatIsNoChoiceGivesNoSize) {
  const Parsed parsed = parse(PpdText().pageSize("A6", 298, 420).defaultPageSize("Nowhere"));
  EXPECT_STREQ(parsed.settings.PageSize, "");
  EXPECT_EQ(parsed.settings.pageWidth, 0.0F);
  EXPECT_EQ(parsed.settings.pageHeight, 0.0F);
  EXPECT_EQ(support::firstDifference(kLogOfNothing, parsed.log), "");
}

TEST(PageSize, ChoiceWithoutADimensionIs0x0) {
  const Parsed parsed = parse(PpdText().option("PageSize", "Nowhere", {"Nowhere"}));
  EXPECT_STREQ(parsed.settings.PageSize, "Nowhere");
  EXPECT_EQ(parsed.settings.pageWidth, 0.0F);
  EXPECT_EQ(parsed.settings.pageHeight, 0.0F);
  EXPECT_EQ(parsed.log.rfind("DEBUG:PageSizeName: Nowhere\n"
                             "DEBUG:Custom Size: (0.000000,0.000000,0.000000,0.000000,0.000000,"
                             "0.000000)\n"
                             "DEBUG:Set page size: width 0.000000 mm, height 0.000000 mm\n",
                             0),
            0U)
      << parsed.log;
}

TEST(PageSize, CustomSizeArrivesAsTheChoiceCustomWithItsPoints) {
  const Parsed parsed = parse(PpdText().pageSize("w288h432", 288, 432).customPageSizes(36, 2000),
                              "PageSize=Custom.144x216");
  EXPECT_STREQ(parsed.settings.PageSize, "Custom");
  // 144 x 0.3528 = 50.8032, 216 x 0.3528 = 76.2048
  EXPECT_EQ(parsed.settings.pageWidth, static_cast<float>(144.0 * 0.3528));
  EXPECT_EQ(parsed.settings.pageHeight, static_cast<float>(216.0 * 0.3528));
  EXPECT_NE(parsed.log.find("DEBUG:PageSizeName: Custom\n"
                            "DEBUG:Custom Size: (144.000000,216.000000,0.000000,0.000000,"
                            "144.000000,216.000000)\n"
                            "DEBUG:Set page size: width 50.803200 mm, height 76.204803 mm\n"),
            std::string::npos)
      << parsed.log;
}

TEST(PageSize, LogHasTheEdgesOfThePrintableAreaInTheirOrder) {
  const Parsed parsed =
      parse(PpdText().pageSize("w288h432", 288, 432).printable(1.5, 2.5, 280, 400));
  EXPECT_NE(parsed.log.find("DEBUG:Custom Size: (288.000000,432.000000,1.500000,2.500000,"
                            "280.000000,400.000000)\n"),
            std::string::npos)
      << parsed.log;
}

TEST(PageSize, NullPpdGivesNoSize) {
  Settings settings{};
  settings.pageWidth = 5;
  settings.pageHeight = 7;
  const std::string log =
      support::standardErrorOf([&] { getPageWidthPageHeight(nullptr, settings); });
  EXPECT_EQ(settings.pageWidth, 0.0F);
  EXPECT_EQ(settings.pageHeight, 0.0F);
  EXPECT_EQ(log, "DEBUG:PageSizeName: \n");
}

// The recording file

std::string at(int year, int month, int day, int hour, int minute, int second) {
  std::tm moment{};
  moment.tm_year = year - 1900;
  moment.tm_mon = month - 1;
  moment.tm_mday = day;
  moment.tm_hour = hour;
  moment.tm_min = minute;
  moment.tm_sec = second;
  return std::to_string(::timegm(&moment));
}

PpdText recordingPpd(const char* record, const std::string& attribute) {
  PpdText text = PpdText().option("RecordPrinterCommands", record, {record});
  if (!attribute.empty()) text.attribute("tarvoFilterOutputFile", "", attribute);
  return text;
}

TEST(KeepPages, IsATruthValueThatIsTrueWhenAbsent) {
  EXPECT_EQ(parse(PpdText()).settings.KeepPages, 1);
  EXPECT_EQ(parse("/no/such/file.ppd", "KeepPages=False").settings.KeepPages, 1);
  const struct {
    const char* keyword;
    int expected;
  } cases[] = {{"True", 1}, {"False", 0}, {"yes", 1}, {"No", 0},
               {"1", 1},    {"0", 0},     {"2", 2},   {"256", 0}};
  for (const auto& [keyword, expected] : cases) {
    const PpdText byPpd = PpdText().option("KeepPages", keyword, {keyword});
    EXPECT_EQ(parse(byPpd).settings.KeepPages, expected) << keyword << " by the PPD";
    const PpdText byJob = PpdText().option("KeepPages", "Other", {"Other", keyword});
    const std::string options = std::string("KeepPages=") + keyword;
    EXPECT_EQ(parse(byJob, options.c_str()).settings.KeepPages, expected) << keyword;
  }
}

TEST(RecordingFile, NameIsTheAttributeAndTheLocalTimePaddedToTwoDigits) {
  const Variable zone("TZ", "UTC");
  const struct {
    std::string moment;
    const char* expected;
  } cases[] = {{at(2025, 3, 5, 9, 7, 3), "/tmp/rec-20250305090703.bin"},
               {at(2026, 12, 31, 23, 59, 58), "/tmp/rec-20261231235958.bin"},
               {at(2001, 1, 1, 0, 0, 0), "/tmp/rec-20010101000000.bin"}};
  for (const auto& [moment, expected] : cases) {
    const Variable now("TARVO_TEST_TIME", moment);
    EXPECT_STREQ(parse(recordingPpd("1", "/tmp/rec")).settings.FilterOutputFile, expected);
  }
}

TEST(RecordingFile, TimeIsLocalTime) {
  const Variable zone("TZ", "XXX-5:30");  // five and a half hours ahead
  const Variable now("TARVO_TEST_TIME", at(2025, 3, 5, 20, 7, 3));
  EXPECT_STREQ(parse(recordingPpd("1", "/tmp/rec")).settings.FilterOutputFile,
               "/tmp/rec-20250306013703.bin");
}

TEST(RecordingFile, AttributeMayHaveAnySpecifier) {
  const Variable zone("TZ", "UTC");
  const Variable now("TARVO_TEST_TIME", at(2025, 3, 5, 9, 7, 3));
  const PpdText ppd = PpdText()
                          .pageSize("A6", 298, 420)
                          .option("RecordPrinterCommands", "1", {"0", "1"})
                          .attribute("tarvoFilterOutputFile", "Any", "/tmp/rec");
  EXPECT_STREQ(parse(ppd).settings.FilterOutputFile, "/tmp/rec-20250305090703.bin");
}

TEST(RecordingFile, WithoutTheAttributeTheNameIsRelative) {
  const Variable zone("TZ", "UTC");
  const Variable now("TARVO_TEST_TIME", at(2025, 3, 5, 9, 7, 3));
  EXPECT_STREQ(parse(recordingPpd("1", "")).settings.FilterOutputFile, "-20250305090703.bin");
}

TEST(RecordingFile, OnlyANumberAboveZeroAsksForIt) {
  const Variable zone("TZ", "UTC");
  const Variable now("TARVO_TEST_TIME", at(2025, 3, 5, 9, 7, 3));
  for (const char* record : {"0", "-1", "True", "yes"}) {
    EXPECT_STREQ(parse(recordingPpd(record, "/tmp/rec")).settings.FilterOutputFile, "") << record;
  }
  for (const char* record : {"1", "2", "1yes"}) {
    EXPECT_STREQ(parse(recordingPpd(record, "/tmp/rec")).settings.FilterOutputFile,
                 "/tmp/rec-20250305090703.bin")
        << record;
  }
}

TEST(RecordingFile, NameThatDoesNotFitIsCutTo255Characters) {
  const Variable zone("TZ", "UTC");
  const Variable now("TARVO_TEST_TIME", at(2025, 3, 5, 9, 7, 3));
  // "-20250305090703.bin" has 19 characters: 236 + 19 = 255 fits, one more does not.
  for (const std::size_t length : {235U, 236U, 237U, 250U, 255U, 256U, 299U, 5001U}) {
    // A line of a PPD holds 255 characters; a longer value goes over several, line ends included.
    std::string attribute(length, 'a');
    for (std::size_t end = 199; end < length; end += 200) attribute[end] = '\n';
    attribute.front() = '/';
    const Parsed parsed = parse(recordingPpd("1", attribute));
    const std::string whole = attribute + "-20250305090703.bin";
    EXPECT_EQ(std::string(parsed.settings.FilterOutputFile), whole.substr(0, 255)) << length;
    EXPECT_EQ(parsed.settings.ForceRotation, 0) << "the field after the name was overwritten";
  }
}

}  // namespace
