// All of a file.
#ifndef TARVO_FILES_READ_WHOLE_H_
#define TARVO_FILES_READ_WHOLE_H_

#include <cstdint>
#include <vector>

namespace files {

/// Appends all that can be read from `descriptor` to `bytes`. One that does not block is waited
/// for. False, with errno set, when reading fails.
bool ReadWhole(int descriptor, std::vector<std::uint8_t>& bytes);

}  // namespace files

#endif  // TARVO_FILES_READ_WHOLE_H_
