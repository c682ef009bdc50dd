#include "enhance/blurred_rows.h"

#include <algorithm>

#include "enhance/gaussian.h"
#include "kernels/blur.h"
#include "kernels/bytes.h"

BlurredRows::BlurredRows(const GrayRows& image, const std::uint8_t* table, double sigma)
    : image_(image), table_(table), width_(static_cast<std::size_t>(image.width)) {
  generateGaussianKernel1D(kTaps, sigma, kernel_.data());
  if (table != nullptr) {
    for (auto& row : curved_) row.resize(width_);
  }
  levels_.resize(width_ + 2 * kMargin);
  for (auto& row : alongRow_) row.resize(width_);
  for (auto& row : results_) row.resize(width_);
}

void BlurredRows::next() {
  ++y_;
  if (y_ % kRows != 0) return;

  const int last = image_.height - 1;
  while (read_ <= last && read_ < y_ + kRows + kHalf) read(read_++);

  // Beyond the image its first and last rows are repeated; results beyond it are made for nothing.
  const float* rows[kRowsKept];
  for (int k = 0; k < kRowsKept; ++k) {
    rows[k] = alongRow_[index(std::clamp(y_ - kHalf + k, 0, last))].data();
  }
  float* results[kRows];
  std::transform(results_.begin(), results_.end(), results, [](auto& row) { return row.data(); });
  kernels::blurAcross(rows, kernel_.data(), width_, results);
}

const std::uint8_t* BlurredRows::levels() const {
  return table_ == nullptr ? image_.row(y_) : curved_[index(y_)].data();
}

void BlurredRows::read(int y) {
  const std::uint8_t* bytes = image_.row(y);
  if (table_ != nullptr) {
    std::uint8_t* curved = curved_[index(y)].data();
    kernels::lookUp(bytes, width_, table_, curved);
    bytes = curved;
  }
  float* levels = levels_.data() + kMargin;
  kernels::toFloats(bytes, width_, levels);
  std::fill_n(levels - kHalf, kHalf, levels[0]);
  std::fill_n(levels + width_, kHalf, levels[width_ - 1]);
  kernels::blurAlong(levels - kHalf, kernel_.data(), width_, alongRow_[index(y)].data());
}
