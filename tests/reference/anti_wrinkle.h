#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "reference/image8.h"
#include "reference/log.h"

namespace reference {

/// The resolution that the frame is measured with, in dots per inch.
constexpr std::uint32_t kFrameResolution = 300;

/// The dots of a length in hundredths of a millimetre, rounded to the nearest.
std::uint32_t dotsOf(std::uint32_t hundredths_mm);

/// The thickness of the frame's vertical bars at a level in millimetres, in dots.
std::uint32_t verticalBarDots(int level);

/// The thickness of the frame's horizontal bars: one millimetre, in dots.
std::uint32_t horizontalBarDots();

struct Canvas {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
};

/// The canvas of a named paper size, bars included; nothing for a name that is not listed.
std::optional<Canvas> canvasOf(const std::string& page_size_name, int level);

/// The processed image on its canvas with the four bars around it.
Image8 antiWrinkleFrame(const Image8& image, const std::string& page_size_name, int level,
                        Log& log);

}  // namespace reference
