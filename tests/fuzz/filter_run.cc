#include "fuzz/filter_run.h"

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "fuzz/finding.h"
#include "fuzz/open_ppds.h"

// main of filter/main.cc and of align/main.cc, compiled under these names.
int tarvoFilterMain(int argc, char* argv[]);
int tarvoAlignMain(int argc, char* argv[]);

namespace fuzz {

namespace {

MemoryFile& rasterFile() {
  static MemoryFile file;
  return file;
}

MemoryFile& ppdFile() {
  static MemoryFile file;
  return file;
}

/// Gives the signals back to the fuzzer at its end.
class SignalsKept {
 public:
  SignalsKept() {
    ::sigprocmask(SIG_SETMASK, nullptr, &mask_);
    ::sigaction(SIGTERM, nullptr, &term_);
    ::sigaction(SIGPIPE, nullptr, &pipe_);
  }
  ~SignalsKept() {
    ::sigaction(SIGTERM, &term_, nullptr);
    ::sigaction(SIGPIPE, &pipe_, nullptr);
    ::sigprocmask(SIG_SETMASK, &mask_, nullptr);
  }
  SignalsKept(const SignalsKept&) = delete;
  SignalsKept& operator=(const SignalsKept&) = delete;

 private:
  sigset_t mask_;
  struct sigaction term_;
  struct sigaction pipe_;
};

int lowestFreeDescriptor() {
  const int descriptor = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
  require(descriptor != -1, "no descriptor");
  ::close(descriptor);
  return descriptor;
}

void setEnvironment(const JobCase& job) {
  static const bool once = [] {
    ::setenv("TZ", "UTC", 1);
    return true;
  }();
  static_cast<void>(once);
  ppdFile().set(job.ppd);
  if (job.ppd.empty()) {
    ::unsetenv("PPD");
  } else {
    ::setenv("PPD", ppdPath().c_str(), 1);
  }
}

/// What a filter is started with.
class Arguments {
 public:
  explicit Arguments(const JobCase& job)
      : texts_{"filter", "1", "user", "title", "7", job.options, rasterFile().path()} {
    if (job.fromStandardInput) texts_.pop_back();
    for (std::string& text : texts_) pointers_.push_back(text.data());
    pointers_.push_back(nullptr);
  }
  int count() const { return static_cast<int>(texts_.size()); }
  char** values() { return pointers_.data(); }

 private:
  std::vector<std::string> texts_;
  std::vector<char*> pointers_;
};

void setRaster(const JobCase& job) {
  rasterFile().set(job.raster);
  if (!job.fromStandardInput) return;
  require(::dup2(rasterFile().descriptor(), STDIN_FILENO) == STDIN_FILENO, "no standard input");
}

/// Leads the descriptor of standard output to a file for as long as it lives.
class OutputDescriptor {
 public:
  explicit OutputDescriptor(int file) : kept_(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3)) {
    require(kept_ != -1 && ::dup2(file, STDOUT_FILENO) != -1, "no standard output");
  }
  ~OutputDescriptor() {
    ::dup2(kept_, STDOUT_FILENO);
    ::close(kept_);
  }
  OutputDescriptor(const OutputDescriptor&) = delete;
  OutputDescriptor& operator=(const OutputDescriptor&) = delete;

 private:
  int kept_;
};

/// Runs a filter and looks after what it leaves open.
int run(int (*filter)(int, char**), const JobCase& job) {
  Arguments arguments(job);
  const int descriptor = lowestFreeDescriptor();
  const int status = filter(arguments.count(), arguments.values());
  require(lowestFreeDescriptor() == descriptor, "leaves a descriptor open");
  return status;
}

}  // namespace

const std::string& ppdPath() { return ppdFile().path(); }

FilterRun runFilter(const JobCase& job) {
  static long dumps = 0;
  setRaster(job);
  setEnvironment(job);
  FilterRun result{};
  const SignalsKept signals;
  CapturedProcess process(job.surroundings);
  result.status = run(tarvoFilterMain, job);
  result.captured = process.finish();
  require(openPpds() == 0, "leaves a PPD open");
  result.firstDump = dumps;
  dumps += result.captured.dumpsBegun;
  return result;
}

AlignedRun runAligned(const JobCase& job) {
  static MemoryFile passed;
  passed.set("");
  setRaster(job);
  setEnvironment(job);
  AlignedRun result{};
  const SignalsKept signals;
  CapturedProcess process(job.surroundings);
  {
    const OutputDescriptor output(passed.descriptor());
    result.status = run(tarvoAlignMain, job);
  }
  result.error = process.finish().error;
  result.output = passed.content();
  require(openPpds() == 0, "leaves a PPD open");
  return result;
}

}  // namespace fuzz
