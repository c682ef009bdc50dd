// Counts the PPDs that are open. A leak of libcups's own has to be passed over, and with it that of
// a whole PPD would be.
#include "fuzz/open_ppds.h"

#include <cups/ppd.h>
#include <dlfcn.h>

#include <set>

namespace {

std::set<ppd_file_t*>& open() {
  static std::set<ppd_file_t*> open;
  return open;
}

}  // namespace

std::size_t fuzz::openPpds() { return open().size(); }

extern "C" {

ppd_file_t* ppdOpenFile(const char* path) {
  static auto* const next =
      reinterpret_cast<ppd_file_t* (*)(const char*)>(::dlsym(RTLD_NEXT, "ppdOpenFile"));
  ppd_file_t* ppd = next(path);
  if (ppd != nullptr) open().insert(ppd);
  return ppd;
}

void ppdClose(ppd_file_t* ppd) {
  static auto* const next = reinterpret_cast<void (*)(ppd_file_t*)>(::dlsym(RTLD_NEXT, "ppdClose"));
  open().erase(ppd);  // which libcups also calls for one that it gave up on
  next(ppd);
}

// A text that a PPD gives twice, such as its encoding, replaces the first without freeing it.
const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions() { return "leak:_ppdOpen\n"; }

}  // extern "C"
