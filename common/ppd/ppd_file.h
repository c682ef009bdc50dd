// The queue's PPD as a file.
#ifndef TARVO_COMMON_PPD_PPD_FILE_H_
#define TARVO_COMMON_PPD_PPD_FILE_H_

#include <cups/ppd.h>

#include <memory>

struct PpdCloser {
  void operator()(ppd_file_t* ppd) const { ppdClose(ppd); }
};

using PpdOwner = std::unique_ptr<ppd_file_t, PpdCloser>;

/// Opens the PPD that the spooler names in the environment variable PPD, with nothing marked. Null
/// when it names none, or none that can be read.
PpdOwner tarvoOpenQueuePpd();

#endif  // TARVO_COMMON_PPD_PPD_FILE_H_
