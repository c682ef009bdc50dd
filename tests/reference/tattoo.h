#pragma once

#include "reference/gray.h"

namespace reference {

/// The tattoo-stencil halftones: threshold, tone curve, unsharp mask, six-tap diffusion. A result
/// holds 0 and 255 only; an image without pixels comes back as it is.
Gray tattoo(const Gray& page);

/// The variant whose tone curve turns about the page's own threshold.
Gray tattooX8(const Gray& page);

}  // namespace reference
