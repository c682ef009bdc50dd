#include "enhance/blurred_rows.h"

#include <algorithm>

#include "enhance/gaussian.h"
#include "kernels/blur.h"
#include "kernels/bytes.h"

BlurredRows::BlurredRows(const GrayRows& image, const std::uint8_t* table, double sigma)
    : image_(image), table_(table), width_(static_cast<std::size_t>(image.width)) {
  generateGaussianKernel1D(kTaps, sigma, kernel_.data());
  if (table != nullptr) curved_.resize(width_);
  for (auto& row : levels_) row.resize(width_ + 2 * kMargin);
  for (auto& row : alongRow_) row.resize(width_);
  result_.resize(width_);
}

void BlurredRows::next() {
  ++y_;
  const int last = image_.height - 1;
  while (read_ <= std::min(y_ + kHalf, last)) read(read_++);

  const float* rows[kTaps];
  for (int k = 0; k < kTaps; ++k) {
    rows[k] = alongRow_[index(std::clamp(y_ + k - kHalf, 0, last))].data();
  }
  kernels::blurRow(rows, kernel_.data(), width_, result_.data());
}

void BlurredRows::read(int y) {
  const std::uint8_t* bytes = image_.row(y);
  if (table_ != nullptr) {
    kernels::lookUp(bytes, width_, table_, curved_.data());
    bytes = curved_.data();
  }
  float* levels = levels_[index(y)].data() + kMargin;
  kernels::toFloats(bytes, width_, levels);
  std::fill_n(levels - kHalf, kHalf, levels[0]);
  std::fill_n(levels + width_, kHalf, levels[width_ - 1]);

  const float* views[kTaps];
  for (int k = 0; k < kTaps; ++k) views[k] = levels + k - kHalf;
  kernels::blurRow(views, kernel_.data(), width_, alongRow_[index(y)].data());
}
