// Conversion of any LumoImage to gray.
#ifndef TARVO_ENHANCE_GRAY_H_
#define TARVO_ENHANCE_GRAY_H_

#include "enhance/lumo_image.h"

/// A LUMO_IMG_GRAY image of the size of `src`: gray is copied, colours are weighted by BT.601 luma
/// (single precision, rounded); alpha is ignored.
LumoImage cvtGray(const LumoImage& src);

#endif  // TARVO_ENHANCE_GRAY_H_
