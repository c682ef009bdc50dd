// The trace file, which holds one line on the page that was begun last.
#ifndef TARVO_FILTER_TRACE_FILE_H_
#define TARVO_FILTER_TRACE_FILE_H_

#include <cups/raster.h>

/// Replaces the content of /tmp/xxxxx.log by a line on the page. The folder is open to everyone:
/// the file is written only when it is a plain file of this process's user with no other name, so
/// that nothing that was planted there is followed, truncated or waited for. Failure is silent.
void writeTraceFile(const cups_page_header2_s& header);

#endif  // TARVO_FILTER_TRACE_FILE_H_
