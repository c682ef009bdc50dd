#include "tsplprinter/job.h"

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <stdexcept>
#include <system_error>

#include "program/program.h"
#include "tspl/picture_file.h"
#include "tspl/report.h"

namespace tsplprinter {

Job::Job(Tray& tray, const Watch& watch, const Arguments& arguments)
    : tray_(tray),
      watch_(watch),
      arguments_(arguments),
      file_(tray.Begin()),
      follower_([this](const tspl::Page& page, const tspl::Command& last) { Print(page, last); }),
      status_(program::kGood) {
  std::printf("job %" PRIu64 ": begins\n", file_.number);
}

// Saved before they are looked at: whatever becomes of the job, its stream is there to be seen.
void Job::Take(std::span<const std::uint8_t> bytes) {
  if (std::fwrite(bytes.data(), 1, bytes.size(), file_.stream->stream()) != bytes.size()) {
    throw std::system_error(errno, std::generic_category(), file_.stream->path());
  }
  bytes_ += bytes.size();
  follower_.Take(bytes);
  SayMalformed();
}

int Job::End(Ending ending) {
  // A job that the printer itself cut off is not malformed for want of the rest.
  const bool whole = ending == Ending::kClosed || ending == Ending::kBrokenOff;
  follower_.End();
  if (whole) SayMalformed();
  if (ending == Ending::kTooLarge) {
    program::Complain(file_.stream->path(), "the job is too large and was not taken beyond this");
    status_ = std::max(status_, program::kMalformed);
  }
  if (const std::string why = file_.stream->Finish(); !why.empty()) {
    throw std::runtime_error(file_.stream->path() + ": " + why);
  }
  std::printf("job %" PRIu64 ": %s, %zu page%s, %" PRIu64 " byte%s\n", file_.number, Word(ending),
              pages_, pages_ == 1 ? "" : "s", bytes_, bytes_ == 1 ? "" : "s");
  return status_;
}

void Job::Print(const tspl::Page& page, const tspl::Command& last) {
  ++pages_;
  const std::optional<tspl::Label> label = tspl::MeasureLabel(page, arguments_.dpi);
  if (page.copies && label && drawing_) Draw(page, *label);
  // After its picture, so that whoever reads the line finds it.
  std::printf("job %" PRIu64 " page %zu: %s\n", file_.number, pages_,
              tspl::PageLine(page, last, label).c_str());
}

void Job::Draw(const tspl::Page& page, const tspl::Label& label) {
  const std::unique_ptr<files::NewFile> file = tray_.BeginPicture(file_.number, pages_);
  std::uint64_t bytes = 0;
  std::string why = WhyNoMore(bytes);
  if (why.empty()) {
    why = tspl::SavePicture(page, label, *file, [&] {
      bytes = file->size();
      return WhyNoMore(bytes);
    });
  }
  if (why.empty()) {
    ++pictures_;
    picture_bytes_ += bytes;
    return;
  }
  drawing_ = WhyNoMore(bytes).empty();
  program::Complain(file->path(), drawing_ ? why : why + "; no more of the job is drawn");
  status_ =
      std::max(status_, drawing_ || watch_.Overdue() ? program::kTrouble : program::kMalformed);
}

// What is against a picture of so many bytes, or more, and against all that would follow it.
std::string Job::WhyNoMore(std::uint64_t bytes) const {
  if (watch_.Overdue()) return "the printer was told to stop";
  if (pictures_ == arguments_.most_pictures) {
    return "the job has its " + std::to_string(pictures_) + " pictures (--limit)";
  }
  if ((picture_bytes_ + bytes) > arguments_.most_picture_mib << 20U) {
    return "the job's pictures are " + std::to_string(arguments_.most_picture_mib) +
           " MiB and more (--limit)";
  }
  return {};
}

void Job::SayMalformed() {
  if (malformed_ || !follower_.malformed()) return;
  malformed_ = true;
  program::Complain(file_.stream->path(), tspl::MalformedLine(*follower_.malformed()));
  status_ = std::max(status_, program::kMalformed);
}

const char* Job::Word(Ending ending) const {
  switch (ending) {
    case Ending::kClosed:
      return malformed_ ? "malformed" : "ended";
    case Ending::kBrokenOff:
      return malformed_ ? "malformed" : "broken off";
    case Ending::kDropped:
      return "dropped";
    case Ending::kTooLarge:
      return "too large";
    case Ending::kStopped:
      return "stopped";
  }
  return "";
}

}  // namespace tsplprinter
