#include "temporary_folder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace test {

TemporaryFolder::TemporaryFolder()
    : path_(std::filesystem::temp_directory_path() / "tools_test.XXXXXX") {
  if (::mkdtemp(path_.data()) == nullptr) throw std::runtime_error("no temporary folder");
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TemporaryFolder::Write(std::string_view name, std::string_view bytes) const {
  std::ofstream out(File(name), std::ios::binary);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return File(name);
}

std::string TemporaryFolder::Read(std::string_view name) const {
  std::ifstream in(File(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace test
