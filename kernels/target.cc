#include "kernels/target.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/target.cc"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace kernels {
namespace HWY_NAMESPACE {

std::int64_t Target() { return HWY_TARGET; }

}  // namespace HWY_NAMESPACE
}  // namespace kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kernels {

HWY_EXPORT(Target);

std::int64_t chosenTarget() { return HWY_DYNAMIC_DISPATCH(Target)(); }

}  // namespace kernels
#endif  // HWY_ONCE
