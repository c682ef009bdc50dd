// The printer: takes one job after another.
#ifndef TARVO_TSPLPRINTER_PRINTER_H_
#define TARVO_TSPLPRINTER_PRINTER_H_

#include "tsplprinter/arguments.h"

namespace tsplprinter {

/// Prints until it has had its jobs or is told to stop by a signal. Returns the exit status. Throws
/// std::system_error when the port cannot be had or a stream cannot be saved.
int Print(const Arguments& arguments);

}  // namespace tsplprinter

#endif  // TARVO_TSPLPRINTER_PRINTER_H_
