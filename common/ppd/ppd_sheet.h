// How large the sheets of a model are.
#ifndef TARVO_COMMON_PPD_PPD_SHEET_H_
#define TARVO_COMMON_PPD_PPD_SHEET_H_

#include <cups/ppd.h>

/// A sheet, whichever way round it lies, in points.
struct PpdSheet {
  double shorter = 0;
  double longer = 0;
};

/// The smallest sheet that every page size of `ppd` fits on, the largest custom size among them. A
/// null PPD has no sizes, and a size that is not above 0 is none: without any, both sides are 0.
PpdSheet tarvoPpdLargestSheet(const ppd_file_s* ppd);

#endif  // TARVO_COMMON_PPD_PPD_SHEET_H_
