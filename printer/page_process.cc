// One gray page becomes the image that is printed.
#include <algorithm>
#include <cstring>
#include <optional>

#include "common/log.h"
#include "enhance/tattoo.h"
#include "printer/tarvo_printer.h"

namespace {

/// Both brightness and contrast reach CxImage::Light stretched beyond the range of the settings.
constexpr int kBrightnessFactor = 5;
constexpr int kContrastFactor = 2;

/// The product as a 32-bit int, without overflow being undefined.
std::int32_t product32(std::uint32_t a, std::uint32_t b) {
  return static_cast<std::int32_t>(a * b);
}

/// What a LumoImage reads from a zero-filled buffer that holds the page in rows `stride` bytes
/// apart. Quirk: gaps-as-pixels. Its own rows have no gap, so at other widths it takes the gaps for
/// pixels.
LumoImage readBackToBack(CxImage& page, int stride, int width, int height) {
  LumoImage image(width, height, LUMO_IMG_GRAY);
  std::memset(image.data, 0, static_cast<std::size_t>(image.SizeBytes()));
  if (!page.IsValid()) return image;
  for (std::int64_t y = 0; y < height; ++y) {
    const std::int64_t begin = y * stride;
    const std::int64_t count = std::min<std::int64_t>(width, image.SizeBytes() - begin);
    if (count <= 0) break;
    std::memcpy(image.data + begin, page.GetBits(static_cast<std::uint32_t>(y)),
                static_cast<std::size_t>(count));
  }
  return image;
}

}  // namespace

long TarvoPrinter::PageProcess(DitherType halftoneType, const unsigned char* data, int stride,
                               int width, int height, unsigned char* out) {
  return processPage(halftoneType, data, stride, width, height, out);
}

long TarvoPrinter::processPage(DitherType halftoneType, const unsigned char* data, int stride,
                               int width, int height, unsigned char* out) {
  useLumoDithering_ = halftoneType_ == Tattoo || halftoneType_ == Tattoo_X8;
  tarvoLogCommon(0, "PageProcess: Lumo dithering is %s",
                 useLumoDithering_ ? "enabled" : "disabled");

  // A line of 2 GiB or more came in as a negative number.
  const bool created = stride >= 0 && width >= 0 && height >= 0 &&
                       cximage_.CreateFromArray(data, static_cast<std::uint32_t>(width),
                                                static_cast<std::uint32_t>(height), 8,
                                                static_cast<std::uint32_t>(stride), false);
  if (!created) {
    tarvoLogCommon(4, "cximage.CreateFromArray with grey failed!");
    return 0;
  }
  tarvoLogCommon(0, "PageProcess: Successfully created CxImage from array with stride %d", stride);

  if (brightness_ != 0 || contrast_ != 0) {
    cximage_.Light(brightness_ * kBrightnessFactor, contrast_ * kContrastFactor);
    tarvoLogCommon(0, "PageProcess: Adjusted brightness to %d and contrast to %d",
                   brightness_ * kBrightnessFactor, contrast_ * kContrastFactor);
  }
  if (rotate180Print_) {
    cximage_.Rotate180(nullptr);
    tarvoLogCommon(0, "PageProcess: Rotated the image 180 degrees");
  }
  if (mirrorPrint_) {
    cximage_.Mirror();
    tarvoLogCommon(0, "PageProcess: Mirrored the image");
  }

  if (useLumoDithering_) {
    if (!ditherForTattoo(stride, width, height, out)) return 0;
  } else {
    cximage_.Dither(halftoneType);
    cximage_.IncreaseBpp(8);
    pimage_ = &cximage_;
    tarvoLogCommon(0, "PageProcess: Applied default dithering and increased bit depth");
  }

  tarvoLogCommon(0, "PageProcess: negativePrint_ %d", negativePrint_ ? 1 : 0);
  if (negativePrint_) {
    tarvoLogCommon(0, "PageProcess: Inverting the image for negative print");
    // Quirk: negative-is-solid. The CxImage halftones hold indices 0 and 1, which become 255 and
    // 254: two values that are both printed. Only the tattoo halftones are truly inverted.
    pimage_->Negative();
  }
  if (antiWrinkle_ != 0) EnableAntiWrink(*pimage_);

  const std::uint32_t rowBytes = pimage_->GetEffWidth();
  const std::uint64_t outBytes =
      std::uint64_t{2} * static_cast<std::uint32_t>(stride) * static_cast<std::uint32_t>(height);
  // Very narrow pages, whose rows are padded, and enlarging frames do not fit.
  if (out != nullptr && std::uint64_t{rowBytes} * pimage_->GetHeight() <= outBytes) {
    copyProcessedPixels(pimage_, out, static_cast<int>(pimage_->GetWidth()),
                        static_cast<int>(pimage_->GetHeight()), static_cast<int>(rowBytes));
  }
  // Quirk: input-height. The page's own height, also when the frame made the image higher.
  const std::int32_t length = product32(static_cast<std::uint32_t>(height), rowBytes);
  tarvoLogCommon(0, "PageProcess: Filled the output buffer with processed pixels, length: %d",
                 length);
  return length;
}

bool TarvoPrinter::ditherForTattoo(int stride, int width, int height, unsigned char* out) {
  if (out != nullptr) copyPixels(cximage_, out, width, height, stride);
  tarvoLogCommon(0,
                 "PageProcess: Copied pixels to the output buffer for Lumo dithering, with stride "
                 "%d, EffWidth %d",
                 stride, static_cast<int>(cximage_.GetEffWidth()));

  std::optional<LumoImage> source;
  GrayRows page = {cximage_.GetBits(0), static_cast<std::ptrdiff_t>(cximage_.GetEffWidth()), width,
                   height};
  // The rows of the image that is dithered have no gap: gaps of the page become pixels. A page that
  // was lost when it was turned or mirrored is all 0.
  if (stride != width || !cximage_.IsValid()) {
    out != nullptr ? source.emplace(width, height, LUMO_IMG_GRAY, out)
                   : source.emplace(readBackToBack(cximage_, stride, width, height));
    page = rowsOf(*source);
  }
  const bool created = ditheredImage_.Create(static_cast<std::uint32_t>(width),
                                             static_cast<std::uint32_t>(height), 8, 0) != nullptr;
  if (created) {
    ditheredImage_.SetGrayPalette();
    ditherRowsForTattoo(halftoneType_ == Tattoo_X8 ? TattooVariant::kX8 : TattooVariant::kPlain,
                        page, ditheredImage_.GetBits(0),
                        static_cast<std::ptrdiff_t>(ditheredImage_.GetEffWidth()));
  }
  tarvoLogCommon(0, "PageProcess: Applied Lumo dithering with stride %d, width %d",
                 static_cast<int>((std::int64_t{width} + 3) / 4 * 4), width);
  if (!created) {
    tarvoLogCommon(3, "PageProcess: Failed to create a new CxImage from Lumo dithered data");
    return false;
  }
  tarvoLogCommon(0, "PageProcess: Successfully created a new CxImage from Lumo dithered data");
  pimage_ = &ditheredImage_;
  return true;
}
