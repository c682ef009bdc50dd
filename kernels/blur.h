// The separable 11-tap blur and the sharpening that is made with it, row by row.
#ifndef TARVO_KERNELS_BLUR_H_
#define TARVO_KERNELS_BLUR_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kernels {

inline constexpr std::size_t kBlurTaps = 11;

/// Floats that begin where a cache line does: rows that do are read fastest.
class FloatRow {
 public:
  /// Makes room for `count` floats. Throws std::bad_alloc.
  void resize(std::size_t count) { lines_.resize((count + kLine - 1) / kLine); }
  float* data() { return lines_.empty() ? nullptr : lines_.front().floats; }
  const float* data() const { return lines_.empty() ? nullptr : lines_.front().floats; }

  static constexpr std::size_t kLine = 16;  ///< floats in a cache line

 private:
  struct alignas(64) Line {
    float floats[kLine];
  };
  std::vector<Line> lines_;
};

/// Levels as floats, which the two passes of the blur read them as.
void toFloats(const std::uint8_t* levels, std::size_t count, float* to);

/// The weighted sum of eleven rows of whole levels 0 to 255: the result is what a sum in double
/// precision, from rows[0] on, narrowed to float and rounded half up, gives. Rows may overlap one
/// another (a pass along a row is eleven views of it), not the result.
/// REQUIRES: taps[k] == taps[10 - k], none negative, adding up to 1 within rounding; or any of them
/// not a number.
void blurRow(const float* const rows[kBlurTaps], const double taps[kBlurTaps], std::size_t count,
             float* to);

/// levels * alpha + blurred * beta, rounded half up and clamped to 0..255.
/// REQUIRES: |alpha| and |beta| below a million.
void sharpenRow(const float* levels, const float* blurred, std::size_t count, float alpha,
                float beta, std::uint8_t* to);

}  // namespace kernels

#endif  // TARVO_KERNELS_BLUR_H_
