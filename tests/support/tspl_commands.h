// Cuts a stream of printer commands into its commands, strictly.
#ifndef TARVO_TESTS_SUPPORT_TSPL_COMMANDS_H_
#define TARVO_TESTS_SUPPORT_TSPL_COMMANDS_H_

#include <string>
#include <string_view>
#include <vector>

namespace support {

struct Command {
  std::string line;  ///< without its line end; of BITMAP the head, with its comma
  std::string data;  ///< the dots of BITMAP, rows one after another
};

struct Commands {
  std::vector<Command> list;
  int documents = 0;  ///< how many began: each run of the filter sends one, a job can hold several
  std::string fault;  ///< empty when the stream is a whole number of commands; else what is wrong

  /// The lines alone, for comparison with a table.
  std::vector<std::string> lines() const;
};

/// Reads documents up to the end of `stream`. Each is 64 line feeds, then whole commands: one of
/// the known names, ended by "\r\n"; BITMAP with exactly the bytes its head announces, followed by
/// a line end.
Commands commandsOf(std::string_view stream);

}  // namespace support

#endif  // TARVO_TESTS_SUPPORT_TSPL_COMMANDS_H_
