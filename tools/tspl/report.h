// What the tools say of a stream, as lines of text.
#ifndef TARVO_TSPL_REPORT_H_
#define TARVO_TSPL_REPORT_H_

#include <optional>
#include <string>

#include "tspl/label.h"
#include "tspl/reader.h"

namespace tspl {

/// The command's offset and text, without a line end: "     216  CLS". `page` is the page that it
/// belongs to; null for the preamble.
std::string CommandLine(const Command& command, const Page* page);

/// What the page is, without a line end: "75.1 x 50.0 mm, 600 x 400 dots at 203 dpi, 1 copy", and
/// why it is not printed when it is not. `last` is its last command, `label` what MeasureLabel()
/// gave for it.
std::string PageLine(const Page& page, const Command& last, const std::optional<Label>& label);

/// Where a stream is malformed and why, without a line end: "byte 97: expected "OFF\r\n", found
/// the end of the stream".
std::string MalformedLine(const Malformed& wrong);

}  // namespace tspl

#endif  // TARVO_TSPL_REPORT_H_
