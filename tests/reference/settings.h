#pragma once

#include <string>

#include "reference/log.h"
#include "reference/reference.h"

namespace reference {

/// The ten halftone names; a name's position is its value.
int halftoneFromName(const std::string& name);

/// What the job's options come to.
struct Settings {
  std::string page_size;
  float page_width = 0;   ///< mm; the page loop replaces it by the raster's
  float page_height = 0;  ///< mm
  std::string resolution;
  std::string media_method;
  std::string paper_type;
  int gaps_height = 0;
  std::string post_action;
  std::string occurrence;
  std::string origin;
  int mirror_image = 0;
  int negative_image = 0;
  int halftone = 0;
  std::string print_speed;
  int darkness = 0;
  int brightness = 0;
  std::string recording_name;  ///< empty: none
  int keep_pages = 1;
};

/// A truth value: true, yes, false and no in any case, else the low 8 bits of a number, signed.
int truthOf(const std::string& choice);

/// "ATTRIBUTE-YYYYMMDDhhmmss.bin", cut to 255 characters.
std::string recordingName(const std::string& attribute, const std::tm& now);

/// Reads the job's choices and writes the settings' log lines. Texts are cut to 40 characters.
Settings parseSettings(const Job& job, Log& log);

}  // namespace reference
