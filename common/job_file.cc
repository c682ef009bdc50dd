#include "common/job_file.h"

#include <fcntl.h>
#include <unistd.h>

JobFile::~JobFile() {
  if (descriptor_ > STDIN_FILENO) close(descriptor_);
}

bool JobFile::open(const char* path) {
  descriptor_ = ::open(path, O_RDONLY | O_CLOEXEC);
  return descriptor_ >= 0;
}
