// The six-tap diffusion against the plain scan.
#include "kernels/six_tap.h"

#include <algorithm>

#include "every_target.h"
#include "pages.h"
#include "reference/six_tap_diffusion.h"

namespace {

using kernels::SixTapDiffuser;

reference::Gray diffused(const reference::Gray& page, int threshold) {
  const auto width = static_cast<std::size_t>(page.width);
  const auto height = static_cast<std::size_t>(page.height);
  SixTapDiffuser diffuser(width, height, static_cast<float>(threshold));
  reference::Gray result(page.width, page.height);
  for (std::size_t top = 0; top < height; top += SixTapDiffuser::kStripRows) {
    const std::size_t rows = std::min(SixTapDiffuser::kStripRows, height - top);
    for (std::size_t row = 0; row < rows; ++row) {
      std::copy_n(page.px.data() + (top + row) * width, width, diffuser.input(row));
    }
    diffuser.diffuseStrip();
    for (std::size_t row = 0; row < rows; ++row) {
      std::copy_n(diffuser.output(row), width, result.px.data() + (top + row) * width);
    }
  }
  return result;
}

void expectAsPlain(const NamedPage& page, int threshold) {
  const reference::Gray plain = reference::sixTapDiffusion(page.pixels, threshold);
  const reference::Gray result = diffused(page.pixels, threshold);
  if (result == plain) return;
  const auto differs = std::mismatch(result.px.begin(), result.px.end(), plain.px.begin());
  const auto at = differs.first - result.px.begin();
  FAIL() << page.name << ", " << plain.width << " x " << plain.height << ", threshold " << threshold
         << ": " << int{*differs.first} << " instead of " << int{*differs.second} << " at ("
         << at % plain.width << ", " << at / plain.width << ")";
}

constexpr int kThresholds[] = {-1, 0, 64, 127, 128, 254, 255, 256, -300, 1000000};

class SixTapEngine : public EveryTarget {};
TARVO_ON_EVERY_TARGET(SixTapEngine);

TEST_P(SixTapEngine, SmallPagesOfEverySize) {
  for (int width = 1; width <= 70; ++width) {
    for (int height = 1; height <= 17; ++height) {
      const std::vector<NamedPage> pages = pagesOf(width, height);
      // Every kind of page and every threshold comes up as the sizes go by.
      for (std::size_t i = 0; i < 3; ++i) {
        const auto turn = static_cast<std::size_t>(width + 7 * height) + i;
        ASSERT_NO_FATAL_FAILURE(
            expectAsPlain(pages[turn % pages.size()], kThresholds[turn % std::size(kThresholds)]));
      }
    }
  }
}

TEST_P(SixTapEngine, PagesOfManyStrips) {
  for (const int width : {100, 127, 203, 576}) {
    for (const NamedPage& page : pagesOf(width, 67)) {
      for (const int threshold : kThresholds) {
        ASSERT_NO_FATAL_FAILURE(expectAsPlain(page, threshold));
      }
    }
  }
}

/// The last row at each place in both bands of the first and of the second strip, and rows that are
/// just long enough for the two bands to take turns.
TEST_P(SixTapEngine, StripsThatThePageDoesNotFill) {
  for (int height = 18; height <= 66; ++height) {
    for (const int width : {1, 2, 3, 16, 92, 93, 172, 173, 174, 150 + height}) {
      const std::vector<NamedPage> pages = pagesOf(width, height);
      const auto turn = static_cast<std::size_t>(width + 7 * height);
      ASSERT_NO_FATAL_FAILURE(
          expectAsPlain(pages[turn % pages.size()], kThresholds[turn % std::size(kThresholds)]));
    }
  }
}

/// Errors that have faded below the smallest normal number still have a sign, and above a threshold
/// of 0 that is what counts: the dot that costs exactly its level leaves the pixel after it with
/// -0.052926 of the faded error two to its left, which is negative.
TEST_P(SixTapEngine, FadedErrorsCount) {
  const NamedPage page = {"two dots far apart", drawn(150, 1, [](int x, int) {
                            return x == 34 ? 65 : x == 136 ? 255 : 0;
                          })};
  const reference::Gray plain = reference::sixTapDiffusion(page.pixels, 0);
  ASSERT_EQ(int{plain.at(137, 0)}, 255) << "the test tests nothing";
  ASSERT_NO_FATAL_FAILURE(expectAsPlain(page, 0));
}

}  // namespace
