#include "tspl/picture_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "tspl/picture.h"

namespace tspl {

std::string SavePicture(const Page& page, const Label& label, const std::string& path,
                        Existing existing) {
  std::FILE* file = std::fopen(path.c_str(), existing == Existing::kKeep ? "wbx" : "wb");
  if (file == nullptr) return std::strerror(errno);
  std::string error = WritePicture(page, label, file);
  if (std::fclose(file) != 0 && error.empty()) error = std::strerror(errno);
  if (!error.empty()) std::remove(path.c_str());
  return error;
}

}  // namespace tspl
