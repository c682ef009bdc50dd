#include "enhance/blurred_rows.h"

#include <algorithm>

#include "enhance/gaussian.h"
#include "kernels/blur.h"
#include "kernels/bytes.h"

static_assert(BlurredRows::kTaps == kernels::kBlurTaps);

BlurredRows::BlurredRows(const LumoImage& image, const std::uint8_t* table, double sigma)
    : image_(image), table_(table), result_(static_cast<std::size_t>(image.width)) {
  generateGaussianKernel1D(kTaps, sigma, kernel_.data());
  if (table != nullptr) curved_.resize(result_.size());
  for (auto& row : levels_) row.resize(result_.size() + 2 * kHalf);
  for (auto& row : alongRow_) row.resize(result_.size());
}

void BlurredRows::next() {
  ++y_;
  const int last = image_.height - 1;
  while (read_ <= std::min(y_ + kHalf, last)) read(read_++);

  const float* rows[kTaps];
  for (int k = 0; k < kTaps; ++k) {
    rows[k] = alongRow_[index(std::clamp(y_ + k - kHalf, 0, last))].data();
  }
  kernels::blurRow(rows, kernel_.data(), result_.size(), result_.data());
}

void BlurredRows::read(int y) {
  const std::uint8_t* bytes = image_.data + std::int64_t{y} * image_.width;
  if (table_ != nullptr) {
    kernels::lookUp(bytes, curved_.size(), table_, curved_.data());
    bytes = curved_.data();
  }
  std::vector<float>& levels = levels_[index(y)];
  kernels::toFloats(bytes, result_.size(), levels.data() + kHalf);
  std::fill_n(levels.begin(), kHalf, levels[kHalf]);
  std::fill_n(levels.end() - kHalf, kHalf, levels[levels.size() - kHalf - 1]);

  const float* views[kTaps];
  for (std::size_t k = 0; k < kTaps; ++k) views[k] = levels.data() + k;
  kernels::blurRow(views, kernel_.data(), result_.size(), alongRow_[index(y)].data());
}
