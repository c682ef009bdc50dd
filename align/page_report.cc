#include "align/page_report.h"

#include <cstdio>

PageReport::PageReport(unsigned page, std::uint64_t rows) : page_(page), rows_(rows) { tell(0); }

void PageReport::passed(std::uint64_t rows) {
  const auto tenths = static_cast<unsigned>(rows * 10 / rows_);
  if (tenths > tenths_) tell(tenths);
}

void PageReport::counts(unsigned copies) const {
  std::fprintf(stderr, "PAGE: %u %u\n", page_, copies);
}

void PageReport::tell(unsigned tenths) {
  tenths_ = tenths;
  std::fprintf(stderr, "ATTR: job-media-progress=%u\n", tenths * 10);
}
