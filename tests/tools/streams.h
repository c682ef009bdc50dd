// Streams written out by hand: nothing here comes from what writes them in earnest.
#ifndef TARVO_TESTS_TOOLS_STREAMS_H_
#define TARVO_TESTS_TOOLS_STREAMS_H_

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace test {

inline const std::string kPreamble(64, '\n');

/// 8 x 4 dots: a frame of ink with its upper right corner dot missing. A clear bit is ink.
///   #######.
///   #......#
///   #......#
///   ########
inline const std::string kDots{"\x01\x7E\x7E\x00", 4};

/// A page of 8 x 4 dots at 203 dpi, with every command that a page can have, one an entry:
/// 8 x 25.4 / 203 = 1.001 mm and 4 x 25.4 / 203 = 0.5005 mm.
inline std::vector<std::string> FullPage() {
  return {"SIZE 1.0 mm, 0.5 mm\r\n",
          "GAP 3.0 mm, 0.0 mm\r\n",
          "REFERENCE 0,0\r\n",
          "DIRECTION 0,0\r\n",
          "SPEED 4\r\n",
          "DENSITY 8\r\n",
          "SET RIBBON OFF\r\n",
          "OFFSET 0.0 mm\r\n",
          "SET TEAR ON\r\n",
          "SET PEEL OFF\r\n",
          "SET CUTTER OFF\r\n",
          "CLS\r\n",
          "BITMAP 0,0,1,4,0," + kDots + "\r\n",
          "PRINT 1,1\r\n"};
}

/// A page of which everything is left out that can be, and which the printer turns.
inline std::vector<std::string> BarePage() {
  return {"SIZE 1.0 mm, 0.5 mm\r\n",
          "REFERENCE 0,0\r\n",
          "DIRECTION 1,0\r\n",
          "OFFSET 0.0 mm\r\n",
          "CLS\r\n",
          "BITMAP 0,0,1,4,0," + kDots + "\r\n",
          "PRINT 1,3\r\n"};
}

inline std::string Join(const std::vector<std::string>& parts) {
  std::string whole;
  for (const std::string& part : parts) whole += part;
  return whole;
}

/// A page that is printed once, of which SIZE, the bitmap's size and its data are given.
inline std::string PageOf(std::string_view size, int width_bytes, int height, std::string_view data,
                          bool turned = false) {
  return "SIZE " + std::string(size) + "\r\nREFERENCE 0,0\r\nDIRECTION " + (turned ? "1" : "0") +
         ",0\r\nOFFSET 0.0 mm\r\nCLS\r\nBITMAP 0,0," + std::to_string(width_bytes) + "," +
         std::to_string(height) + ",0," + std::string(data) + "\r\nPRINT 1,1\r\n";
}

inline std::span<const std::uint8_t> Bytes(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

}  // namespace test

#endif  // TARVO_TESTS_TOOLS_STREAMS_H_
