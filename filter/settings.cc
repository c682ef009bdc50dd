#include "filter/settings.h"

#include <cups/cups.h>

#include <cstdio>
#include <ctime>

#include "common/log.h"
#include "common/text.h"
#include "ppd/ppd_file.h"
#include "ppd/ppd_option.h"

namespace {

/// Millimetres per point, rounded; kept as it is. Quirk: rounded-points.
constexpr double kMillimetresPerPoint = 0.3528;

/// The PPD with its defaults and the job's options marked; null when there is none.
PpdOwner openMarkedPpd(const char* optionsText) {
  PpdOwner ppd = tarvoOpenQueuePpd();
  ppdMarkDefaults(ppd.get());

  cups_option_t* options = nullptr;
  const int count = cupsParseOptions(optionsText, 0, &options);
  if (count != 0 && options != nullptr) {
    cupsMarkOptions(ppd.get(), count, options);
    cupsFreeOptions(count, options);
  }
  return ppd;
}

template <std::size_t size>
void readText(ppd_file_t* ppd, const char* keyword, char (&field)[size]) {
  tarvoStrCpy(field, tarvoPpdGetChoiceAsStrDefault(ppd, keyword, ""), size);
}

/// Names the recording file after the PPD's attribute and the local time; a name that does not fit
/// is cut.
template <std::size_t size>
void composeRecordingName(ppd_file_t* ppd, char (&name)[size]) {
  const char* prefix = tarvoPpdGetAttrAsStrDefault(ppd, "tarvoFilterOutputFile", nullptr, "");
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  std::snprintf(name, size, "%s-%d%02d%02d%02d%02d%02d.bin", prefix, local.tm_year + 1900,
                local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
}

void logSettings(const Settings& settings) {
  tarvoLogCommon(0, "settings->Resolution:%s", settings.Resolution);
  tarvoLogCommon(0, "settings->MediaMethod:%s", settings.MediaMethod);
  tarvoLogCommon(0, "settings->PaperType:%s", settings.PaperType);
  tarvoLogCommon(0, "settings->GapsHeight:%d", settings.GapsHeight);
  tarvoLogCommon(0, "settings->PostAction:%s", settings.PostAction);
  tarvoLogCommon(0, "settings->Occurrence:%s", settings.Occurrence);
  tarvoLogCommon(0, "settings->Origin:%s", settings.Origin);
  tarvoLogCommon(0, "settings->MirrorImage:%d", settings.MirrorImage);
  tarvoLogCommon(0, "settings->NegativeImage:%d", settings.NegativeImage);
  tarvoLogCommon(0, "settings->PrintSpeed:%s", settings.PrintSpeed);
  tarvoLogCommon(0, "settings->Darkness:%d", settings.Darkness);
  tarvoLogCommon(0, "settings->halftoneType:%d", settings.halftoneType);
  tarvoLogCommon(0, "settings->DirectBuffer:%d", settings.DirectBuffer);
  tarvoLogCommon(0, "settings->StoredGraphics:%d", settings.StoredGraphics);
  tarvoLogCommon(0, "settings->OptionDisplayUnit:%d", settings.OptionDisplayUnit);
  tarvoLogCommon(0, "settings->PageSize:%s", settings.PageSize);
  tarvoLogCommon(0, "settings->pageWidth:%f", static_cast<double>(settings.pageWidth));
  tarvoLogCommon(0, "settings->pageHeight:%f", static_cast<double>(settings.pageHeight));
}

}  // namespace

void parseSettings(Settings& settings, const char* optionsText) {
  const PpdOwner owner = openMarkedPpd(optionsText);
  ppd_file_t* ppd = owner.get();

  settings = {};
  readText(ppd, "PageSize", settings.PageSize);
  readText(ppd, "Resolution", settings.Resolution);
  readText(ppd, "MediaMethod", settings.MediaMethod);
  readText(ppd, "PaperType", settings.PaperType);
  settings.GapsHeight = tarvoPpdGetChoiceAsIntDefault(ppd, "GapsHeight", 0);
  readText(ppd, "PostAction", settings.PostAction);
  readText(ppd, "Occurrence", settings.Occurrence);
  readText(ppd, "Origin", settings.Origin);
  settings.halftoneType =
      tarvoHalftoneTypeFromStr(tarvoPpdGetChoiceAsStrDefault(ppd, "HalftoneType", ""));
  settings.MirrorImage = tarvoPpdGetChoiceAsBoolDefault(ppd, "MirrorImage", 0);
  settings.NegativeImage = tarvoPpdGetChoiceAsBoolDefault(ppd, "NegativeImage", 0);
  readText(ppd, "PrintSpeed", settings.PrintSpeed);
  settings.Darkness = tarvoPpdGetChoiceAsIntDefault(ppd, "Darkness", 0);
  settings.Brightness = tarvoPpdGetChoiceAsIntDefault(ppd, "Brightness", 0);
  getPageWidthPageHeight(ppd, settings);
  settings.ForceRotation = tarvoPpdGetChoiceAsIntDefault(ppd, "ForceRotation", 0);
  if (tarvoPpdGetChoiceAsIntDefault(ppd, "RecordPrinterCommands", 0) > 0) {
    composeRecordingName(ppd, settings.FilterOutputFile);
  }
  settings.KeepPages = tarvoPpdGetChoiceAsBoolDefault(ppd, "KeepPages", 1);
  logSettings(settings);
}

void getPageWidthPageHeight(ppd_file_s* ppd, Settings& settings) {
  const char* name = tarvoPpdGetChoiceAsStrDefault(ppd, "PageSize", "");
  settings.pageWidth = 0;
  settings.pageHeight = 0;
  tarvoLogCommon(0, "PageSizeName: %s", name);
  const ppd_size_t* size = ppdPageSize(ppd, name);
  if (size == nullptr) return;
  tarvoLogCommon(0, "Custom Size: (%f,%f,%f,%f,%f,%f)", static_cast<double>(size->width),
                 static_cast<double>(size->length), static_cast<double>(size->left),
                 static_cast<double>(size->bottom), static_cast<double>(size->right),
                 static_cast<double>(size->top));
  settings.pageWidth = static_cast<float>(static_cast<double>(size->width) * kMillimetresPerPoint);
  settings.pageHeight =
      static_cast<float>(static_cast<double>(size->length) * kMillimetresPerPoint);
  tarvoLogCommon(0, "Set page size: width %f mm, height %f mm",
                 static_cast<double>(settings.pageWidth), static_cast<double>(settings.pageHeight));
}
