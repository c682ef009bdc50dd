#include "enhance/gaussian.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <new>

#include "enhance/blurred_rows.h"
#include "enhance/lumo_math.h"
#include "kernels/blur.h"

namespace {

/// The generators write taps for -ksize/2 to +ksize/2: one more than `ksize` when it is even, and
/// below -1 none, of which there are then less than 0.
std::int64_t tapsWritten(int ksize) { return 2 * std::int64_t{ksize / 2} + 1; }

/// Room for taps; those that are not written are 0.
std::unique_ptr<double[]> roomFor(std::int64_t taps) {
  // More than any memory can hold: some compilers' new[] would call that a lack of memory.
  constexpr std::int64_t kMost =
      std::numeric_limits<std::ptrdiff_t>::max() / std::ptrdiff_t{sizeof(double)};
  if (taps < 0 || taps > kMost) throw std::bad_array_new_length();
  return std::make_unique<double[]>(static_cast<std::size_t>(taps));
}

void normalise(double* taps, std::int64_t count) {
  double sum = 0.0;
  for (std::int64_t i = 0; i < count; ++i) sum += taps[i];
  for (std::int64_t i = 0; i < count; ++i) taps[i] /= sum;
}

std::uint8_t roundToByte(double sum) {
  return static_cast<std::uint8_t>(my_round(static_cast<float>(sum)));
}

}  // namespace

void generateGaussianKernel1D(int ksize, double sigma, double* kernel) {
  const int half = ksize / 2;
  const double norm = 1.0 / (static_cast<double>(my_sqrt(6.2831855f)) * sigma);
  for (int i = -half; i <= half; ++i) {
    const auto exponent = static_cast<float>((-0.5 * static_cast<double>(i * i)) / (sigma * sigma));
    kernel[i + half] = norm * static_cast<double>(my_exp(exponent));
  }
  normalise(kernel, ksize);
}

LumoImage convolve1D(const LumoImage& src, const double* kernel, int ksize, bool horizontal) {
  const int half = ksize / 2;
  LumoImage result(src);
  for (int y = 0; y < src.height; ++y) {
    for (int x = 0; x < src.width; ++x) {
      double sum = 0.0;
      for (int k = -half; k <= half; ++k) {
        const int xx = horizontal ? std::min(std::max(x + k, 0), src.width - 1) : x;
        const int yy = horizontal ? y : std::min(std::max(y + k, 0), src.height - 1);
        const std::uint8_t value = src.data[std::int64_t{yy} * src.width + xx];
        sum = static_cast<double>(value) * kernel[k + half] + sum;
      }
      result.data[std::int64_t{y} * src.width + x] = roundToByte(sum);
    }
  }
  return result;
}

LumoImage enh_gaussian_filter_fast(const LumoImage& src, int ksize, double sigma) {
  if (ksize == BlurredRows::kTaps && src.width > 0 && src.height > 0) {
    LumoImage result(src);
    BlurredRows rows(rowsOf(src), nullptr, sigma);
    for (int y = 0; y < src.height; ++y) {
      rows.next();
      kernels::sharpenRow(rows.levels(), rows.blurred(), static_cast<std::size_t>(src.width), 0.0f,
                          1.0f, result.data + std::int64_t{y} * src.width);
    }
    return result;
  }
  const auto kernel = roomFor(tapsWritten(ksize));
  generateGaussianKernel1D(ksize, sigma, kernel.get());
  return convolve1D(convolve1D(src, kernel.get(), ksize, true), kernel.get(), ksize, false);
}

void generateGaussianKernel(int ksize, double sigmaX, double sigmaY, double* kernel) {
  const int half = ksize / 2;
  const double norm = 1.0 / (6.283185307179586 * sigmaX * sigmaY);
  for (int i = -half; i <= half; ++i) {
    for (int j = -half; j <= half; ++j) {
      const auto exponent =
          static_cast<float>(static_cast<double>(-(j * j)) / (2.0 * sigmaX * sigmaX) -
                             static_cast<double>(i * i) / (2.0 * sigmaY * sigmaY));
      kernel[std::int64_t{i + half} * ksize + (j + half)] =
          norm * static_cast<double>(my_exp(exponent));
    }
  }
  normalise(kernel, std::int64_t{ksize} * ksize);
}

LumoImage enh_gaussian_filter(const LumoImage& src, int ksize, double sigmaX, double sigmaY) {
  const int half = ksize / 2;
  LumoImage result(src.width, src.height, LUMO_IMG_GRAY);
  // Of a size below 0 no tap is written, but there are as many as of the one above.
  const std::int64_t side = 2 * std::abs(std::int64_t{half}) + 1;
  const auto kernel = roomFor(side * side);
  generateGaussianKernel(ksize, sigmaX, sigmaY, kernel.get());
  for (int y = 0; y < src.height; ++y) {
    for (int x = 0; x < src.width; ++x) {
      double sum = 0.0;
      for (int ky = -half; ky <= half; ++ky) {
        const std::int64_t yy = myClamp(y + ky, 0, src.height - 1);
        const double* taps = kernel.get() + std::int64_t{ky + half} * ksize + half;
        for (int kx = -half; kx <= half; ++kx) {
          const int xx = myClamp(x + kx, 0, src.width - 1);
          sum = static_cast<double>(src.data[yy * src.width + xx]) * taps[kx] + sum;
        }
      }
      result.data[std::int64_t{y} * src.width + x] = roundToByte(sum);
    }
  }
  return result;
}
