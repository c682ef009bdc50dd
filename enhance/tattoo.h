// The tattoo-stencil halftone: threshold, tone curve, sharpening, error diffusion.
#ifndef TARVO_ENHANCE_TATTOO_H_
#define TARVO_ENHANCE_TATTOO_H_

#include "enhance/gray_rows.h"
#include "enhance/lumo_image.h"

/// A two-level (0 and 255) LUMO_IMG_GRAY image of the size of `input`, which is unchanged; the tone
/// curve has a fixed pivot of 64. An image without pixels comes back as a copy.
LumoImage lumoTattooDithering(LumoImage& input);

/// As lumoTattooDithering, with the image's own threshold as the pivot of another tone curve.
LumoImage lumoTattooDitheringX8(LumoImage& input);

enum class TattooVariant { kPlain, kX8 };

/// The same for a page and a result that someone else owns: rows of `page.width` bytes, `outStride`
/// bytes apart, at `out`. REQUIRES: width and height above 0; `out` is not the page.
void ditherRowsForTattoo(TattooVariant variant, const GrayRows& page, std::uint8_t* out,
                         std::ptrdiff_t outStride);

#endif  // TARVO_ENHANCE_TATTOO_H_
