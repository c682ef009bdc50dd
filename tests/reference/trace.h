#pragma once

#include <cups/raster.h>

#include <string>

namespace reference {

/// The trace file's content after a page's header was accepted.
std::string traceLine(const cups_page_header2_t& header);

}  // namespace reference
