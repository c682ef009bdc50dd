#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

namespace reference {

/// The folder that page dumps are written to, with its closing slash.
extern const char* const kDumpFolder;

/// The dump's file name without the folder: "KIND_Y-M-D_h_m_s_COUNTER.bmp", numbers not padded.
std::string dumpName(const std::string& kind, const std::tm& now, long counter);

/// The BMP file of an image that lies at `data`. At 8 bits the first width * height bytes of `data`
/// follow the gray palette as they lie, with no padding put in and no row moved, so the file may be
/// shorter than its header says. Otherwise the lines, `bytes_per_line` bytes apart, are packed
/// from the last to the first, a zero byte giving a set bit; 1 bit adds a black and white palette,
/// any other depth none.
std::string bmpFile(const std::vector<std::uint8_t>& data, std::uint32_t bytes_per_line,
                    std::uint32_t height, std::uint32_t width, int bits_per_pixel);

}  // namespace reference
