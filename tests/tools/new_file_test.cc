// Files that have their name only when they are whole, whatever fails or was planted.
#include "files/new_file.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>

#include "files/unfinished.h"
#include "temporary_folder.h"

namespace {

using files::Existing;
using files::NewFile;
namespace fs = std::filesystem;

// Looked at by the renameat2() below, which stands in for the system's in this program.
std::function<void()> before_renaming;
bool knows_renaming_to_free_names = true;

// Likewise by open().
std::function<void()> after_opening;

}  // namespace

#pragma GCC diagnostic ignored "-Wredundant-decls"  // the C library's header may define it as well
extern "C" int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  const auto real = reinterpret_cast<int (*)(const char*, int, ...)>(dlsym(RTLD_NEXT, "open"));
  const int descriptor = real(path, flags, mode);
  if (after_opening) after_opening();
  return descriptor;
}

extern "C" int renameat2(int from_folder, const char* from, int to_folder, const char* to,
                         unsigned int flags) noexcept {
  if (before_renaming) before_renaming();
  if (!knows_renaming_to_free_names) {
    errno = EINVAL;
    return -1;
  }
  const auto real = reinterpret_cast<decltype(&renameat2)>(dlsym(RTLD_NEXT, "renameat2"));
  return real(from_folder, from, to_folder, to, flags);
}

namespace {

class NewFileTest : public ::testing::Test {
 protected:
  ~NewFileTest() override {
    before_renaming = nullptr;
    knows_renaming_to_free_names = true;
  }

  std::set<std::string> Names() const {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_.path())) {
      names.insert(entry.path().filename().string());
    }
    return names;
  }

  std::string Path() const { return folder_.File("it"); }

  test::TemporaryFolder folder_;
};

void Put(const NewFile& file, const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), file.stream());
}

TEST_F(NewFileTest, HasItsNameWhenItIsWholeAndNotBefore) {
  for (const bool replaces : {false, true}) {
    if (replaces) folder_.Write("it", "old");
    NewFile file(Path(), replaces ? Existing::kReplace : Existing::kKeep, 0600);
    ASSERT_EQ(file.error(), "");
    Put(file, "new text");
    EXPECT_EQ(file.size(), 8U);
    std::fflush(file.stream());
    // A hidden file beside what was there.
    EXPECT_EQ(Names().size(), replaces ? 2U : 1U);
    EXPECT_TRUE(Names().begin()->starts_with(".tarvo-")) << *Names().begin();
    EXPECT_EQ(folder_.Read("it"), replaces ? "old" : "");
    EXPECT_EQ(file.Finish(), "");
    EXPECT_EQ(Names(), std::set<std::string>{"it"});
    EXPECT_EQ(folder_.Read("it"), "new text");
    fs::remove(Path());
  }
}

TEST_F(NewFileTest, GoesWithItsOwner) {
  { Put(NewFile(Path(), Existing::kReplace, 0600), "text"); }
  EXPECT_EQ(Names(), std::set<std::string>{});
  { Put(NewFile(Path(), Existing::kKeep, 0600, ".hidden"), "text"); }
  EXPECT_EQ(Names(), std::set<std::string>{});
}

struct Planted {
  const char* name;
  std::function<void(const std::string& path)> plant;
  bool replaced;  // by a file that may replace one
};

const Planted kPlanted[] = {
    {"a file", [](const std::string& path) { std::fclose(std::fopen(path.c_str(), "w")); }, true},
    {"a folder", [](const std::string& path) { fs::create_directory(path); }, false},
    {"a symbolic link",
     [](const std::string& path) {
       fs::create_symlink(fs::path(path).parent_path() / "target", path);
     },
     false},
    {"a symbolic link",
     [](const std::string& path) {
       fs::create_symlink(fs::path(path).parent_path() / "nothing", path);
     },
     false},
    {"a pipe", [](const std::string& path) { mkfifo(path.c_str(), 0600); }, false},
    {"a socket",
     [](const std::string& path) {
       sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
       path.copy(address.sun_path, sizeof address.sun_path - 1);
       const int made = socket(AF_UNIX, SOCK_STREAM, 0);
       bind(made, reinterpret_cast<const sockaddr*>(&address), sizeof address);
       close(made);
     },
     false},
};

TEST_F(NewFileTest, LeavesAloneWhatHasTheName) {
  folder_.Write("target", "untouched");
  for (const Existing existing : {Existing::kKeep, Existing::kReplace}) {
    for (const bool late : {false, true}) {
      for (const Planted& planted : kPlanted) {
        if (planted.replaced && existing == Existing::kReplace) continue;
        SCOPED_TRACE(planted.name + std::string(late ? ", late" : ", early"));
        if (!late) planted.plant(Path());
        NewFile file(Path(), existing, 0600);
        if (late) {
          ASSERT_EQ(file.error(), "");
          Put(file, "text");
          planted.plant(Path());
        }
        const auto before = fs::symlink_status(Path()).type();
        const std::string error = planted.name + std::string(" has this name and is left alone");
        if (late) {
          EXPECT_EQ(file.Finish(), error);
        }
        EXPECT_EQ(file.error(), error);
        EXPECT_TRUE(file.taken());
        EXPECT_EQ(file.stream(), nullptr);
        EXPECT_EQ(fs::symlink_status(Path()).type(), before);
        EXPECT_EQ(Names(), (std::set<std::string>{"it", "target"}));
        EXPECT_EQ(folder_.Read("target"), "untouched");
        EXPECT_TRUE(!fs::is_regular_file(fs::symlink_status(Path())) || folder_.Read("it").empty());
        fs::remove(Path());
      }
    }
  }
}

TEST_F(NewFileTest, KeepsWhatGetsTheNameInTheLastMoment) {
  for (const bool known : {true, false}) {
    knows_renaming_to_free_names = known;
    before_renaming = [&] { folder_.Write("it", "other"); };
    NewFile file(Path(), Existing::kKeep, 0600);
    Put(file, "text");
    EXPECT_EQ(file.Finish(), "File exists");
    EXPECT_EQ(folder_.Read("it"), "other");
    EXPECT_EQ(Names(), std::set<std::string>{"it"});
    fs::remove(Path());
  }
}

TEST_F(NewFileTest, NeedsNoFileSystemThatKnowsFreeNames) {
  knows_renaming_to_free_names = false;
  NewFile file(Path(), Existing::kKeep, 0600);
  Put(file, "text");
  EXPECT_EQ(file.Finish(), "");
  EXPECT_EQ(folder_.Read("it"), "text");
  EXPECT_EQ(Names(), std::set<std::string>{"it"});
}

TEST_F(NewFileTest, OneOfThoseWithAHiddenNameSucceeds) {
  auto first = std::make_unique<NewFile>(Path(), Existing::kKeep, 0600, ".hidden");
  ASSERT_EQ(first->error(), "");
  const NewFile second(Path(), Existing::kKeep, 0600, ".hidden");
  EXPECT_EQ(second.error(), "File exists");
  EXPECT_TRUE(second.taken());
  EXPECT_EQ(second.stream(), nullptr);
  EXPECT_EQ(Names(), std::set<std::string>{".hidden"}) << "not the second's to remove";
  EXPECT_EQ(first->Finish(), "");
  EXPECT_TRUE(NewFile(Path(), Existing::kKeep, 0600, ".hidden").taken());
  first = nullptr;
  EXPECT_EQ(Names(), std::set<std::string>{"it"});
}

TEST_F(NewFileTest, SaysWhyItCannotBegin) {
  folder_.Write("file", "");
  const struct {
    std::string path;
    const char* error;
  } kCases[] = {
      {"missing/it", "No such file or directory"},
      {"file/it", "Not a directory"},
      {std::string(300, 'n'), "File name too long"},
  };
  for (const auto& c : kCases) {
    const NewFile file(folder_.File(c.path), Existing::kReplace, 0600);
    EXPECT_EQ(file.error(), c.error);
    EXPECT_EQ(file.stream(), nullptr);
    EXPECT_FALSE(file.taken()) << c.path;
    EXPECT_EQ(Names(), std::set<std::string>{"file"});
  }
}

TEST_F(NewFileTest, ANameMayBeAsLongAsAnyOther) {
  const std::string name(255, 'n');
  NewFile file(folder_.File(name), Existing::kReplace, 0600);
  EXPECT_EQ(file.Finish(), "");
  EXPECT_EQ(Names(), std::set<std::string>{name});
}

// The limit on the size of files, as if the disk were full.
void LimitFiles(rlim_t bytes) {
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  limit.rlim_cur = std::min(bytes, limit.rlim_max);
  setrlimit(RLIMIT_FSIZE, &limit);
}

TEST_F(NewFileTest, IsNoneWhenNotAllOfItCouldBeWritten) {
  std::signal(SIGXFSZ, SIG_IGN);
  const struct {
    std::size_t bytes;
    const char* error;
  } kCases[] = {
      {10, "File too large"},          // what is written when the file is closed
      {100000, "Input/output error"},  // a loss that whoever wrote the bytes did not look at
  };
  for (const auto& c : kCases) {
    NewFile file(Path(), Existing::kReplace, 0600);
    LimitFiles(4);
    Put(file, std::string(c.bytes, 'a'));
    const std::string error = file.Finish();
    LimitFiles(RLIM_INFINITY);
    EXPECT_EQ(error, c.error) << c.bytes;
    EXPECT_EQ(Names(), std::set<std::string>{});
  }
}

TEST_F(NewFileTest, HasThePermissionsLessTheUmask) {
  const mode_t before = umask(027);
  for (const mode_t mode : {0600U, 0666U}) {
    EXPECT_EQ(NewFile(Path(), Existing::kReplace, mode).Finish(), "");
    struct stat status {};
    stat(Path().c_str(), &status);
    EXPECT_EQ(status.st_mode & 07777U, mode & ~027U);
  }
  umask(before);
}

TEST_F(NewFileTest, IsNotInherited) {
  const NewFile file(Path(), Existing::kReplace, 0600);
  EXPECT_EQ(fcntl(fileno(file.stream()), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
}

TEST_F(NewFileTest, UnfinishedOnesCanBeRemovedAtOnce) {
  NewFile whole(folder_.File("whole"), Existing::kReplace, 0600);
  NewFile one(folder_.File("one"), Existing::kReplace, 0600);
  const NewFile two(folder_.File("two"), Existing::kKeep, 0600, ".two");
  EXPECT_EQ(whole.Finish(), "");
  EXPECT_EQ(Names().size(), 3U);
  files::RemoveUnfinished();
  EXPECT_EQ(Names(), std::set<std::string>{"whole"});
  EXPECT_EQ(one.Finish(), "No such file or directory");
}

TEST_F(NewFileTest, MoreThanAreMarkedCanBeMade) {
  std::vector<std::unique_ptr<NewFile>> files;
  for (int i = 0; i < 9; ++i) {
    files.push_back(std::make_unique<NewFile>(folder_.File("it" + std::to_string(i)),
                                              Existing::kReplace, 0600));
  }
  for (const auto& file : files) EXPECT_EQ(file->Finish(), "");
  EXPECT_EQ(Names().size(), 9U);
}

TEST_F(NewFileTest, ASignalComesBeforeTheFileOrWhenItCanBeRemoved) {
  const pid_t child = fork();
  if (child == 0) {
    std::signal(SIGTERM, SIG_DFL);
    files::RemoveUnfinishedAtSignals();
    after_opening = [] { raise(SIGTERM); };
    const NewFile file(Path(), Existing::kReplace, 0600);
    _exit(7);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(WIFSIGNALED(status) ? WTERMSIG(status) : -1, SIGTERM);
  EXPECT_EQ(Names(), std::set<std::string>{});
}

TEST_F(NewFileTest, UnfinishedOnesGoWithASignal) {
  for (const bool ignored : {false, true}) {
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
      const pid_t child = fork();
      if (child == 0) {
        std::signal(signal, ignored ? SIG_IGN : SIG_DFL);
        const rlimit none{0, 0};
        setrlimit(RLIMIT_CORE, &none);
        const NewFile file(Path(), Existing::kReplace, 0600);
        files::RemoveUnfinishedAtSignals();
        raise(signal);
        _exit(Names().size() == 1 ? 7 : 8);
      }
      int status = 0;
      waitpid(child, &status, 0);
      if (ignored) {
        EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, 7) << signal;
        for (const std::string& name : Names()) fs::remove(folder_.File(name));
      } else {
        EXPECT_EQ(WIFSIGNALED(status) ? WTERMSIG(status) : -1, signal);
        EXPECT_EQ(Names(), std::set<std::string>{}) << signal;
      }
    }
  }
}

}  // namespace
