#include "compared_job.h"

#include "support/differences.h"
#include "support/ppd_text.h"
#include "tspl/reader.h"

namespace jobs {

namespace {

constexpr char kPageSize[] = "w288h432";

/// The queue's PPD: of each option the job's choice, and another one as its default.
std::string ppdOf(const ComparedJob& job) {
  support::PpdText ppd;
  ppd.pageSize(kPageSize, 288, 432).pageSize("w72h72", 72, 72).defaultPageSize("w72h72");
  for (const auto& [keyword, choice] : job.choices) {
    ppd.option(keyword, "AnotherChoice", {"AnotherChoice", choice});
  }
  for (const auto& [keyword, choice] : job.defaults) {
    ppd.option(keyword, choice, {"AnotherChoice", choice});
  }
  if (job.record) ppd.option("RecordPrinterCommands", "0", {"0", "1"});
  if (!job.recordingAttribute.empty()) {
    ppd.attribute("tarvoFilterOutputFile", "", job.recordingAttribute);
  }
  return ppd.text();
}

std::string optionsOf(const ComparedJob& job) {
  std::string options = std::string("PageSize=") + kPageSize;
  for (const auto& [keyword, choice] : job.choices) options += " " + keyword + "=" + choice;
  if (job.record) options += " RecordPrinterCommands=1";
  return options;
}

reference::Job referenceJobOf(const ComparedJob& job) {
  reference::Job expected;
  expected.choices = job.choices;
  expected.choices.insert(job.defaults.begin(), job.defaults.end());
  expected.choices["PageSize"] = kPageSize;
  if (job.record) expected.choices["RecordPrinterCommands"] = "1";
  expected.pageWidthPoints = 288;
  expected.pageLengthPoints = 432;
  expected.recordingAttribute = job.recordingAttribute;
  expected.now = moment();
  expected.largestPage = job.addressSpaceLimitBytes.value_or(expected.largestPage);
  for (const support::Page& page : job.pages) {
    expected.pages.push_back({page.header, page.pixels});
  }
  return expected;
}

std::string compareLogs(const std::vector<std::string>& expected, const std::string& error) {
  std::vector<std::string> actual = support::linesOf(withoutSanitizerLines(error));
  // An address of the right form stands for its placeholder.
  for (std::size_t i = 0; i < actual.size() && i < expected.size(); ++i) {
    if (reference::logLineMatches(expected[i], actual[i])) actual[i] = expected[i];
  }
  return support::firstDifference(expected, actual);
}

std::string compareDumps(const std::vector<reference::Dump>& expected, const JobRun& run) {
  std::vector<std::string> names, expectedNames;
  for (const auto& [name, bytes] : run.dumps) names.push_back(name);
  for (const reference::Dump& dump : expected) expectedNames.push_back(dump.name);
  std::string text = support::firstDifference(expectedNames, names);
  for (std::size_t i = 0; text.empty() && i < expected.size(); ++i) {
    text = support::firstDifference(expected[i].bytes, run.dumps[i].second);
    if (!text.empty()) text.insert(0, expected[i].name + ": ");
  }
  return text;
}

std::string compareRecordings(const reference::Result& expected, const JobRun& run) {
  std::vector<std::string> names, expectedNames;
  for (const auto& [name, bytes] : run.recordings) names.push_back(name);
  if (!expected.recordingName.empty()) expectedNames.push_back(expected.recordingName);
  std::string text = support::firstDifference(expectedNames, names);
  if (text.empty() && !names.empty()) {
    text = support::firstDifference(expected.stream, run.recordings.front().second);
  }
  return text;
}

std::string damageOf(const std::string& stream) {
  const tspl::Stream read =
      tspl::Read({reinterpret_cast<const std::uint8_t*>(stream.data()), stream.size()});
  if (stream.empty() || !read.malformed) return "";
  return "at byte " + std::to_string(read.malformed->offset) + " expected " +
         read.malformed->expected + ", found " + read.malformed->found;
}

void report(std::string& text, const char* what, const std::string& difference) {
  if (difference.empty()) return;
  text += what;
  text += ": ";
  text += difference;
  text += '\n';
}

}  // namespace

Count& count() {
  static Count count;
  return count;
}

std::string difference(const ComparedJob& job) {
  return difference(job, support::rasterFile(job.pages, job.packing));
}

std::string difference(const ComparedJob& job, const std::string& raster) {
  FilterJob filter;
  filter.setPpd(ppdOf(job));
  support::Program program = filter.program(optionsOf(job));
  filter.give(program, raster, job.source);
  if (job.addressSpaceLimitBytes) limitMemory(program, *job.addressSpaceLimitBytes);
  const JobRun run = filter.run(program);
  const reference::Result expected = reference::run(referenceJobOf(job));
  ++count().jobs;
  count().pages += static_cast<long>(job.pages.size());

  std::string text;
  if (run.outcome.status != expected.status) {
    report(text, "ending",
           run.outcome.ending() + " instead of exit status " + std::to_string(expected.status));
  }
  report(text, "time", run.outcome.timedOut ? "it did not end" : "");
  report(text, "standard output", support::firstDifference(expected.stream, run.outcome.output));
  report(text, "what a printer reads", damageOf(run.outcome.output));
  report(text, "standard error", compareLogs(expected.log, run.outcome.error));
  report(text, "dumps", compareDumps(expected.dumps, run));
  report(text, "trace file", support::firstDifference(expected.trace, run.trace.value_or("")));
  report(text, "recording file", compareRecordings(expected, run));
  return text;
}

}  // namespace jobs
