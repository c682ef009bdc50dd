// Which vector instructions the kernels run on.
#ifndef TARVO_KERNELS_TARGET_H_
#define TARVO_KERNELS_TARGET_H_

#include <cstdint>

namespace kernels {

/// Highway's number of the target that this process has chosen for its kernels.
std::int64_t chosenTarget();

}  // namespace kernels

#endif  // TARVO_KERNELS_TARGET_H_
