#include "filter/setup_commands.h"

#include <cstdlib>
#include <cstring>

#include "common/log.h"
#include "filter/tspl_printer.h"

namespace {

bool contains(const char* text, const char* keyword) {
  return std::strstr(text, keyword) != nullptr;
}

}  // namespace

void setSize(float width, float height) {
  sPrinter->printFormat("SIZE %.1f mm, %.1f mm\r\n", static_cast<double>(width),
                        static_cast<double>(height));
}

void setGap(float gap, float offset, const char* paperType) {
  const auto sendGap = [gap, offset](const char* command) {
    sPrinter->printFormat("%s %.1f mm, %.1f mm\r\n", command, static_cast<double>(gap),
                          static_cast<double>(offset));
  };
  if (contains(paperType, "Normal")) {
    tarvoLogCommon(0, "Skip the GAP cmd by Normal paper type");
  } else if (contains(paperType, "Continue") || static_cast<double>(gap) <= 1e-6) {
    sPrinter->printFormat("GAP 0, 0\r\n");  // Quirk: gap-zero-first.
  } else if (contains(paperType, "LabelGaps")) {
    sendGap("GAP");
  } else if (contains(paperType, "LabelMark")) {
    sendGap("BLINE");
  } else {
    tarvoLogCommon(0, "Unknown paper type: %s!", paperType);
  }
}

void setReference() { sPrinter->printFormat("REFERENCE 0,0\r\n"); }

void setDirection(const char* origin, int /*mirror*/) {
  // Quirk: direction-unmirrored.
  sPrinter->printFormat("DIRECTION %d,0\r\n", contains(origin, "Rotation180") ? 1 : 0);
}

void setSpeedAndDensity(const char* speed, int density) {
  if (!contains(speed, "Normal") && std::atof(speed) > 1e-15) {
    sPrinter->printFormat("SPEED %s\r\n", speed);
  }
  if (density >= 0 && density <= 30) sPrinter->printFormat("DENSITY %d\r\n", density);
}

void setRibbon(const char* mediaMethod) {
  if (contains(mediaMethod, "Direct")) {
    sPrinter->printFormat("SET RIBBON OFF\r\n");
  } else if (contains(mediaMethod, "Transfer")) {
    sPrinter->printFormat("SET RIBBON ON\r\n");
  }
}

void setOffset(float offset) {
  sPrinter->printFormat("OFFSET %.1f mm\r\n", static_cast<double>(offset));
}

void setPostAction(const char* postAction) {
  const auto send = [](const char* tear, const char* peel, const char* cutter) {
    sPrinter->printFormat("SET TEAR %s\r\n", tear);
    sPrinter->printFormat("SET PEEL %s\r\n", peel);
    sPrinter->printFormat("SET CUTTER %s\r\n", cutter);
  };
  if (contains(postAction, "Normal") || contains(postAction, "None")) {
    send("OFF", "OFF", "OFF");
  } else if (contains(postAction, "TearOff")) {
    send("ON", "OFF", "OFF");
  } else if (contains(postAction, "PeelOff")) {
    send("OFF", "ON", "OFF");
  } else if (contains(postAction, "Cut")) {  // Quirk: partial-cut.
    send("OFF", "OFF", "ON");
  }
}

void setCls() { sPrinter->printFormat("CLS\r\n"); }

void jobSetup(const Settings& settings) {
  setSize(settings.pageWidth, settings.pageHeight);
  setGap(static_cast<float>(settings.GapsHeight), 0.0f, settings.PaperType);
  setReference();
  setDirection(settings.Origin, settings.MirrorImage);
  setSpeedAndDensity(settings.PrintSpeed, settings.Darkness);
  setRibbon(settings.MediaMethod);
  setOffset(0.0f);
  setPostAction(settings.PostAction);
}
