#include "reference/settings.h"

#include <strings.h>

#include <array>
#include <cstdint>

#include "reference/text.h"

namespace reference {

namespace {

constexpr std::size_t kTextLength = 40;
constexpr std::size_t kNameLength = 255;

std::string choiceText(const Job& job, const char* keyword) {
  const auto choice = job.choices.find(keyword);
  return choice == job.choices.end() ? "" : choice->second;
}

std::string settingText(const Job& job, const char* keyword) {
  return choiceText(job, keyword).substr(0, kTextLength);
}

int choiceInt(const Job& job, const char* keyword) { return leadingInt(choiceText(job, keyword)); }

int choiceTruth(const Job& job, const char* keyword, int absent = 0) {
  return job.choices.contains(keyword) ? truthOf(choiceText(job, keyword)) : absent;
}

float millimetres(float points) { return static_cast<float>(static_cast<double>(points) * 0.3528); }

void readPageSize(const Job& job, Settings& settings, Log& log) {
  log.line(0, "PageSizeName: %s", choiceText(job, "PageSize").c_str());
  const bool known =
      job.pageWidthPoints != 0 || job.pageLengthPoints != 0 || job.pageEdges.has_value();
  if (!known) return;

  const Margins edges =
      job.pageEdges.value_or(Margins{0, 0, job.pageWidthPoints, job.pageLengthPoints});
  log.line(0, "Custom Size: (%f,%f,%f,%f,%f,%f)", static_cast<double>(job.pageWidthPoints),
           static_cast<double>(job.pageLengthPoints), static_cast<double>(edges.left),
           static_cast<double>(edges.bottom), static_cast<double>(edges.right),
           static_cast<double>(edges.top));
  settings.page_width = millimetres(job.pageWidthPoints);
  settings.page_height = millimetres(job.pageLengthPoints);
  log.line(0, "Set page size: width %f mm, height %f mm", static_cast<double>(settings.page_width),
           static_cast<double>(settings.page_height));
}

void logSettings(const Settings& s, Log& log) {
  log.line(0, "settings->Resolution:%s", s.resolution.c_str());
  log.line(0, "settings->MediaMethod:%s", s.media_method.c_str());
  log.line(0, "settings->PaperType:%s", s.paper_type.c_str());
  log.line(0, "settings->GapsHeight:%d", s.gaps_height);
  log.line(0, "settings->PostAction:%s", s.post_action.c_str());
  log.line(0, "settings->Occurrence:%s", s.occurrence.c_str());
  log.line(0, "settings->Origin:%s", s.origin.c_str());
  log.line(0, "settings->MirrorImage:%d", s.mirror_image);
  log.line(0, "settings->NegativeImage:%d", s.negative_image);
  log.line(0, "settings->PrintSpeed:%s", s.print_speed.c_str());
  log.line(0, "settings->Darkness:%d", s.darkness);
  log.line(0, "settings->halftoneType:%d", s.halftone);
  log.line(0, "settings->DirectBuffer:%d", 0);
  log.line(0, "settings->StoredGraphics:%d", 0);
  log.line(0, "settings->OptionDisplayUnit:%d", 0);
  log.line(0, "settings->PageSize:%s", s.page_size.c_str());
  log.line(0, "settings->pageWidth:%f", static_cast<double>(s.page_width));
  log.line(0, "settings->pageHeight:%f", static_cast<double>(s.page_height));
}

}  // namespace

int halftoneFromName(const std::string& name) {
  constexpr std::array<const char*, 10> kNames = {
      "None",   "FloydSteinberg", "Ordered", "Burkes",   "Stucki", "JarvisJudiceNinke",
      "Sierra", "StevensonArce",  "Tattoo",  "Tattoo_X8"};
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    if (name == kNames[i]) return static_cast<int>(i);
  }
  return 0;
}

int truthOf(const std::string& choice) {
  const auto is = [&](const char* word) { return strcasecmp(choice.c_str(), word) == 0; };
  if (is("true") || is("yes")) return 1;
  if (is("false") || is("no")) return 0;
  return static_cast<std::int8_t>(leadingInt(choice) & 255);
}

std::string recordingName(const std::string& attribute, const std::tm& now) {
  return formatted("%s-%d%02d%02d%02d%02d%02d.bin", attribute.c_str(), now.tm_year + 1900,
                   now.tm_mon + 1, now.tm_mday, now.tm_hour, now.tm_min, now.tm_sec)
      .substr(0, kNameLength);
}

Settings parseSettings(const Job& job, Log& log) {
  Settings s;
  s.page_size = settingText(job, "PageSize");
  s.resolution = settingText(job, "Resolution");
  s.media_method = settingText(job, "MediaMethod");
  s.paper_type = settingText(job, "PaperType");
  s.gaps_height = choiceInt(job, "GapsHeight");
  s.post_action = settingText(job, "PostAction");
  s.occurrence = settingText(job, "Occurrence");
  s.origin = settingText(job, "Origin");
  s.halftone = halftoneFromName(choiceText(job, "HalftoneType"));
  s.mirror_image = choiceTruth(job, "MirrorImage");
  s.negative_image = choiceTruth(job, "NegativeImage");
  s.print_speed = settingText(job, "PrintSpeed");
  s.darkness = choiceInt(job, "Darkness");
  s.brightness = choiceInt(job, "Brightness");
  readPageSize(job, s, log);
  if (choiceInt(job, "RecordPrinterCommands") > 0) {
    s.recording_name = recordingName(job.recordingAttribute, job.now);
  }
  s.keep_pages = choiceTruth(job, "KeepPages", 1);
  logSettings(s, log);
  return s;
}

}  // namespace reference
