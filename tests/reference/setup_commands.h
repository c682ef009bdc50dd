#pragma once

#include <string>

#include "reference/log.h"
#include "reference/settings.h"

namespace reference {

/// What every job begins with: 64 line feeds.
std::string preamble();

// One function for each setup command; each gives its lines, or nothing.
std::string sizeCommand(float width_mm, float height_mm);
std::string gapCommand(float gap_mm, float offset_mm, const std::string& paper_type, Log& log);
std::string referenceCommand();
std::string directionCommand(const std::string& origin);
std::string speedAndDensityCommands(const std::string& speed, int density);
std::string ribbonCommand(const std::string& media_method);
std::string offsetCommand(float offset_mm);
std::string postActionCommands(const std::string& post_action);
std::string clsCommand();

/// The commands sent before each page's CLS.
std::string jobSetup(const Settings& settings, Log& log);

}  // namespace reference
