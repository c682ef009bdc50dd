#include "reference/gaussian.h"

#include <algorithm>

#include "reference/scalar_math.h"

namespace reference {

namespace {

void normalise(std::vector<double>& kernel) {
  double sum = 0.0;
  for (const double tap : kernel) sum += tap;
  for (double& tap : kernel) tap /= sum;
}

std::uint8_t roundToByte(double sum) {
  return static_cast<std::uint8_t>(my_round(static_cast<float>(sum)));
}

}  // namespace

std::vector<double> gaussianKernel1D(int ksize, double sigma) {
  const int half = ksize / 2;
  const double norm = 1.0 / (static_cast<double>(my_sqrt(6.2831855F)) * sigma);

  std::vector<double> kernel;
  for (int i = -half; i <= half; ++i) {
    const double exponent = (-0.5 * static_cast<double>(i * i)) / (sigma * sigma);
    kernel.push_back(norm * static_cast<double>(my_exp(static_cast<float>(exponent))));
  }
  normalise(kernel);
  return kernel;
}

Gray convolve1D(const Gray& image, const std::vector<double>& kernel, bool horizontal) {
  const int half = static_cast<int>(kernel.size()) / 2;
  Gray result = image;
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      double sum = 0.0;
      for (int k = -half; k <= half; ++k) {
        const int xx = horizontal ? std::min(std::max(x + k, 0), image.width - 1) : x;
        const int yy = horizontal ? y : std::min(std::max(y + k, 0), image.height - 1);
        sum = static_cast<double>(image.at(xx, yy)) * kernel[static_cast<std::size_t>(k + half)] +
              sum;
      }
      result.at(x, y) = roundToByte(sum);
    }
  }
  return result;
}

Gray gaussianBlurSeparable(const Gray& image, int ksize, double sigma) {
  const std::vector<double> kernel = gaussianKernel1D(ksize, sigma);
  const Gray along_rows = convolve1D(image, kernel, true);
  return convolve1D(along_rows, kernel, false);
}

std::vector<double> gaussianKernel2D(int ksize, double sigma_x, double sigma_y) {
  const int half = ksize / 2;
  const double norm = 1.0 / (6.283185307179586 * sigma_x * sigma_y);

  std::vector<double> kernel;
  for (int i = -half; i <= half; ++i) {
    for (int j = -half; j <= half; ++j) {
      const double exponent = static_cast<double>(-(j * j)) / (2.0 * sigma_x * sigma_x) -
                              static_cast<double>(i * i) / (2.0 * sigma_y * sigma_y);
      kernel.push_back(norm * static_cast<double>(my_exp(static_cast<float>(exponent))));
    }
  }
  normalise(kernel);
  return kernel;
}

Gray gaussianBlur2D(const Gray& image, int ksize, double sigma_x, double sigma_y) {
  const int half = ksize / 2;
  const std::vector<double> kernel = gaussianKernel2D(ksize, sigma_x, sigma_y);
  Gray result(image.width, image.height);
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      double sum = 0.0;
      for (int ky = -half; ky <= half; ++ky) {
        for (int kx = -half; kx <= half; ++kx) {
          const int xx = my_clamp(x + kx, 0, image.width - 1);
          const int yy = my_clamp(y + ky, 0, image.height - 1);
          const std::size_t tap = static_cast<std::size_t>((ky + half) * ksize + (kx + half));
          sum = static_cast<double>(image.at(xx, yy)) * kernel[tap] + sum;
        }
      }
      result.at(x, y) = roundToByte(sum);
    }
  }
  return result;
}

}  // namespace reference
