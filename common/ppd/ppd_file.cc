#include "ppd/ppd_file.h"

#include <cstdlib>

PpdOwner tarvoOpenQueuePpd() {
  const char* path = std::getenv("PPD");
  return PpdOwner(path != nullptr ? ppdOpenFile(path) : nullptr);
}
