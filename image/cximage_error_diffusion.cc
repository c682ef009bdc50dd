// Error diffusion of the image's 8-bit levels.
#include "image/cximage.h"
#include "kernels/diffusion.h"

namespace {

kernels::Diffusion kernelOf(std::int64_t method) {
  switch (method) {
    case 2:
      return kernels::Diffusion::kBurkes;
    case 3:
      return kernels::Diffusion::kStucki;
    case 4:
      return kernels::Diffusion::kJarvisJudiceNinke;
    case 5:
      return kernels::Diffusion::kSierra;
    case 6:
      return kernels::Diffusion::kStevensonArce;
    default:
      return kernels::Diffusion::kFloydSteinberg;
  }
}

}  // namespace

void CxImage::DitherErrorDiffusion(std::int64_t method, CxImage& result) const {
  // Levels of other depths end at 15, which no error can raise above the threshold: all black, as
  // the result is already.
  if (header.biBitCount != 8) return;
  kernels::diffuseErrors(kernelOf(method), info.bits, info.effWidth, GetWidth(), GetHeight(),
                         result.GetBits(0), result.GetEffWidth());
}
