#include "good_job.h"

#include <gtest/gtest.h>

#include <regex>

#include "support/differences.h"
#include "support/tspl_commands.h"

namespace jobs {

support::PpdText goodPpd() {
  return support::PpdText()
      .pageSize("w288h432", 288, 432)
      .option("PaperType", "LabelGaps", {"LabelGaps"})
      .option("GapsHeight", "3", {"3"})
      .option("Origin", "Rotation180", {"Rotation180"})
      .option("PrintSpeed", "4", {"4"})
      .option("Darkness", "8", {"8"})
      .option("MediaMethod", "Direct", {"Direct"})
      .option("PostAction", "TearOff", {"TearOff"});
}

support::Page goodPage() {
  support::Page page;
  page.header = support::grayHeader(16, 2);
  page.header.NumCopies = 2;
  page.pixels.assign(32, 255);
  for (std::size_t dot = 17; dot < 32; dot += 2) page.pixels[dot] = 0;
  return page;
}

std::string goodRaster() { return support::rasterFile({goodPage()}); }

std::string preamble() { return std::string(64, '\n'); }

std::string setupCommands(const std::string& size) {
  return "SIZE " + size +
         "\r\n"
         "GAP 3.0 mm, 0.0 mm\r\n"
         "REFERENCE 0,0\r\n"
         "DIRECTION 1,0\r\n"
         "SPEED 4\r\n"
         "DENSITY 8\r\n"
         "SET RIBBON OFF\r\n"
         "OFFSET 0.0 mm\r\n"
         "SET TEAR ON\r\n"
         "SET PEEL OFF\r\n"
         "SET CUTTER OFF\r\n"
         "CLS\r\n";
}

std::string goodPageCommands() {
  // 16 x 25.4 / 203 = 2.002 mm, 2 x 25.4 / 203 = 0.250 mm. Ink is a 0 bit: a row of 16 of them, and
  // a row of 01010101 twice.
  return setupCommands("2.0 mm, 0.3 mm") + "BITMAP 0,0,2,2,0," + std::string("\0\0\x55\x55", 4) +
         "\r\nPRINT 1,2\r\n";
}

std::string settingsLog() {
  return "DEBUG:PageSizeName: w288h432\n"
         "DEBUG:Custom Size: (288.000000,432.000000,0.000000,0.000000,288.000000,432.000000)\n"
         "DEBUG:Set page size: width 101.606400 mm, height 152.409607 mm\n"
         "DEBUG:settings->Resolution:\n"
         "DEBUG:settings->MediaMethod:Direct\n"
         "DEBUG:settings->PaperType:LabelGaps\n"
         "DEBUG:settings->GapsHeight:3\n"
         "DEBUG:settings->PostAction:TearOff\n"
         "DEBUG:settings->Occurrence:\n"
         "DEBUG:settings->Origin:Rotation180\n"
         "DEBUG:settings->MirrorImage:0\n"
         "DEBUG:settings->NegativeImage:0\n"
         "DEBUG:settings->PrintSpeed:4\n"
         "DEBUG:settings->Darkness:8\n"
         "DEBUG:settings->halftoneType:0\n"
         "DEBUG:settings->DirectBuffer:0\n"
         "DEBUG:settings->StoredGraphics:0\n"
         "DEBUG:settings->OptionDisplayUnit:0\n"
         "DEBUG:settings->PageSize:w288h432\n"
         "DEBUG:settings->pageWidth:101.606400\n"
         "DEBUG:settings->pageHeight:152.409607\n";
}

std::string goodHeaderLog(int number) {
  // 16 x 25.4 / 203 = 2.00197044 mm; the nearest float is 2.00197053.
  // The first two lines of a page carry a line end of their own: an empty line follows each.
  return "DEBUG:pageWidth: 2.001971,pageHeight: 0.250246\n"
         "DEBUG:PAGE: " +
         std::to_string(number) +
         " 2\n"
         "\n"
         "DEBUG:header.HWResolution[0]:203\n"
         "\n"
         "DEBUG:header.HWResolution[1]:203\n"
         "DEBUG:header.cupsWidth:16\n"
         "DEBUG:header.cupsHeight:2\n"
         "DEBUG:header.cupsMediaType:0\n"
         "DEBUG:header.cupsBitsPerColor:8\n"
         "DEBUG:header.cupsBitsPerPixel:8\n"
         "DEBUG:header.cupsBytesPerLine:16\n"
         "DEBUG:header.cupsColorOrder:0\n"
         "DEBUG:header.cupsColorSpace:3\n"
         "DEBUG:header.cupsCompression:0\n"
         "DEBUG:header.cupsRowCount:0\n"
         "DEBUG:header.cupsRowFeed:0\n"
         "DEBUG:header.cupsRowStep:0\n";
}

std::string goodImageLog() {
  return "DEBUG:printImage: Start processing image, input width: 16, height: 2, bytes per line: "
         "16\n"
         "DEBUG:printImage: Memory allocated successfully, size: 32 bytes\n"
         "DEBUG:printImage: Saving original image, file path will be generated based on time\n"
         "DEBUG:printImage: Memory for processing result allocated successfully, size: 32 bytes\n"
         "DEBUG:PageProcess: Lumo dithering is disabled\n"
         "DEBUG:PageProcess: Successfully created CxImage from array with stride 16\n"
         "DEBUG:PageProcess: Applied default dithering and increased bit depth\n"
         "DEBUG:PageProcess: negativePrint_ 0\n"
         "DEBUG:PageProcess: Filled the output buffer with processed pixels, length: 32\n"
         "DEBUG:printImage: Processed image information - pointer address: ADDRESS, width: 16, "
         "height: 2, bytes per line: 16, number of top blank lines: 0, number of bottom blank "
         "lines: 0, adjusted height: 2\n"
         "DEBUG:printImage: Saving processed image, file path will be generated based on time\n"
         "DEBUG:printImage: Starting to print the processed image\n"
         "DEBUG:printImage: Freed the allocated memory, address: (nil)\n"
         "DEBUG:printImage: Freed the memory for processing result, address: ADDRESS\n"
         "DEBUG:printImage: Image processing completed\n";
}

std::string goodPageLog(int number) { return goodHeaderLog(number) + goodImageLog(); }

std::string masked(const std::string& log) {
  const std::string pointer =
      std::regex_replace(log, std::regex("pointer address: [0-9]+,"), "pointer address: ADDRESS,");
  return std::regex_replace(pointer, std::regex("result, address: 0x[0-9a-f]+"),
                            "result, address: ADDRESS");
}

void expectRun(const JobRun& run, int status, const std::string& stream, const std::string& log) {
  EXPECT_EQ(run.outcome.ending(), "exit status " + std::to_string(status));
  EXPECT_EQ(support::firstDifference(stream, run.outcome.output), "");
  EXPECT_EQ(support::firstDifference(log, masked(run.outcome.error)), "");
  if (!run.outcome.output.empty()) {
    EXPECT_EQ(support::commandsOf(run.outcome.output).fault, "");
  }
}

}  // namespace jobs
