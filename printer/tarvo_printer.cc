// Construction and the settings that are clamped.
#include "printer/tarvo_printer.h"

#include <algorithm>
#include <cstdlib>

#include "common/text.h"

namespace {

/// "Tarvo".
const char* const kCopyRight = "MFT: 54 61 72 76 6F";

}  // namespace

TarvoPrinter::TarvoPrinter() : outputStreams_{stdout} {
  tarvoStrCpy(imagePath_, "/var/spool/cups/tmp/prnimg_%d-%d-%d_%d_%d_%d_%ld.bmp",
              sizeof(imagePath_));
}

TarvoPrinter::~TarvoPrinter() = default;

void TarvoPrinter::setBrightness(int brightness) {
  brightness_ = std::clamp(brightness, -100, 100);
}

void TarvoPrinter::setContrast(int contrast) { contrast_ = std::clamp(contrast, -100, 100); }

void TarvoPrinter::setPrintSpeed(const char* speed) {
  printSpeed_ = std::clamp(std::atoi(speed), 1, 15);
}

void TarvoPrinter::setPrintDensity(int density) { printDensity_ = std::clamp(density, 0, 15); }

const char* TarvoPrinter::getCopyRight() const { return kCopyRight; }
