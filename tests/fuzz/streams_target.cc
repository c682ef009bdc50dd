// A stream of any bytes, read, measured, told and drawn; and read in pieces as while it arrives.
#include <stdio.h>

#include <string>
#include <vector>

#include "fuzz/finding.h"
#include "fuzz/input.h"
#include "fuzz/target.h"
#include "tspl/follower.h"
#include "tspl/label.h"
#include "tspl/picture.h"
#include "tspl/reader.h"
#include "tspl/report.h"

namespace {

ssize_t count(void* total, const char* /*bytes*/, std::size_t size) {
  *static_cast<std::size_t*>(total) += size;
  return static_cast<ssize_t>(size);
}

/// Draws the page, unless the picture is so large that drawing it is bound to take its time.
void draw(const tspl::Page& page, const tspl::Label& label) {
  constexpr std::uint64_t kMostPixels = 1U << 20U;
  const tspl::Layout layout = tspl::LayOut(page, label);
  fuzz::require(layout.width >= label.width_dots + 2 * tspl::kMarginPixels &&
                    layout.height >= label.height_dots + 2 * tspl::kMarginPixels,
                "a picture smaller than its label");
  const bool drawn = layout.width < kMostPixels && layout.height < kMostPixels &&
                     layout.width * layout.height < kMostPixels;
  const bool refused = layout.width > 1'000'000 || layout.height > 1'000'000;
  if (!drawn && !refused) return;
  std::size_t bytes = 0;
  FILE* file = ::fopencookie(&bytes, "w", {nullptr, count, nullptr, nullptr});
  const std::string error = tspl::WritePicture(page, label, file);
  ::fclose(file);
  fuzz::require(error.empty() == drawn, "drawing a page: \"" + error + "\"");
  fuzz::require(!drawn || bytes > 8, "an empty picture");
}

/// What a page says, to compare it with another reading.
std::string told(const tspl::Page& page, const tspl::Command& last) {
  std::string text = tspl::PageLine(page, last, tspl::MeasureLabel(page, std::nullopt));
  text += "@" + std::to_string(last.offset) + "+" + std::to_string(last.length);
  if (page.bitmap) {
    text += " dots@" + std::to_string(page.bitmap->data_offset) + ": ";
    for (const std::uint8_t byte : page.bitmap->data) text.push_back(static_cast<char>(byte));
  }
  return text;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzz::Watch watch;
  fuzz::Input input({data, size});
  const std::uint8_t flags = input.byte();
  const std::uint8_t piece = input.byte();
  const std::uint32_t dpi = input.byte() * 5U;
  std::vector<std::uint8_t> bytes((flags & 3) == 3 ? 0 : 64, '\n');
  for (const char byte : input.rest()) bytes.push_back(static_cast<std::uint8_t>(byte));

  const tspl::Stream stream = tspl::Read(bytes);
  std::uint64_t offset = 0;
  for (const tspl::Command& command : stream.commands) {
    fuzz::require(command.offset == offset, "a gap between commands");
    offset += command.length;
  }
  fuzz::require(stream.malformed || offset == bytes.size(), "bytes that nothing was said of");
  fuzz::require(!stream.malformed || stream.malformed->offset >= offset,
                "something wrong inside a good command");
  if (stream.malformed) tspl::MalformedLine(*stream.malformed);
  if (!stream.commands.empty()) tspl::CommandLine(stream.commands.front(), nullptr);

  std::vector<std::string> pages;
  for (const tspl::Page& page : stream.pages) {
    const std::size_t last = page.first_command + page.command_count - 1;
    for (std::size_t i = page.first_command; i <= last; ++i) {
      tspl::CommandLine(stream.commands.at(i), &page);
    }
    pages.push_back(told(page, stream.commands[last]));
    for (const auto& given :
         {std::optional<int>(), dpi > 0 ? std::optional(int(dpi)) : std::nullopt}) {
      const std::optional<tspl::Label> label = tspl::MeasureLabel(page, given);
      fuzz::require(label.has_value() == (page.bitmap && !page.bitmap->data.empty()),
                    "a label for a page without dots, or none for one with dots");
      if (!label) continue;
      fuzz::require(label->width_dots >= 1 && label->height_dots >= 1, "a label of no dots");
      draw(page, *label);
    }
  }

  std::vector<std::string> followed;
  tspl::Follower follower([&](const tspl::Page& page, const tspl::Command& last) {
    followed.push_back(told(page, last));
  });
  for (std::size_t at = 0; at < bytes.size();) {
    const std::size_t length = std::min<std::size_t>(1 + (piece + at) % 97, bytes.size() - at);
    follower.Take({bytes.data() + at, length});
    at += length;
  }
  follower.End();
  fuzz::require(follower.malformed().has_value() == stream.malformed.has_value(),
                "read in pieces it is another stream");
  if (stream.malformed) {
    fuzz::require(
        tspl::MalformedLine(*follower.malformed()) == tspl::MalformedLine(*stream.malformed),
        "read in pieces something else is wrong with it");
    // The page that is damaged is not handed out.
    fuzz::require(followed.size() <= pages.size(), "read in pieces it has more pages");
    pages.resize(followed.size());
  }
  fuzz::require(followed == pages, "read in pieces it has other pages");
  return 0;
}
