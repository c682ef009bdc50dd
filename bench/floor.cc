// bench_floor FOLDER < RASTER: the least that any filter of this kind must do. Reads each page,
// writes two files of its size into the folder, and as many bytes as its bitmap has to standard
// output.
#include <cups/raster.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace {

struct Close {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

void dump(const std::string& name, const std::vector<std::uint8_t>& page) {
  const std::unique_ptr<std::FILE, Close> file(std::fopen(name.c_str(), "wb"));
  if (file != nullptr) std::fwrite(page.data(), 1, page.size(), file.get());
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s FOLDER < RASTER\n", argv[0]);
    return 2;
  }
  const std::string folder = argv[1];
  cups_raster_t* raster = cupsRasterOpen(STDIN_FILENO, CUPS_RASTER_READ);
  cups_page_header2_t header;
  std::vector<std::uint8_t> page;
  int files = 0;
  while (cupsRasterReadHeader2(raster, &header) != 0) {
    page.resize(std::size_t{header.cupsBytesPerLine} * header.cupsHeight);
    if (cupsRasterReadPixels(raster, page.data(), static_cast<unsigned>(page.size())) == 0)
      return 1;
    for (int i = 0; i < 2; ++i) dump(folder + "/floor_" + std::to_string(files++) + ".bmp", page);
    const std::size_t bitmap = std::size_t{(header.cupsWidth + 7) / 8} * header.cupsHeight;
    std::fwrite(page.data(), 1, bitmap, stdout);
  }
  cupsRasterClose(raster);
  return 0;
}
