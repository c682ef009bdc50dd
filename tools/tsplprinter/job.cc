#include "tsplprinter/job.h"

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <system_error>

#include "program/program.h"
#include "tspl/picture_file.h"
#include "tspl/report.h"

namespace tsplprinter {

Job::Job(Tray& tray, std::optional<int> dpi)
    : tray_(tray),
      dpi_(dpi),
      file_(tray.Begin()),
      follower_([this](const tspl::Page& page, const tspl::Command& last) { Print(page, last); }),
      status_(program::kGood) {
  std::printf("job %" PRIu64 ": begins\n", file_.number);
}

// Saved before they are looked at: whatever becomes of the job, its stream is there to be seen.
void Job::Take(std::span<const std::uint8_t> bytes) {
  for (std::size_t done = 0; done < bytes.size();) {
    const ssize_t written = ::write(file_.file.number(), bytes.data() + done, bytes.size() - done);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) throw std::system_error(errno, std::generic_category(), file_.path);
    done += static_cast<std::size_t>(written);
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
    program::Complain(file_.path, "the job is too large and was not taken beyond this");
    status_ = std::max(status_, program::kMalformed);
  }
  std::printf("job %" PRIu64 ": %s, %zu page%s, %" PRIu64 " byte%s\n", file_.number, Word(ending),
              pages_, pages_ == 1 ? "" : "s", bytes_, bytes_ == 1 ? "" : "s");
  return status_;
}

void Job::Print(const tspl::Page& page, const tspl::Command& last) {
  ++pages_;
  const std::optional<tspl::Label> label = tspl::MeasureLabel(page, dpi_);
  if (page.copies && label) {
    const std::string path = tray_.PicturePath(file_.number, pages_);
    const std::string why = tspl::SavePicture(page, *label, path, tspl::Existing::kKeep);
    if (!why.empty()) status_ = program::Complain(path, why);
  }
  // After its picture, so that whoever reads the line finds it.
  std::printf("job %" PRIu64 " page %zu: %s\n", file_.number, pages_,
              tspl::PageLine(page, last, label).c_str());
}

void Job::SayMalformed() {
  if (malformed_ || !follower_.malformed()) return;
  malformed_ = true;
  program::Complain(file_.path, tspl::MalformedLine(*follower_.malformed()));
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
