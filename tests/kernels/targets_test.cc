// That the vector kernels are really there and really chosen.
#include <gtest/gtest.h>

#include "every_target.h"
#include "kernels/target.h"

namespace {

TEST(KernelTargets, BestOneOfThisMachineIsChosen) {
  EXPECT_EQ(hwy::TargetName(kernels::chosenTarget()), hwy::TargetName(everyTarget().front()));
}

#ifndef HWY_COMPILE_ONLY_EMU128
TEST(KernelTargets, VectorsAreUsed) {
  EXPECT_NE(kernels::chosenTarget(), HWY_EMU128) << "this build or machine has no vector target";
}
#endif

}  // namespace
