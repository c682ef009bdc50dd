#include "reference/gray_conversion.h"

#include "reference/scalar_math.h"

namespace reference {

int channelsOf(ColourLayout layout) {
  switch (layout) {
    case ColourLayout::Gray:
      return 1;
    case ColourLayout::Bgr:
    case ColourLayout::Rgb:
      return 3;
    default:
      return 4;
  }
}

Gray cvtGray(int width, int height, ColourLayout layout, const std::vector<std::uint8_t>& pixels) {
  Gray result(width, height);
  std::size_t p = 0;
  for (std::uint8_t& out : result.px) {
    const std::uint8_t* pixel = pixels.data() + p;
    if (layout == ColourLayout::Gray) {
      out = pixel[0];
    } else {
      const bool blue_first = layout == ColourLayout::Bgr || layout == ColourLayout::Bgra;
      const float first = (blue_first ? 0.114F : 0.299F) * static_cast<float>(pixel[0]);
      const float second = 0.587F * static_cast<float>(pixel[1]);
      const float third = (blue_first ? 0.299F : 0.114F) * static_cast<float>(pixel[2]);
      out = static_cast<std::uint8_t>(my_round((first + second) + third));
    }
    p += static_cast<std::size_t>(channelsOf(layout));
  }
  return result;
}

}  // namespace reference
