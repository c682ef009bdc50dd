// The separable 11-tap blur and the sharpening that is made with it, row by row.
#ifndef TARVO_KERNELS_BLUR_H_
#define TARVO_KERNELS_BLUR_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kernels {

inline constexpr std::size_t kBlurTaps = 11;

/// Rows that are blurred across in one go, and rows that it takes: they are read once for all.
inline constexpr std::size_t kBlurRows = 8;
inline constexpr std::size_t kBlurRowsRead = kBlurRows + kBlurTaps - 1;

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
  static_assert(sizeof(Line) == kLine * sizeof(float));
  std::vector<Line> lines_;
};

/// Levels as floats, which the two passes of the blur read them as.
void toFloats(const std::uint8_t* levels, std::size_t count, float* to);

/// Blurs a row along its length. Each of `count` results is the weighted sum of eleven whole levels
/// 0 to 255, levels[i] to levels[i + 10]: what a sum in double precision, from levels[i] on,
/// narrowed to float and rounded half up, gives. `to` overlaps none of the count + 10 levels.
/// REQUIRES: taps[k] == taps[10 - k], none negative, adding up to 1 within rounding; or all of them
/// not a number, which gives 0 everywhere.
void blurAlong(const float* levels, const double taps[kBlurTaps], std::size_t count, float* to);

/// Blurs eight rows across: the same sums of the levels rows[r][i] to rows[r + 10][i], to to[r][i].
/// One row may stand for several of `rows`, but not be one of `to`. REQUIRES: taps as in blurAlong.
void blurAcross(const float* const rows[kBlurRowsRead], const double taps[kBlurTaps],
                std::size_t count, float* const to[kBlurRows]);

/// levels * alpha + blurred * beta, rounded half up and clamped to 0..255, in single precision.
/// REQUIRES: `blurred` from 0 to 255; |alpha| + |beta| at most 128.
void sharpenRow(const std::uint8_t* levels, const float* blurred, std::size_t count, float alpha,
                float beta, std::uint8_t* to);

}  // namespace kernels

#endif  // TARVO_KERNELS_BLUR_H_
