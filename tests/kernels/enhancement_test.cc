// The blur, the sharpening and the whole tattoo halftone, which stand on the kernels, against the
// plain way.
#include <algorithm>
#include <cmath>

#include "enhance/gaussian.h"
#include "enhance/tattoo.h"
#include "enhance/unsharp_mask.h"
#include "every_target.h"
#include "pages.h"
#include "reference/gaussian.h"
#include "reference/tattoo.h"
#include "reference/unsharp.h"

namespace {

LumoImage lumoOf(const reference::Gray& page) {
  return {page.width, page.height, LUMO_IMG_GRAY, page.px.data()};
}

void expectSame(const LumoImage& result, const reference::Gray& plain, const std::string& what) {
  ASSERT_EQ(result.width, plain.width);
  ASSERT_EQ(result.height, plain.height);
  const auto differs = std::mismatch(plain.px.begin(), plain.px.end(), result.data);
  if (differs.first == plain.px.end()) return;
  const auto at = differs.first - plain.px.begin();
  FAIL() << what << ", " << plain.width << " x " << plain.height << ": " << int{*differs.second}
         << " instead of " << int{*differs.first} << " at (" << at % plain.width << ", "
         << at / plain.width << ")";
}

class Enhancement : public EveryTarget {
 protected:
  static void expectAsPlain(const NamedPage& page) {
    LumoImage image = lumoOf(page.pixels);
    for (const double sigma : {3.0, 0.7}) {
      ASSERT_NO_FATAL_FAILURE(expectSame(enh_gaussian_filter_fast(image, 11, sigma),
                                         reference::gaussianBlurSeparable(page.pixels, 11, sigma),
                                         "blur of " + page.name));
    }
    ASSERT_NO_FATAL_FAILURE(expectSame(enh_unsharp_mask(image, 300.0f, 11),
                                       reference::unsharpMask(page.pixels, 300.0f, 11),
                                       "unsharp mask of " + page.name));
    ASSERT_NO_FATAL_FAILURE(expectSame(lumoTattooDithering(image), reference::tattoo(page.pixels),
                                       "tattoo of " + page.name));
    ASSERT_NO_FATAL_FAILURE(expectSame(lumoTattooDitheringX8(image),
                                       reference::tattooX8(page.pixels),
                                       "tattoo X8 of " + page.name));
  }
};
TARVO_ON_EVERY_TARGET(Enhancement);

TEST_P(Enhancement, SmallPagesOfEverySize) {
  for (int width = 1; width <= 70; ++width) {
    for (int height = 1; height <= 17; ++height) {
      const std::vector<NamedPage> pages = pagesOf(width, height);
      const auto turn = static_cast<std::size_t>(width + 5 * height);
      ASSERT_NO_FATAL_FAILURE(expectAsPlain(pages[turn % pages.size()]));
    }
  }
}

TEST_P(Enhancement, PagesOfManyStrips) {
  for (const int width : {127, 576}) {
    for (const NamedPage& page : pagesOf(width, 67)) ASSERT_NO_FATAL_FAILURE(expectAsPlain(page));
  }
}

/// The last row at each place in the rows that are blurred in one go, and in the rows of a strip.
TEST_P(Enhancement, HeightsAroundThoseOfStrips) {
  for (int height = 18; height <= 42; ++height) {
    for (const int width : {1, 5, 17, 40}) {
      const std::vector<NamedPage> pages = pagesOf(width, height);
      const auto turn = static_cast<std::size_t>(width + 5 * height);
      ASSERT_NO_FATAL_FAILURE(expectAsPlain(pages[turn % pages.size()]));
    }
  }
}

/// In each seven columns one of level a, then one of b, the rest 0, whose blur just before them
/// lies almost in the middle between two levels: what single precision can't decide is decided in
/// double precision.
TEST_P(Enhancement, BlursNearTheMiddleBetweenTwoLevels) {
  const std::vector<double> taps = reference::gaussianKernel1D(11, 3.0);
  const double ofA = taps[6];            // one to the right
  const double ofB = taps[7] + taps[0];  // two to the right, and five to the left
  int found = 0;
  for (int a = 0; a < 256; ++a) {
    for (int b = 0; b < 256; ++b) {
      const double sum = a * ofA + b * ofB;
      if (std::abs(sum - std::floor(sum) - 0.5) > 5e-5) continue;
      ++found;
      const reference::Gray page = drawn(80, 12, [&](int x, int) {
        return x % 7 == 1 ? a : x % 7 == 2 ? b : 0;
      });
      ASSERT_NO_FATAL_FAILURE(
          expectSame(enh_gaussian_filter_fast(lumoOf(page), 11, 3.0),
                     reference::gaussianBlurSeparable(page, 11, 3.0),
                     "columns of " + std::to_string(a) + " and " + std::to_string(b)));
    }
  }
  EXPECT_GT(found, 0) << "no such levels: the test tests nothing";
}

}  // namespace
