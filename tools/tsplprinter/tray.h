// The folder that streams and pictures fall into.
#ifndef TARVO_TSPLPRINTER_TRAY_H_
#define TARVO_TSPLPRINTER_TRAY_H_

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

#include "tsplprinter/descriptor.h"

namespace tsplprinter {

class Tray {
 public:
  /// Makes the folder when it is missing. Throws std::system_error.
  explicit Tray(const std::string& folder);

  struct JobFile {
    std::uint64_t number;  // of the job, from 1 and behind all that the folder holds
    std::string path;
    Descriptor file;  // new, empty, to be written to
  };

  /// A file for the next job. Throws std::system_error.
  JobFile Begin();

  /// Where the picture of a job's page belongs, pages counted from 1.
  std::string PicturePath(std::uint64_t job, std::size_t page) const;

 private:
  std::filesystem::path folder_;
  std::uint64_t last_ = 0;  // the highest number of a job in the folder, as far as is known
};

}  // namespace tsplprinter

#endif  // TARVO_TSPLPRINTER_TRAY_H_
