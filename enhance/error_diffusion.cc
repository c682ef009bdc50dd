#include "enhance/error_diffusion.h"

#include <algorithm>
#include <cstring>

#include "kernels/six_tap.h"

LumoImage edf_cus(const LumoImage& src, int threshold) {
  LumoImage out(src.width, src.height, LUMO_IMG_GRAY);
  if (src.width <= 0 || src.height <= 0) return out;
  const auto width = static_cast<std::size_t>(src.width);
  const auto height = static_cast<std::size_t>(src.height);

  kernels::SixTapDiffuser diffuser(width, height, static_cast<float>(threshold));
  for (std::size_t top = 0; top < height; top += kernels::SixTapDiffuser::kStripRows) {
    const std::size_t rows = std::min(kernels::SixTapDiffuser::kStripRows, height - top);
    for (std::size_t row = 0; row < rows; ++row) {
      std::memcpy(diffuser.input(row), src.data + (top + row) * width, width);
    }
    diffuser.diffuseStrip();
    for (std::size_t row = 0; row < rows; ++row) {
      std::memcpy(out.data + (top + row) * width, diffuser.output(row), width);
    }
  }
  return out;
}
