// Where the bytes of a job come from.
#ifndef TARVO_COMMON_JOB_FILE_H_
#define TARVO_COMMON_JOB_FILE_H_

/// The file that the spooler names as a filter's last argument, or standard input when it names
/// none.
class JobFile {
 public:
  /// Standard input.
  JobFile() = default;

  /// Closes the file; never standard input.
  ~JobFile();

  JobFile(const JobFile&) = delete;
  JobFile& operator=(const JobFile&) = delete;

  /// Takes the file at `path` instead of standard input. False with errno set when it can't be
  /// opened: there is nothing to read then. Call it once at most.
  bool open(const char* path);

  /// To read from, for as long as this lives; -1 when the file could not be opened.
  int descriptor() const { return descriptor_; }

 private:
  int descriptor_ = 0;
};

#endif  // TARVO_COMMON_JOB_FILE_H_
