// A page's picture as a file.
#ifndef TARVO_TSPL_PICTURE_FILE_H_
#define TARVO_TSPL_PICTURE_FILE_H_

#include <string>

#include "files/new_file.h"
#include "tspl/label.h"
#include "tspl/picture.h"
#include "tspl/reader.h"

namespace tspl {

/// Draws the page, as WritePicture() does, into `file` and finishes it. Returns an empty text, or
/// why that failed: error() of a file that could not be begun, what WritePicture() said, or
/// Finish().
std::string SavePicture(const Page& page, const Label& label, files::NewFile& file,
                        const Objection& objection = {});

}  // namespace tspl

#endif  // TARVO_TSPL_PICTURE_FILE_H_
