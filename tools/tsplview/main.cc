// tsplview: checks a stream of TSPL commands, lists it, and draws its pages.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <span>
#include <system_error>
#include <vector>

#include "files/descriptor.h"
#include "files/new_file.h"
#include "files/read_whole.h"
#include "files/unfinished.h"
#include "program/program.h"
#include "tspl/label.h"
#include "tspl/picture_file.h"
#include "tspl/reader.h"
#include "tspl/report.h"
#include "tsplview/arguments.h"

namespace {

using program::Complain;
using program::kGood;
using program::kMalformed;
using program::kTrouble;

// What pictures are made with, less the user's umask.
constexpr mode_t kPictureMode = 0666;

int ReadStream(const std::string& name, std::vector<std::uint8_t>& bytes) {
  if (name == "-") {
    return files::ReadWhole(STDIN_FILENO, bytes) ? kGood
                                                 : Complain("standard input", std::strerror(errno));
  }
  const files::Descriptor file(::open(name.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file || !files::ReadWhole(file.number(), bytes)) return Complain(name, std::strerror(errno));
  return kGood;
}

void List(const tspl::Stream& stream) {
  std::size_t next_page = 0;
  const tspl::Page* page = nullptr;
  for (const tspl::Command& command : stream.commands) {
    if (command.kind == tspl::Kind::kSize) page = &stream.pages[next_page++];
    std::puts(tspl::CommandLine(command, page).c_str());
  }
}

// Of a malformed stream, the pages before the damage are good, and that is all that is known of it.
std::span<const tspl::Page> GoodPages(const tspl::Stream& stream) {
  const std::size_t good = stream.malformed ? CompletePages(stream) : stream.pages.size();
  return std::span(stream.pages).first(good);
}

void Summarise(const tspl::Stream& stream, const tsplview::Arguments& arguments) {
  if (stream.pages.empty() && !stream.malformed) std::puts("no pages");
  const std::span<const tspl::Page> pages = GoodPages(stream);
  for (std::size_t i = 0; i < pages.size(); ++i) {
    const tspl::Page& page = pages[i];
    const tspl::Command& last = stream.commands[page.first_command + page.command_count - 1];
    const std::string line = tspl::PageLine(page, last, tspl::MeasureLabel(page, arguments.dpi));
    std::printf("page %zu: %s\n", i + 1, line.c_str());
  }
}

int Draw(const tspl::Stream& stream, const tsplview::Arguments& arguments) {
  const std::filesystem::path folder(*arguments.png);
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) return Complain(folder.string(), error.message());
  const std::span<const tspl::Page> pages = GoodPages(stream);
  for (std::size_t i = 0; i < pages.size(); ++i) {
    const tspl::Page& page = pages[i];
    const std::optional<tspl::Label> label = tspl::MeasureLabel(page, arguments.dpi);
    if (!label) continue;
    const std::string name = arguments.name + "-" + std::to_string(i + 1) + ".png";
    files::NewFile file((folder / name).string(), files::Existing::kReplace, kPictureMode);
    const std::string why = tspl::SavePicture(page, *label, file);
    if (!why.empty()) return Complain(file.path(), why);
  }
  return kGood;
}

int Run(const tsplview::Arguments& arguments) {
  std::vector<std::uint8_t> bytes;
  if (const int status = ReadStream(arguments.file, bytes); status != kGood) return status;
  const tspl::Stream stream = tspl::Read(bytes);

  if (arguments.list) {
    List(stream);
  } else {
    Summarise(stream, arguments);
  }
  if (!program::FinishOutput()) return kTrouble;

  const int drawn = arguments.png ? Draw(stream, arguments) : kGood;
  if (!stream.malformed) return drawn;
  Complain(arguments.file, tspl::MalformedLine(*stream.malformed));
  return std::max(drawn, kMalformed);
}

}  // namespace

int main(int argc, char** argv) {
  return program::Main("tsplview", [&] {
    tsplview::Arguments arguments;
    if (const auto status = tsplview::ParseArguments(argc, argv, arguments)) return *status;
    files::RemoveUnfinishedAtSignals();
    return Run(arguments);
  });
}
