#include "kernels/diffusion.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "kernels/diffusion_tables.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/diffusion.cc"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernels/pack-inl.h"
#include "kernels/wavefront-inl.h"

HWY_BEFORE_NAMESPACE();
namespace kernels {
namespace HWY_NAMESPACE {

/// Levels less 128: in signed lanes a saturating addition is the clamp to 0..255.
using Signed8 = hn::RebindToSigned<Lanes8>;
using Level8 = hn::Vec<Signed8>;

/// Diffuses an image band by band.
///
/// A pixel's sum travels down the lanes. In the lane of the farthest row whose errors reach it, it
/// waits in a window of columns while that row's pixels pass and add their shares, left to right;
/// then it moves on by one lane and gets the shares of the next row; in its own lane it gets those
/// of the pixels to its left and is decided. So every sum is made in the order of the scan.
template <const auto& kTable>
class Diffuser {
  using Shape = DiffusionShape<kTable>;
  static constexpr int kRows = Shape::rows();
  static constexpr int kLag = Shape::lag();
  static constexpr int kOwnReach = Shape::reach(0);
  static constexpr std::size_t kWeights = Shape::weightCount();

  /// Columns before column 0 and after the last that the skewed rows and their blocks touch.
  static constexpr std::ptrdiff_t kMargin = kLag * (kBandRows + 1) + 2 * kBlockSteps;

 public:
  explicit Diffuser(std::size_t width)
      : width_(static_cast<std::ptrdiff_t>(width)),
        stride_(width_ + 2 * kMargin),
        levels_(static_cast<std::size_t>(stride_ * kBandRows)),
        white_(levels_.size()),
        carried_(static_cast<std::size_t>(stride_ * kRows), kBlack) {}

  void diffuse(const std::uint8_t* levels, std::size_t stride, std::size_t height,
               std::uint8_t* bits, std::size_t bitsStride) {
    const auto width = static_cast<std::size_t>(width_);
    for (int row = 0; row < kRows && static_cast<std::size_t>(row) < height; ++row) {
      std::uint8_t* sums = carried(row);
      const std::uint8_t* from = levels + static_cast<std::size_t>(row) * stride;
      for (std::size_t x = 0; x < width; ++x) sums[x] = from[x] ^ kBias;
    }
    for (std::size_t top = 0; top < height; top += kBandRows) {
      for (std::size_t row = 0; row < kBandRows; ++row) {
        const std::size_t y = top + row + kRows;
        if (y < height) std::memcpy(at(levels_, row), levels + y * stride, width);
      }
      advance();
      for (std::size_t row = 0; row < kBandRows && top + row < height; ++row) {
        Pack(at(white_, row), width, bits + (top + row) * bitsStride,
             [](auto d, auto v) HWY_ATTR { return hn::Ne(v, hn::Zero(d)); });
      }
    }
  }

 private:
  static constexpr std::uint8_t kBias = 0x80;
  static constexpr std::uint8_t kBlack = kBias;

  /// Sums of the pixels under way, by the rows that they are below the lane's own.
  struct State {
    HWY_INLINE State() {}  // spelt out for the target, see wavefront-inl.h

    Level8 window[std::size_t{kRows} + 1][2 * std::size_t{Shape::widestReach()} + 1];
    Level8 arriving[std::size_t{kRows}][std::size_t{kLag}];
    Level8 own[std::size_t{kOwnReach} + 1][std::size_t{kOwnReach} + 1];  ///< [dx][steps until due]
  };

  std::uint8_t* at(std::vector<std::uint8_t>& rows, std::size_t row) {
    return rows.data() + static_cast<std::ptrdiff_t>(row) * stride_ + kMargin;
  }

  /// Column 0 of the sums of row `row` of the next band.
  std::uint8_t* carried(int row) { return carried_.data() + row * stride_ + kMargin; }

  /// Takes the band in levels_ (from its row kRows on) and carried_ through all its columns.
  void advance() {
    State state;
    clear(state.window);
    clear(state.arriving);
    clear(state.own);

    // The first sums arrive a lag before their column's turn; the last leave when the last lane's
    // window has passed the end.
    const std::ptrdiff_t end = width_ + kLag * (kBandRows - 1) + Shape::widestReach();
    for (std::ptrdiff_t step = -kLag; step < end; step += kBlockSteps) {
      const bool whole = step >= kLag * (kBandRows - 1) && step + kBlockSteps <= width_;
      whole ? advanceBlock<false>(state, step) : advanceBlock<true>(state, step);
    }
  }

  template <bool kAtEdge>
  HWY_INLINE void advanceBlock(State& state, std::ptrdiff_t firstStep) {
    static constexpr Begun<kLag> kBegun;
    Vec8 block[kBlockSteps];
    LoadSkewed(at(levels_, 0) + Shape::reach(kRows), stride_, kLag, firstStep, block);
    for (std::ptrdiff_t i = 0; i < kBlockSteps; ++i) {
      const std::ptrdiff_t step = firstStep + i;
      Vec8 inside = hn::Zero(Lanes8());
      if constexpr (kAtEdge) inside = kBegun.between(step, 0, width_);
      block[i] = advanceStep<kAtEdge>(state, step, block[i], inside);
    }
    StoreSkewed(block, firstStep, kLag, stride_, at(white_, 0));
  }

  /// One column of every lane. `entering` are the levels of the pixels that the farthest shares
  /// reach first. Returns 255 in the lanes whose pixel is white.
  template <bool kAtEdge>
  HWY_INLINE Vec8 advanceStep(State& state, std::ptrdiff_t step, Vec8 entering, Vec8 inside) {
    const Lanes8 d;
    const Signed8 ds;
    const auto bias = hn::Set(d, kBias);

    // The sums that are due now.
    for (int dy = 1; dy < kRows; ++dy)
      state.window[dy][2 * Shape::reach(dy)] = state.arriving[dy][0];
    state.window[kRows][2 * Shape::reach(kRows)] = hn::BitCast(ds, hn::Xor(entering, bias));
    Level8 sum = state.arriving[0][0];
    for (int dx = kOwnReach; dx > 0; --dx) sum = hn::SaturatedAdd(sum, state.own[dx][0]);

    // Decide, and find the error's size: level, or 255 - level.
    const auto white = hn::VecFromMask(ds, hn::Gt(sum, hn::Zero(ds)));
    const Vec8 whiteBytes = hn::BitCast(d, white);
    Vec8 error = hn::Xor(hn::Xor(hn::BitCast(d, sum), bias), whiteBytes);
    if constexpr (kAtEdge) error = hn::And(error, inside);

    Level8 shares[kWeights];
    makeShares(error, white, shares, std::make_index_sequence<kWeights>());
    spread(state, shares, std::make_index_sequence<kTable.taps.size()>());

    moveAll(state, step, std::make_index_sequence<std::size_t{kRows}>());
    return whiteBytes;
  }

  template <std::size_t... kIndex>
  HWY_INLINE void moveAll(State& state, std::ptrdiff_t step, std::index_sequence<kIndex...>) {
    (move<static_cast<int>(kIndex) + 1>(state, step), ...);
  }

  /// Moves the sum that the row `kDy` above it has completed to the next lane. The last lane's is
  /// kept for the next band, whose first lane's comes from there.
  template <int kDy>
  HWY_INLINE void move(State& state, std::ptrdiff_t step) {
    const Lanes8 d;
    constexpr int kReach = Shape::reach(kDy);
    constexpr int kDelay = Shape::delay(kDy - 1);
    const Vec8 complete = hn::BitCast(d, state.window[kDy][0]);
    shift(state.window[kDy], std::make_index_sequence<2 * std::size_t{kReach}>());

    std::uint8_t* sums = carried(kDy - 1) + step - kReach;
    const Vec8 above = hn::LoadU(d, sums + kLag);
    hn::StoreU(complete, d, sums - kLag * (kBandRows - 1));
    shift(state.arriving[kDy - 1], std::make_index_sequence<std::size_t{kDelay} - 1>());
    state.arriving[kDy - 1][kDelay - 1] =
        hn::BitCast(Signed8(), hn::CombineShiftRightBytes<1>(d, above, complete));
  }

  /// By index: a pointer into the sums, as of a range, would keep them out of registers.
  template <std::size_t kRowCount, std::size_t kSize>
  static HWY_INLINE void clear(Level8 (&sums)[kRowCount][kSize]) {
    for (std::size_t row = 0; row < kRowCount; ++row) {
      for (std::size_t i = 0; i < kSize; ++i) sums[row][i] = hn::Zero(Signed8());
    }
  }

  /// Spelt out rather than a loop, so that the sums stay in registers.
  template <std::size_t kSize, std::size_t... kIndex>
  static HWY_INLINE void shift(Level8 (&sums)[kSize], std::index_sequence<kIndex...>) {
    ((sums[kIndex] = sums[kIndex + 1]), ...);
  }

  /// The share of the error for each distinct weight, truncated: the byte lanes are multiplied as
  /// 16-bit lanes, the even ones from the low and the odd ones from the high byte.
  template <std::size_t... kIndex>
  static HWY_INLINE void makeShares(Vec8 error, Level8 white, Level8 (&shares)[kWeights],
                                    std::index_sequence<kIndex...>) {
    const Signed8 ds;
    const hn::Repartition<std::uint16_t, Lanes8> d16;
    const auto highBytes = hn::Set(d16, std::uint16_t{0xFF00});
    const auto both = hn::BitCast(d16, error);
    const auto high = hn::And(both, highBytes);
    const auto low = hn::AndNot(highBytes, both);
    const auto share = [&](std::uint16_t factor) HWY_ATTR {
      const auto factors = hn::Set(d16, factor);
      const auto size = hn::BitCast(
          ds, hn::Or(hn::And(hn::MulHigh(high, factors), highBytes), hn::MulHigh(low, factors)));
      // A white pixel's error is negative.
      return hn::Sub(hn::Xor(size, white), white);
    };
    ((shares[kIndex] = share(Shape::factor(kIndex))), ...);
  }

  template <std::size_t... kIndex>
  static HWY_INLINE void spread(State& state, const Level8 (&shares)[kWeights],
                                std::index_sequence<kIndex...>) {
    for (int dx = 1; dx <= kOwnReach; ++dx) {
      for (int i = 0; i + 1 < dx; ++i) state.own[dx][i] = state.own[dx][i + 1];
      state.own[dx][dx - 1] = hn::Zero(Signed8());
    }
    (give<kTable.taps[kIndex].dx, kTable.taps[kIndex].dy>(
         state, shares[Shape::indexOfWeight(kTable.taps[kIndex].weight)]),
     ...);
  }

  template <int kDx, int kDy>
  static HWY_INLINE void give(State& state, Level8 share) {
    if constexpr (kDy == 0) {
      state.own[kDx][kDx - 1] = share;
    } else {
      Level8& sum = state.window[kDy][kDx + Shape::reach(kDy)];
      sum = hn::SaturatedAdd(sum, share);
    }
  }

  std::ptrdiff_t width_;
  std::ptrdiff_t stride_;
  std::vector<std::uint8_t> levels_;   ///< rows kRows to kRows + 15 of the band
  std::vector<std::uint8_t> white_;    ///< rows 0 to 15 of the band
  std::vector<std::uint8_t> carried_;  ///< sums of the first kRows rows of the next band, biased
};

template <const auto& kTable>
void Run(const std::uint8_t* levels, std::size_t stride, std::size_t width, std::size_t height,
         std::uint8_t* bits, std::size_t bitsStride) {
  Diffuser<kTable>(width).diffuse(levels, stride, height, bits, bitsStride);
}

void DiffuseErrors(Diffusion kernel, const std::uint8_t* levels, std::size_t stride,
                   std::size_t width, std::size_t height, std::uint8_t* bits,
                   std::size_t bitsStride) {
  switch (kernel) {
    case Diffusion::kFloydSteinberg:
      return Run<kFloydSteinberg>(levels, stride, width, height, bits, bitsStride);
    case Diffusion::kBurkes:
      return Run<kBurkes>(levels, stride, width, height, bits, bitsStride);
    case Diffusion::kStucki:
      return Run<kStucki>(levels, stride, width, height, bits, bitsStride);
    case Diffusion::kJarvisJudiceNinke:
      return Run<kJarvisJudiceNinke>(levels, stride, width, height, bits, bitsStride);
    case Diffusion::kSierra:
      return Run<kSierra>(levels, stride, width, height, bits, bitsStride);
    case Diffusion::kStevensonArce:
      return Run<kStevensonArce>(levels, stride, width, height, bits, bitsStride);
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kernels {

HWY_EXPORT(DiffuseErrors);

void diffuseErrors(Diffusion kernel, const std::uint8_t* levels, std::size_t stride,
                   std::size_t width, std::size_t height, std::uint8_t* bits,
                   std::size_t bitsStride) {
  HWY_DYNAMIC_DISPATCH(DiffuseErrors)(kernel, levels, stride, width, height, bits, bitsStride);
}

}  // namespace kernels
#endif  // HWY_ONCE
