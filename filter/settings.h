// Settings: what a job asks for, read from the queue's PPD and the job's options.
#ifndef TARVO_FILTER_SETTINGS_H_
#define TARVO_FILTER_SETTINGS_H_

#include <cups/ppd.h>

#include <cstdint>

#include "common/halftone_type.h"

/// Longest option text that is kept, with its NUL; longer ones are cut.
inline constexpr int kOptionTextSize = 41;

/// A plain record; all zero means that nothing was asked for.
struct Settings {
  char PageSize[kOptionTextSize];
  float pageWidth;   ///< mm: the PPD's page size, then that of each raster page
  float pageHeight;  ///< mm
  char Resolution[kOptionTextSize];
  char MediaMethod[kOptionTextSize];  ///< direct thermal or ribbon transfer
  char PaperType[kOptionTextSize];    ///< how the media is sensed
  std::int32_t GapsHeight;            ///< gap or mark height, mm
  char PostAction[kOptionTextSize];
  char Occurrence[kOptionTextSize];  ///< logged only
  char Origin[kOptionTextSize];
  std::int32_t MirrorImage;    ///< truth value
  std::int32_t NegativeImage;  ///< truth value
  DitherType halftoneType;
  char PrintSpeed[kOptionTextSize];
  std::int32_t Darkness;
  std::int32_t Brightness;
  std::int32_t DirectBuffer;       ///< reserved, 0
  std::int32_t StoredGraphics;     ///< reserved, 0
  std::int32_t OptionDisplayUnit;  ///< reserved, 0
  char FilterOutputFile[256];      ///< path of the recording file; empty for none
  std::int32_t ForceRotation;      ///< stored only
  std::int32_t KeepPages;          ///< truth value: whether pages are dumped
};

/// Fills `settings` from the PPD that the environment variable PPD names, with the job's options
/// `optionsText` ("Key=Choice Key=Choice") marked into it, and logs it. What is missing, the PPD
/// itself included, is empty or 0.
void parseSettings(Settings& settings, const char* optionsText);

/// Sets the page size of `settings` from the choice of PageSize in `ppd`; 0 x 0 when unknown.
void getPageWidthPageHeight(ppd_file_s* ppd, Settings& settings);

#endif  // TARVO_FILTER_SETTINGS_H_
