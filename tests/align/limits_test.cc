// Pages that no printer is there for end the job before anything of them is sent.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "align_run.h"
#include "support/folder.h"
#include "support/ppd_text.h"

namespace {

using support::Drawing;
using support::grayPage;
using support::Outcome;
using support::Page;

/// The filter on a queue whose largest label has 1 x 2 inches: 203 x 406 dots.
class Limits : public testing::Test {
 protected:
  Limits() {
    support::writeFile(folder_ / "model.ppd", support::PpdText().pageSize("1x2", 72, 144).text());
  }

  Outcome pass(const std::vector<Page>& pages) const {
    support::Program program = alignProgram(support::uncheckedRasterFile(pages));
    program.environment = {{"PPD", folder_ / "model.ppd"}};
    return support::run(program);
  }

  support::Folder folder_;
};

TEST_F(Limits, APageLargerThanTheModelPrintsEndsTheJob) {
  const Page good = grayPage(406, 812, Drawing::Random);
  const Page large = grayPage(407, 812, Drawing::Random);
  const Outcome outcome = pass({good, large, good});
  EXPECT_EQ(outcome.ending(), "exit status 1");
  EXPECT_THAT(outcome.error,
              testing::EndsWith("PAGE: 1 1\n"
                                "ERROR: Page 2 is too large: 407 x 812 dots, twice the model's "
                                "largest size is 406 x 812.\n"));
  EXPECT_EQ(outcome.output, pass({good}).output) << "the page before it, and nothing else";
  EXPECT_EQ(pass({good}).ending(), "exit status 0");
}

TEST_F(Limits, OfALargePageThatComesFirstNothingIsSentButTheStartOfAStream) {
  const Outcome outcome = pass({grayPage(100, 813, Drawing::Random)});
  EXPECT_EQ(outcome.ending(), "exit status 1");
  EXPECT_EQ(outcome.error,
            "ERROR: Page 1 is too large: 100 x 813 dots, twice the model's largest size is "
            "406 x 812.\n");
  EXPECT_EQ(outcome.output.size(), 4U);
}

TEST_F(Limits, PagesOfAnyKindAreLimited) {
  Page page = grayPage(407, 812, Drawing::Random);
  page.header.cupsColorSpace = CUPS_CSPACE_RGB;
  EXPECT_THAT(pass({page}).error, testing::HasSubstr("Page 1 is too large"));
}

TEST(LimitsOfAnyModel, APageOfMoreThan256MiBEndsTheJobWithoutAPpd) {
  Page page{support::grayHeader(16384, 16385), {}};
  support::Program program = alignProgram(support::uncheckedRasterFile({page}));
  Outcome outcome = support::run(program);
  EXPECT_EQ(outcome.ending(), "exit status 1");
  EXPECT_EQ(outcome.error,
            "ERROR: Page 1 is too large: 268451840 bytes, at most 268435456 can be printed.\n");
  EXPECT_EQ(outcome.output.size(), 4U);

  // Of colours in planes, each counts.
  page.header.cupsHeight = 8192;
  page.header.cupsColorOrder = CUPS_ORDER_PLANAR;
  page.header.cupsNumColors = 3;
  program = alignProgram(support::uncheckedRasterFile({page}));
  outcome = support::run(program);
  EXPECT_EQ(outcome.ending(), "exit status 1");
  EXPECT_EQ(outcome.error,
            "ERROR: Page 1 is too large: 402653184 bytes, at most 268435456 can be printed.\n");
}

TEST_F(Limits, CopiesAreLimitedInThePageAndInThePageLog) {
  Page many = grayPage(16, 1, Drawing::Random);
  many.header.NumCopies = 10000;
  Page as_many_as_may_be = many;
  as_many_as_may_be.header.NumCopies = 9999;
  const Outcome outcome = pass({many, as_many_as_may_be});
  EXPECT_EQ(outcome.ending(), "exit status 0");
  EXPECT_EQ(outcome.error,
            "WARNING: Page 1 asks for 10000 copies: 9999 are printed.\n"
            "ATTR: job-media-progress=0\n"
            "ATTR: job-media-progress=100\n"
            "PAGE: 1 9999\n"
            "ATTR: job-media-progress=0\n"
            "ATTR: job-media-progress=100\n"
            "PAGE: 2 9999\n");
  EXPECT_EQ(outcome.output, pass({as_many_as_may_be, as_many_as_may_be}).output);
}

}  // namespace
