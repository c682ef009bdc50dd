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

/// Blurs the rows of an image one after another, a few at a time. The first pass, along a row, is
/// made as rows are read and its results are kept as long as the second pass, across rows, needs
/// them.
class BlurredRows {
 public:
  static constexpr int kTaps = static_cast<int>(kernels::kBlurTaps);

  /// `image` is read through the 256-byte `table` unless that is null; both must outlive this
  /// object. `sigma` as in generateGaussianKernel1D. REQUIRES: width and height above 0.
  BlurredRows(const GrayRows& image, const std::uint8_t* table, double sigma);

  /// Goes on to the next row, from row 0. Rows of the image above it are not read again.
  /// REQUIRES: not at the last row.
  void next();

  /// The row as it was before the blur, `width` levels.
  const std::uint8_t* levels() const;

  /// The row after the blur, `width` whole levels.
  const float* blurred() const { return results_[static_cast<std::size_t>(y_ % kRows)].data(); }

 private:
  static constexpr int kHalf = kTaps / 2;
  static constexpr int kRows = static_cast<int>(kernels::kBlurRows);
  static constexpr int kRowsKept = static_cast<int>(kernels::kBlurRowsRead);
  static constexpr std::size_t kMargin = kernels::FloatRow::kLine;  ///< room for the repeated edge

  static std::size_t index(int y) { return static_cast<std::size_t>(y % kRowsKept); }

  /// Reads row `y` and blurs it along its length.
  void read(int y);

  const GrayRows image_;
  const std::uint8_t* table_;
  std::array<double, kTaps> kernel_;
  std::array<std::vector<std::uint8_t>, kRowsKept> curved_;  ///< rows through the table
  kernels::FloatRow levels_;                                 ///< one row, edges repeated
  std::array<kernels::FloatRow, kRowsKept> alongRow_;        ///< rows after the first pass
  std::array<kernels::FloatRow, kRows> results_;             ///< rows after both
  std::size_t width_;
  int y_ = -1;
  int read_ = 0;  ///< rows read so far
};

#endif  // TARVO_ENHANCE_BLURRED_ROWS_H_
