// The folder that streams and pictures fall into. What people print is for its owner's eyes alone.
#ifndef TARVO_TSPLPRINTER_TRAY_H_
#define TARVO_TSPLPRINTER_TRAY_H_

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "files/new_file.h"

namespace tsplprinter {

class Tray {
 public:
  /// Makes the folder when it is missing. Throws std::system_error.
  explicit Tray(const std::string& folder);

  struct JobFile {
    std::uint64_t number;  // of the job, from 1 and behind all that the folder holds
    std::unique_ptr<files::NewFile> stream;
  };

  /// A file for the next job, of whose number there is no other. Throws std::runtime_error.
  JobFile Begin();

  /// Begins the picture of a job's page, pages counted from 1; NewFile::error() says when that
  /// failed.
  std::unique_ptr<files::NewFile> BeginPicture(std::uint64_t job, std::size_t page) const;

 private:
  std::filesystem::path folder_;
  std::uint64_t last_ = 0;  // the highest number of a job in the folder, as far as is known
};

}  // namespace tsplprinter

#endif  // TARVO_TSPLPRINTER_TRAY_H_
