#include "tspl/picture_file.h"

namespace tspl {

std::string SavePicture(const Page& page, const Label& label, files::NewFile& file,
                        const Objection& objection) {
  if (file.stream() == nullptr) return file.error();
  const std::string error = WritePicture(page, label, file.stream(), objection);
  return error.empty() ? file.Finish() : error;
}

}  // namespace tspl
