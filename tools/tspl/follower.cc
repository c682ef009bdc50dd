#include "tspl/follower.h"

namespace tspl {

void Follower::Take(std::span<const std::uint8_t> bytes) {
  if (malformed_) return;
  pending_.insert(pending_.end(), bytes.begin(), bytes.end());
  ReadOn(false);
}

void Follower::End() {
  if (!malformed_) ReadOn(true);
}

// A page that is still arriving is read again each time, from its SIZE on. That is cheap: its dots
// are passed over, and all else is a few lines.
void Follower::ReadOn(bool ended) {
  const Stream stream = offset_ == 0 ? Read(pending_) : ReadPages(pending_, offset_);
  const std::uint64_t end = offset_ + pending_.size();

  std::uint64_t done = offset_;
  const auto pass = [&](const Command& command) { done = command.offset + command.length; };
  if (!stream.commands.empty() && stream.commands[0].kind == Kind::kPreamble) {
    pass(stream.commands[0]);
  }
  for (std::size_t i = 0; i < stream.pages.size(); ++i) {
    const Page& page = stream.pages[i];
    const bool next_begins = i + 1 < stream.pages.size();
    if (!page.copies && !next_begins && (!ended || stream.malformed)) break;
    const Command& last = stream.commands[page.first_command + page.command_count - 1];
    on_page_(page, last);
    pass(last);
  }

  if (stream.malformed && (ended || end - stream.malformed->offset >= kLongestHead)) {
    malformed_ = stream.malformed;
    pending_ = {};
  } else {
    pending_.erase(pending_.begin(),
                   pending_.begin() + static_cast<std::ptrdiff_t>(done - offset_));
    offset_ = done;
  }
}

}  // namespace tspl
