// What the two error diffusions share. Included once for each target.
//
// Error diffusion goes along a row pixel after pixel, but not down the page: when each row starts a
// few columns, the lag, behind the row above, every input of a pixel is ready when its turn comes.
// So sixteen rows, a band, advance together, one in each byte lane, a column a step: at step t row
// r of the band is at column t - lag * r. Lane 15 is row 0 and lane 0 is row 15, so that the row
// that goes on to the next band is the first byte of a store, and the row that comes from the band
// before is the first byte of a load.
//
// A structure that holds vectors has its constructor spelt out, empty as it is: the one that the
// compiler would add is made for the build's own target, which on ARM can't take in the vectors'.

#if defined(TARVO_KERNELS_WAVEFRONT_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef TARVO_KERNELS_WAVEFRONT_INL_H_
#undef TARVO_KERNELS_WAVEFRONT_INL_H_
#else
#define TARVO_KERNELS_WAVEFRONT_INL_H_
#endif

#include <hwy/highway.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace kernels {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

constexpr std::ptrdiff_t kBandRows = 16;

/// Steps between two transpositions.
constexpr std::ptrdiff_t kBlockSteps = 16;

using Lanes8 = hn::FixedTag<std::uint8_t, kBandRows>;
using Vec8 = hn::Vec<Lanes8>;

/// Swaps rows and columns of 16 x 16 bytes.
HWY_INLINE void Transpose(Vec8 (&v)[16]) {
  const Lanes8 d;
  for (int round = 0; round < 4; ++round) {
    Vec8 mixed[16];
    for (std::ptrdiff_t i = 0; i < 8; ++i) {
      mixed[2 * i] = hn::InterleaveLower(d, v[i], v[i + 8]);
      mixed[2 * i + 1] = hn::InterleaveUpper(d, v[i], v[i + 8]);
    }
    for (std::ptrdiff_t i = 0; i < 16; ++i) v[i] = mixed[i];
  }
}

/// Reads the columns that the rows of a band are at during a block of steps. `rows` is column 0 of
/// the first row, `stride` the bytes between rows; the result is one vector a step.
HWY_INLINE void LoadSkewed(const std::uint8_t* rows, std::ptrdiff_t stride, std::ptrdiff_t lag,
                           std::ptrdiff_t firstStep, Vec8 (&steps)[kBlockSteps]) {
  for (std::ptrdiff_t lane = 0; lane < kBandRows; ++lane) {
    const std::ptrdiff_t row = kBandRows - 1 - lane;
    steps[lane] = hn::LoadU(Lanes8(), rows + row * stride + firstStep - lag * row);
  }
  Transpose(steps);
}

/// The inverse of LoadSkewed; overwrites `steps`.
HWY_INLINE void StoreSkewed(Vec8 (&steps)[kBlockSteps], std::ptrdiff_t firstStep,
                            std::ptrdiff_t lag, std::ptrdiff_t stride, std::uint8_t* rows) {
  Transpose(steps);
  for (std::ptrdiff_t lane = 0; lane < kBandRows; ++lane) {
    const std::ptrdiff_t row = kBandRows - 1 - lane;
    hn::StoreU(steps[lane], Lanes8(), rows + row * stride + firstStep - lag * row);
  }
}

/// Which lanes have begun their row at a step: 255 in those whose column is 0 or more.
template <std::ptrdiff_t kLag>
class Begun {
 public:
  constexpr Begun() {
    for (std::ptrdiff_t step = 0; step <= kLast; ++step) {
      for (std::ptrdiff_t lane = 0; lane < kBandRows; ++lane) {
        const bool begun = step >= 1 && step - 1 >= kLag * (kBandRows - 1 - lane);
        lanes_[static_cast<std::size_t>(step)][static_cast<std::size_t>(lane)] = begun ? 255 : 0;
      }
    }
  }

  HWY_INLINE Vec8 at(std::ptrdiff_t step) const {
    const std::ptrdiff_t index = std::clamp<std::ptrdiff_t>(step + 1, 0, kLast);
    return hn::Load(Lanes8(), lanes_[static_cast<std::size_t>(index)].data());
  }

  /// The lanes whose column is in first <= column < end.
  HWY_INLINE Vec8 between(std::ptrdiff_t step, std::ptrdiff_t first, std::ptrdiff_t end) const {
    return hn::AndNot(at(step - end), at(step - first));
  }

 private:
  static constexpr std::ptrdiff_t kLast = kLag * (kBandRows - 1) + 1;
  static constexpr auto kSteps = static_cast<std::size_t>(kLast + 1);
  alignas(16) std::array<std::array<std::uint8_t, kBandRows>, kSteps> lanes_{};
};

}  // namespace HWY_NAMESPACE
}  // namespace kernels
HWY_AFTER_NAMESPACE();

#endif  // TARVO_KERNELS_WAVEFRONT_INL_H_
