// How many PPDs are open.
#ifndef TARVO_TESTS_FUZZ_OPEN_PPDS_H_
#define TARVO_TESTS_FUZZ_OPEN_PPDS_H_

#include <cstddef>

namespace fuzz {

/// Those that libcups has opened in this process and not closed since.
std::size_t openPpds();

}  // namespace fuzz

#endif  // TARVO_TESTS_FUZZ_OPEN_PPDS_H_
