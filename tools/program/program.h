// What the tools have in common as programs: how they end, complain and read their command lines.
#ifndef TARVO_PROGRAM_PROGRAM_H_
#define TARVO_PROGRAM_PROGRAM_H_

#include <functional>
#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace program {

/// Exit statuses.
constexpr int kGood = 0;
constexpr int kMalformed = 1;  // a stream is not one that the filter sends
constexpr int kTrouble = 2;    // wrong usage, or something that cannot be read or written

/// Runs `body`, which no limit on the size of files kills, and returns the exit status that it
/// returns; kTrouble, after a complaint, when it throws. `name` is the program's, for its
/// complaints, and must outlive the program's run.
int Main(const char* name, const std::function<int()>& body);

/// Says "NAME: WHAT: WHY" on standard error. Returns kTrouble.
int Complain(const std::string& what, const std::string& why);

/// Complains, and returns false, when not all of standard output could be written.
bool FinishOutput();

/// Adds --dpi N, 1 or more.
void AddDpi(CLI::App& app, std::optional<int>& dpi);

/// Adds --help and --version and reads the command line. Returns the exit status when there is
/// nothing more to do: kGood after help or version on standard output, kTrouble after a complaint.
std::optional<int> Parse(CLI::App& app, int argc, char** argv);

}  // namespace program

#endif  // TARVO_PROGRAM_PROGRAM_H_
