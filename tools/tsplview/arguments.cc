#include "tsplview/arguments.h"

#include <CLI/CLI.hpp>
#include <filesystem>

#include "program/program.h"

namespace tsplview {
namespace {

constexpr const char* kDescription =
    R"(Reads a stream of TSPL commands as rastertotarvo writes it, checks every byte of it, and says
what it holds: one line a page, or with --list one line a command. With --png it draws each page
as the label that comes out of the printer.)";

constexpr const char* kFooter = R"(
The stream:
  64 line feeds, then for each page SIZE, GAP or BLINE, REFERENCE, DIRECTION, SPEED, DENSITY,
  SET RIBBON, OFFSET, SET TEAR, SET PEEL, SET CUTTER, CLS, BITMAP with its dots, and PRINT. What
  the filter can leave out may be missing; anything else that it cannot send is an error, even
  where a printer would take it. A stream may end after any complete command, as that of a
  cancelled job does; the page's line then says that it is not printed. Streams may follow one
  another, as those of a job's documents do; their pages are counted through.

The list:
  Each line is a command's offset in bytes from 0, and its text. A BITMAP is followed by its size
  in dots and bytes and by the CRC-32 of its data.

The pictures:
  NAME-1.png is the first page, and so on; a page without dots gets none, and copies are drawn
  once. One pixel is one dot, ink black on paper white. A thin gray line is the label's edge, and
  around it lies a lighter gray margin, 16 pixels with the line, or as many as it takes to show
  dots that miss the label; their ink is red. Dot (0,0) is the label's upper left corner, at pixel
  (16,16). DIRECTION 1 makes the printer turn the page by 180 degrees and the picture shows it
  turned, with dot (0,0) in the label's lower right corner.

  The stream does not say how many dots an inch holds. tsplview takes the first resolution that
  makes SIZE out of the dots of the BITMAP (203, 300, 600, less usual ones, then whatever fits),
  and puts it into the file; --dpi overrides it, and the label is then as large as SIZE says.

  A name always holds a whole picture: until it does, the picture is a hidden file in DIR, which goes
  when drawing fails. A picture replaces a plain file of its name, and nothing else: a link, a pipe
  or a folder is left alone, and the picture is an error.

Exit status:
  0  the stream is good
  1  it is malformed: standard error says at which byte, what was expected and what was found.
     The pages that are complete before that byte are still said and drawn, and --list shows the
     commands.
  2  wrong usage, or a file that cannot be read or written

Examples:
  tsplview out/shipping-label.tspl
  tsplview --list --png pictures out/shipping-label.tspl
  rastertotarvo 1 me title 1 "" page.ras | tsplview -)";

std::string BaseNameWithoutExtension(const std::string& file) {
  if (file == "-") return "stdin";
  const std::string stem = std::filesystem::path(file).stem().string();
  return stem.empty() ? "page" : stem;
}

}  // namespace

std::optional<int> ParseArguments(int argc, char** argv, Arguments& arguments) {
  CLI::App app{kDescription};
  app.footer(kFooter);
  app.add_option("FILE", arguments.file, "The stream to read; - is standard input")
      ->required()
      ->type_name("");
  app.add_flag("--list", arguments.list, "List the commands rather than the pages");
  CLI::Option* png =
      app.add_option("--png", arguments.png,
                     "Draw each page into the folder DIR, which is made when it is missing")
          ->type_name("DIR");
  const auto is_name = [](const std::string& name) {
    const bool good = !name.empty() && name.find('/') == std::string::npos;
    return good ? std::string() : std::string("must not be empty and must not hold a /");
  };
  app.add_option("--name", arguments.name,
                 "Begin the pictures' names with NAME rather than with FILE's base name without "
                 "its extension (stdin for -)")
      ->type_name("NAME")
      ->needs(png)
      ->check(is_name);
  program::AddDpi(app, arguments.dpi);

  if (const auto status = program::Parse(app, argc, argv)) return status;
  if (arguments.name.empty()) arguments.name = BaseNameWithoutExtension(arguments.file);
  return std::nullopt;
}

}  // namespace tsplview
