// The recording of a job: a file that gets every byte that the printer gets.
#ifndef TARVO_FILTER_RECORDING_H_
#define TARVO_FILTER_RECORDING_H_

#include <string>

#include "common/file.h"
#include "printer/tarvo_printer.h"

/// The recording file. It is closed with this object, and removed, with a line in the log, when not
/// all of the job could be written to it. REQUIRES: nothing is printed to it any more then.
class Recording {
 public:
  Recording() = default;
  ~Recording();

  Recording(const Recording&) = delete;
  Recording& operator=(const Recording&) = delete;

  /// Opens the file `name` and adds it to the printer's streams. While another job records under
  /// that name it is "-2", "-3" and so on before its ".bin"; the log says which. A file that can't
  /// be created costs a line in the log, and is no reason not to print. An empty name is none.
  void attach(TarvoPrinter& printer, const char* name);

 private:
  FileOwner file_;
  std::string name_;
};

#endif  // TARVO_FILTER_RECORDING_H_
