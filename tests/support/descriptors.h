// What a process has open.
#ifndef TARVO_TESTS_SUPPORT_DESCRIPTORS_H_
#define TARVO_TESTS_SUPPORT_DESCRIPTORS_H_

#include <fcntl.h>

#include <cstddef>

namespace support {

/// How many descriptors of this process are open, of the first 256.
inline std::size_t openDescriptors() {
  std::size_t count = 0;
  for (int descriptor = 0; descriptor < 256; ++descriptor) {
    if (fcntl(descriptor, F_GETFD) != -1) ++count;
  }
  return count;
}

}  // namespace support

#endif  // TARVO_TESTS_SUPPORT_DESCRIPTORS_H_
