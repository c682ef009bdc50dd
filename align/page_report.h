// What the spooler is told while a page passes, on standard error.
#ifndef TARVO_ALIGN_PAGE_REPORT_H_
#define TARVO_ALIGN_PAGE_REPORT_H_

#include <cstdint>

/// One page. The spooler shows how far it is and counts it in the page log. rastertotarvo, which
/// has the same numbers, tells them to the debug log only.
class PageReport {
 public:
  /// The page begins: it is the `page`-th of the job, from 1, and has `rows` rows.
  PageReport(unsigned page, std::uint64_t rows);

  /// `rows` rows have passed; told in steps of a tenth of the page.
  void passed(std::uint64_t rows);

  /// The whole page has passed, and counts `copies` times. A page that does not get this far is
  /// not counted.
  void counts(unsigned copies) const;

 private:
  void tell(unsigned tenths);

  unsigned page_;
  std::uint64_t rows_;
  unsigned tenths_ = 0;
};

#endif  // TARVO_ALIGN_PAGE_REPORT_H_
