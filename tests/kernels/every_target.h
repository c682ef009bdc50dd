// Runs the tests of the kernels once for every kind of vector unit that this machine offers.
#ifndef TARVO_TESTS_KERNELS_EVERY_TARGET_H_
#define TARVO_TESTS_KERNELS_EVERY_TARGET_H_

#include <gtest/gtest.h>
#include <hwy/highway.h>

#include <cstdint>
#include <string>
#include <vector>

#include "kernels/target.h"

/// The targets that the kernels were built for and this processor has. The last is the one that
/// every processor has.
inline std::vector<std::int64_t> everyTarget() {
  std::vector<std::int64_t> targets = hwy::SupportedAndGeneratedTargets();
  if (targets.empty() || targets.back() != HWY_STATIC_TARGET) targets.push_back(HWY_STATIC_TARGET);
  return targets;
}

/// A test whose parameter is the target that the kernels run on.
class EveryTarget : public testing::TestWithParam<std::int64_t> {
 protected:
  void SetUp() override {
    hwy::GetChosenTarget().Update(GetParam());
    ASSERT_EQ(kernels::chosenTarget(), GetParam()) << "the kernels do not run on the target named";
  }
  void TearDown() override { hwy::GetChosenTarget().DeInit(); }
};

inline std::string targetName(const testing::TestParamInfo<std::int64_t>& info) {
  return hwy::TargetName(info.param);
}

#define TARVO_ON_EVERY_TARGET(suite) \
  INSTANTIATE_TEST_SUITE_P(On, suite, testing::ValuesIn(everyTarget()), targetName)

#endif  // TARVO_TESTS_KERNELS_EVERY_TARGET_H_
