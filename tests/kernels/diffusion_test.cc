// The diffusion engine against the plain scan.
#include "kernels/diffusion.h"

#include "every_target.h"
#include "pages.h"
#include "reference/dither.h"

namespace {

using kernels::Diffusion;

struct Method {
  Diffusion kernel;
  std::int64_t number;  ///< of the plain version
  const char* name;
};

constexpr Method kMethods[] = {
    {Diffusion::kFloydSteinberg, 8, "Floyd-Steinberg"},
    {Diffusion::kBurkes, 2, "Burkes"},
    {Diffusion::kStucki, 3, "Stucki"},
    {Diffusion::kJarvisJudiceNinke, 4, "Jarvis-Judice-Ninke"},
    {Diffusion::kSierra, 5, "Sierra"},
    {Diffusion::kStevensonArce, 6, "Stevenson-Arce"},
};

class DiffusionEngine : public EveryTarget {
 protected:
  static void expectAsPlain(const Method& method, const NamedPage& page) {
    const auto width = static_cast<std::size_t>(page.pixels.width);
    const auto height = static_cast<std::size_t>(page.pixels.height);
    const reference::Gray plain = reference::dither(page.pixels, method.number);

    // Rows farther apart than they are wide on both sides. The levels end where their memory does.
    const std::size_t stride = width + 5;
    std::vector<std::uint8_t> levels(stride * (height - 1) + width, 0x5A);
    for (std::size_t y = 0; y < height; ++y) {
      std::copy_n(page.pixels.px.begin() + static_cast<std::ptrdiff_t>(y * width), width,
                  levels.begin() + static_cast<std::ptrdiff_t>(y * stride));
    }
    const std::size_t bitsStride = (width + 7) / 8 + 3;
    GuardedBytes bits(bitsStride * height);
    kernels::diffuseErrors(method.kernel, levels.data(), stride, width, height, bits.data(),
                           bitsStride);

    const std::vector<std::uint8_t> result = bits.content();
    for (std::size_t y = 0; y < height; ++y) {
      for (std::size_t x = 0; x < bitsStride * 8; ++x) {
        const bool bit = (result[y * bitsStride + x / 8] >> (7 - x % 8) & 1) != 0;
        const bool outside = x / 8 >= (width + 7) / 8;
        const bool untouched = (GuardedBytes::kPattern >> (7 - x % 8) & 1) != 0;
        const bool expected = outside ? untouched : x < width && plain.px[y * width + x] != 0;
        ASSERT_EQ(bit, expected) << method.name << ", " << page.name << ", " << width << " x "
                                 << height << ": at (" << x << ", " << y << ")";
      }
    }
    ASSERT_TRUE(bits.guardsAreWhole());
  }
};
TARVO_ON_EVERY_TARGET(DiffusionEngine);

TEST_P(DiffusionEngine, SmallPagesOfEverySize) {
  for (int width = 1; width <= 70; ++width) {
    for (int height = 1; height <= 17; ++height) {
      const std::vector<NamedPage> pages = pagesOf(width, height);
      // Every kind of page for every method comes up as the sizes go by.
      for (std::size_t i = 0; i < std::size(kMethods); ++i) {
        const auto turn = static_cast<std::size_t>(width + height) + i;
        ASSERT_NO_FATAL_FAILURE(expectAsPlain(kMethods[i], pages[turn % pages.size()]));
      }
    }
  }
}

TEST_P(DiffusionEngine, PagesOfManyBands) {
  for (const int width : {100, 127, 203, 575, 576}) {
    for (const NamedPage& page : pagesOf(width, 67)) {
      for (const Method& method : kMethods) ASSERT_NO_FATAL_FAILURE(expectAsPlain(method, page));
    }
  }
}

/// The last row at each place in the second and third band, and rows that are just long enough for
/// blocks of columns that no row begins or ends in.
TEST_P(DiffusionEngine, BandsThatThePageDoesNotFill) {
  for (int height = 18; height <= 49; ++height) {
    for (const int width : {1, 16, 90 + height}) {
      const std::vector<NamedPage> pages = pagesOf(width, height);
      for (std::size_t i = 0; i < std::size(kMethods); ++i) {
        const auto turn = static_cast<std::size_t>(height) + i;
        ASSERT_NO_FATAL_FAILURE(expectAsPlain(kMethods[i], pages[turn % pages.size()]));
      }
    }
  }
}

}  // namespace
