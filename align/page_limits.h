// How large a page may be, and how often it may be printed.
#ifndef TARVO_ALIGN_PAGE_LIMITS_H_
#define TARVO_ALIGN_PAGE_LIMITS_H_

#include <cups/raster.h>

#include <cstdint>

#include "ppd/ppd_sheet.h"

/// What raster from elsewhere may ask for. A header of a few bytes can claim a page that the next
/// filter would need gigabytes for, or a label for every second of a century.
class PageLimits {
 public:
  /// For a model whose largest sheet this is: pages may be twice as long and twice as wide. The
  /// sheet of a model that nothing is known of has no sides; then only 256 MiB are a limit.
  explicit PageLimits(const PpdSheet& largest) : largest_(largest) {}

  /// Whether the page of this header may pass, which is the `page`-th of the job and has `rows`
  /// rows. Else says on standard error how large it is and how large it may be. A page without a
  /// resolution has no size that could be compared with the model's.
  bool admit(unsigned page, const cups_page_header2_t& header, std::uint64_t rows) const;

 private:
  static bool fitsInMemory(unsigned page, const cups_page_header2_t& header, std::uint64_t rows);
  bool fitsTheModel(unsigned page, const cups_page_header2_t& header) const;

  PpdSheet largest_;
};

/// How often the `page`-th page is printed that asks for `copies`: 9999 times at the most. Says on
/// standard error when these are fewer.
unsigned limitCopies(unsigned page, unsigned copies);

#endif  // TARVO_ALIGN_PAGE_LIMITS_H_
