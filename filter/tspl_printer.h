// TsplPrinter: sends processed pages as TSPL bitmaps.
#ifndef TARVO_FILTER_TSPL_PRINTER_H_
#define TARVO_FILTER_TSPL_PRINTER_H_

#include "filter/settings.h"
#include "printer/tarvo_printer.h"

class TsplPrinter : public TarvoPrinter {
 public:
  /// Sends BITMAP with the dots of `height` rows of `width` bytes, a line end, and PRINT with the
  /// page header's copies. A 0 byte gives a 1 bit (paper), any other a 0 bit (a printed dot);
  /// leftmost dot in the most significant bit, padding bits 1. Returns what setPrint returns.
  /// After SIGTERM nothing is begun: a bitmap that was is sent whole, PRINT is left out; returns 0.
  /// Quirk: row-step. Rows are taken `width` bytes apart; `bytesPerLine` is not used.
  /// REQUIRES: a page header.
  int doPrintImage(const unsigned char* data, unsigned long bytesPerLine, unsigned long height,
                   unsigned long width) override;
};

/// The printer of this process, through which all TSPL commands go; main owns it.
extern TarvoPrinter* sPrinter;

/// Sends the head of BITMAP, whose data follows its comma directly: origin and height in dots,
/// width in bytes, mode 0 for overwrite.
void setBitmapCmdHead(int x, int y, int widthBytes, int height, int mode);

/// Sends PRINT. Returns printFormat's count.
int setPrint(int sets, int copies);

/// Sends a line end and PRINT 1,1. The settings are not used.
void endPage(Settings settings);

#endif  // TARVO_FILTER_TSPL_PRINTER_H_
