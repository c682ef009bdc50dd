// Which pages the filter can print.
#ifndef TARVO_FILTER_PAGE_CHECK_H_
#define TARVO_FILTER_PAGE_CHECK_H_

#include <cups/raster.h>

/// Whether the header's numbers can be worked with: a page of less than 4 GiB, lines that hold
/// their dots, a resolution. Logs what is wrong. REQUIRES: height and line length above 0.
bool isPrintablePage(const cups_page_header2_s& header);

#endif  // TARVO_FILTER_PAGE_CHECK_H_
