// A folder of a test's own, and whole files.
#ifndef TARVO_TESTS_SUPPORT_FOLDER_H_
#define TARVO_TESTS_SUPPORT_FOLDER_H_

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace support {

/// A new folder under the system's temporary folder, removed with all it holds at the end.
class Folder {
 public:
  Folder();
  ~Folder();
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

/// Replaces the file. Throws when it can't be written.
void writeFile(const std::filesystem::path& path, std::string_view bytes);

/// The bytes of the file; nothing when there is no such file.
std::optional<std::string> readFile(const std::filesystem::path& path);

/// Names of what the folder holds, sorted; empty when there is no such folder.
std::vector<std::string> namesIn(const std::filesystem::path& folder);

}  // namespace support

#endif  // TARVO_TESTS_SUPPORT_FOLDER_H_
