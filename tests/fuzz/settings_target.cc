// A PPD and options, with whatever bytes in them: what is read of them are whole settings, and the
// commands that they make.
#include <stdlib.h>

#include <cstring>

#include "filter/settings.h"
#include "filter/setup_commands.h"
#include "filter/tspl_printer.h"
#include "fuzz/captured_process.h"
#include "fuzz/finding.h"
#include "fuzz/input.h"
#include "fuzz/job_case.h"
#include "fuzz/open_ppds.h"
#include "fuzz/target.h"

namespace {

template <std::size_t size>
void requireText(const char (&field)[size]) {
  fuzz::require(std::memchr(field, '\0', size) != nullptr, "a text without its end");
}

void requireWhole(const Settings& settings) {
  requireText(settings.PageSize);
  requireText(settings.Resolution);
  requireText(settings.MediaMethod);
  requireText(settings.PaperType);
  requireText(settings.PostAction);
  requireText(settings.Occurrence);
  requireText(settings.Origin);
  requireText(settings.PrintSpeed);
  requireText(settings.FilterOutputFile);
  const int truths[] = {settings.MirrorImage, settings.NegativeImage};
  for (const int truth : truths) {
    fuzz::require(truth >= -128 && truth <= 127, "a truth value of more than 8 bits");
  }
  fuzz::require(settings.halftoneType >= None && settings.halftoneType <= Tattoo_X8,
                "no halftone type");
  fuzz::require(
      settings.DirectBuffer == 0 && settings.StoredGraphics == 0 && settings.OptionDisplayUnit == 0,
      "a reserved setting that is set");
}

/// The settings' commands. Captured as well, for the printer writes to standard output.
std::string commandsOf(const Settings& settings) {
  fuzz::CapturedProcess process({});
  {
    TsplPrinter printer;
    sPrinter = &printer;
    jobSetup(settings);
    sPrinter = nullptr;
  }
  return process.finish().output;
}

Settings parsed(const std::string& options) {
  fuzz::CapturedProcess process({});
  Settings settings;
  std::memset(&settings, 0x5A, sizeof settings);
  parseSettings(settings, options.c_str());
  const fuzz::Captured captured = process.finish();
  fuzz::require(fuzz::openPpds() == 0, "leaves a PPD open");
  fuzz::require(captured.output.empty(), "reading the settings prints something");
  return settings;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzz::Watch watch;
  static fuzz::MemoryFile ppd;
  static const bool once = [] {
    ::setenv("PPD", ppd.path().c_str(), 1);
    ::setenv("TZ", "UTC", 1);
    return true;
  }();
  static_cast<void>(once);

  fuzz::Input input({data, size});
  fuzz::JobCase job;
  const bool raw = input.byte() >= 224;
  if (raw) {
    job.options = input.text(2000);
  } else {
    fuzz::drawSettings(input, job);
  }
  job.ppd += input.rest();
  ppd.set(job.ppd);
  const Settings settings = parsed(job.options);
  requireWhole(settings);
  const Settings again = parsed(job.options);
  fuzz::require(std::memcmp(&settings, &again, sizeof settings) == 0,
                "the same job, other settings");

  const std::string commands = commandsOf(settings);
  fuzz::require(commands.starts_with("SIZE ") && commands.ends_with("\r\n"),
                "the setup is no whole number of lines");
  return 0;
}
