// Small images for the tests of CxImage.
#ifndef TARVO_TESTS_IMAGE_TEST_IMAGE_H_
#define TARVO_TESTS_IMAGE_TEST_IMAGE_H_

#include <sys/resource.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "image/cximage.h"
#include "support/image_text.h"

/// Palette indices, row by row.
using Levels = std::vector<std::vector<int>>;

/// An image of `bpp` bits per pixel with these indices (below 24) and a gray palette.
struct IndexedImage : CxImage {
  IndexedImage(std::uint32_t bpp, const Levels& levels) {
    Create(static_cast<std::uint32_t>(levels.front().size()),
           static_cast<std::uint32_t>(levels.size()), bpp, 0);
    SetGrayPalette();
    for (std::size_t y = 0; y < levels.size(); ++y) {
      for (std::size_t x = 0; x < levels[y].size(); ++x) {
        SetPixelIndex(static_cast<std::int64_t>(x), static_cast<std::int64_t>(y),
                      static_cast<std::uint8_t>(levels[y][x]));
      }
    }
  }
};

inline Levels uniformLevels(int width, int height, int level) {
  return Levels(static_cast<std::size_t>(height),
                std::vector<int>(static_cast<std::size_t>(width), level));
}

/// Levels that repeat on every run; `range` levels from 0.
inline Levels noiseLevels(int width, int height, unsigned seed, int range = 256) {
  std::mt19937 generator(seed);
  Levels levels = uniformLevels(width, height, 0);
  for (auto& row : levels) {
    for (int& level : row) {
      level = static_cast<int>(generator() % static_cast<unsigned>(range));
    }
  }
  return levels;
}

inline Levels levelsOf(const CxImage& image) {
  Levels levels;
  if (!image.IsValid()) return levels;
  for (std::int64_t y = 0; y < image.GetHeight(); ++y) {
    levels.emplace_back();
    for (std::int64_t x = 0; x < image.GetWidth(); ++x) {
      levels.back().push_back(image.BlindGetPixelIndex(x, y));
    }
  }
  return levels;
}

/// The dots of a 1-bit image; '?' everywhere when it has another depth.
inline Picture dotsOf(const CxImage& image) {
  if (!image.IsValid()) return {};
  if (image.GetNumColors() != 2)
    return Picture(image.GetHeight(), std::string(image.GetWidth(), '?'));
  return pictureOf(static_cast<int>(image.GetWidth()), static_cast<int>(image.GetHeight()),
                   [&image](int x, int y) { return image.BlindGetPixelIndex(x, y) == 0; });
}

/// Every byte of pixel row `row`, padding included.
inline std::vector<int> rowBytes(CxImage& image, std::uint32_t row) {
  const std::uint8_t* const bytes = image.GetBits(row);
  return bytes == nullptr ? std::vector<int>()
                          : std::vector<int>(bytes, bytes + image.GetEffWidth());
}

/// The whole block: header, palette and rows. An image without a palette starts its rows at 40.
inline std::vector<int> blockBytes(CxImage& image) {
  const std::uint8_t* const bits = image.GetBits(0);
  if (bits == nullptr) return {};
  const std::uint8_t* const block = bits - 40 - image.GetPaletteSize();
  return std::vector<int>(block, block + image.GetSize());
}

constexpr tagRGBQUAD rgb(int red, int green, int blue, int reserved = 0) {
  return {static_cast<std::uint8_t>(blue), static_cast<std::uint8_t>(green),
          static_cast<std::uint8_t>(red), static_cast<std::uint8_t>(reserved)};
}

/// While it lives, large blocks can't be allocated.
class MemoryIsShort {
 public:
  MemoryIsShort() {
    getrlimit(RLIMIT_AS, &before_);
    rlimit now = before_;
    now.rlim_cur = 1 << 20;
    setrlimit(RLIMIT_AS, &now);
  }
  ~MemoryIsShort() { setrlimit(RLIMIT_AS, &before_); }
  MemoryIsShort(const MemoryIsShort&) = delete;
  MemoryIsShort& operator=(const MemoryIsShort&) = delete;

 private:
  rlimit before_ = {};
};

#endif  // TARVO_TESTS_IMAGE_TEST_IMAGE_H_
