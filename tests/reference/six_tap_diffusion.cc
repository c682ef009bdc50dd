#include "reference/six_tap_diffusion.h"

#include <array>
#include <vector>

namespace reference {

namespace {

struct Tap {
  int dx;
  int dy;
  float weight;
};

constexpr std::array<Tap, 6> kTaps = {{
    {1, 0, 0.505786F},
    {2, 0, -0.052926F},
    {-2, 1, 0.226194F},
    {-1, 1, 0.128835F},
    {0, 1, 0.243191F},
    {1, 1, -0.111078F},
}};

constexpr float kBlackNeighbour = 0.1427F;

float errorOfWhite(const Gray& out, int x, int y, float value) {
  const bool interior = x >= 1 && y >= 1 && x < out.width - 1 && y < out.height - 1;
  if (!interior) return value - 255.0F;
  float w = 0.0F;
  if (out.at(x - 1, y) == 0) w += kBlackNeighbour;
  if (out.at(x, y - 1) == 0) w += kBlackNeighbour;
  return value - 255.0F * (1.0F - w);
}

}  // namespace

Gray sixTapDiffusion(const Gray& image, int threshold) {
  Gray out(image.width, image.height);
  std::vector<float> errors(image.px.size(), 0.0F);

  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      const float value = errors[image.index(x, y)] + static_cast<float>(image.at(x, y));
      float error = 0;
      if (value > static_cast<float>(threshold)) {
        out.at(x, y) = 255;
        error = errorOfWhite(out, x, y, value);
      } else {
        out.at(x, y) = 0;
        error = value;
      }
      for (const Tap& tap : kTaps) {
        const float share = error * tap.weight;
        const int xx = x + tap.dx;
        const int yy = y + tap.dy;
        if (xx < 0 || xx >= image.width || yy < 0 || yy >= image.height) continue;
        float& cell = errors[image.index(xx, yy)];
        cell = share + cell;
      }
    }
  }
  return out;
}

}  // namespace reference
