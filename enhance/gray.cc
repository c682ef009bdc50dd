#include "enhance/gray.h"

#include "enhance/lumo_math.h"

namespace {

// ITU-R BT.601.
constexpr float kLumaRed = 0.299f;
constexpr float kLumaGreen = 0.587f;
constexpr float kLumaBlue = 0.114f;

std::uint8_t luma(float first, const std::uint8_t* pixel, float third) {
  const float sum =
      (first * static_cast<float>(pixel[0]) + kLumaGreen * static_cast<float>(pixel[1])) +
      third * static_cast<float>(pixel[2]);
  return static_cast<std::uint8_t>(my_round(sum));
}

}  // namespace

LumoImage cvtGray(const LumoImage& src) {
  LumoImage gray(src.width, src.height, LUMO_IMG_GRAY);
  const std::uint8_t* pixel = src.data;
  for (std::int64_t k = 0; k < gray.SizeBytes(); ++k, pixel += src.channels) {
    switch (src.color) {
      case LUMO_IMG_GRAY:
        gray.data[k] = pixel[0];
        break;
      case LUMO_IMG_BGR:
      case LUMO_IMG_BGRA:
        gray.data[k] = luma(kLumaBlue, pixel, kLumaRed);
        break;
      default:
        gray.data[k] = luma(kLumaRed, pixel, kLumaBlue);
        break;
    }
  }
  return gray;
}
