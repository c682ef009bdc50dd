// tsplprinter: a label printer that is not there.

#include <csignal>
#include <cstdio>

#include "files/unfinished.h"
#include "program/program.h"
#include "tsplprinter/arguments.h"
#include "tsplprinter/printer.h"

int main(int argc, char** argv) {
  return program::Main("tsplprinter", [&] {
    tsplprinter::Arguments arguments;
    if (const auto status = tsplprinter::ParseArguments(argc, argv, arguments)) return *status;
    // Whoever reads the lines waits for each of them, even through a pipe; whoever has read enough
    // of them does not mean to switch the printer off.
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    std::signal(SIGPIPE, SIG_IGN);
    files::RemoveUnfinishedAtSignals();
    const int status = tsplprinter::Print(arguments);
    return program::FinishOutput() ? status : program::kTrouble;
  });
}
