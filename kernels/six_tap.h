// Error diffusion in single precision with a six-tap kernel of our own.
#ifndef TARVO_KERNELS_SIX_TAP_H_
#define TARVO_KERNELS_SIX_TAP_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kernels {

/// Diffuses an image to levels 0 and 255, thirty-two rows, a strip, at a time.
///
/// A pixel that with its carried error exceeds the threshold becomes 255. Errors are carried in
/// single precision, unclamped, and every sum is made in the order of the scan: rows from the top,
/// left to right. A white pixel that is not on the image's border carries less away for a black
/// pixel to its left and for one above it.
class SixTapDiffuser {
 public:
  static constexpr std::size_t kStripRows = 32;

  /// For an image of `width` x `height` pixels. Needs memory for about 70 rows of bytes; throws
  /// std::bad_alloc. REQUIRES: width > 0.
  SixTapDiffuser(std::size_t width, std::size_t height, float threshold);

  /// Where row `row`, 0 to 31, of the next strip is to be put before diffuseStrip: `width` bytes.
  /// Rows below the image need nothing.
  std::uint8_t* input(std::size_t row) { return rowAt(levels_, row); }

  /// Diffuses the next strip.
  void diffuseStrip();

  /// Row `row` of the strip diffused last, `width` bytes.
  const std::uint8_t* output(std::size_t row) { return rowAt(white_, row); }

 private:
  std::uint8_t* rowAt(std::vector<std::uint8_t>& rows, std::size_t row) const;

  std::size_t width_;
  std::size_t height_;
  float threshold_;
  std::size_t stride_;
  std::size_t top_ = 0;                ///< the next strip's first row
  std::vector<std::uint8_t> levels_;   ///< the rows of a strip, with margins
  std::vector<std::uint8_t> white_;    ///< the same of its result
  std::vector<float> carried_;         ///< errors for the first row of the next strip
  std::vector<std::uint8_t> lastRow_;  ///< the result's row above the next strip
};

}  // namespace kernels

#endif  // TARVO_KERNELS_SIX_TAP_H_
