#include "filter/trace_file.h"

#include "common/file.h"

namespace {

const char* const kTracePath = "/tmp/xxxxx.log";

}  // namespace

void writeTraceFile(const cups_page_header2_s& header) {
  const FileOwner file = tarvoOpenOwnFile(kTracePath);
  if (file == nullptr) return;
  std::fprintf(
      file.get(), "cupsWidth:%d, cupsHeight:%d, cupsBytesPerLine:%d, cupsBitsPerPixel:%d\n",
      static_cast<int>(header.cupsWidth), static_cast<int>(header.cupsHeight),
      static_cast<int>(header.cupsBytesPerLine), static_cast<int>(header.cupsBitsPerPixel));
}
