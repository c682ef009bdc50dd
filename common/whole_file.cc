#include "common/whole_file.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <utility>

namespace {

std::string temporaryName(std::string_view path) {
  const std::size_t name = path.rfind('/') + 1;  // 0 without a folder
  return std::string(path.substr(0, name)) + "." + std::string(path.substr(name)) + "-XXXXXX";
}

bool hasRoomFor(int descriptor, std::uint64_t bytes) {
  struct statvfs fileSystem {};
  return fstatvfs(descriptor, &fileSystem) != 0 || tarvoHasRoomFor(fileSystem, bytes);
}

}  // namespace

bool tarvoHasRoomFor(const struct statvfs& fileSystem, std::uint64_t bytes) {
  constexpr std::uint64_t kLeastBytes = std::uint64_t{256} << 20U;
  constexpr std::uint64_t kLeastShare = 20;  // one in so many
  if (fileSystem.f_blocks == 0) return true;
  // In blocks, so that no file system is too large to be counted.
  const std::uint64_t block = std::max<std::uint64_t>(fileSystem.f_frsize, 1);
  const auto blocks = [&](std::uint64_t size) { return size / block + (size % block != 0); };
  const std::uint64_t share =
      fileSystem.f_blocks / kLeastShare + (fileSystem.f_blocks % kLeastShare != 0);
  const std::uint64_t kept = std::max(share, blocks(kLeastBytes));
  const std::uint64_t taken = blocks(bytes);
  return fileSystem.f_bavail >= taken && fileSystem.f_bavail - taken >= kept;
}

WholeFile::WholeFile(const char* path, std::uint64_t bytes) : path_(path) {
  if (tarvoIsOccupied(path)) return;
  std::string name = temporaryName(path);
  // Made for its owner alone, never through a link.
  const int descriptor = mkostemp(name.data(), O_CLOEXEC);
  if (descriptor == -1) return;
  temporary_ = std::move(name);
  if (hasRoomFor(descriptor, bytes)) file_.reset(fdopen(descriptor, "w"));
  if (file_ == nullptr) close(descriptor);
}

WholeFile::~WholeFile() {
  file_.reset();
  if (!temporary_.empty()) unlink(temporary_.c_str());
}

bool WholeFile::keep() {
  if (!tarvoCloseWhole(std::move(file_)) || tarvoIsOccupied(path_.c_str())) return false;
  if (std::rename(temporary_.c_str(), path_.c_str()) != 0) return false;
  temporary_.clear();
  return true;
}
