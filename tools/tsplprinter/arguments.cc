#include "tsplprinter/arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "program/program.h"

namespace tsplprinter {
namespace {

constexpr int kMostPort = 65535;
constexpr std::int64_t kMostNumber = 1'000'000'000'000;
constexpr std::int64_t kMostMib = 1 << 20;
constexpr double kMostSeconds = 1e6;

// The help's text says what an option takes; CLI11 would put the largest number beside it.
CLI::Validator Range(std::int64_t least, std::int64_t most) {
  return CLI::Range(least, most).description("");
}

constexpr const char* kDescription =
    R"(A label printer that is not there. Listens on this machine's loopback address as a network
printer does, takes jobs of TSPL commands as rastertotarvo writes them, and says and draws each
label when a printer would print it. For tests it can be slow, switched on late, or fail.)";

constexpr const char* kFooter = R"(
The connection:
  One connection is one job: its bytes up to the end that the client sends, of one document or
  several. A job is taken at a time, and who connects meanwhile waits. When a job has ended its
  files are complete, and only then is its connection closed. A connection that brings no byte is
  no job. Nothing is ever sent to the client. However slow the printer is, the system takes up to
  some megabytes from a client in advance.

The lines, on standard output, each as soon as it is true:
  absent on 127.0.0.1:PORT for SECONDS seconds
  listening on 127.0.0.1:PORT
  job 1: begins
  job 1 page 1: 75.1 x 50.0 mm, 600 x 400 dots at 203 dpi, 1 copy
  job 1: ended, 1 page, 30204 bytes

  A page's line comes with the PRINT of the page. It holds SIZE, the dots of the BITMAP, the
  resolution, "turned by 180 degrees" for DIRECTION 1, and the copies. A page without PRINT has
  "not printed: " and the reason in the copies' place. A job ends as one of these:
    ended        the client has closed the connection
    malformed    likewise, but the stream is not one that the filter sends: standard error says at
                 which byte, what was expected and what was found
    broken off   the client has reset the connection, behind a complete command
    dropped      by --drop-after
    too large    beyond --max-job-mib; the connection was reset
    stopped      by a signal

The files:
  DIR/job-1.tspl     what arrived of the first job, whatever it is, byte for byte; when it has ended
  DIR/job-1-1.png    its first page, drawn as tsplview --png does; none when the page is not printed
                     or has no dots; copies are drawn once
  Jobs are numbered from 1, or behind the highest number that DIR holds: no file is ever replaced.
  Two printers can share a folder. A name always holds a whole file: until it does, the file is a
  hidden one beside it, which goes when it fails. Nothing in DIR is followed or waited for, such as
  a link or a pipe with the name of a picture. Files are for their owner alone.

  What is malformed is saved too, to the end of the job; the pages before the damage are drawn, and
  the printer goes on with the next job.

Signals:
  SIGINT and SIGTERM end the printer within a second, after what has already arrived of the job,
  which at a limited speed is what has been taken. The stream so far is saved, the pages that it
  completes are drawn, and the client's connection is reset. Pictures that take longer are left out.
  What hangs, on a disk or because nobody reads its lines, is left as it is, and what was not
  finished is removed.

Exit status:
  0  after --jobs, SIGINT or SIGTERM, and every job was good
  1  likewise, but a job was malformed, too large, or had more pictures than --limit
  2  wrong usage, the port is taken, or a file or a line could not be written, or not within the
     second after a signal. A stream that cannot be saved ends the printer at once; a picture that
     cannot be drawn does not.

Examples:
  A queue for it, whose options are those of a printer with 203 dpi:
    tsplprinter --out printed &
    lpadmin -p nowhere -E -v socket://127.0.0.1:9100 -m drv:///tarvo.drv/tarvo-label-203dpi.ppd
    lp -d nowhere label.pdf
  A printer on any free port that takes one job and loses the first connection to it:
    tsplprinter --port 0 --jobs 2 --drop-after 5000 --drop-jobs 1
  A stream by hand:
    nc -N 127.0.0.1 9100 <out/label.tspl)";

// A number of seconds, fractions too. CLI11's own range lets what is not a number pass.
std::string CheckSeconds(const std::string& text) {
  double seconds = -1;
  if (CLI::detail::lexical_cast(text, seconds) && seconds >= 0 && seconds <= kMostSeconds)
    return {};
  return "Value " + text + " not in range 0 to 1000000";
}

// "20" or "20,100".
void ReadLimit(const std::string& text, Arguments& arguments) {
  const std::size_t comma = std::min(text.find(','), text.size());
  std::int64_t pictures = 0;
  std::int64_t mib = static_cast<std::int64_t>(arguments.most_picture_mib);
  const bool good =
      CLI::detail::lexical_cast(text.substr(0, comma), pictures) && pictures >= 1 &&
      pictures <= kMostNumber &&
      (comma == text.size() ||
       (CLI::detail::lexical_cast(text.substr(comma + 1), mib) && mib >= 1 && mib <= kMostMib));
  if (!good)
    throw CLI::ValidationError("--limit", "Value " + text + " is not PICTURES or PICTURES,MIB");
  arguments.most_pictures = static_cast<std::uint64_t>(pictures);
  arguments.most_picture_mib = static_cast<std::uint64_t>(mib);
}

}  // namespace

std::optional<int> ParseArguments(int argc, char** argv, Arguments& arguments) {
  CLI::App app{kDescription};
  app.footer(kFooter);
  const CLI::Validator from_1 = Range(1, kMostNumber);
  app.add_option("--port", arguments.port,
                 "Listen on port N of 127.0.0.1, or with 0 on any that is free (default: 9100)")
      ->type_name("N")
      ->check(Range(0, kMostPort));
  app.add_option("--out", arguments.out,
                 "Put streams and pictures into the folder DIR, which is made when it is missing "
                 "(default: printed)")
      ->type_name("DIR")
      ->check([](const std::string& name) {
        return name.empty() ? std::string("must not be empty") : std::string();
      });
  program::AddDpi(app, arguments.dpi);
  app.add_option("--jobs", arguments.jobs, "End after N jobs")->type_name("N")->check(from_1);
  app.add_option("--max-job-mib", arguments.max_job_mib,
                 "Take at most N MiB of a job; a page is kept in memory until it is complete "
                 "(default: 512)")
      ->type_name("N")
      ->check(Range(1, kMostMib));
  app.add_option_function<std::string>(
         "--limit", [&](const std::string& text) { ReadLimit(text, arguments); },
         "Draw at most PICTURES pages of a job, and stop before their files hold more than MIB "
         "MiB; "
         "what follows is saved and not drawn (default: 1000,512)")
      ->type_name("PICTURES[,MIB]");
  app.add_option("--bytes-per-second", arguments.bytes_per_second,
                 "Be slow: take at most N bytes a second")
      ->type_name("N")
      ->check(from_1);
  app.add_option("--absent", arguments.absent_seconds,
                 "Be switched on late: refuse connections for so long, which may be a fraction")
      ->type_name("SECONDS")
      ->check(CheckSeconds);
  CLI::Option* drop_after =
      app.add_option("--drop-after", arguments.drop_after,
                     "Fail: reset the connection when N bytes of a job have been taken")
          ->type_name("N")
          ->check(from_1);
  app.add_option("--drop-jobs", arguments.drop_jobs, "Let only the first N jobs fail so")
      ->type_name("N")
      ->needs(drop_after)
      ->check(from_1);
  return program::Parse(app, argc, argv);
}

}  // namespace tsplprinter
