#include "enhance/error_diffusion.h"

#include <vector>

#include "enhance/lumo_math.h"

namespace {

struct Tap {
  int dx;
  int dy;
  float weight;
};

/// Quirk: dropped-error. Two taps are negative and the sum is 0.940002, both deliberately.
constexpr Tap kTaps[] = {{1, 0, 0.505786f},  {2, 0, -0.052926f}, {-2, 1, 0.226194f},
                         {-1, 1, 0.128835f}, {0, 1, 0.243191f},  {1, 1, -0.111078f}};

/// How much less of a white pixel's value is carried away for each black neighbour.
constexpr float kBlackNeighbour = 0.1427f;

}  // namespace

LumoImage edf_cus(const LumoImage& src, int threshold) {
  const int width = src.width;
  const int height = src.height;
  LumoImage out(width, height, LUMO_IMG_GRAY);
  std::vector<float> errors(static_cast<std::size_t>(out.SizeBytes()), 0.0f);

  const auto limit = static_cast<float>(threshold);
  std::int64_t i = 0;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x, ++i) {
      const float value = errors[static_cast<std::size_t>(i)] + static_cast<float>(src.data[i]);
      float error = value;
      if (value > limit) {
        float relief = 0.0f;
        if (x >= 1 && y >= 1 && x < width - 1 && y < height - 1) {
          if (out.data[i - 1] == 0) relief += kBlackNeighbour;
          if (out.data[i - width] == 0) relief += kBlackNeighbour;
        }
        out.data[i] = 255;
        error = value - 255.0f * (1.0f - relief);
      } else {
        out.data[i] = 0;
      }
      for (const Tap& tap : kTaps) {
        if (!isWithinBounds(x + tap.dx, y + tap.dy, width, height)) continue;
        float& cell = errors[static_cast<std::size_t>(i + std::int64_t{tap.dy} * width + tap.dx)];
        cell = error * tap.weight + cell;
      }
    }
  }
  return out;
}
