#include "kernels/six_tap.h"

#include <algorithm>
#include <cstring>

#include "kernels/row_bytes.h"

// The vector unit of 32-bit ARM takes numbers below the smallest normal one for 0, whatever the
// processor is told: errors that have faded that far would lose their sign.
#ifdef __arm__
#undef HWY_DISABLED_TARGETS
#define HWY_DISABLED_TARGETS HWY_NEON
#endif

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/six_tap.cc"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernels/wavefront-inl.h"

#ifndef TARVO_KERNELS_SIX_TAP_BAND_
#define TARVO_KERNELS_SIX_TAP_BAND_
namespace kernels {

/// A band: pointers to column 0 of rows that have a margin of kSixTapMargin columns on both sides.
struct SixTapBand {
  const std::uint8_t* levels;
  std::uint8_t* white;
  std::ptrdiff_t stride;        ///< of `levels` and `white`
  float* carried;               ///< in: errors for the first row; out: for the next band's first
  const std::uint8_t* lastRow;  ///< the result's row above the band
  std::ptrdiff_t width;
  std::ptrdiff_t top;     ///< the band's first row
  std::ptrdiff_t height;  ///< of the image
  float threshold;
};

constexpr std::ptrdiff_t kSixTapLag = 4;
constexpr std::ptrdiff_t kSixTapMargin = kSixTapLag * 17 + 32;

}  // namespace kernels
#endif

HWY_BEFORE_NAMESPACE();
namespace kernels {
namespace HWY_NAMESPACE {

/// The float lanes of a band: one vector or several, lanes in the order of the byte lanes.
using Floats = hn::CappedTag<float, kBandRows>;
using Ints = hn::RebindToSigned<Floats>;
using VecF = hn::Vec<Floats>;
using VecI = hn::Vec<Ints>;

static_assert(SixTapDiffuser::kStripRows == 2 * kBandRows, "an upper and a lower band");

constexpr std::ptrdiff_t kLanes = hn::MaxLanes(Floats());
constexpr std::ptrdiff_t kParts = kBandRows / kLanes;

/// One value for each row of the band.
struct Column {
  HWY_INLINE Column() {}  // spelt out for the target, see wavefront-inl.h

  VecF part[kParts];
};

/// Quirk: dropped-error. Two taps are negative and the sum is 0.940002, both deliberately.
constexpr float kRight = 0.505786f;
constexpr float kRight2 = -0.052926f;
constexpr float kBelowLeft2 = 0.226194f;
constexpr float kBelowLeft = 0.128835f;
constexpr float kBelow = 0.243191f;
constexpr float kBelowRight = -0.111078f;

/// How much less of a white pixel's value is carried away for each black neighbour.
constexpr float kBlackNeighbour = 0.1427f;

/// What a white pixel costs, by its number of black neighbours; padded to a vector.
constexpr float kCost[4] = {255.0f * (1.0f - 0.0f), 255.0f * (1.0f - kBlackNeighbour),
                            255.0f * (1.0f - (kBlackNeighbour + kBlackNeighbour)), 0.0f};

/// Byte lanes in memory, to be read part by part.
struct LaneBytes {
  alignas(16) std::uint8_t bytes[kBandRows];

  explicit LaneBytes(Vec8 v) { hn::Store(v, Lanes8(), bytes); }

  HWY_INLINE VecI ints(std::ptrdiff_t part) const {
    const hn::Rebind<std::uint8_t, Ints> d;
    return hn::PromoteTo(Ints(), hn::Load(d, bytes + part * kLanes));
  }

  /// All bits of the lanes whose byte is 255, none of those whose byte is 0.
  HWY_INLINE VecF masks(std::ptrdiff_t part) const {
    const hn::Rebind<std::int8_t, Ints> d;
    const auto* from = reinterpret_cast<const std::int8_t*>(bytes + part * kLanes);
    return hn::BitCast(Floats(), hn::PromoteTo(Ints(), hn::Load(d, from)));
  }
};

/// Masks of kCount parts from kFirst on as byte lanes.
template <std::ptrdiff_t kFirst = 0, std::ptrdiff_t kCount = kParts>
HWY_INLINE auto bytesOf(const Column& masks) {
  if constexpr (kCount == 1) {
    const hn::Rebind<std::int8_t, Ints> d;
    return hn::DemoteTo(d, hn::BitCast(Ints(), masks.part[kFirst]));
  } else {
    const hn::FixedTag<std::int8_t, static_cast<std::size_t>(kCount * kLanes)> d;
    constexpr std::ptrdiff_t kHalf = kCount / 2;
    return hn::Combine(d, bytesOf<kFirst + kHalf, kHalf>(masks), bytesOf<kFirst, kHalf>(masks));
  }
}

HWY_INLINE auto indices(VecI v) { return hn::IndicesFromVec(Floats(), v); }

class SixTap {
 public:
  explicit SixTap(const SixTapBand& band) : band_(band) {
    const Lanes8 d8;
    alignas(16) std::uint8_t inner[kBandRows];
    for (std::ptrdiff_t lane = 0; lane < kBandRows; ++lane) {
      const std::ptrdiff_t y = band.top + kBandRows - 1 - lane;
      inner[lane] = y >= 1 && y < band.height - 1 ? 255 : 0;
    }
    innerRows_ = hn::Load(d8, inner);
    alignas(64) std::int32_t next[kLanes];
    for (std::int32_t lane = 0; lane < kLanes; ++lane) {
      next[lane] = static_cast<std::int32_t>((lane + 1) % kLanes);
    }
    nextLane_ = hn::Load(Ints(), next);
  }

  /// Takes the band through all its columns.
  HWY_INLINE void advance() const {
    State state;
    clear(state);
    for (std::ptrdiff_t step = kFirstStep; step < end(); step += kBlockSteps) {
      advanceBlock(state, step);
    }
  }

  /// Takes two bands through all their columns, `lower` so far behind that what `upper` hands down
  /// is there. Within the image their steps take turns: each waits long for its own sums.
  static HWY_INLINE void advanceBoth(const SixTap& upper, const SixTap& lower) {
    static_assert(kBehind % kBlockSteps == 0 && kBehind >= kSixTapLag * kBandRows + kBlockSteps);
    State upperState;
    State lowerState;
    clear(upperState);
    clear(lowerState);
    for (std::ptrdiff_t step = kFirstStep; step < upper.end() + kBehind; step += kBlockSteps) {
      const std::ptrdiff_t lowerStep = step - kBehind;
      if (upper.isInner(step) && lower.isInner(lowerStep)) {
        Vec8 upperBlock[kBlockSteps];
        Vec8 lowerBlock[kBlockSteps];
        upper.load(step, upperBlock);
        lower.load(lowerStep, lowerBlock);
        for (std::ptrdiff_t i = 0; i < kBlockSteps; ++i) {
          upperBlock[i] = upper.advanceStep<false>(upperState, step + i, upperBlock[i]);
          lowerBlock[i] = lower.advanceStep<false>(lowerState, lowerStep + i, lowerBlock[i]);
        }
        upper.store(upperBlock, step);
        lower.store(lowerBlock, lowerStep);
      } else {
        if (step < upper.end()) upper.advanceBlock(upperState, step);
        if (lowerStep >= kFirstStep) lower.advanceBlock(lowerState, lowerStep);
      }
    }
  }

 private:
  /// Columns to the left of a pixel whose sums in the row below its error still changes.
  static constexpr std::ptrdiff_t kWindow = 2;

  /// Steps from when a sum is complete in the row above to when its row first needs it, which is
  /// one step before its pixel's turn.
  static constexpr std::ptrdiff_t kDelay = kSixTapLag - kWindow - 1;

  static constexpr std::ptrdiff_t kFirstStep = -kSixTapLag;

  /// Steps of a lower band behind the upper: those of the rows between their first ones, and a
  /// block, which is when results are stored.
  static constexpr std::ptrdiff_t kBehind = kSixTapLag * kBandRows + kBlockSteps;

  struct State {
    HWY_INLINE State() {}  // spelt out for the target, see wavefront-inl.h

    Column window[kWindow + 1];  ///< sums of the row below, from column x - 2 on, before x's shares
    Column arriving[kDelay];     ///< complete sums, by the steps until they are due
    Column right2;               ///< share for the pixel after the next
    Column cell;                 ///< sum of the pixel whose turn is next but one share
    Column left;                 ///< mask: the pixel to the left is white
    Vec8 white[kSixTapLag];      ///< the last results, the oldest first
  };

  // Element by element: a pointer into the state, as of a range, would keep it out of registers.
  static HWY_INLINE void clear(State& state) {
    const Column zero = zeroColumn();
    for (std::ptrdiff_t i = 0; i <= kWindow; ++i) state.window[i] = zero;
    for (std::ptrdiff_t i = 0; i < kDelay; ++i) state.arriving[i] = zero;
    state.cell = zero;
    state.right2 = zero;
    state.left = zero;
    for (std::ptrdiff_t i = 0; i < kSixTapLag; ++i) state.white[i] = hn::Zero(Lanes8());
  }

  static HWY_INLINE Column zeroColumn() {
    Column zero;
    for (std::ptrdiff_t p = 0; p < kParts; ++p) zero.part[p] = hn::Zero(Floats());
    return zero;
  }

  /// Past the last step.
  HWY_INLINE std::ptrdiff_t end() const {
    return band_.width + kSixTapLag * (kBandRows - 1) + kWindow;
  }

  /// Whether no row is at its first or last column or outside during the block from `step` on.
  HWY_INLINE bool isInner(std::ptrdiff_t step) const {
    return step > kSixTapLag * (kBandRows - 1) && step + kBlockSteps <= band_.width - 1;
  }

  HWY_INLINE void load(std::ptrdiff_t step, Vec8 (&block)[kBlockSteps]) const {
    LoadSkewed(band_.levels, band_.stride, kSixTapLag, step, block);
  }

  HWY_INLINE void store(Vec8 (&block)[kBlockSteps], std::ptrdiff_t step) const {
    StoreSkewed(block, step, kSixTapLag, band_.stride, band_.white);
  }

  HWY_INLINE void advanceBlock(State& state, std::ptrdiff_t step) const {
    isInner(step) ? advanceBlock<false>(state, step) : advanceBlock<true>(state, step);
  }

  template <bool kAtEdge>
  HWY_INLINE void advanceBlock(State& state, std::ptrdiff_t step) const {
    Vec8 block[kBlockSteps];
    load(step, block);
    for (std::ptrdiff_t i = 0; i < kBlockSteps; ++i) {
      block[i] = advanceStep<kAtEdge>(state, step + i, block[i]);
    }
    store(block, step);
  }

  /// One column of every row. Returns 255 in the lanes whose pixel is white.
  template <bool kAtEdge>
  HWY_INLINE Vec8 advanceStep(State& state, std::ptrdiff_t step, Vec8 levelBytes) const {
    static constexpr Begun<kSixTapLag> kBegun;
    const Floats d;
    const Lanes8 d8;

    // Where neighbours count, and how many are black: above alone, and with the one to the left.
    Vec8 counts = innerRows_;
    Vec8 inside = hn::Zero(d8);
    if constexpr (kAtEdge) {
      counts = hn::And(counts, kBegun.between(step, 1, band_.width - 1));
      inside = kBegun.between(step, 0, band_.width);
    }
    const Vec8 above =
        hn::CombineShiftRightBytes<1>(d8, hn::LoadU(d8, band_.lastRow + step), state.white[0]);
    const auto one = hn::Set(d8, std::uint8_t{1});
    const LaneBytes levels(levelBytes);
    const LaneBytes blackAbove(hn::And(hn::AndNot(above, counts), one));
    const LaneBytes blackLeft(hn::And(counts, one));
    const LaneBytes insideBytes(inside);

    const auto costs = hn::LoadDup128(d, kCost);
    const auto threshold = hn::Set(d, band_.threshold);
    Column white;
    Column complete;
    for (std::ptrdiff_t p = 0; p < kParts; ++p) {
      const VecI ifLeftIsWhite = blackAbove.ints(p);
      const VecI ifLeftIsBlack = hn::Add(ifLeftIsWhite, blackLeft.ints(p));
      const VecF cost =
          hn::IfVecThenElse(state.left.part[p], hn::TableLookupLanes(costs, indices(ifLeftIsWhite)),
                            hn::TableLookupLanes(costs, indices(ifLeftIsBlack)));

      const VecF value = hn::Add(state.cell.part[p], hn::ConvertTo(d, levels.ints(p)));
      const auto isWhite = hn::Gt(value, threshold);
      VecF error = hn::IfThenElse(isWhite, hn::Sub(value, cost), value);
      if constexpr (kAtEdge) error = hn::And(error, insideBytes.masks(p));
      white.part[p] = hn::VecFromMask(d, isWhite);

      const auto share = [&](float weight) HWY_ATTR { return hn::Mul(error, hn::Set(d, weight)); };
      // The next pixel's sum: from above, then from two to its left, then from its left.
      const VecF next = hn::Add(state.right2.part[p], state.arriving[0].part[p]);
      state.cell.part[p] = hn::Add(share(kRight), next);
      state.right2.part[p] = share(kRight2);
      complete.part[p] = hn::Add(share(kBelowLeft2), state.window[0].part[p]);
      state.window[0].part[p] = hn::Add(share(kBelowLeft), state.window[1].part[p]);
      state.window[1].part[p] = hn::Add(share(kBelow), state.window[2].part[p]);
      state.window[2].part[p] = share(kBelowRight);
    }
    state.left = white;

    // Complete sums move down a lane; the last lane's are for the next band.
    float* carried = band_.carried + step - kWindow;
    Column moved;
    moveDown(complete, carried[kSixTapLag], moved);
    carried[-kSixTapLag * (kBandRows - 1)] = hn::GetLane(complete.part[0]);
    for (std::ptrdiff_t i = 0; i + 1 < kDelay; ++i) {
      state.arriving[i] = state.arriving[i + 1];
    }
    state.arriving[kDelay - 1] = moved;

    const Vec8 whiteBytes = hn::BitCast(d8, bytesOf(white));
    for (std::ptrdiff_t i = 0; i + 1 < kSixTapLag; ++i) state.white[i] = state.white[i + 1];
    state.white[kSixTapLag - 1] = whiteBytes;
    return whiteBytes;
  }

  /// Each row's value goes to the row below it; `first` is the first row's.
  HWY_INLINE void moveDown(const Column& from, float first, Column& to) const {
    const Floats d;
    const auto next = indices(nextLane_);
    const auto last = hn::Not(hn::FirstN(d, static_cast<std::size_t>(kLanes - 1)));
    VecF entering = hn::Set(d, first);
    for (std::ptrdiff_t p = kParts - 1; p >= 0; --p) {
      const VecF turned = hn::TableLookupLanes(from.part[p], next);
      to.part[p] = hn::IfThenElse(last, entering, turned);
      entering = turned;
    }
  }

  const SixTapBand& band_;
  Vec8 innerRows_;  ///< 255 in the rows that are neither the image's first nor its last
  VecI nextLane_;
};

void DiffuseSixTapBands(const SixTapBand& upper, const SixTapBand& lower) {
  if constexpr (kParts == 1) {
    SixTap::advanceBoth(SixTap(upper), SixTap(lower));
  } else {  // the parts of a column already take turns
    SixTap(upper).advance();
    SixTap(lower).advance();
  }
}

}  // namespace HWY_NAMESPACE
}  // namespace kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace kernels {

HWY_EXPORT(DiffuseSixTapBands);

SixTapDiffuser::SixTapDiffuser(std::size_t width, std::size_t height, float threshold)
    : width_(width),
      height_(height),
      threshold_(threshold),
      stride_(width + 2 * kSixTapMargin),
      levels_(rowBytes(kStripRows, stride_)),
      white_(levels_.size()),
      carried_(stride_),
      lastRow_(stride_) {}

void SixTapDiffuser::diffuseStrip() {
  constexpr std::size_t kHalf = kStripRows / 2;
  const auto half = [this](std::size_t row, const std::uint8_t* rowAbove) {
    return SixTapBand{.levels = rowAt(levels_, row),
                      .white = rowAt(white_, row),
                      .stride = static_cast<std::ptrdiff_t>(stride_),
                      .carried = carried_.data() + kSixTapMargin,
                      .lastRow = rowAbove,
                      .width = static_cast<std::ptrdiff_t>(width_),
                      .top = static_cast<std::ptrdiff_t>(top_ + row),
                      .height = static_cast<std::ptrdiff_t>(height_),
                      .threshold = threshold_};
  };
  HWY_DYNAMIC_DISPATCH(DiffuseSixTapBands)
  (half(0, rowAt(lastRow_, 0)), half(kHalf, output(kHalf - 1)));
  std::memcpy(rowAt(lastRow_, 0), output(kStripRows - 1), width_);
  top_ += kStripRows;
}

std::uint8_t* SixTapDiffuser::rowAt(std::vector<std::uint8_t>& rows, std::size_t row) const {
  return rows.data() + row * stride_ + kSixTapMargin;
}

}  // namespace kernels
#endif  // HWY_ONCE
