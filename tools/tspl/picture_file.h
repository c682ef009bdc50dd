// A page's picture as a file.
#ifndef TARVO_TSPL_PICTURE_FILE_H_
#define TARVO_TSPL_PICTURE_FILE_H_

#include <string>

#include "tspl/label.h"
#include "tspl/reader.h"

namespace tspl {

/// What becomes of a file that is there already.
enum class Existing {
  kReplace,
  kKeep,  // and no picture is made; a symbolic link counts as a file and is not followed
};

/// Writes the page's picture, as WritePicture() does, to a file at `path`. Returns an empty text,
/// or why that failed; no file is left then, for half a picture would pass for a whole one.
std::string SavePicture(const Page& page, const Label& label, const std::string& path,
                        Existing existing);

}  // namespace tspl

#endif  // TARVO_TSPL_PICTURE_FILE_H_
