// Small helpers for paths and fixed-size texts.
#ifndef TARVO_COMMON_TEXT_H_
#define TARVO_COMMON_TEXT_H_

#include <cstddef>

extern "C" {

/// The last component of `path`: what follows its last "/" or backslash, whichever lies further
/// right; all of it when it has neither. Null gives null. The result points into `path`; a path
/// that ends in a separator gives an empty text.
const char* tarvoPathGetBasename(const char* path);

/// Copies at most `size` - 1 characters of `source` into the `size` bytes at `destination`, fills
/// the rest with NULs and returns `destination`; what is longer is cut. REQUIRES: size >= 1.
char* tarvoStrCpy(char* destination, const char* source, std::size_t size);

}  // extern "C"

#endif  // TARVO_COMMON_TEXT_H_
