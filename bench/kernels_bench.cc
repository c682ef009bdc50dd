// The speed of the kernels and of the plain versions, in pixels a second of this thread's time, on
// an A4 page at 300 dpi.
#include <benchmark/benchmark.h>
#include <hwy/targets.h>
#include <malloc.h>

#include <cstdio>

#include "enhance/error_diffusion.h"
#include "enhance/gaussian.h"
#include "enhance/moments_threshold.h"
#include "enhance/tattoo.h"
#include "enhance/tone_curve.h"
#include "image/cximage.h"
#include "kernels/bits.h"
#include "kernels/target.h"
#include "page.h"
#include "reference/dither.h"
#include "reference/gaussian.h"
#include "reference/six_tap_diffusion.h"
#include "reference/tattoo.h"

namespace {

constexpr int kWidth = 2480;
constexpr int kHeight = 3508;

const std::vector<std::uint8_t>& photo() {
  static const std::vector<std::uint8_t> page = makePage("photo", kWidth, kHeight);
  return page;
}

void countPixels(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * kWidth * kHeight);
}

/// Dithers a fresh image each time; making it is not counted.
void dither(benchmark::State& state, int method) {
  for (auto _ : state) {
    state.PauseTiming();
    CxImage image;
    image.CreateFromArray(photo().data(), kWidth, kHeight, 8, kWidth, false);
    state.ResumeTiming();
    image.Dither(method);
  }
  countPixels(state);
}

void ditherPlainly(benchmark::State& state, int method) {
  const reference::Gray page(kWidth, kHeight, photo());
  for (auto _ : state) benchmark::DoNotOptimize(reference::dither(page, method));
  countPixels(state);
}

/// Runs `step` on the page as the enhancement chain holds it.
template <typename Step>
void enhance(benchmark::State& state, Step step) {
  LumoImage page(kWidth, kHeight, LUMO_IMG_GRAY, photo().data());
  for (auto _ : state) benchmark::DoNotOptimize(step(page));
  countPixels(state);
}

template <typename Step>
void enhancePlainly(benchmark::State& state, Step step) {
  const reference::Gray page(kWidth, kHeight, photo());
  for (auto _ : state) benchmark::DoNotOptimize(step(page));
  countPixels(state);
}

void packZeros(benchmark::State& state) {
  std::vector<std::uint8_t> bits(kWidth / 8);
  for (auto _ : state) {
    for (std::size_t y = 0; y < kHeight; ++y) {
      kernels::packZeros(photo().data() + y * kWidth, kWidth, bits.data());
      benchmark::DoNotOptimize(bits.data());
      benchmark::ClobberMemory();
    }
  }
  countPixels(state);
}

struct Method {
  const char* name;
  int number;
};

constexpr Method kMethods[] = {
    {"threshold", 0},           {"ordered_fixed", 1}, {"ordered_computed", 7},
    {"Floyd_Steinberg", 8},     {"Burkes", 2},        {"Stucki", 3},
    {"Jarvis_Judice_Ninke", 4}, {"Sierra", 5},        {"Stevenson_Arce", 6}};

void add(const std::string& name, auto function) {
  benchmark::RegisterBenchmark(name.c_str(), function)->Unit(benchmark::kMillisecond);
}

void addAll() {
  for (const Method& method : kMethods) {
    const std::string name = method.name;
    const int number = method.number;
    add(name, [number](benchmark::State& state) { dither(state, number); });
    add(name + "/plain", [number](benchmark::State& state) { ditherPlainly(state, number); });
  }
  const auto addStep = [](const std::string& name, auto step, auto plain) {
    add(name, [step](benchmark::State& state) { enhance(state, step); });
    add(name + "/plain", [plain](benchmark::State& state) { enhancePlainly(state, plain); });
  };
  addStep(
      "six_tap", [](LumoImage& page) { return edf_cus(page, 128).data[0]; },
      [](const reference::Gray& page) { return reference::sixTapDiffusion(page, 128); });
  addStep(
      "blur", [](LumoImage& page) { return enh_gaussian_filter_fast(page, 11, 3.0).data[0]; },
      [](const reference::Gray& page) { return reference::gaussianBlurSeparable(page, 11, 3.0); });
  addStep(
      "tattoo", [](LumoImage& page) { return lumoTattooDithering(page).data[0]; },
      [](const reference::Gray& page) { return reference::tattoo(page); });
  addStep(
      "tattoo_X8", [](LumoImage& page) { return lumoTattooDitheringX8(page).data[0]; },
      [](const reference::Gray& page) { return reference::tattooX8(page); });
  add("moments_threshold", [](benchmark::State& state) {
    enhance(state, [](LumoImage& page) { return thresh_global_moments(page); });
  });
  add("pack", packZeros);
}

}  // namespace

int main(int argc, char* argv[]) {
#ifdef __GLIBC__
  // As the filter does: a page's memory stays for the next one.
  mallopt(M_MMAP_THRESHOLD, 32 << 20);
  mallopt(M_TRIM_THRESHOLD, 256 << 20);
#endif
  benchmark::Initialize(&argc, argv);
  benchmark::AddCustomContext("target", hwy::TargetName(kernels::chosenTarget()));
  addAll();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
