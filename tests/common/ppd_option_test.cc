#include "ppd/ppd_option.h"

#include <cups/cups.h>
#include <cups/ppd.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "support/folder.h"
#include "support/ppd_text.h"

namespace {

/// A PPD opened from its text, its defaults marked, with job options marked on top.
class OpenPpd {
 public:
  explicit OpenPpd(const support::PpdText& text, const char* jobOptions = "") {
    const support::Folder folder;
    support::writeFile(folder / "test.ppd", text.text());
    ppd_ = ppdOpenFile((folder / "test.ppd").c_str());
    if (ppd_ == nullptr) throw std::runtime_error("libcups does not take the PPD");
    ppdMarkDefaults(ppd_);
    cups_option_t* options = nullptr;
    const int count = cupsParseOptions(jobOptions, 0, &options);
    cupsMarkOptions(ppd_, count, options);
    cupsFreeOptions(count, options);
  }
  ~OpenPpd() { ppdClose(ppd_); }
  OpenPpd(const OpenPpd&) = delete;
  OpenPpd& operator=(const OpenPpd&) = delete;
  ppd_file_t* get() const { return ppd_; }

 private:
  ppd_file_t* ppd_;
};

support::PpdText paperPpd() {
  return support::PpdText()
      .pageSize("A6", 298, 420)
      .option("PaperType", "LabelGaps", {"LabelGaps", "Continue", "LabelMark"});
}

TEST(PpdChoice, JobOptionWinsOverPpdDefault) {
  const OpenPpd ppd(paperPpd(), "PaperType=Continue");
  ASSERT_NE(tarvoPpdGetChoice(ppd.get(), "PaperType"), nullptr);
  EXPECT_STREQ(tarvoPpdGetChoice(ppd.get(), "PaperType")->choice, "Continue");
  EXPECT_STREQ(tarvoPpdGetChoiceAsStrDefault(ppd.get(), "PaperType", "x"), "Continue");
}

TEST(PpdChoice, PpdDefaultStandsWithoutJobOption) {
  const OpenPpd ppd(paperPpd());
  EXPECT_STREQ(tarvoPpdGetChoiceAsStrDefault(ppd.get(), "PaperType", "x"), "LabelGaps");
}

TEST(PpdChoice, OptionThatWasNeverMarkedGivesItsDefaultChoice) {
  const OpenPpd ppd(paperPpd());
  ppd_option_t* option = ppdFindOption(ppd.get(), "PaperType");
  ASSERT_NE(option, nullptr);
  // Take every mark away, as if nothing had been marked at all.
  ppd_choice_t* marked = ppdFindMarkedChoice(ppd.get(), "PaperType");
  ASSERT_NE(marked, nullptr);
  cupsArrayRemove(ppd.get()->marked, marked);
  marked->marked = 0;
  ASSERT_EQ(ppdFindMarkedChoice(ppd.get(), "PaperType"), nullptr);
  EXPECT_STREQ(tarvoPpdGetChoiceAsStrDefault(ppd.get(), "PaperType", "x"), "LabelGaps");
}

TEST(PpdChoice, DefaultThatIsNoChoiceIsAbsent) {
  const OpenPpd ppd(support::PpdText()
                        .pageSize("A6", 298, 420)
                        .option("PaperType", "NoSuchChoice", {"LabelGaps"}));
  EXPECT_EQ(tarvoPpdGetChoice(ppd.get(), "PaperType"), nullptr);
  EXPECT_STREQ(tarvoPpdGetChoiceAsStrDefault(ppd.get(), "PaperType", "fallback"), "fallback");
  EXPECT_EQ(tarvoPpdGetChoiceAsIntDefault(ppd.get(), "PaperType", 17), 17);
  EXPECT_EQ(tarvoPpdGetChoiceAsBoolDefault(ppd.get(), "PaperType", -3), -3);
}

TEST(PpdChoice, MissingOptionGivesTheDefault) {
  const OpenPpd ppd(paperPpd());
  EXPECT_EQ(tarvoPpdGetChoice(ppd.get(), "Nothing"), nullptr);
  EXPECT_STREQ(tarvoPpdGetChoiceAsStrDefault(ppd.get(), "Nothing", "fallback"), "fallback");
  EXPECT_EQ(tarvoPpdGetChoiceAsIntDefault(ppd.get(), "Nothing", -12), -12);
  EXPECT_EQ(tarvoPpdGetChoiceAsBoolDefault(ppd.get(), "Nothing", 1), 1);
}

TEST(PpdChoice, NullPpdGivesTheDefaults) {
  EXPECT_EQ(tarvoPpdGetChoice(nullptr, "PaperType"), nullptr);
  EXPECT_STREQ(tarvoPpdGetChoiceAsStrDefault(nullptr, "PaperType", "fallback"), "fallback");
  EXPECT_EQ(tarvoPpdGetChoiceAsIntDefault(nullptr, "PaperType", 5), 5);
  EXPECT_EQ(tarvoPpdGetChoiceAsBoolDefault(nullptr, "PaperType", 1), 1);
  EXPECT_STREQ(tarvoPpdGetAttrAsStrDefault(nullptr, "attribute", nullptr, "fallback"), "fallback");
  EXPECT_EQ(tarvoPpdGetAttrAsFloatDefault(nullptr, "attribute", nullptr, 2.5), 2.5);
}

TEST(PpdChoice, DefaultTextMayBeNull) {
  EXPECT_EQ(tarvoPpdGetChoiceAsStrDefault(nullptr, "PaperType", nullptr), nullptr);
  EXPECT_EQ(tarvoPpdGetAttrAsStrDefault(nullptr, "attribute", nullptr, nullptr), nullptr);
}

TEST(PpdChoice, IntegerIsTheLeadingNumberOfTheKeyword) {
  const struct {
    const char* keyword;
    int expected;
  } cases[] = {{"3", 3},   {"3mm", 3}, {"0", 0},   {"-37", -37}, {"+4", 4},
               {"007", 7}, {"Two", 0}, {"2.9", 2}, {"mm3", 0},   {"100", 100}};
  for (const auto& [keyword, expected] : cases) {
    const OpenPpd ppd(
        support::PpdText().pageSize("A6", 298, 420).option("GapsHeight", keyword, {keyword}));
    EXPECT_EQ(tarvoPpdGetChoiceAsIntDefault(ppd.get(), "GapsHeight", 99), expected) << keyword;
  }
}

struct TruthCase {
  const char* keyword;
  int expected;
};

void expectTruths(const std::vector<TruthCase>& cases) {
  for (const auto& [keyword, expected] : cases) {
    const OpenPpd ppd(
        support::PpdText().pageSize("A6", 298, 420).option("Flag", keyword, {keyword}));
    EXPECT_EQ(tarvoPpdGetChoiceAsBoolDefault(ppd.get(), "Flag", 99), expected) << keyword;
  }
}

TEST(PpdChoice, TruthWordsCountInAnyCase) {
  expectTruths({{"YES", 1},
                {"True", 1},
                {"yes", 1},
                {"TRUE", 1},
                {"true", 1},
                {"No", 0},
                {"False", 0},
                {"no", 0},
                {"FALSE", 0}});
}

TEST(PpdChoice, OnIsFalseIsKept) {
  // Not one of the four words, and as a number it is 0.
  expectTruths({{"On", 0}, {"Off", 0}, {"yes1", 0}, {"T", 0}});
}

TEST(PpdChoice, TruthOfANumberIsItsLowEightBitsIsKept) {
  expectTruths({{"0", 0},
                {"1", 1},
                {"2", 2},
                {"127", 127},
                {"128", -128},  // 0x80
                {"255", -1},    // 0xff
                {"256", 0},     // 0x100: the low 8 bits are 0
                {"257", 1},     // 0x101
                {"-1", -1},     // ...ff
                {"-256", 0}});  // ...00
}

TEST(PpdAttribute, TextOfTheValue) {
  const OpenPpd ppd(paperPpd().attribute("tarvoFilterOutputFile", "", "/tmp/rec"));
  EXPECT_STREQ(tarvoPpdGetAttrAsStrDefault(ppd.get(), "tarvoFilterOutputFile", nullptr, "fallback"),
               "/tmp/rec");
}

TEST(PpdAttribute, AbsentAttributeOrValueGivesTheDefault) {
  // libcups drops an attribute line without a value; a record with a null value can still be made.
  const OpenPpd ppd(paperPpd().attribute("tarvoNumber", "", "1.5"));
  EXPECT_STREQ(tarvoPpdGetAttrAsStrDefault(ppd.get(), "tarvoMissing", nullptr, "fallback"),
               "fallback");
  EXPECT_EQ(tarvoPpdGetAttrAsFloatDefault(ppd.get(), "tarvoMissing", nullptr, -2.5), -2.5);

  ppd_attr_t* attribute = ppdFindAttr(ppd.get(), "tarvoNumber", nullptr);
  ASSERT_NE(attribute, nullptr);
  char* const value = attribute->value;
  attribute->value = nullptr;
  EXPECT_STREQ(tarvoPpdGetAttrAsStrDefault(ppd.get(), "tarvoNumber", nullptr, "fallback"),
               "fallback");
  EXPECT_EQ(tarvoPpdGetAttrAsFloatDefault(ppd.get(), "tarvoNumber", nullptr, 0.25), 0.25);
  attribute->value = value;
  EXPECT_EQ(tarvoPpdGetAttrAsFloatDefault(ppd.get(), "tarvoNumber", nullptr, 0.25), 1.5);
}

TEST(PpdAttribute, EmptyValueIsAValue) {
  const OpenPpd ppd(paperPpd().attribute("tarvoEmpty", "", ""));
  ASSERT_NE(ppdFindAttr(ppd.get(), "tarvoEmpty", nullptr), nullptr);
  EXPECT_STREQ(tarvoPpdGetAttrAsStrDefault(ppd.get(), "tarvoEmpty", nullptr, "fallback"), "");
  EXPECT_EQ(tarvoPpdGetAttrAsFloatDefault(ppd.get(), "tarvoEmpty", nullptr, 7.0), 0.0);
}

TEST(PpdAttribute, SpecifierSelectsAmongAttributesOfOneName) {
  const OpenPpd ppd(
      paperPpd().attribute("tarvoPart", "Left", "1.25").attribute("tarvoPart", "Right", "-8e2"));
  EXPECT_STREQ(tarvoPpdGetAttrAsStrDefault(ppd.get(), "tarvoPart", "Right", "x"), "-8e2");
  EXPECT_STREQ(tarvoPpdGetAttrAsStrDefault(ppd.get(), "tarvoPart", "Middle", "x"), "x");
  EXPECT_EQ(tarvoPpdGetAttrAsFloatDefault(ppd.get(), "tarvoPart", "Left", 0.0), 1.25);
  EXPECT_EQ(tarvoPpdGetAttrAsFloatDefault(ppd.get(), "tarvoPart", "Right", 0.0), -800.0);
}

TEST(PpdAttribute, WithoutASpecifierAnyWillDo) {
  const OpenPpd ppd(paperPpd().attribute("tarvoPart", "Left", "1.25"));
  EXPECT_STREQ(tarvoPpdGetAttrAsStrDefault(ppd.get(), "tarvoPart", nullptr, "x"), "1.25");
  EXPECT_EQ(tarvoPpdGetAttrAsFloatDefault(ppd.get(), "tarvoPart", nullptr, 0.0), 1.25);
  // An empty one is a specifier that no attribute has.
  EXPECT_STREQ(tarvoPpdGetAttrAsStrDefault(ppd.get(), "tarvoPart", "", "x"), "x");
  EXPECT_EQ(tarvoPpdGetAttrAsFloatDefault(ppd.get(), "tarvoPart", "", 0.5), 0.5);
}

TEST(PpdAttribute, NumberIsTheLeadingNumberOfTheValue) {
  const struct {
    const char* value;
    double expected;
  } cases[] = {{"3.5mm", 3.5}, {"-0.5", -0.5}, {"none", 0.0}, {"12", 12.0}};
  for (const auto& [value, expected] : cases) {
    const OpenPpd ppd(paperPpd().attribute("tarvoNumber", "", value));
    EXPECT_EQ(tarvoPpdGetAttrAsFloatDefault(ppd.get(), "tarvoNumber", nullptr, 99.0), expected)
        << value;
  }
}

}  // namespace
