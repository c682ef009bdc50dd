// The pages and options whose results are recorded in hashes.txt, and the form of the record.
//
// Knows neither the pipeline nor the reference, which both fill in the hashes.
#ifndef TARVO_TESTS_RESULTS_RESULTS_H_
#define TARVO_TESTS_RESULTS_RESULTS_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace results {

/// A gray page: `height` rows, `stride` bytes apart, `width` dots each.
struct Page {
  std::string name;
  int width = 0;
  int height = 0;
  int stride = 0;
  std::vector<std::uint8_t> bytes;  ///< stride x height
};

/// What a job can choose for a page.
struct Options {
  int halftone = 0;  ///< 0..9
  bool mirror = false;
  bool negative = false;
  int brightness = 0;
};

/// The same pages everywhere: drawn with nothing but integers.
std::vector<Page> pages();

/// Every halftone, mirrored or not, negative or not, at three brightnesses.
std::vector<Options> everyOption();

/// FNV-1a, 64 bits, over all bytes added.
class Hash {
 public:
  void add(const std::uint8_t* bytes, std::size_t count);
  std::string text() const;  ///< 16 hexadecimal digits

 private:
  std::uint64_t state_ = 0xcbf29ce484222325;
};

/// A line of the record: "PAGE HALFTONE[,mirror][,negative],BRIGHTNESS HASH".
std::string line(const Page& page, const Options& options, const Hash& hash);

/// The line of a page's dump at 8 or 1 bits a pixel: "PAGE dump8 HASH".
std::string dumpLine(const Page& page, int bitsPerPixel, const Hash& hash);

/// The lines of a file; empty when it can't be read.
std::vector<std::string> linesOf(const std::string& path);

}  // namespace results

#endif  // TARVO_TESTS_RESULTS_RESULTS_H_
