// Small gray images for the tests of the enhancement chain.
#ifndef TARVO_TESTS_ENHANCE_TEST_LUMO_H_
#define TARVO_TESTS_ENHANCE_TEST_LUMO_H_

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "enhance/lumo_image.h"
#include "support/image_text.h"

/// Gray levels, row by row.
using Levels = std::vector<std::vector<int>>;

inline LumoImage grayImage(const Levels& levels) {
  LumoImage image(static_cast<int>(levels.front().size()), static_cast<int>(levels.size()),
                  LUMO_IMG_GRAY);
  std::uint8_t* byte = image.data;
  for (const auto& row : levels) {
    for (int level : row) *byte++ = static_cast<std::uint8_t>(level);
  }
  return image;
}

inline Levels uniformLevels(int width, int height, int level) {
  return Levels(static_cast<std::size_t>(height),
                std::vector<int>(static_cast<std::size_t>(width), level));
}

/// Levels that repeat on every run.
inline Levels noiseLevels(int width, int height, unsigned seed) {
  std::mt19937 generator(seed);
  Levels levels = uniformLevels(width, height, 0);
  for (auto& row : levels) {
    for (int& level : row) level = static_cast<int>(generator() % 256);
  }
  return levels;
}

/// One byte per pixel, as every function of the chain but the gray conversion reads it.
inline Levels levelsOf(const LumoImage& image) {
  Levels levels = uniformLevels(image.width, image.height, 0);
  const std::uint8_t* byte = image.data;
  for (auto& row : levels) {
    for (int& level : row) level = *byte++;
  }
  return levels;
}

/// The whole buffer, every channel.
inline std::vector<int> bytesOf(const LumoImage& image) {
  return std::vector<int>(image.data, image.data + image.SizeBytes());
}

/// The dots of a two-level image; '?' for a level other than 0 and 255.
inline Picture dotsOf(const LumoImage& image) {
  Picture picture;
  for (const auto& row : levelsOf(image)) {
    picture.emplace_back();
    for (int level : row) picture.back() += level == 0 ? '#' : level == 255 ? '.' : '?';
  }
  return picture;
}

#endif  // TARVO_TESTS_ENHANCE_TEST_LUMO_H_
