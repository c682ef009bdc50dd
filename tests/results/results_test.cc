// The record is what the definitions say, not only what the pipeline once did.
#include "results.h"

#include <gtest/gtest.h>

#include "reference/bmp_dump.h"
#include "reference/packing.h"
#include "reference/page_pipeline.h"

namespace {

using results::Hash;
using results::Options;
using results::Page;

void add(Hash& hash, const std::string& bytes) {
  hash.add(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

Hash byDefinition(const Page& page, const Options& options) {
  reference::PageOptions choices;
  choices.halftone = options.halftone;
  choices.mirror = options.mirror;
  choices.negative = options.negative;
  choices.brightness = options.brightness;
  reference::Printer printer;
  reference::Log log;
  const reference::Processing result = reference::pageProcess(
      printer, choices, {}, page.bytes, page.stride, page.width, page.height, log);

  Hash hash;
  const reference::Image8& image = *printer.image();
  hash.add(image.bytes.data(), image.bytes.size());
  hash.add(result.out.data(), result.out.size());
  for (int y = 0; y < image.height; ++y) {
    add(hash, reference::packedDots(image.bytes.data() + y * image.width, image.width));
  }
  return hash;
}

Hash dumpByDefinition(const Page& page, int bitsPerPixel) {
  Hash hash;
  add(hash, reference::bmpFile(page.bytes, static_cast<std::uint32_t>(page.stride),
                               static_cast<std::uint32_t>(page.height),
                               static_cast<std::uint32_t>(page.width), bitsPerPixel));
  return hash;
}

TEST(ResultHashes, RecordIsWhatTheDefinitionsGive) {
  std::vector<std::string> expected;
  for (const Page& page : results::pages()) {
    for (const Options& options : results::everyOption()) {
      expected.push_back(results::line(page, options, byDefinition(page, options)));
    }
    for (const int bits : {8, 1}) {
      expected.push_back(results::dumpLine(page, bits, dumpByDefinition(page, bits)));
    }
  }
  const std::vector<std::string> recorded = results::linesOf(TARVO_RESULT_HASHES);
  ASSERT_EQ(recorded.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(recorded[i], expected[i]);
}

TEST(ResultHashes, HashIsFnv1a) {
  Hash hash;
  EXPECT_EQ(hash.text(), "cbf29ce484222325");
  // One byte: (0xcbf29ce484222325 xor 0x61) x 0x100000001b3, modulo 2 to the 64.
  add(hash, "a");
  EXPECT_EQ(hash.text(), "af63dc4c8601ec8c");
}

}  // namespace
