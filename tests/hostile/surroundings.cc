#include "surroundings.h"

#include <unistd.h>

#include <utility>

#include "jobs/good_job.h"
#include "tspl/reader.h"

namespace hostile {

namespace {

bool works(const std::vector<std::string>& starter, std::vector<std::string> command) {
  support::Program program;
  program.executable = command.front();
  program.arguments = std::move(command);
  return support::run(through(starter, program)).status == 0;
}

}  // namespace

Places::Places(const jobs::FilterJob& job)
    : origin(job.spool() / "origin_2026-11-16_7_5_9_0.bmp"),
      dithered(job.spool() / "dithered_2026-11-16_7_5_9_1.bmp"),
      trace(job.trace()),
      recording(job.spool() / "recorded-20261116070509.bin") {}

void recordJob(jobs::FilterJob& job) {
  job.setPpd(jobs::goodPpd()
                 .option("RecordPrinterCommands", "1", {"1"})
                 .attribute("tarvoFilterOutputFile", "", "/var/spool/cups/tmp/recorded")
                 .text());
}

support::Program goodProgram(const jobs::FilterJob& job, int pages) {
  support::Program program = job.program();
  program.input = support::PipedBytes{support::rasterFile(
      std::vector<support::Page>(static_cast<std::size_t>(pages), jobs::goodPage()))};
  return program;
}

std::string goodStream(int pages) {
  std::string stream = jobs::preamble();
  for (int page = 0; page < pages; ++page) stream += jobs::goodPageCommands();
  return stream;
}

std::string damageOf(const std::string& stream) {
  const tspl::Stream read =
      tspl::Read({reinterpret_cast<const std::uint8_t*>(stream.data()), stream.size()});
  if (!read.malformed) return "";
  return "at byte " + std::to_string(read.malformed->offset) + " expected " +
         read.malformed->expected + ", found " + read.malformed->found;
}

std::string logWithout(const Unwritable& unwritable) {
  const std::string folder = "/var/spool/cups/tmp/";
  const std::string recording = folder + "recorded-20261116070509.bin\n";
  std::string page = jobs::goodPageLog(1);
  const auto failed = [&](const std::string& announcement, const std::string& name) {
    page.insert(page.find('\n', page.find(announcement)) + 1,
                "TarvoPrinter::saveImage: unable to open the file " + folder + name + "\n");
  };
  if (unwritable.origin) failed("Saving original image", "origin_2026-11-16_7_5_9_0.bmp");
  if (unwritable.dithered) failed("Saving processed image", "dithered_2026-11-16_7_5_9_1.bmp");
  return jobs::settingsLog() +
         (unwritable.recording ? "ERROR:Unable to create the output file: "
                               : "DEBUG:Filter data output to: ") +
         recording + page;
}

support::Program through(const std::vector<std::string>& starter, support::Program program) {
  if (starter.empty()) return program;
  std::vector<std::string> arguments = starter;
  arguments.push_back(program.executable.string());
  if (!program.arguments.empty()) {
    arguments.insert(arguments.end(), program.arguments.begin() + 1, program.arguments.end());
  }
  program.executable = starter.front();
  program.arguments = arguments;
  return program;
}

std::optional<std::vector<std::string>> asOrdinaryUser() {
  std::vector<std::string> starter;
  if (::geteuid() == 0) {
    starter = {"/usr/bin/setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
    if (::access(starter.front().c_str(), X_OK) != 0) return std::nullopt;
  }
  // The filter has to be where such a user can get at it.
  if (!works(starter, {"/usr/bin/test", "-x", jobs::filterPath().string()})) return std::nullopt;
  return starter;
}

std::optional<std::vector<std::string>> withFileSystem(const std::filesystem::path& folder,
                                                       const std::string& options,
                                                       const std::string& script) {
  const std::string unshare = "/usr/bin/unshare";
  if (::access(unshare.c_str(), X_OK) != 0) return std::nullopt;
  for (const bool asUser : {false, true}) {
    std::vector<std::string> starter = {unshare, "--mount"};
    if (asUser) starter.insert(starter.end(), {"--user", "--map-root-user"});
    starter.insert(starter.end(), {"/bin/sh", "-c",
                                   "mount -t tmpfs -o " + options + " tmpfs \"$0\" && " + script +
                                       " && exec \"$@\"",
                                   folder.string()});
    if (works(starter, {"/bin/true"})) return starter;
  }
  return std::nullopt;
}

}  // namespace hostile
