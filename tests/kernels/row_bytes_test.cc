// Sizes of buffers that no memory holds.
#include "kernels/row_bytes.h"

#include <gtest/gtest.h>

namespace {

TEST(RowBytes, AreTheProduct) {
  EXPECT_EQ(kernels::rowBytes(32, 0), 0U);
  EXPECT_EQ(kernels::rowBytes(32, 2680), 85760U);
}

TEST(RowBytes, ThatNoMemoryHoldsAreRefused) {
  constexpr std::size_t kMost = PTRDIFF_MAX;
  EXPECT_EQ(kernels::rowBytes(16, kMost / 16), kMost / 16 * 16);
  for (const std::size_t stride : {kMost / 16 + 1, kMost, SIZE_MAX / 16 + 1, SIZE_MAX}) {
    EXPECT_THROW(kernels::rowBytes(16, stride), std::bad_alloc) << stride;
  }
}

}  // namespace
