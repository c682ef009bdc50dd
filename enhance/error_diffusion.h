// Error diffusion with a six-tap kernel of our own.
#ifndef TARVO_ENHANCE_ERROR_DIFFUSION_H_
#define TARVO_ENHANCE_ERROR_DIFFUSION_H_

#include "enhance/lumo_image.h"

/// A two-level (0 and 255) LUMO_IMG_GRAY image of the size of `src` (read as one byte per pixel):
/// a pixel that with its carried error exceeds `threshold` becomes 255. Errors are carried in
/// single precision, unclamped; about 6 per cent of each is dropped. A white pixel inside the image
/// carries less away when the pixels left of it and above it are black. `threshold` may be any int.
LumoImage edf_cus(const LumoImage& src, int threshold);

#endif  // TARVO_ENHANCE_ERROR_DIFFUSION_H_
