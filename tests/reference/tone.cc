#include "reference/tone.h"

#include "reference/scalar_math.h"

namespace reference {

std::array<std::uint8_t, 256> lightTable(int brightness, int contrast) {
  const float slope = static_cast<float>(contrast + 100) / 100.0F;
  const int shift = brightness + 128;
  std::array<std::uint8_t, 256> table{};
  for (int i = 0; i < 256; ++i) {
    const float v = static_cast<float>(i - 128) * slope + static_cast<float>(shift) + 0.5F;
    table[static_cast<std::size_t>(i)] =
        static_cast<std::uint8_t>(my_clamp(static_cast<int>(v), 0, 255));
  }
  return table;
}

Image8 throughTable(const Image8& image, const std::array<std::uint8_t, 256>& table) {
  Image8 result = image;
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) result.at(x, y) = table[image.at(x, y)];
  }
  return result;
}

Image8 light(const Image8& image, int brightness, int contrast) {
  return throughTable(image, lightTable(brightness, contrast));
}

Image8 negative(const Image8& image) {
  Image8 result = image;
  for (std::uint8_t& byte : result.bytes) byte = static_cast<std::uint8_t>(255 - byte);
  return result;
}

}  // namespace reference
