#include "filter/tspl_printer.h"

#include <vector>

#include "common/termination.h"
#include "kernels/bits.h"

TarvoPrinter* sPrinter = nullptr;

int TsplPrinter::doPrintImage(const unsigned char* data, unsigned long /*bytesPerLine*/,
                              unsigned long height, unsigned long width) {
  // A cancelled job does not begin what takes long, and prints nothing more. In between it does not
  // stop: a printer that waits for the rest of a bitmap would take the next job for dots.
  if (tarvoIsTerminated()) return 0;
  const unsigned long packedBytes = (width + 7) / 8;
  // Before the head: when there is no memory, the printer must not wait for dots.
  std::vector<unsigned char> packed(packedBytes);
  setBitmapCmdHead(0, 0, static_cast<int>(packedBytes), static_cast<int>(height), 0);
  for (unsigned long y = 0; y < height; ++y) {
    // Quirk: row-step. By the width, although the rows of an image are padded to multiples of 4:
    // at other widths each row starts a little further left in the one before it.
    kernels::packZeros(data + y * width, width, packed.data());
    printBytes(packed.data(), packedBytes);
  }
  printStr("\r\n");
  if (tarvoIsTerminated()) return 0;
  return setPrint(1, static_cast<int>(getPageHeader()->NumCopies));
}

void setBitmapCmdHead(int x, int y, int widthBytes, int height, int mode) {
  sPrinter->printFormat("BITMAP %d,%d,%d,%d,%d,", x, y, widthBytes, height, mode);
}

int setPrint(int sets, int copies) {
  return sPrinter->printFormat("PRINT %d,%d\r\n", sets, copies);
}

void endPage(Settings /*settings*/) {
  sPrinter->printStr("\r\n");
  setPrint(1, 1);
}
