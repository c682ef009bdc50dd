// What tsplview says of a stream, as lines of text.
#ifndef TARVO_TSPLVIEW_REPORT_H_
#define TARVO_TSPLVIEW_REPORT_H_

#include <optional>
#include <string>

#include "tspl/label.h"
#include "tspl/reader.h"

namespace tsplview {

/// The command's offset and text, without a line end: "     216  CLS". `page` is the page that it
/// belongs to; null for the preamble.
std::string CommandLine(const tspl::Command& command, const tspl::Page* page);

/// What the page is, without a line end: "75.1 x 50.0 mm, 600 x 400 dots at 203 dpi, 1 copy", and
/// why it is not printed when it is not. `last` is its last command, `label` what MeasureLabel()
/// gave for it.
std::string PageLine(const tspl::Page& page, const tspl::Command& last,
                     const std::optional<tspl::Label>& label);

}  // namespace tsplview

#endif  // TARVO_TSPLVIEW_REPORT_H_
