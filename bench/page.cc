#include "page.h"

#include <algorithm>
#include <cmath>
#include <random>

std::vector<std::uint8_t> makePage(const std::string& kind, std::size_t width, std::size_t height) {
  std::vector<std::uint8_t> page;
  if (kind != "photo" && kind != "lines" && kind != "blank") return page;
  page.assign(width * height, 255);
  std::minstd_rand random(1);
  for (std::size_t y = 0; y < height && kind != "blank"; ++y) {
    for (std::size_t x = 0; x < width; ++x) {
      const auto u = static_cast<double>(x);
      const auto v = static_cast<double>(y);
      std::uint8_t& level = page[y * width + x];
      if (kind == "lines") {
        const double distance = std::hypot(u - 1000.0, v - 1500.0);
        if (std::fmod(distance, 90.0) < 4.0) level = 0;
        continue;
      }
      const double tones = 128.0 + 70.0 * std::sin(u * 0.004) + 40.0 * std::cos(v * 0.006);
      const double edge = std::fmod(u + 0.4 * v, 700.0) < 350.0 ? 18.0 : -18.0;
      const double grain = static_cast<double>((random() >> 8) % 13) - 6.0;
      level = static_cast<std::uint8_t>(std::clamp(tones + edge + grain, 0.0, 255.0));
    }
  }
  return page;
}
