// The process's printer, writing to memory.
#ifndef TARVO_TESTS_FILTER_CAPTURED_PRINTER_H_
#define TARVO_TESTS_FILTER_CAPTURED_PRINTER_H_

#include <string>

#include "filter/tspl_printer.h"
#include "support/capture.h"

/// While it lives, commands go to it.
class CapturedPrinter : public TsplPrinter {
 public:
  CapturedPrinter() {
    getOutputStreams() = {stream_.get()};
    sPrinter = this;
  }
  ~CapturedPrinter() override { sPrinter = nullptr; }

  std::string sent() const { return stream_.bytes(); }

 private:
  support::MemoryStream stream_;
};

/// What `function` sends to the printer.
template <typename Function>
std::string sentBy(Function function) {
  const CapturedPrinter printer;
  function();
  return printer.sent();
}

#endif  // TARVO_TESTS_FILTER_CAPTURED_PRINTER_H_
