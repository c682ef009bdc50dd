// Jobs by their settings: what each option sends and logs, whether the job or the PPD chose it.
#include <gtest/gtest.h>

#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "compared_job.h"

namespace {

jobs::ComparedJob smallJob() {
  jobs::ComparedJob job;
  job.pages = {support::grayPage(24, 3, support::Drawing::Text, 1),
               support::grayPage(9, 5, support::Drawing::Random, 2)};
  return job;
}

TEST(SettingsJobs, EachChoiceNamedByTheJobOrByThePpd) {
  const std::map<std::string, std::vector<std::string>> table = {
      {"Resolution", {"203dpi", "300x600dpi"}},
      {"MediaMethod", {"Direct", "Transfer", "TransferDirect", "Other"}},
      {"PaperType", {"LabelGaps", "LabelMark", "Continue", "Normal", "Unknown"}},
      {"GapsHeight", {"0", "3", "3mm", "-1", "none"}},
      {"PostAction", {"None", "Normal", "TearOff", "PeelOff", "Cut", "PartialCut", "Other"}},
      {"Occurrence", {"AfterJob"}},
      {"Origin", {"Normal", "Rotation180", "rotation180"}},
      {"HalftoneType", {"None", "Tattoo", "TATTOO", "Unknown"}},
      {"MirrorImage", {"True", "yes", "On", "1", "255", "256"}},
      {"NegativeImage", {"true", "No", "2", "256"}},
      {"PrintSpeed", {"Normal", "0", "4", "2.5", "3ips"}},
      {"Darkness", {"-1", "0", "15", "30", "31", "8dark"}},
      {"Brightness", {"-1000", "-3", "7", "1000", "bright"}},
      {"ForceRotation", {"90"}},
      {"KeepPages", {"True", "False", "yes", "NO", "0", "1", "255", "256", "Never"}},
  };
  for (const auto& [keyword, choices] : table) {
    for (const std::string& choice : choices) {
      // A gap, so that the kinds of paper differ.
      jobs::ComparedJob byJob = smallJob();
      byJob.choices = {{"GapsHeight", "2"}, {"PaperType", "LabelMark"}};
      byJob.choices[keyword] = choice;
      EXPECT_EQ(jobs::difference(byJob), "") << keyword << "=" << choice << " by the job";

      jobs::ComparedJob byPpd = smallJob();
      byPpd.defaults = {{"GapsHeight", "2"}, {"PaperType", "LabelGaps"}};
      byPpd.defaults[keyword] = choice;
      EXPECT_EQ(jobs::difference(byPpd), "") << keyword << "=" << choice << " by the PPD";
    }
  }
  std::cout << "compared: " << jobs::count().jobs << " jobs, " << jobs::count().pages << " pages\n";
}

TEST(SettingsJobs, AllAtOnceAndNoneAtAll) {
  jobs::ComparedJob all = smallJob();
  all.choices = {
      {"Resolution", "300dpi"},   {"MediaMethod", "Transfer"}, {"PaperType", "LabelMark"},
      {"GapsHeight", "4"},        {"PostAction", "PeelOff"},   {"Occurrence", "AfterPage"},
      {"Origin", "Rotation180"},  {"MirrorImage", "True"},     {"NegativeImage", "True"},
      {"HalftoneType", "Tattoo"}, {"PrintSpeed", "2.5"},       {"Darkness", "30"},
      {"Brightness", "20"},       {"ForceRotation", "180"}};
  all.record = true;
  EXPECT_EQ(jobs::difference(all), "");

  const jobs::ComparedJob none = smallJob();
  EXPECT_EQ(jobs::difference(none), "");
}

}  // namespace
