// The vectorised loops against the plain way, on whichever of this machine's vector units.
#include <hwy/highway.h>

#include <array>
#include <string>
#include <vector>

#include "enhance/gaussian.h"
#include "enhance/tattoo.h"
#include "enhance/unsharp_mask.h"
#include "fuzz/finding.h"
#include "fuzz/input.h"
#include "fuzz/target.h"
#include "kernels/bits.h"
#include "kernels/bytes.h"
#include "kernels/diffusion.h"
#include "kernels/six_tap.h"
#include "reference/dither.h"
#include "reference/gaussian.h"
#include "reference/six_tap_diffusion.h"
#include "reference/tattoo.h"
#include "reference/unsharp.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

/// Sends the kernels to one of the vector units that they were built for and this processor has.
class ChosenTarget {
 public:
  explicit ChosenTarget(std::uint8_t which) {
    static const std::vector<std::int64_t> all = [] {
      std::vector<std::int64_t> targets = hwy::SupportedAndGeneratedTargets();
      targets.push_back(HWY_STATIC_TARGET);
      return targets;
    }();
    hwy::GetChosenTarget().Update(all[which % all.size()]);
  }
  ~ChosenTarget() { hwy::GetChosenTarget().DeInit(); }
  ChosenTarget(const ChosenTarget&) = delete;
  ChosenTarget& operator=(const ChosenTarget&) = delete;
};

/// Bytes at some distance from where memory is aligned, whose end is the end of their block.
class Unaligned {
 public:
  Unaligned(const Bytes& bytes, std::size_t distance) : block_(distance), distance_(distance) {
    block_.insert(block_.end(), bytes.begin(), bytes.end());
    block_.shrink_to_fit();
  }
  std::uint8_t* data() { return block_.data() + distance_; }
  Bytes content() const {
    return {block_.begin() + static_cast<std::ptrdiff_t>(distance_), block_.end()};
  }

 private:
  Bytes block_;
  std::size_t distance_;
};

void requireSame(const Bytes& result, const Bytes& expected, const char* kernel) {
  if (result == expected) return;
  std::size_t at = 0;
  while (at < result.size() && at < expected.size() && result[at] == expected[at]) ++at;
  fuzz::finding(std::string(kernel) + ": another byte at " + std::to_string(at) + " of " +
                std::to_string(expected.size()));
}

Bytes drawBytes(fuzz::Input& input, std::size_t count) {
  Bytes bytes(count);
  const bool nearThreshold = (input.byte() & 1) != 0;
  const std::span<const std::uint8_t> motif = input.take(count);
  for (std::size_t i = 0; i < count && !motif.empty(); ++i) {
    const std::uint8_t byte = motif[i % motif.size()];
    bytes[i] = nearThreshold ? static_cast<std::uint8_t>(126 + byte % 5) : byte;
  }
  return bytes;
}

reference::Gray drawPage(fuzz::Input& input) {
  const int width = 1 + input.byte() % 150;
  const int height = 1 + input.byte() % 40;
  return {width, height, drawBytes(input, static_cast<std::size_t>(width * height))};
}

Bytes packed(const Bytes& row, auto isSet, bool padding) {
  Bytes bits((row.size() + 7) / 8);
  for (std::size_t x = 0; x < bits.size() * 8; ++x) {
    const bool set = x < row.size() ? isSet(x) : padding;
    if (set) bits[x / 8] = static_cast<std::uint8_t>(bits[x / 8] | 0x80 >> (x % 8));
  }
  return bits;
}

// Rows

void packZeros(const Bytes& row, std::size_t distance) {
  Unaligned from(row, distance);
  Unaligned to(Bytes((row.size() + 7) / 8, 0x5A), distance % 3);
  kernels::packZeros(from.data(), row.size(), to.data());
  const Bytes expected = packed(
      row, [&](std::size_t x) { return row[x] == 0; }, true);
  requireSame(to.content(), expected, "packZeros");
}

void packAbove(fuzz::Input& input, const Bytes& row, std::size_t distance) {
  const std::uint8_t thresholds[4] = {input.byte(), input.byte(), input.byte(), input.byte()};
  const Bytes expected = packed(
      row, [&](std::size_t x) { return row[x] > thresholds[x % 4]; }, false);
  Unaligned from(row, distance);
  Unaligned to(Bytes(expected.size(), 0x5A), distance % 3);
  kernels::packAbove(from.data(), row.size(), thresholds, to.data());
  requireSame(to.content(), expected, "packAbove");
  kernels::packAbove(from.data(), row.size(), thresholds, from.data());
  Bytes inPlace = from.content();
  inPlace.resize(expected.size());
  requireSame(inPlace, expected, "packAbove in place");
}

void unpackBits(const Bytes& bits, std::size_t width, std::size_t distance) {
  Bytes expected;
  for (std::size_t x = 0; x < width; ++x) expected.push_back(bits[x / 8] >> (7 - x % 8) & 1);
  Bytes read = bits;
  read.resize((width + 7) / 8);
  Unaligned from(read, distance);
  Unaligned to(Bytes(width, 0x5A), distance % 3);
  kernels::unpackBits(from.data(), width, to.data());
  requireSame(to.content(), expected, "unpackBits");
}

void lookUp(fuzz::Input& input, const Bytes& row, std::size_t distance) {
  std::array<std::uint8_t, 256> table;
  const unsigned factor = input.byte();
  for (std::size_t i = 0; i < table.size(); ++i) {
    table[i] = static_cast<std::uint8_t>(i * factor + i / 16);
  }
  Bytes expected = row;
  for (std::uint8_t& byte : expected) byte = table[byte];
  Unaligned from(row, distance);
  Unaligned to(Bytes(row.size()), distance % 3);
  kernels::lookUp(from.data(), row.size(), table.data(), to.data());
  requireSame(to.content(), expected, "lookUp");
  kernels::lookUp(from.data(), row.size(), table.data(), from.data());
  requireSame(from.content(), expected, "lookUp in place");
}

void rearrange(fuzz::Input& input, const Bytes& row, std::size_t distance) {
  Unaligned from(row, distance);
  Unaligned to(Bytes(row.size()), distance % 3);
  kernels::reverse(from.data(), row.size(), to.data());
  requireSame(to.content(), Bytes(row.rbegin(), row.rend()), "reverse");

  const std::uint8_t inversion = (input.byte() & 1) != 0 ? 0xFF : 0x00;
  Bytes expected = row;
  for (std::uint8_t& byte : expected) {
    byte = static_cast<std::uint8_t>((byte == 1 ? 255 : byte) ^ inversion);
  }
  kernels::widenOnes(from.data(), row.size(), inversion, to.data());
  requireSame(to.content(), expected, "widenOnes");

  expected = row;
  for (std::uint8_t& byte : expected) byte = static_cast<std::uint8_t>(~byte);
  kernels::invert(from.data(), row.size());
  requireSame(from.content(), expected, "invert");
}

void countLevels(const Bytes& row, std::size_t distance) {
  std::array<std::int64_t, 256> counts{};
  std::array<std::int64_t, 256> expected{};
  for (const std::uint8_t byte : row) ++expected[byte];
  Unaligned from(row, distance);
  kernels::countLevels(from.data(), row.size(), counts.data());
  fuzz::require(counts == expected, "countLevels: other counts");
}

// Pages

void diffuse(fuzz::Input& input, std::size_t distance) {
  struct Method {
    kernels::Diffusion kernel;
    std::int64_t number;  ///< of the plain version
  };
  using enum kernels::Diffusion;
  constexpr std::array<Method, 6> kMethods = {{{kFloydSteinberg, 8},
                                               {kBurkes, 2},
                                               {kStucki, 3},
                                               {kJarvisJudiceNinke, 4},
                                               {kSierra, 5},
                                               {kStevensonArce, 6}}};
  const Method& method = input.oneOf(kMethods);
  const reference::Gray page = drawPage(input);
  const auto width = static_cast<std::size_t>(page.width);
  const auto height = static_cast<std::size_t>(page.height);
  const std::size_t stride = (width + 7) / 8;
  Unaligned levels(page.px, distance);
  Unaligned bits(Bytes(stride * height, 0x5A), distance % 3);
  kernels::diffuseErrors(method.kernel, levels.data(), width, width, height, bits.data(), stride);
  const reference::Gray plain = reference::dither(page, method.number);
  Bytes expected;
  for (std::size_t y = 0; y < height; ++y) {
    const auto begin = plain.px.begin() + static_cast<std::ptrdiff_t>(y * width);
    const Bytes row(begin, begin + page.width);
    const Bytes packedRow = packed(
        row, [&](std::size_t x) { return row[x] != 0; }, false);
    expected.insert(expected.end(), packedRow.begin(), packedRow.end());
  }
  requireSame(bits.content(), expected, "diffuseErrors");
}

void diffuseInSixTaps(fuzz::Input& input) {
  constexpr std::array kThresholds = {128, 127, 0, 255, -1, 256, 64, -300, 1000000};
  const int threshold = input.oneOf(kThresholds);
  const reference::Gray page = drawPage(input);
  const auto width = static_cast<std::size_t>(page.width);
  const auto height = static_cast<std::size_t>(page.height);
  kernels::SixTapDiffuser diffuser(width, height, static_cast<float>(threshold));
  Bytes result(page.px.size());
  for (std::size_t top = 0; top < height; top += kernels::SixTapDiffuser::kStripRows) {
    const std::size_t rows = std::min(kernels::SixTapDiffuser::kStripRows, height - top);
    for (std::size_t row = 0; row < rows; ++row) {
      std::copy_n(page.px.data() + (top + row) * width, width, diffuser.input(row));
    }
    diffuser.diffuseStrip();
    for (std::size_t row = 0; row < rows; ++row) {
      std::copy_n(diffuser.output(row), width, result.data() + (top + row) * width);
    }
  }
  requireSame(result, reference::sixTapDiffusion(page, threshold).px, "SixTapDiffuser");
}

Bytes bytesOf(const LumoImage& image) { return {image.data, image.data + image.SizeBytes()}; }

void enhance(fuzz::Input& input) {
  constexpr std::array kSigmas = {3.0, 0.7, 1.5, 10.0};
  constexpr std::array kAmounts = {300.0F, 0.0F, 100.0F, -100.0F, 2000.0F};
  const std::uint8_t step = input.byte() % 4;
  const double sigma = input.oneOf(kSigmas);
  const float amount = input.oneOf(kAmounts);
  const reference::Gray page = drawPage(input);
  LumoImage image(page.width, page.height, LUMO_IMG_GRAY, page.px.data());
  switch (step) {
    case 0:
      requireSame(bytesOf(lumoTattooDithering(image)), reference::tattoo(page).px, "tattoo");
      break;
    case 1:
      requireSame(bytesOf(lumoTattooDitheringX8(image)), reference::tattooX8(page).px, "tattoo X8");
      break;
    case 2:
      requireSame(bytesOf(enh_gaussian_filter_fast(image, 11, sigma)),
                  reference::gaussianBlurSeparable(page, 11, sigma).px, "blur");
      break;
    default:
      requireSame(bytesOf(enh_unsharp_mask(image, amount, 11)),
                  reference::unsharpMask(page, amount, 11).px, "unsharp mask");
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzz::Watch watch;
  fuzz::Input input({data, size});
  const ChosenTarget target(input.byte());
  const std::uint8_t kernel = input.byte() % 9;
  const std::size_t distance = input.byte() % 64;
  switch (kernel) {
    case 6:
      diffuse(input, distance);
      return 0;
    case 7:
      diffuseInSixTaps(input);
      return 0;
    case 8:
      enhance(input);
      return 0;
    default:
      break;
  }
  const std::size_t width = input.byte() * std::size_t{2} + input.byte() % 2U;
  const Bytes row = drawBytes(input, width);
  switch (kernel) {
    case 0:
      packZeros(row, distance);
      break;
    case 1:
      packAbove(input, row, distance);
      break;
    case 2:
      unpackBits(row, row.size() * 8 - (row.empty() ? 0 : distance % 8), distance);
      break;
    case 3:
      lookUp(input, row, distance);
      break;
    case 4:
      rearrange(input, row, distance);
      break;
    default:
      countLevels(row, distance);
  }
  return 0;
}
