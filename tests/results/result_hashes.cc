// The results of the pipeline as hashes, to be compared between compilers and machines.
//
//   result_hashes FILE            compares with the record, on every kind of vector unit there is
//   result_hashes --update FILE   writes the record
//
// Needs no test framework and nothing of the print spooler at run time, so that it can be built for
// a machine that is only emulated.
#include <hwy/highway.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "kernels/bits.h"
#include "kernels/target.h"
#include "printer/tarvo_printer.h"
#include "results.h"

namespace {

using results::Hash;
using results::Options;
using results::Page;

/// A file name of its own, removed at the end.
class TemporaryFile {
 public:
  TemporaryFile() {
    const int file = mkstemp(path_.data());
    if (file < 0) {
      std::cout << "can't create " << path_.data() << "\n";
      std::exit(1);
    }
    close(file);
  }
  ~TemporaryFile() { unlink(path_.data()); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const char* path() const { return path_.data(); }

  std::string content() const {
    std::ifstream file(path_.data(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::array<char, 32> path_ = {"/tmp/result_hashes.XXXXXX"};
};

class HashingPrinter : public TarvoPrinter {
 public:
  /// The processed image with its padding, the copied result, and the dots as they are sent.
  Hash process(const Page& page, const Options& options) {
    const auto type = static_cast<DitherType>(options.halftone);
    setHalftoneType(type);
    setMirrorPrint(options.mirror);
    setNegativePrint(options.negative);
    setBrightness(options.brightness);
    std::vector<std::uint8_t> out(2 * page.bytes.size());
    PageProcess(type, page.bytes.data(), page.stride, page.width, page.height, out.data());

    const std::size_t width = pimage_->GetWidth();
    const std::size_t height = pimage_->GetHeight();
    const std::uint8_t* image = pimage_->GetBits(0);
    Hash hash;
    hash.add(image, pimage_->GetEffWidth() * height);
    hash.add(out.data(), out.size());
    std::vector<std::uint8_t> dots((width + 7) / 8);
    for (std::size_t y = 0; y < height; ++y) {
      kernels::packZeros(image + y * width, width, dots.data());
      hash.add(dots.data(), dots.size());
    }
    return hash;
  }

  Hash dump(const Page& page, int bitsPerPixel) {
    const TemporaryFile file;
    std::snprintf(imagePath_, sizeof(imagePath_), "%s", file.path());
    saveImage(page.bytes.data(), static_cast<unsigned long>(page.stride),
              static_cast<unsigned long>(page.height), static_cast<unsigned long>(page.width),
              static_cast<unsigned short>(bitsPerPixel));
    const std::string bytes = file.content();
    Hash hash;
    hash.add(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    return hash;
  }

 protected:
  int doPrintImage(const unsigned char*, unsigned long, unsigned long, unsigned long) override {
    return 0;
  }
};

std::vector<std::string> computed() {
  std::vector<std::string> lines;
  for (const Page& page : results::pages()) {
    HashingPrinter printer;
    for (const Options& options : results::everyOption()) {
      lines.push_back(results::line(page, options, printer.process(page, options)));
    }
    for (const int bits : {8, 1}) {
      lines.push_back(results::dumpLine(page, bits, printer.dump(page, bits)));
    }
  }
  return lines;
}

/// The number of lines that differ, the first of which are shown.
std::size_t differences(const std::vector<std::string>& expected,
                        const std::vector<std::string>& actual) {
  constexpr std::size_t kShown = 20;
  std::size_t count = 0;
  for (std::size_t i = 0; i < std::max(expected.size(), actual.size()); ++i) {
    const std::string recorded = i < expected.size() ? expected[i] : "(none)";
    const std::string now = i < actual.size() ? actual[i] : "(none)";
    if (recorded == now) continue;
    if (++count <= kShown) std::cout << "recorded " << recorded << "\n     now " << now << "\n";
  }
  return count;
}

int update(const std::string& path) {
  std::ofstream file(path);
  for (const std::string& text : computed()) file << text << "\n";
  file.close();
  if (!file) std::cout << "can't write " << path << "\n";
  return file ? 0 : 1;
}

int check(const std::string& path) {
  const std::vector<std::string> recorded = results::linesOf(path);
  if (recorded.empty()) {
    std::cout << path << ": no record\n";
    return 1;
  }
  std::vector<std::int64_t> targets = hwy::SupportedAndGeneratedTargets();
  if (targets.empty() || targets.back() != HWY_STATIC_TARGET) targets.push_back(HWY_STATIC_TARGET);
  bool good = true;
  for (const std::int64_t target : targets) {
    hwy::GetChosenTarget().Update(target);
    const std::size_t count = differences(recorded, computed());
    const bool used = kernels::chosenTarget() == target;
    std::cout << hwy::TargetName(target) << ": " << recorded.size() << " results, " << count
              << " differ" << (used ? "" : "; and the kernels did not run on it") << std::endl;
    good = good && used && count == 0;
  }
  return good ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  // The pipeline tells each step of each page.
  if (std::freopen("/dev/null", "w", stderr) == nullptr) return 1;
  if (arguments.size() == 1) return check(arguments[0]);
  if (arguments.size() == 2 && arguments[0] == "--update") return update(arguments[1]);
  std::cout << "usage: result_hashes [--update] FILE\n";
  return 2;
}
