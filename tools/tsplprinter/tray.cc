#include "tsplprinter/tray.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace tsplprinter {
namespace {

constexpr std::string_view kPrefix = "job-";

constexpr mode_t kOwnersOnly = 0600;

// What tells a job's number from a text that happens to begin like one.
constexpr std::uint64_t kMostJobs = 1'000'000'000;

// The job that a file of this name belongs to, "job-12.tspl" or "job-12-1.png"; 0 for any other.
std::uint64_t JobOf(std::string_view name) {
  if (!name.starts_with(kPrefix)) return 0;
  const char* const end = name.data() + name.size();
  std::uint64_t job = 0;
  const auto [rest, error] = std::from_chars(name.data() + kPrefix.size(), end, job);
  const bool good = error == std::errc{} && rest != end && (*rest == '.' || *rest == '-');
  return good && job <= kMostJobs ? job : 0;
}

}  // namespace

Tray::Tray(const std::string& folder) : folder_(folder) {
  std::error_code error;
  std::filesystem::create_directories(folder_, error);
  if (error) throw std::system_error(error, folder);
  std::filesystem::directory_iterator files(folder_, error);
  if (error) throw std::system_error(error, folder);
  for (const auto& file : files) last_ = std::max(last_, JobOf(file.path().filename().string()));
}

// Another printer may put jobs into the same folder; whoever begins a file first has its number.
Tray::JobFile Tray::Begin() {
  for (;;) {
    ++last_;
    const std::string name = std::string(kPrefix) + std::to_string(last_);
    const std::string path = (folder_ / (name + ".tspl")).string();
    auto stream = std::make_unique<files::NewFile>(path, files::Existing::kKeep, kOwnersOnly,
                                                   "." + name + ".part");
    if (stream->error().empty()) return {last_, std::move(stream)};
    if (!stream->taken()) throw std::runtime_error(path + ": " + stream->error());
  }
}

std::unique_ptr<files::NewFile> Tray::BeginPicture(std::uint64_t job, std::size_t page) const {
  const std::string name =
      std::string(kPrefix) + std::to_string(job) + "-" + std::to_string(page) + ".png";
  return std::make_unique<files::NewFile>((folder_ / name).string(), files::Existing::kKeep,
                                          kOwnersOnly);
}

}  // namespace tsplprinter
