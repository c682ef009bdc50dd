// A barcode goes from its program into a stream, and from the picture of that stream into a
// scanner: the dots are in their places, and ink is ink. The programs are Debian's zint and
// zbarimg.
#include <gtest/gtest.h>

#include <string>

#include "png_file.h"
#include "streams.h"
#include "temporary_folder.h"
#include "tool_run.h"

namespace {

// The dots of a bitmap: a dark pixel is ink, a clear bit; what fills up a row is set.
std::string Pack(const test::PngFile& png) {
  std::string dots;
  for (std::uint32_t y = 0; y < png.height; ++y) {
    for (std::uint32_t byte = 0; byte < (png.width + 7) / 8; ++byte) {
      unsigned bits = 0xFF;
      for (std::uint32_t bit = 0; bit < 8; ++bit) {
        const std::uint32_t x = byte * 8 + bit;
        if (x < png.width && png.At(x, y) < 0x808080) bits &= ~(0x80U >> bit);
      }
      dots += static_cast<char>(bits);
    }
  }
  return dots;
}

std::string Millimetres(std::uint32_t dots) {
  const std::uint32_t tenths = (dots * 254 + 101) / 203;
  return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " mm";
}

TEST(TsplviewBarcode, ScansFromThePicture) {
  const struct {
    const char* what;
    std::string options;  // of the barcode program
    std::string text;
    std::string scanned;
  } kCases[] = {
      {"QR code", "-b QRCODE --scale=2 --quietzones", "https://example.org/label?id=4711",
       "QR-Code:https://example.org/label?id=4711\n"},
      {"Code 128", "-b CODE128 --scale=1.5 --quietzones", "TARVO-0042-XY",
       "CODE-128:TARVO-0042-XY\n"},
  };
  for (const auto& c : kCases) {
    for (const bool turned : {false, true}) {
      const test::TemporaryFolder folder;
      ASSERT_EQ(
          test::RunIn(folder, "zint " + c.options + " -o code.png -d '" + c.text + "'").status, 0)
          << folder.Read("err");
      const test::PngFile code = test::ReadPng(folder.File("code.png"));
      ASSERT_GT(code.width, 0U);
      folder.Write(
          "job.tspl",
          test::kPreamble + test::PageOf(Millimetres(code.width) + ", " + Millimetres(code.height),
                                         static_cast<int>((code.width + 7) / 8),
                                         static_cast<int>(code.height), Pack(code), turned));
      const test::ToolRun view = test::RunIn(folder, std::string(TSPLVIEW) + " --png . job.tspl");
      ASSERT_EQ(view.status, 0) << view.err;
      const test::ToolRun scan = test::RunIn(folder, "zbarimg -q job-1.png");
      EXPECT_EQ(scan.out, c.scanned) << c.what << (turned ? ", turned" : "") << scan.err;
    }
  }
}

}  // namespace
