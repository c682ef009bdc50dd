// The TSPL commands that set up the printer before each page's bitmap.
//
// Each function sends its lines, ended by "\r\n", through sPrinter. Keywords are looked for
// anywhere in an option's text, with regard to case; the first match in the order given wins.
#ifndef TARVO_FILTER_SETUP_COMMANDS_H_
#define TARVO_FILTER_SETUP_COMMANDS_H_

#include "filter/settings.h"

/// SIZE, both in mm.
void setSize(float width, float height);

/// How labels are told apart. `gap` and `offset` in mm. "Normal": nothing; "Continue", or no gap:
/// GAP 0, 0; "LabelGaps": GAP; "LabelMark": BLINE; else nothing.
void setGap(float gap, float offset, const char* paperType);

/// REFERENCE 0,0.
void setReference();

/// DIRECTION: 1 when `origin` has "Rotation180", else 0; the printer turns the page.
/// The second argument is ignored: mirroring is done on the image.
void setDirection(const char* origin, int mirror);

/// SPEED with the text as it stands, unless it has "Normal" or is not above 0; DENSITY for 0..30.
void setSpeedAndDensity(const char* speed, int density);

/// SET RIBBON OFF for "Direct", ON for "Transfer", else nothing.
void setRibbon(const char* mediaMethod);

/// OFFSET in mm.
void setOffset(float offset);

/// SET TEAR, PEEL and CUTTER for "Normal", "None", "TearOff", "PeelOff", "Cut"; else nothing.
void setPostAction(const char* postAction);

/// CLS: clears the printer's image buffer.
void setCls();

/// All of the above but CLS, in the order that the printer expects.
void jobSetup(const Settings& settings);

#endif  // TARVO_FILTER_SETUP_COMMANDS_H_
