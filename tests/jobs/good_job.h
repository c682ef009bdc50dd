// One small job that works. The tests of bad jobs break one thing of it at a time.
#ifndef TARVO_TESTS_JOBS_GOOD_JOB_H_
#define TARVO_TESTS_JOBS_GOOD_JOB_H_

#include <string>
#include <vector>

#include "filter_job.h"
#include "support/ppd_text.h"
#include "support/raster.h"

namespace jobs {

/// A label paper of 288 x 432 points and one choice of each option that sends a command.
support::PpdText goodPpd();

/// 16 x 2 dots at 203 dpi, 2 copies: a row of ink, and a row of every other dot.
support::Page goodPage();

std::string goodRaster();

/// 64 line feeds.
std::string preamble();

/// The setup commands of a page of `size` ("2.0 mm, 0.3 mm"), with CLS.
std::string setupCommands(const std::string& size);

/// All that is sent for the good page: setup commands, bitmap, print.
std::string goodPageCommands();

/// What the log says of the settings, of the good page's header (as the page of this number), and
/// of the good page's image; addresses are written as ADDRESS.
std::string settingsLog();
std::string goodHeaderLog(int number);
std::string goodImageLog();
std::string goodPageLog(int number);

/// `log` with its addresses written as ADDRESS.
std::string masked(const std::string& log);

/// Expects the ending, the bytes sent and the log of a run; and whatever is sent to be whole
/// commands.
void expectRun(const JobRun& run, int status, const std::string& stream, const std::string& log);

}  // namespace jobs

#endif  // TARVO_TESTS_JOBS_GOOD_JOB_H_
