#include "filter_job.h"

#include <time.h>

#include <algorithm>
#include <map>
#include <utility>

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

FilterJob::FilterJob() {
  std::filesystem::create_directory(spool());
  std::filesystem::create_directory(work());
}

void FilterJob::setPpd(const std::string& text) { support::writeFile(ppd(), text); }

support::Program FilterJob::program(const std::string& options) const {
  support::Program program;
  program.executable = TARVO_FILTER;
  program.arguments = {"rastertotarvo", "1", "user", "title", "7", options};
  return program;
}

JobRun FilterJob::run(const std::string& raster, const std::string& options, Source source) const {
  support::Program job = program(options);
  if (source == Source::FileArgument) {
    support::writeFile(folder_ / "job.ras", raster);
    job.arguments.push_back((folder_ / "job.ras").string());
    job.input = support::Closed{};
  } else {
    job.input = support::PipedBytes{raster};
  }
  return run(std::move(job));
}

support::Outcome FilterJob::runAlone(support::Program program) const {
  std::tm now = moment();
  std::map<std::string, std::optional<std::string>> environment = {
      {"LD_PRELOAD", TARVO_REDIRECT},
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

}  // namespace jobs
