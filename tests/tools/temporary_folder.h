// A folder for one test, gone after it.
#ifndef TARVO_TESTS_TOOLS_TEMPORARY_FOLDER_H_
#define TARVO_TESTS_TOOLS_TEMPORARY_FOLDER_H_

#include <string>
#include <string_view>

namespace test {

class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& path() const { return path_; }
  std::string File(std::string_view name) const { return path_ + "/" + std::string(name); }

  /// Makes a file of these bytes and returns its path.
  std::string Write(std::string_view name, std::string_view bytes) const;

  /// All of a file; empty when there is none.
  std::string Read(std::string_view name) const;

 private:
  std::string path_;
};

}  // namespace test

#endif  // TARVO_TESTS_TOOLS_TEMPORARY_FOLDER_H_
