// What others may leave where a file is to be written.
#ifndef TARVO_TESTS_COMMON_PLANTED_H_
#define TARVO_TESTS_COMMON_PLANTED_H_

#include <sys/stat.h>

#include <filesystem>
#include <string>

/// Something that can stand at a path; some of it leads to the file `target`.
struct Planted {
  const char* what;
  void (*plant)(const std::string& target, const std::string& path);
};

inline const Planted kPlanted[] = {
    {"a link", [](const std::string& target,
                  const std::string& path) { std::filesystem::create_symlink(target, path); }},
    {"a second name",
     [](const std::string& target, const std::string& path) {
       std::filesystem::create_hard_link(target, path);
     }},
    {"a folder",
     [](const std::string&, const std::string& path) { std::filesystem::create_directory(path); }},
    {"a pipe", [](const std::string&, const std::string& path) { mkfifo(path.c_str(), 0600); }},
};

#endif  // TARVO_TESTS_COMMON_PLANTED_H_
