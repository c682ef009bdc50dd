// tsplview: checks a stream of TSPL commands, lists it, and draws its pages.

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <span>
#include <system_error>
#include <vector>

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

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// All of `in`; false, with errno set, when reading it fails.
bool ReadWhole(std::FILE* in, std::vector<std::uint8_t>& bytes) {
  constexpr std::size_t kChunk = 1 << 20;
  for (;;) {
    const std::size_t before = bytes.size();
    bytes.resize(before + kChunk);
    const std::size_t got = std::fread(bytes.data() + before, 1, kChunk, in);
    bytes.resize(before + got);
    if (got < kChunk) return std::ferror(in) == 0;
  }
}

int ReadStream(const std::string& name, std::vector<std::uint8_t>& bytes) {
  if (name == "-") {
    return ReadWhole(stdin, bytes) ? kGood : Complain("standard input", std::strerror(errno));
  }
  const File file(std::fopen(name.c_str(), "rb"));
  if (!file || !ReadWhole(file.get(), bytes)) return Complain(name, std::strerror(errno));
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
    const std::string path = (folder / name).string();
    const std::string why = tspl::SavePicture(page, *label, path, tspl::Existing::kReplace);
    if (!why.empty()) return Complain(path, why);
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
    return Run(arguments);
  });
}
