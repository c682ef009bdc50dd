#include "printer/tarvo_printer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <memory>
#include <new>
#include <regex>
#include <string>
#include <type_traits>

#include "support/capture.h"
#include "support/differences.h"
#include "support/folder.h"
#include "test_printer.h"

namespace {

TEST(NewPrinter, HasTheValuesOfConstruction) {
  // In zero-filled storage, as the filter makes it.
  alignas(TestPrinter) unsigned char storage[sizeof(TestPrinter)];
  std::fill(std::begin(storage), std::end(storage), static_cast<unsigned char>(0));
  TestPrinter* printer = new (storage) TestPrinter();
  EXPECT_FALSE(printer->cximage_.IsValid());
  EXPECT_FALSE(printer->ditheredImage_.IsValid());
  EXPECT_EQ(printer->pimage_, nullptr);
  EXPECT_STREQ(printer->imagePath_, "/var/spool/cups/tmp/prnimg_%d-%d-%d_%d_%d_%d_%ld.bmp");
  EXPECT_EQ(sizeof printer->imagePath_, 1024U);
  EXPECT_EQ(printer->getPageHeader(), nullptr);
  EXPECT_EQ(printer->getMaxMediaWidth(), 0);
  EXPECT_EQ(printer->GetPrintWidth(), 0);
  EXPECT_EQ(printer->getBrightness(), 0);
  EXPECT_EQ(printer->getVBarcodeOpt(), 0);
  EXPECT_EQ(printer->getContrast(), 0);
  EXPECT_EQ(printer->getPrintSpeed(), 7);
  EXPECT_EQ(printer->getPrintDensity(), 8);
  EXPECT_EQ(printer->getHalftoneType(), None);
  EXPECT_FALSE(printer->isNegativePrint());
  EXPECT_FALSE(printer->isMirrorPrint());
  EXPECT_FALSE(printer->isRotate180Print());
  EXPECT_EQ(printer->getAntiWrinkle(), 0);
  EXPECT_FALSE(printer->getUseLumoDithering());
  EXPECT_EQ(printer->getRemoveBlankEdges(), 0);
  EXPECT_EQ(printer->getSkipRightPixels(), 0U);
  EXPECT_EQ(printer->getUserData(), nullptr);
  EXPECT_EQ(printer->resolution_, 300);
  printer->~TestPrinter();
}

TEST(NewPrinter, WritesToStandardOutputOnly) {
  TestPrinter printer;
  EXPECT_THAT(printer.getOutputStreams(), testing::ElementsAre(stdout));
  testing::internal::CaptureStdout();
  printer.printStr("to standard output");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "to standard output");
}

TEST(Printer, IsAbstractWithAVirtualDestructor) {
  EXPECT_TRUE(std::is_abstract_v<TarvoPrinter>);
  EXPECT_TRUE(std::has_virtual_destructor_v<TarvoPrinter>);
}

TEST(Printer, ClosesNoStream) {
  const support::MemoryStream stream;
  {
    const std::unique_ptr<TarvoPrinter> printer = std::make_unique<TestPrinter>();
    printer->getOutputStreams().push_back(stream.get());
  }
  std::fputs("still open", stream.get());
  EXPECT_EQ(stream.bytes(), "still open");
  EXPECT_EQ(std::fflush(stdout), 0);
}

TEST(Settings, BrightnessAndContrastAreClampedTo100) {
  const struct {
    int given;
    int stored;
  } cases[] = {{-1000000, -100}, {-101, -100}, {-100, -100}, {-99, -99}, {-37, -37},    {0, 0},
               {20, 20},         {99, 99},     {100, 100},   {101, 100}, {1000000, 100}};
  TestPrinter printer;
  for (const auto& [given, stored] : cases) {
    printer.setBrightness(given);
    EXPECT_EQ(printer.getBrightness(), stored) << given;
    printer.setContrast(given);
    EXPECT_EQ(printer.getContrast(), stored) << given;
  }
}

TEST(Settings, SpeedIsTheNumberOfItsTextClampedTo1To15) {
  const struct {
    const char* given;
    int stored;
  } cases[] = {{"0", 1},   {"fast", 1}, {"", 1},     {"-5", 1},  {"1", 1},  {"7", 7},
               {"15", 15}, {"16", 15},  {"999", 15}, {"3.9", 3}, {" 4", 4}, {"5ips", 5}};
  TestPrinter printer;
  for (const auto& [given, stored] : cases) {
    std::string text = given;
    printer.setPrintSpeed(text.data());
    EXPECT_EQ(printer.getPrintSpeed(), stored) << given;
  }
}

TEST(Settings, DensityIsClampedTo0To15) {
  const struct {
    int given;
    int stored;
  } cases[] = {{-100, 0}, {-1, 0}, {0, 0}, {1, 1}, {8, 8}, {15, 15}, {16, 15}, {1000, 15}};
  TestPrinter printer;
  for (const auto& [given, stored] : cases) {
    printer.setPrintDensity(given);
    EXPECT_EQ(printer.getPrintDensity(), stored) << given;
  }
}

TEST(Settings, TheOthersAreStoredAsGiven) {
  TestPrinter printer;
  for (int value = 0; value <= 12; ++value) {
    printer.setHalftoneType(static_cast<DitherType>(value));
    EXPECT_EQ(printer.getHalftoneType(), static_cast<DitherType>(value));
  }
  for (const bool value : {true, false}) {
    printer.setNegativePrint(value);
    EXPECT_EQ(printer.isNegativePrint(), value);
    printer.setMirrorPrint(value);
    EXPECT_EQ(printer.isMirrorPrint(), value);
    printer.setRotate180Print(value);
    EXPECT_EQ(printer.isRotate180Print(), value);
    printer.setUseLumoDithering(value);
    EXPECT_EQ(printer.getUseLumoDithering(), value);
  }
  for (const int value : {-5, 0, 1, 100000}) {
    printer.setAntiWrinkle(value);
    EXPECT_EQ(printer.getAntiWrinkle(), value);
    printer.setMaxMediaWidth(value);
    EXPECT_EQ(printer.getMaxMediaWidth(), value);
    printer.setVBarcodeOpt(value);
    EXPECT_EQ(printer.getVBarcodeOpt(), value);
  }
  for (const long value : {-1L, 0L, 1L << 40}) {
    printer.SetPrintWidth(value);
    EXPECT_EQ(printer.GetPrintWidth(), value);
  }
  for (const int value : {0, 2, 8, 10, 255}) {
    printer.setRemoveBlankEdges(static_cast<unsigned char>(value));
    EXPECT_EQ(printer.getRemoveBlankEdges(), value);
  }
  for (const unsigned long value : {0UL, 7UL, 1UL << 50}) {
    printer.setSkipRightPixels(value);
    EXPECT_EQ(printer.getSkipRightPixels(), value);
  }
  int something = 0;
  auto* userData = reinterpret_cast<TarvoPrinter::UserData*>(&something);
  printer.setUserData(userData);
  EXPECT_EQ(printer.getUserData(), userData);
  cups_page_header2_t header{};
  printer.setPageHeader(&header);
  EXPECT_EQ(printer.getPageHeader(), &header);
  printer.setPageHeader(nullptr);
  EXPECT_EQ(printer.getPageHeader(), nullptr);
}

TEST(Banner, SaysTheMakersNameInHexadecimal) {
  const TestPrinter printer;
  const std::string banner = printer.getCopyRight();
  ASSERT_TRUE(std::regex_match(banner, std::regex("MFT: ?[0-9A-Fa-f]{2}( [0-9A-Fa-f]{2})*")))
      << banner;
  std::string decoded;
  const std::string digits = banner.substr(4);
  for (std::size_t next = 0; next < digits.size();) {
    std::size_t used = 0;
    decoded += static_cast<char>(std::stoi(digits.substr(next), &used, 16));
    next += used;
  }
  EXPECT_THAT(decoded, testing::HasSubstr("Tarvo"));
}

// Output

TEST(Output, EachRoutineWritesItsBytesToEveryStream) {
  const struct {
    const char* what;
    void (*print)(TarvoPrinter&);
    std::string expected;
  } cases[] = {
      {"bytes",
       [](TarvoPrinter& p) {
         const unsigned char bytes[] = {'a', 0, 255, '\n', '%', 's'};
         p.printBytes(bytes, sizeof bytes);
       },
       std::string("a\0\xff\n%s", 6)},
      {"no bytes",
       [](TarvoPrinter& p) { p.printBytes(reinterpret_cast<const unsigned char*>("x"), 0); }, ""},
      {"text", [](TarvoPrinter& p) { p.printStr("100%s %d\r\n"); }, "100%s %d\r\n"},
      {"empty text", [](TarvoPrinter& p) { p.printStr(""); }, ""},
      {"byte 10", [](TarvoPrinter& p) { p.printByte(10); }, "\n"},
      {"byte 0", [](TarvoPrinter& p) { p.printByte(0); }, std::string(1, '\0')},
      {"byte 255", [](TarvoPrinter& p) { p.printByte(255); }, "\xff"},
      {"format", [](TarvoPrinter& p) { p.printFormat("%d %s %.1f\r\n", 7, "x", 2.25); },
       "7 x 2.2\r\n"},
  };
  for (const auto& row : cases) {
    TestPrinter printer;
    const support::MemoryStream first, second, third;
    printer.getOutputStreams() = {first.get(), second.get(), third.get()};
    row.print(printer);
    EXPECT_EQ(support::firstDifference(row.expected, first.bytes()), "") << row.what;
    EXPECT_EQ(support::firstDifference(row.expected, second.bytes()), "") << row.what;
    EXPECT_EQ(support::firstDifference(row.expected, third.bytes()), "") << row.what;
  }
}

/// A stream that notes its name whenever it is written to.
class NotingStream {
 public:
  NotingStream(char name, std::string& notes) : name_(name), notes_(notes) {
    cookie_io_functions_t functions{};
    functions.write = &NotingStream::write;
    file_ = ::fopencookie(this, "w", functions);
    std::setvbuf(file_, nullptr, _IONBF, 0);
  }
  ~NotingStream() { std::fclose(file_); }
  NotingStream(const NotingStream&) = delete;
  NotingStream& operator=(const NotingStream&) = delete;

  FILE* get() const { return file_; }

 private:
  static ssize_t write(void* self, const char* /*bytes*/, std::size_t size) {
    const NotingStream& stream = *static_cast<NotingStream*>(self);
    if (stream.notes_.empty() || stream.notes_.back() != stream.name_)
      stream.notes_ += stream.name_;
    return static_cast<ssize_t>(size);
  }

  char name_;
  std::string& notes_;
  FILE* file_ = nullptr;
};

TEST(Output, StreamsAreWrittenFromTheFirstToTheLast) {
  const struct {
    const char* what;
    void (*print)(TarvoPrinter&);
  } cases[] = {
      {"bytes",
       [](TarvoPrinter& p) { p.printBytes(reinterpret_cast<const unsigned char*>("ab"), 2); }},
      {"text", [](TarvoPrinter& p) { p.printStr("CLS\r\n"); }},
      {"byte", [](TarvoPrinter& p) { p.printByte(10); }},
      {"format", [](TarvoPrinter& p) { p.printFormat("PRINT %d\r\n", 1); }},
  };
  for (const auto& row : cases) {
    std::string notes;
    const NotingStream first('1', notes), second('2', notes), third('3', notes);
    TestPrinter printer;
    printer.getOutputStreams() = {first.get(), second.get(), third.get()};
    row.print(printer);
    EXPECT_EQ(notes, "123") << row.what;
    row.print(printer);
    EXPECT_EQ(notes, "123123") << row.what;
  }
}

TEST(Output, IsLeftInTheStreamsOwnBuffers) {
  const support::Folder folder;
  const std::string path = folder / "out";
  FILE* file = std::fopen(path.c_str(), "w");
  ASSERT_NE(file, nullptr);
  TestPrinter printer;
  printer.getOutputStreams() = {file};
  printer.printFormat("%s", "DENSITY 8\r\n");
  printer.printStr("CLS\r\n");
  printer.printByte(10);
  printer.printBytes(reinterpret_cast<const unsigned char*>("ab"), 2);
  EXPECT_EQ(support::readFile(path), "");
  EXPECT_EQ(std::fclose(file), 0);
  EXPECT_EQ(support::readFile(path), "DENSITY 8\r\nCLS\r\n\nab");
}

TEST(Output, RecordingStreamGetsWhatStandardOutputGets) {
  TestPrinter printer;
  const support::MemoryStream recording;
  printer.getOutputStreams().push_back(recording.get());
  testing::internal::CaptureStdout();
  printer.printFormat("SIZE %.1f mm\r\n", 12.0);
  printer.printStr("CLS\r\n");
  for (int i = 0; i < 3; ++i) printer.printByte(static_cast<unsigned char>(i));
  const unsigned char tail[] = {9, 0, 8};
  printer.printBytes(tail, sizeof tail);
  const std::string output = testing::internal::GetCapturedStdout();
  const std::string expected = "SIZE 12.0 mm\r\nCLS\r\n" + std::string("\0\1\2\x09\0\x08", 6);
  EXPECT_EQ(support::firstDifference(expected, output), "");
  EXPECT_EQ(support::firstDifference(expected, recording.bytes()), "");
}

TEST(Output, FormatGivesTheCountOfTheLastStream) {
  TestPrinter printer;
  const support::MemoryStream first, second;
  printer.getOutputStreams() = {first.get(), second.get()};
  EXPECT_EQ(printer.printFormat("PRINT %d,%d\r\n", 1, 10), 12);
  EXPECT_EQ(printer.printFormat("%s", ""), 0);
  // A stream that can't be written to, last: its count is what comes back.
  FILE* readOnly = std::fopen("/dev/null", "r");
  ASSERT_NE(readOnly, nullptr);
  printer.getOutputStreams().push_back(readOnly);
  EXPECT_LT(printer.printFormat("CLS\r\n"), 0);
  printer.getOutputStreams() = {readOnly, first.get()};
  EXPECT_EQ(printer.printFormat("CLS\r\n"), 5);
  std::fclose(readOnly);
}

TEST(Output, FormatHasNoLimitOfLength) {
  TestPrinter printer;
  const support::MemoryStream stream;
  printer.getOutputStreams() = {stream.get()};
  const std::string longText(300000, 'x');
  EXPECT_EQ(printer.printFormat("%s!", longText.c_str()), 300001);
  EXPECT_EQ(support::firstDifference(longText + "!", stream.bytes()), "");
}

TEST(Output, WithoutStreamsNothingIsWritten) {
  TestPrinter printer;
  printer.getOutputStreams().clear();
  EXPECT_EQ(printer.printFormat("CLS\r\n"), 0);
  printer.printStr("x");
  printer.printByte(1);
  const unsigned char byte = 1;
  printer.printBytes(&byte, 1);
}

}  // namespace
