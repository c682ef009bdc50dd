// A page to measure with.
#ifndef TARVO_BENCH_PAGE_H_
#define TARVO_BENCH_PAGE_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// `width` x `height` gray levels: "photo" has smooth tones, edges and grain, "lines" thin lines,
/// "blank" and "gray" one level, "noise" all levels, "checks" the two extremes, "doubtful" what is
/// hardest to blur. Always the same. An unknown kind is empty.
std::vector<std::uint8_t> makePage(const std::string& kind, std::size_t width, std::size_t height);

#endif  // TARVO_BENCH_PAGE_H_
