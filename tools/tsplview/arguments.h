// What the command line asks of tsplview.
#ifndef TARVO_TSPLVIEW_ARGUMENTS_H_
#define TARVO_TSPLVIEW_ARGUMENTS_H_

#include <optional>
#include <string>

namespace tsplview {

struct Arguments {
  std::string file;                // "-" for standard input
  bool list = false;               // a line for each command rather than for each page
  std::optional<std::string> png;  // the folder for the pictures
  std::string name;                // what the pictures' names begin with; never empty, no "/"
  std::optional<int> dpi;          // 1 or more
};

/// Reads the command line. Returns the exit status when there is nothing more to do: 0 after help
/// or version on standard output, 2 after a complaint on standard error.
std::optional<int> ParseArguments(int argc, char** argv, Arguments& arguments);

}  // namespace tsplview

#endif  // TARVO_TSPLVIEW_ARGUMENTS_H_
