#include "tspl/label.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace tspl {
namespace {

constexpr double kTenthsPerInch = 254.0;

constexpr std::array kUsualDpi = {203.0, 300.0, 600.0, 200.0, 400.0, 406.0,  150.0,
                                  152.0, 305.0, 180.0, 360.0, 720.0, 1200.0, 100.0};

// One direction of a page: what SIZE says, and how many dots the page may have there.
struct Extent {
  double tenths_mm;
  double least_dots;
  double most_dots;
};

// How many dots of the extent make its SIZE at `dpi`: the most, or what comes nearest to it. None
// when no number of dots does.
std::optional<double> FittingDots(const Extent& extent, double dpi) {
  // SIZE is a rounded decimal, half a tenth off at most, of a length that was itself rounded to a
  // single-precision number.
  const double rounding = 0.5 + 1e-3 + extent.tenths_mm * 1e-7;
  const double least = std::ceil((extent.tenths_mm - rounding) * dpi / kTenthsPerInch);
  const double most = std::floor((extent.tenths_mm + rounding) * dpi / kTenthsPerInch);
  const double dots = std::min(most, extent.most_dots);
  if (dots < std::max(least, extent.least_dots)) return std::nullopt;
  return dots;
}

// What the dots make of SIZE; 0 when SIZE is zero.
double ComputedDpi(const Extent& extent) {
  if (extent.tenths_mm == 0) return 0;
  return extent.most_dots * kTenthsPerInch / extent.tenths_mm;
}

double OwnDpi(const Extent& extent) {
  const auto usual = std::find_if(kUsualDpi.begin(), kUsualDpi.end(),
                                  [&](double dpi) { return FittingDots(extent, dpi).has_value(); });
  return usual != kUsualDpi.end() ? *usual : ComputedDpi(extent);
}

std::uint64_t Dots(double dots) { return static_cast<std::uint64_t>(std::max(dots, 1.0)); }

}  // namespace

std::optional<Label> MeasureLabel(const Page& page, std::optional<int> dpi) {
  if (!page.bitmap || page.bitmap->data.empty()) return std::nullopt;
  const double width = 8.0 * page.bitmap->width_bytes;
  const double height = page.bitmap->height_dots;
  const Extent x{static_cast<double>(page.width_tenths_mm), width - 7, width};
  const Extent y{static_cast<double>(page.height_tenths_mm), height, height};

  if (dpi) {
    const double given = *dpi;
    const double nearest_x = std::round(x.tenths_mm * given / kTenthsPerInch);
    const double nearest_y = std::round(y.tenths_mm * given / kTenthsPerInch);
    return Label{given, given, Dots(FittingDots(x, given).value_or(nearest_x)),
                 Dots(FittingDots(y, given).value_or(nearest_y))};
  }

  std::vector<double> square(kUsualDpi.begin(), kUsualDpi.end());
  square.push_back(std::round(ComputedDpi(y)));
  square.push_back(std::round(ComputedDpi(x)));
  for (const double both : square) {
    const std::optional<double> fit = FittingDots(x, both);
    if (fit && FittingDots(y, both)) return Label{both, both, Dots(*fit), Dots(height)};
  }
  const double dpi_x = OwnDpi(x);
  const double dpi_y = OwnDpi(y);
  return Label{dpi_x, dpi_y, Dots(FittingDots(x, dpi_x).value_or(width)), Dots(height)};
}

}  // namespace tspl
