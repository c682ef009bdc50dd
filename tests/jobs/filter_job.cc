#include "filter_job.h"

#include <time.h>

#include <algorithm>
#include <map>
#include <utility>

#include "support/differences.h"

namespace jobs {

std::tm moment() {
  std::tm moment{};
  moment.tm_year = 2026 - 1900;
  moment.tm_mon = 11 - 1;
  moment.tm_mday = 16;
  moment.tm_hour = 7;
  moment.tm_min = 5;
  moment.tm_sec = 9;
  return moment;
}

std::filesystem::path filterPath() { return TARVO_FILTER; }

std::filesystem::path redirectPath() { return TARVO_REDIRECT; }

FilterJob::FilterJob() {
  std::filesystem::create_directory(spool());
  std::filesystem::create_directory(work());
}

void FilterJob::setPpd(const std::string& text) { support::writeFile(ppd(), text); }

support::Program FilterJob::program(const std::string& options) const {
  support::Program program;
  program.executable = filterPath();
  program.arguments = {"rastertotarvo", "1", "user", "title", "7", options};
  return program;
}

JobRun FilterJob::run(const std::string& raster, const std::string& options, Source source) const {
  support::Program job = program(options);
  give(job, raster, source);
  return run(std::move(job));
}

void FilterJob::give(support::Program& program, const std::string& raster, Source source) const {
  if (source == Source::FileArgument) {
    support::writeFile(folder_ / "job.ras", raster);
    program.arguments.push_back((folder_ / "job.ras").string());
    program.input = support::Closed{};
  } else {
    program.input = support::PipedBytes{raster};
  }
}

support::Outcome FilterJob::runAlone(support::Program program) const {
  std::tm now = moment();
  std::map<std::string, std::optional<std::string>> environment = {
      {"LD_PRELOAD", redirectPath()},
      {"TARVO_TEST_FOLDER", folder_.path().string()},
      {"TARVO_TEST_TIME", std::to_string(::timegm(&now))},
      {"TZ", "UTC"},
      // The preloaded library comes before the sanitizer's, which would refuse to start; and memory
      // that can't be had is the filter's to handle.
      {"ASAN_OPTIONS", "verify_asan_link_order=0:allocator_may_return_null=1"},
      {"PPD", std::filesystem::exists(ppd()) ? std::optional(ppd().string()) : std::nullopt}};
  program.environment.merge(environment);  // what the test has set stays
  if (program.workingFolder.empty()) program.workingFolder = work();
  return support::run(program);
}

JobRun FilterJob::run(support::Program program) const {
  JobRun run;
  run.outcome = runAlone(std::move(program));
  for (const std::string& name : support::namesIn(spool())) {
    run.dumps.emplace_back(name, *support::readFile(spool() / name));
  }
  const auto number = [](const std::string& name) {
    return std::stol(name.substr(name.rfind('_') + 1));
  };
  std::sort(run.dumps.begin(), run.dumps.end(), [&](const auto& left, const auto& right) {
    return number(left.first) < number(right.first);
  });
  if (std::filesystem::is_regular_file(trace())) run.trace = support::readFile(trace());
  for (const std::string& name : support::namesIn(work())) {
    run.recordings.emplace_back(name, *support::readFile(work() / name));
  }
  return run;
}

void limitMemory(support::Program& program, std::uint64_t bytes) {
  if (!kAddressSanitizer) {
    program.addressSpaceLimitBytes = bytes;
    return;
  }
  program.environment["ASAN_OPTIONS"] =
      "verify_asan_link_order=0:allocator_may_return_null=1:max_allocation_size_mb=" +
      std::to_string(bytes >> 20U);
}

std::string withoutSanitizerLines(const std::string& log) {
  std::string own;
  for (const std::string& line : support::linesOf(log)) {
    if (line.rfind("==", 0) != 0) own += line + "\n";
  }
  return own;
}

}  // namespace jobs
