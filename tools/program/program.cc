#include "program/program.h"

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <exception>

namespace program {
namespace {

constexpr int kMostDpi = 100000;

const char* own_name = "";

}  // namespace

int Main(const char* name, const std::function<int()>& body) {
  own_name = name;
  // Writing beyond a limit on the size of files is then an error like any other.
  std::signal(SIGXFSZ, SIG_IGN);
  try {
    return body();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s\n", own_name, error.what());
    return kTrouble;
  }
}

int Complain(const std::string& what, const std::string& why) {
  std::fprintf(stderr, "%s: %s: %s\n", own_name, what.c_str(), why.c_str());
  return kTrouble;
}

bool FinishOutput() {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return true;
  Complain("standard output", "not all of it could be written");
  return false;
}

void AddDpi(CLI::App& app, std::optional<int>& dpi) {
  app.add_option("--dpi", dpi, "Take N dots for an inch rather than what fits SIZE")
      ->type_name("N")
      ->check(CLI::Range(1, kMostDpi));
}

std::optional<int> Parse(CLI::App& app, int argc, char** argv) {
  const std::string name = own_name;
  app.name(name);
  app.set_version_flag("--version", name + " " TARVO_VERSION, "Print the version and end");
  app.set_help_flag("-h,--help", "Print this help and end");
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& success) {
    app.exit(success);
    return FinishOutput() ? kGood : kTrouble;
  } catch (const CLI::ParseError& error) {
    std::fprintf(stderr, "%s: %s (%s --help says how to use it)\n", own_name, error.what(),
                 own_name);
    return kTrouble;
  }
  return std::nullopt;
}

}  // namespace program
