// Counts blank lines at the edges of a page.
//
// A line is blank when each of its first `lineBytes` - `skipRight` bytes is 0 (all `lineBytes` when
// `skipRight` is the larger). `stride` is the distance from one line to the next; all in bytes.
#ifndef TARVO_PRINTER_BLANK_LINES_H_
#define TARVO_PRINTER_BLANK_LINES_H_

extern "C" {

/// Blank lines at the top, up to `lines`. Quirk: blank-lines-from-front. The test begins with line
/// 1: line 0 always counts as blank, and so does the line past the end, which is not read.
unsigned long tarvoImageCountBlankLinesFromFront(const unsigned char* data, unsigned long lineBytes,
                                                 unsigned long lines, unsigned long skipRight,
                                                 unsigned long stride);

/// Quirk: blank-lines-from-back. Not the number of blank lines at the bottom but the number of
/// lines from the top to the last line with ink, which is counted; 0 when all are blank.
unsigned long tarvoImageCountBlankLinesFromBack(const unsigned char* data, unsigned long lineBytes,
                                                unsigned long lines, unsigned long skipRight,
                                                unsigned long stride);

}  // extern "C"

#endif  // TARVO_PRINTER_BLANK_LINES_H_
