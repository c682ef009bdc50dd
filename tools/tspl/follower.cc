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

  const bool all = ended && !stream.malformed;
  const std::size_t pages = all ? stream.pages.size() : CompletePages(stream);
  for (const Page& page : std::span(stream.pages).first(pages)) {
    on_page_(page, stream.commands[page.first_command + page.command_count - 1]);
  }

  // What is read again is a page that is not complete, or nothing.
  const std::size_t commands =
      pages < stream.pages.size() ? stream.pages[pages].first_command : stream.commands.size();
  std::uint64_t done = offset_;
  if (commands > 0) {
    const Command& last = stream.commands[commands - 1];
    done = last.offset + last.length;
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
