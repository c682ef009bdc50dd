// The 11-tap separable blur of an image, handed out row by row: what comes after it needs no whole
// blurred image, only the row at hand.
#ifndef TARVO_ENHANCE_BLURRED_ROWS_H_
#define TARVO_ENHANCE_BLURRED_ROWS_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "enhance/gray_rows.h"
#include "kernels/blur.h"

/// Blurs the rows of an image one after another. Both passes read rows of floats, which hold whole
/// levels; a few of each are kept.
class BlurredRows {
 public:
  static constexpr int kTaps = static_cast<int>(kernels::kBlurTaps);

  /// `image` is read through the 256-byte `table` unless that is null; both must outlive this
  /// object. `sigma` as in generateGaussianKernel1D. REQUIRES: width and height above 0.
  BlurredRows(const GrayRows& image, const std::uint8_t* table, double sigma);

  /// Goes on to the next row, from row 0. REQUIRES: not at the last row.
  void next();

  /// The row as it was before the blur, `width` floats.
  const float* levels() const { return levels_[index(y_)].data() + kMargin; }

  /// The row after the blur, `width` floats.
  const float* blurred() const { return result_.data(); }

 private:
  static constexpr int kHalf = kTaps / 2;
  static constexpr std::size_t kMargin = kernels::FloatRow::kLine;  ///< room for the repeated edge

  static std::size_t index(int y) { return static_cast<std::size_t>(y % kTaps); }

  /// Reads row `y` and blurs it along its length.
  void read(int y);

  const GrayRows image_;
  const std::uint8_t* table_;
  std::array<double, kTaps> kernel_;
  std::vector<std::uint8_t> curved_;               ///< a row through the table
  std::array<kernels::FloatRow, kTaps> levels_;    ///< rows y % 11, edges repeated on both sides
  std::array<kernels::FloatRow, kTaps> alongRow_;  ///< the same after the first pass
  kernels::FloatRow result_;
  std::size_t width_;
  int y_ = -1;
  int read_ = 0;  ///< rows read so far
};

#endif  // TARVO_ENHANCE_BLURRED_ROWS_H_
