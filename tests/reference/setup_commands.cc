#include "reference/setup_commands.h"

#include <cstdlib>

#include "reference/text.h"

namespace reference {

std::string preamble() { return std::string(64, '\n'); }

std::string sizeCommand(float width_mm, float height_mm) {
  return formatted("SIZE %.1f mm, %.1f mm\r\n", static_cast<double>(width_mm),
                   static_cast<double>(height_mm));
}

std::string gapCommand(float gap_mm, float offset_mm, const std::string& paper_type, Log& log) {
  if (contains(paper_type, "Normal")) {
    log.line(0, "Skip the GAP cmd by Normal paper type");
    return "";
  }
  if (contains(paper_type, "Continue") || static_cast<double>(gap_mm) <= 1e-6) {
    return "GAP 0, 0\r\n";
  }
  const char* command = nullptr;
  if (contains(paper_type, "LabelGaps")) {
    command = "GAP";
  } else if (contains(paper_type, "LabelMark")) {
    command = "BLINE";
  } else {
    log.line(0, "Unknown paper type: %s!", paper_type.c_str());
    return "";
  }
  return formatted("%s %.1f mm, %.1f mm\r\n", command, static_cast<double>(gap_mm),
                   static_cast<double>(offset_mm));
}

std::string referenceCommand() { return "REFERENCE 0,0\r\n"; }

std::string directionCommand(const std::string& origin) {
  return formatted("DIRECTION %d,0\r\n", contains(origin, "Rotation180") ? 1 : 0);
}

std::string speedAndDensityCommands(const std::string& speed, int density) {
  std::string commands;
  if (!contains(speed, "Normal") && std::atof(speed.c_str()) > 1e-15) {
    commands += formatted("SPEED %s\r\n", speed.c_str());
  }
  if (density >= 0 && density <= 30) commands += formatted("DENSITY %d\r\n", density);
  return commands;
}

std::string ribbonCommand(const std::string& media_method) {
  if (contains(media_method, "Direct")) return "SET RIBBON OFF\r\n";
  if (contains(media_method, "Transfer")) return "SET RIBBON ON\r\n";
  return "";
}

std::string offsetCommand(float offset_mm) {
  return formatted("OFFSET %.1f mm\r\n", static_cast<double>(offset_mm));
}

std::string postActionCommands(const std::string& post_action) {
  if (contains(post_action, "Normal") || contains(post_action, "None")) {
    return "SET TEAR OFF\r\nSET PEEL OFF\r\nSET CUTTER OFF\r\n";
  }
  if (contains(post_action, "TearOff")) {
    return "SET TEAR ON\r\nSET PEEL OFF\r\nSET CUTTER OFF\r\n";
  }
  if (contains(post_action, "PeelOff")) {
    return "SET TEAR OFF\r\nSET PEEL ON\r\nSET CUTTER OFF\r\n";
  }
  if (contains(post_action, "Cut") || contains(post_action, "PartialCut")) {
    return "SET TEAR OFF\r\nSET PEEL OFF\r\nSET CUTTER ON\r\n";
  }
  return "";
}

std::string clsCommand() { return "CLS\r\n"; }

std::string jobSetup(const Settings& settings, Log& log) {
  std::string commands;
  commands += sizeCommand(settings.page_width, settings.page_height);
  commands += gapCommand(static_cast<float>(settings.gaps_height), 0.0F, settings.paper_type, log);
  commands += referenceCommand();
  commands += directionCommand(settings.origin);
  commands += speedAndDensityCommands(settings.print_speed, settings.darkness);
  commands += ribbonCommand(settings.media_method);
  commands += offsetCommand(0.0F);
  commands += postActionCommands(settings.post_action);
  return commands;
}

}  // namespace reference
