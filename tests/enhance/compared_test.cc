// Every function of the enhancement chain beside the plain version of it: the same bits, not only
// nearly the same. What a rounding hides in one page shows in another.
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "enhance/error_diffusion.h"
#include "enhance/gaussian.h"
#include "enhance/gray.h"
#include "enhance/lumo_math.h"
#include "enhance/moments_threshold.h"
#include "enhance/tattoo.h"
#include "enhance/tone_curve.h"
#include "enhance/unsharp_mask.h"
#include "reference/gaussian.h"
#include "reference/gray_conversion.h"
#include "reference/moments_threshold.h"
#include "reference/scalar_math.h"
#include "reference/six_tap_diffusion.h"
#include "reference/tattoo.h"
#include "reference/tone_curve.h"
#include "reference/unsharp.h"
#include "support/differences.h"

namespace {

using reference::Gray;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

struct Size {
  int width;
  int height;
};

/// One dot and one line, either side of a vector, and more rows than are worked on at once.
constexpr Size kSizes[] = {{1, 1},  {2, 1},   {1, 2},   {1, 40},  {40, 1}, {5, 7},
                           {11, 5}, {16, 11}, {17, 12}, {31, 34}, {64, 8}, {67, 70}};

/// Levels of a page: any, a few, nearly blank, or a slope, by `kind`.
Gray drawn(const Size& size, int kind) {
  std::mt19937 random(static_cast<unsigned>(size.width * 1000 + size.height * 10 + kind));
  Gray image(size.width, size.height);
  int pixel = 0;
  for (std::uint8_t& level : image.px) {
    const auto any = static_cast<std::uint8_t>(random() % 256);
    switch (kind) {
      case 0:
        level = any;
        break;
      case 1:
        level = any < 100 ? 20 : any < 200 ? 130 : 240;
        break;
      case 2:
        level = any < 4 ? any : 255;
        break;
      default:
        level = static_cast<std::uint8_t>(pixel++ * 256 / (size.width * size.height));
    }
  }
  return image;
}

constexpr int kKinds = 4;

LumoImage lumoOf(const Gray& image) {
  return LumoImage(image.width, image.height, LUMO_IMG_GRAY, image.px.data());
}

std::string bytesOf(const LumoImage& image) {
  return std::string(image.data, image.data + image.SizeBytes());
}

std::string bytesOf(const Gray& image) { return std::string(image.px.begin(), image.px.end()); }

/// Calls `compare(image, what)` for pages of every size and kind.
template <typename Compare>
void forEachPage(Compare compare) {
  for (const Size& size : kSizes) {
    for (int kind = 0; kind < kKinds; ++kind) {
      compare(drawn(size, kind), std::to_string(size.width) + " x " + std::to_string(size.height) +
                                     ", kind " + std::to_string(kind));
    }
  }
}

/// Numbers of every size and sign, not-a-numbers and infinities among them.
std::vector<float> numbers() {
  std::vector<float> all = {0.0F, -0.0F, 1.0F, -1.0F, 0.5F, 2.0F, 1e-6F, 1e30F, -1e30F};
  // The last step of this root, and the last term of this power, are just above the tolerance.
  all.insert(all.end(), {0x1.17c5d8p-36F, 0x1.56bc7ep-1F});
  for (int i = -40; i <= 40; ++i) {  // either side of a half
    const float half = static_cast<float>(i) + 0.5F;
    all.insert(all.end(), {half - 0.0004F, half, half + 0.0004F});
  }
  std::mt19937 random(7);
  for (int i = 0; i < 3000; ++i)
    all.push_back(std::bit_cast<float>(static_cast<std::uint32_t>(random())));
  for (int i = -300; i < 600; ++i) all.push_back(static_cast<float>(i) * 0.37F);
  for (int i = 1; i < 600; ++i) all.push_back(static_cast<float>(i) / 300.0F);
  return all;
}

std::uint32_t bitsOf(float x) { return x != x ? 0x7FC00000 : std::bit_cast<std::uint32_t>(x); }

TEST(Compared, FunctionsOfOneNumber) {
  for (const float x : numbers()) {
    EXPECT_EQ(bitsOf(myabs(x)), bitsOf(reference::my_abs(x))) << x;
    EXPECT_EQ(bitsOf(my_sqrt(x)), bitsOf(reference::my_sqrt(x))) << x;
    EXPECT_EQ(bitsOf(my_exp(x)), bitsOf(reference::my_exp(x))) << x;
    // Far from 1 the steps are many, and for some numbers the plain version never ends.
    if (!(x > 0.0F) || (x > 0.01F && x < 250.0F)) {
      EXPECT_EQ(bitsOf(my_ln(x)), bitsOf(reference::my_ln(x))) << x;
    }
    if (x > -2e9F && x < 2e9F) {
      EXPECT_EQ(my_round(x), reference::my_round(x)) << x;
    }
  }
}

TEST(Compared, Powers) {
  for (const float x : {-2.0F, -0.5F, 0.0F, 1e-3F, 0.25F, 0.5F, 0.9F, 1.0F, 1.5F, 3.0F, 100.0F}) {
    for (const float y : {-2.0F, -1.0F, -0.5F, 0.0F, 0.3F, 0.8F, 1.0F, 1.2F, 2.0F, 2.5F}) {
      EXPECT_EQ(bitsOf(my_pow(x, y)), bitsOf(reference::my_pow(x, y))) << x << " to the " << y;
    }
  }
}

TEST(Compared, GaussianTaps) {
  for (int ksize = 1; ksize <= 15; ksize += 2) {
    for (const double sigma : {0.4, 1.0, 2.25, 3.0, 17.0}) {
      std::vector<double> taps(static_cast<std::size_t>(ksize));
      generateGaussianKernel1D(ksize, sigma, taps.data());
      EXPECT_EQ(taps, reference::gaussianKernel1D(ksize, sigma)) << ksize << ", " << sigma;
      for (const double sigma_y : {0.7, 3.0}) {
        std::vector<double> plane(static_cast<std::size_t>(ksize * ksize));
        generateGaussianKernel(ksize, sigma, sigma_y, plane.data());
        EXPECT_EQ(plane, reference::gaussianKernel2D(ksize, sigma, sigma_y))
            << ksize << ", " << sigma << ", " << sigma_y;
      }
    }
  }
}

TEST(Compared, Blurs) {
  forEachPage([](const Gray& page, const std::string& what) {
    for (const int ksize : {1, 3, 9, 11, 13}) {
      EXPECT_EQ(
          support::firstDifference(bytesOf(reference::gaussianBlurSeparable(page, ksize, 3.0)),
                                   bytesOf(enh_gaussian_filter_fast(lumoOf(page), ksize, 3.0))),
          "")
          << what << ", " << ksize << " taps";
    }
    EXPECT_EQ(support::firstDifference(bytesOf(reference::gaussianBlur2D(page, 5, 1.0, 2.0)),
                                       bytesOf(enh_gaussian_filter(lumoOf(page), 5, 1.0, 2.0))),
              "")
        << what;
  });
}

TEST(Compared, UnsharpMasks) {
  forEachPage([](const Gray& page, const std::string& what) {
    for (const float amount : {0.0F, 30.0F, 100.0F, 250.0F, -40.0F}) {
      for (const int ksize : {3, 11}) {
        EXPECT_EQ(support::firstDifference(bytesOf(reference::unsharpMask(page, amount, ksize)),
                                           bytesOf(enh_unsharp_mask(lumoOf(page), amount, ksize))),
                  "")
            << what << ", " << amount << " %, " << ksize << " taps";
      }
    }
  });
}

TEST(Compared, WeightedSums) {
  for (const float weight : {0.0F, 0.3F, 1.0F, 2.5F, -0.4F, 1000.0F}) {
    const Gray a = drawn({64, 64}, 0), b = drawn({64, 64}, 1);
    EXPECT_EQ(support::firstDifference(bytesOf(reference::addWeighted(a, b, weight)),
                                       bytesOf(add_Weighted(lumoOf(a), lumoOf(b), weight))),
              "")
        << weight;
  }
}

TEST(Compared, ToneCurves) {
  constexpr std::array<float, 2> kGammas[] = {{1.0F, 1.0F},  {0.8F, 1.2F}, {1.2F, 0.8F},
                                              {0.3F, 3.0F},  {2.0F, 0.5F}, {1.0F, 0.0F},
                                              {0.5F, -1.0F}, {kNan, kNan}, {kInfinity, -kInfinity}};
  for (int pivot = 0; pivot < 256; ++pivot) {
    for (const auto& [low, high] : kGammas) {
      EXPECT_EQ(piecewiseGammaTable(pivot, low, high),
                reference::piecewiseGammaTable(pivot, low, high))
          << pivot << ", " << low << ", " << high;
    }
  }
}

TEST(Compared, CurvedPages) {
  forEachPage([](const Gray& page, const std::string& what) {
    LumoImage curved = lumoOf(page);
    enh_piecewise_gamma(curved, 64, 0.85F, 0.7F);
    EXPECT_EQ(support::firstDifference(bytesOf(reference::piecewiseGamma(page, 64, 0.85F, 0.7F)),
                                       bytesOf(curved)),
              "")
        << what;
  });
}

TEST(Compared, MomentsThresholds) {
  forEachPage([](const Gray& page, const std::string& what) {
    EXPECT_EQ(thresh_global_moments(lumoOf(page)), reference::momentsThreshold(page)) << what;
  });
  // Two and three levels in all proportions, where the equations are at their limits.
  for (int dark = 0; dark <= 32; ++dark) {
    for (int middle = 0; dark + middle <= 32; middle += 4) {
      Gray page(8, 4, 200);
      for (int i = 0; i < dark + middle; ++i) {
        page.px[static_cast<std::size_t>(i)] = i < dark ? 3 : 90;
      }
      EXPECT_EQ(thresh_global_moments(lumoOf(page)), reference::momentsThreshold(page))
          << dark << " dark, " << middle << " between";
    }
  }
}

TEST(Compared, SixTapDiffusion) {
  forEachPage([](const Gray& page, const std::string& what) {
    for (const int threshold : {-1, 0, 1, 100, 128, 200, 255}) {
      EXPECT_EQ(support::firstDifference(bytesOf(reference::sixTapDiffusion(page, threshold)),
                                         bytesOf(edf_cus(lumoOf(page), threshold))),
                "")
          << what << ", threshold " << threshold;
    }
  });
}

TEST(Compared, TattooHalftones) {
  forEachPage([](const Gray& page, const std::string& what) {
    LumoImage input = lumoOf(page);
    EXPECT_EQ(support::firstDifference(bytesOf(reference::tattoo(page)),
                                       bytesOf(lumoTattooDithering(input))),
              "")
        << what;
    EXPECT_EQ(support::firstDifference(bytesOf(reference::tattooX8(page)),
                                       bytesOf(lumoTattooDitheringX8(input))),
              "")
        << what;
  });
}

TEST(Compared, GrayConversions) {
  constexpr struct {
    LUMO_IMG_COLOR color;
    reference::ColourLayout layout;
  } kLayouts[] = {{LUMO_IMG_GRAY, reference::ColourLayout::Gray},
                  {LUMO_IMG_BGR, reference::ColourLayout::Bgr},
                  {LUMO_IMG_RGB, reference::ColourLayout::Rgb},
                  {LUMO_IMG_BGRA, reference::ColourLayout::Bgra},
                  {LUMO_IMG_RGBA, reference::ColourLayout::Rgba}};
  std::mt19937 random(11);
  for (const auto& [color, layout] : kLayouts) {
    std::vector<std::uint8_t> pixels(std::size_t{37 * 29} *
                                     static_cast<std::size_t>(reference::channelsOf(layout)));
    for (std::uint8_t& byte : pixels) byte = static_cast<std::uint8_t>(random());
    const LumoImage source(37, 29, color, pixels.data());
    EXPECT_EQ(support::firstDifference(bytesOf(reference::cvtGray(37, 29, layout, pixels)),
                                       bytesOf(cvtGray(source))),
              "")
        << static_cast<int>(layout);
  }
}

}  // namespace
