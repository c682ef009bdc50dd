#include "fuzz/raster_bytes.h"

#include <algorithm>
#include <cstring>

#include "fuzz/finding.h"

namespace fuzz {

namespace {

/// The four texts that a header begins with, and what follows of numbers in each version.
constexpr std::size_t kNumbersBegin = 4 * 64;
constexpr std::size_t kNumbersEndVersion1 = 420;
constexpr std::size_t kNumbersEnd = 580;
static_assert(offsetof(cups_page_header2_t, AdvanceDistance) == kNumbersBegin);
static_assert(offsetof(cups_page_header2_t, cupsNumColors) == kNumbersEndVersion1);
static_assert(offsetof(cups_page_header2_t, cupsString) == kNumbersEnd);

std::uint32_t syncOf(RasterForm form) {
  switch (form.version) {
    case 1:
      return form.swapped ? CUPS_RASTER_REVSYNCv1 : CUPS_RASTER_SYNCv1;
    case 2:
      return form.swapped ? CUPS_RASTER_REVSYNCv2 : CUPS_RASTER_SYNCv2;
    default:
      return form.swapped ? CUPS_RASTER_REVSYNC : CUPS_RASTER_SYNC;
  }
}

std::string headerBytes(const cups_page_header2_t& header, RasterForm form) {
  std::string bytes(sizeof header, '\0');
  std::memcpy(bytes.data(), &header, sizeof header);
  if (form.swapped) {
    for (std::size_t at = kNumbersBegin; at < kNumbersEnd; at += 4) {
      std::reverse(bytes.begin() + static_cast<std::ptrdiff_t>(at),
                   bytes.begin() + static_cast<std::ptrdiff_t>(at) + 4);
    }
  }
  if (form.version == 1) bytes.resize(kNumbersEndVersion1);
  return bytes;
}

/// One row: runs of equal bytes and runs of others, of up to 128 bytes.
std::string packedRow(std::string_view row) {
  std::string packed;
  while (!row.empty()) {
    const std::size_t equal = std::min<std::size_t>(row.find_first_not_of(row[0]), 128);
    const std::size_t repeated = std::min(equal, row.size());
    if (repeated > 1 || row.size() == 1) {
      packed.push_back(static_cast<char>(repeated - 1));
      packed.push_back(row[0]);
      row.remove_prefix(repeated);
      continue;
    }
    std::size_t different = 2;
    while (different < std::min<std::size_t>(row.size(), 128) &&
           row[different] != row[different - 1]) {
      ++different;
    }
    packed.push_back(static_cast<char>(257 - different));
    packed += row.substr(0, different);
    row.remove_prefix(different);
  }
  return packed;
}

/// Rows of `length` bytes, equal ones but once and with their count.
std::string packedRows(std::string_view pixels, std::size_t length) {
  std::string packed;
  while (!pixels.empty()) {
    const std::string_view row = pixels.substr(0, length);
    std::size_t count = 0;
    while (count < 256 && pixels.starts_with(row)) {
      pixels.remove_prefix(length);
      ++count;
    }
    packed.push_back(static_cast<char>(count - 1));
    packed += packedRow(row);
  }
  return packed;
}

}  // namespace

std::string rasterBytes(const std::vector<support::Page>& pages, RasterForm form) {
  const std::uint32_t sync = syncOf(form);
  std::string bytes(sizeof sync, '\0');
  std::memcpy(bytes.data(), &sync, sizeof sync);
  for (const support::Page& page : pages) {
    bytes += headerBytes(page.header, form);
    const std::string_view pixels(reinterpret_cast<const char*>(page.pixels.data()),
                                  page.pixels.size());
    const std::size_t length = page.header.cupsBytesPerLine;
    const bool packed = form.version == 2 && length > 0 && pixels.size() % length == 0;
    bytes += packed ? packedRows(pixels, length) : pixels;
  }
  return bytes;
}

void setField(cups_page_header2_t& header, std::size_t index, std::uint32_t value) {
  require(index < sizeof header / sizeof value, "no such field");
  std::memcpy(reinterpret_cast<unsigned char*>(&header) + index * sizeof value, &value,
              sizeof value);
}

bool isReadable(const cups_page_header2_t& header) {
  return header.cupsBitsPerPixel == 8 && header.cupsHeight != 0 && header.cupsBytesPerLine != 0 &&
         std::uint64_t{header.cupsBytesPerLine} * header.cupsHeight <= 0xFFFFFFFFU &&
         header.cupsWidth <= header.cupsBytesPerLine && header.HWResolution[0] != 0 &&
         header.HWResolution[1] != 0;
}

RasterReader::RasterReader(const std::string& raster)
    : left_(raster), raster_(support::openRaster(left_)) {}

bool RasterReader::next() {
  return raster_ != nullptr && cupsRasterReadHeader2(raster_.get(), &header_) != 0;
}

std::uint64_t RasterReader::rows() const {
  std::uint32_t order = 0;  // read as a number: it need not be one of the enumeration's
  std::memcpy(&order, &header_.cupsColorOrder, sizeof order);
  return std::uint64_t{header_.cupsHeight} *
         (order == CUPS_ORDER_PLANAR ? header_.cupsNumColors : 1);
}

bool RasterReader::row(std::uint64_t most) {
  std::vector<std::uint8_t> row(std::min<std::uint64_t>(header_.cupsBytesPerLine, most));
  const auto size = static_cast<unsigned>(row.size());
  return cupsRasterReadPixels(raster_.get(), row.data(), size) == size;
}

std::vector<std::uint8_t> RasterReader::pixels(std::uint64_t most) {
  const std::uint64_t all = std::uint64_t{header_.cupsBytesPerLine} * header_.cupsHeight;
  std::vector<std::uint8_t> pixels(std::min(all, most));
  const auto size = static_cast<unsigned>(pixels.size());
  // libcups counts rows in 32 bits: where they don't suffice it passes over some of the page.
  const bool counted = static_cast<std::uint32_t>(rows()) >= header_.cupsHeight;
  if (cupsRasterReadPixels(raster_.get(), pixels.data(), size) == 0 || !counted) pixels.clear();
  return pixels;
}

}  // namespace fuzz
