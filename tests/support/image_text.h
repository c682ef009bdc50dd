// Two-level pictures as text: how the tests write down what they expect, and how they show what
// differs.
#ifndef TARVO_TESTS_SUPPORT_IMAGE_TEXT_H_
#define TARVO_TESTS_SUPPORT_IMAGE_TEXT_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

/// Rows of '#' (black, ink) and '.' (white, paper), the first row first.
using Picture = std::vector<std::string>;

/// The picture of `width` x `height` dots in which (x, y) is black where `isBlack(x, y)`.
template <typename IsBlack>
Picture pictureOf(int width, int height, IsBlack isBlack) {
  Picture picture;
  for (int y = 0; y < height; ++y) {
    std::string row;
    for (int x = 0; x < width; ++x) row += isBlack(x, y) ? '#' : '.';
    picture.push_back(row);
  }
  return picture;
}

inline std::string sizeText(const Picture& picture) {
  const std::size_t width = picture.empty() ? 0 : picture.front().size();
  return std::to_string(width) + " x " + std::to_string(picture.size());
}

/// Both pictures around the dot (x, y), side by side; '!' marks the rows that differ.
inline std::string windowText(const Picture& actual, const Picture& expected, std::size_t x,
                              std::size_t y) {
  constexpr std::size_t kColumns = 32;
  constexpr std::size_t kRows = 12;
  const std::size_t left = x > kColumns / 2 ? x - kColumns / 2 : 0;
  const std::size_t first = y > kRows / 2 ? y - kRows / 2 : 0;
  const std::size_t last = std::min(first + kRows, expected.size());

  std::string text = "from (" + std::to_string(left) + ", " + std::to_string(first) +
                     "), actual on the left, expected on the right:\n";
  for (std::size_t row = first; row < last; ++row) {
    const std::string is = actual[row].substr(left, kColumns);
    const std::string shouldBe = expected[row].substr(left, kColumns);
    text += "  " + is + (is == shouldBe ? "   " : " ! ") + shouldBe + "\n";
  }
  return text;
}

/// Success when the pictures are equal; else the first differing dot, the counts and a window.
inline testing::AssertionResult samePicture(const Picture& actual, const Picture& expected) {
  if (actual == expected) return testing::AssertionSuccess();

  const auto sameLength = [](const std::string& a, const std::string& b) {
    return a.size() == b.size();
  };
  if (!std::equal(actual.begin(), actual.end(), expected.begin(), expected.end(), sameLength)) {
    return testing::AssertionFailure()
           << "the size is " << sizeText(actual) << ", expected " << sizeText(expected);
  }

  std::size_t differing = 0;
  std::size_t total = 0;
  std::size_t firstX = 0;
  std::size_t firstY = 0;
  for (std::size_t y = 0; y < expected.size(); ++y) {
    for (std::size_t x = 0; x < expected[y].size(); ++x) {
      ++total;
      if (actual[y][x] == expected[y][x]) continue;
      if (differing++ == 0) {
        firstX = x;
        firstY = y;
      }
    }
  }
  return testing::AssertionFailure()
         << differing << " of " << total << " dots differ, the first at (" << firstX << ", "
         << firstY << "): '" << actual[firstY][firstX] << "', expected '"
         << expected[firstY][firstX] << "'\n"
         << windowText(actual, expected, firstX, firstY);
}

#endif  // TARVO_TESTS_SUPPORT_IMAGE_TEXT_H_
