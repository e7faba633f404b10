#include "platform/DurableFile.h"

#include <QFile>
#include <QTemporaryDir>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <set>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace notlet {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

/// Lets one call fail, counted over all kinds, or stops the process before it.
class FailingCalls : public FileCalls {
 public:
  static constexpr int stop = 0;

  FailingCalls(int failing, int reason) : m_failing(failing), m_reason(reason) {}

  [[nodiscard]] const std::string& failed() const { return m_failed; }

  int open(const char* path, int flags, mode_t mode) override {
    return fails("open") ? -1 : FileCalls::open(path, flags, mode);
  }
  ssize_t write(int descriptor, const void* bytes, std::size_t count) override {
    if (!fails("write"))
      return FileCalls::write(descriptor, bytes, count);
    // A disk that becomes full takes a part first.
    if (m_reason == ENOSPC && count > 1)
      std::ignore = FileCalls::write(descriptor, bytes, count / 2);
    return -1;
  }
  int setMode(int descriptor, mode_t mode) override {
    return fails("chmod") ? -1 : FileCalls::setMode(descriptor, mode);
  }
  int sync(int descriptor) override { return fails("sync") ? -1 : FileCalls::sync(descriptor); }
  int close(int descriptor) override {
    const int closed = FileCalls::close(descriptor);
    return fails("close") ? -1 : closed;
  }
  int link(const char* existing, const char* added) override {
    return fails("link") ? -1 : FileCalls::link(existing, added);
  }
  int rename(const char* from, const char* to) override {
    return fails("rename") ? -1 : FileCalls::rename(from, to);
  }

 private:
  bool fails(const char* name) {
    if (++m_count != m_failing)
      return false;
    if (m_reason == stop)
      return ::raise(SIGSTOP) != 0;
    m_failed = name;
    errno = m_reason;
    return true;
  }

  int m_failing;
  int m_reason;
  int m_count = 0;
  std::string m_failed;
};

/// Writes a few bytes at a time.
class ShortWritingCalls : public FileCalls {
 public:
  ssize_t write(int descriptor, const void* bytes, std::size_t count) override {
    return FileCalls::write(descriptor, bytes, std::min<std::size_t>(count, 3));
  }
};

class DurableFileTest : public testing::Test {
 protected:
  [[nodiscard]] fs::path folder() const { return QFile::encodeName(m_folder.path()).toStdString(); }
  [[nodiscard]] fs::path file() const { return folder() / "file.json"; }

  static std::optional<std::string> contents(const fs::path& path) {
    Result<std::optional<std::string>> read = readWholeFile(path, 1 << 20);
    EXPECT_TRUE(read) << read.error().message;
    return read.value_or(std::nullopt);
  }
  [[nodiscard]] std::set<std::string> names() const {
    std::set<std::string> found;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder()))
      found.insert(entry.path().filename());
    return found;
  }
  static mode_t modeOf(const fs::path& path) {
    struct stat status{};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
  }

 private:
  QTemporaryDir m_folder;
};

struct Umask {
  explicit Umask(mode_t mask) : former(::umask(mask)) {}
  ~Umask() { ::umask(former); }
  mode_t former;
};

TEST_F(DurableFileTest, eachFailingCallLeavesTheOldFileAndNothingElse) {
  for (const int reason : {EIO, ENOSPC, EDQUOT}) {
    for (const std::optional<std::string>& before :
         {std::optional<std::string>(), std::optional<std::string>("old")}) {
      std::multiset<std::string> failed;
      for (int number = 1;; ++number) {
        fs::remove(file());
        ASSERT_TRUE(!before || writeDurably(file(), *before));
        const std::set<std::string> namesBefore = names();
        FailingCalls calls(number, reason);
        const Result<void> written = writeDurably(file(), "brand new", 0600, calls);
        if (calls.failed().empty()) {
          EXPECT_TRUE(written);
          break;
        }
        failed.insert(calls.failed());
        SCOPED_TRACE(calls.failed() + " as call " + std::to_string(number));
        if (written) {
          // Without the second name for the old file, and after the work is done, all is well.
          EXPECT_THAT(calls.failed(), testing::AnyOf("link", "close"));
          EXPECT_EQ(contents(file()), "brand new");
          EXPECT_EQ(names(), std::set<std::string>{"file.json"});
        } else {
          EXPECT_THAT(written.error().message, HasSubstr(file().string()));
          EXPECT_THAT(written.error().message, HasSubstr(std::generic_category().message(reason)));
          EXPECT_EQ(contents(file()), before);
          EXPECT_EQ(names(), namesBefore);
        }
      }
      EXPECT_EQ(failed.count("sync"), 2) << "the file and its folder";
      for (const char* call : {"open", "write", "chmod", "close", "rename"})
        EXPECT_TRUE(failed.contains(call)) << call;
    }
  }
}

// A process is held up before each of its calls, and maybe killed, while another one writes beside it.
TEST_F(DurableFileTest, removesWhatKilledProcessesLeaveAndNothingOfLivingOnes) {
  for (const bool isKilled : {true, false}) {
    int status = 0;
    for (int number = 1; number == 1 || WIFSTOPPED(status); ++number) {
      SCOPED_TRACE("at call " + std::to_string(number) + (isKilled ? ", killed" : ""));
      ASSERT_TRUE(writeDurably(file(), "old"));
      const pid_t writer = ::fork();
      if (writer == 0) {
        FailingCalls calls(number, FailingCalls::stop);
        ::_exit(writeDurably(file(), "new", 0600, calls) ? 0 : 1);
      }
      ASSERT_EQ(::waitpid(writer, &status, WUNTRACED), writer);
      if (!WIFSTOPPED(status))
        break;
      if (isKilled) {
        ::kill(writer, SIGKILL);
        ASSERT_EQ(::waitpid(writer, nullptr, 0), writer);
      }
      ASSERT_TRUE(writeDurably(folder() / "other", "x"));
      if (!isKilled) {
        int ended = -1;
        ::kill(writer, SIGCONT);
        ASSERT_EQ(::waitpid(writer, &ended, 0), writer);
        EXPECT_EQ(ended, 0);
        EXPECT_EQ(contents(file()), "new");
      }
      EXPECT_THAT(contents(file()), testing::AnyOf("old", "new"));
      EXPECT_EQ(names(), (std::set<std::string>{"file.json", "other"}));
    }
    EXPECT_EQ(status, 0);
  }
}

TEST_F(DurableFileTest, interruptedAndShortWritesAreContinued) {
  ShortWritingCalls shortCalls;
  ASSERT_TRUE(writeDurably(file(), "0123456789", 0600, shortCalls));
  EXPECT_EQ(contents(file()), "0123456789");
  for (int number = 1; number < 8; ++number) {
    FailingCalls calls(number, EINTR);
    const Result<void> written = writeDurably(file(), "interrupted", 0600, calls);
    EXPECT_TRUE(written || calls.failed() != "write");
  }
  EXPECT_EQ(contents(file()), "interrupted");
}

TEST_F(DurableFileTest, modeHoldsWhateverTheUmask) {
  for (const mode_t mask : {0000, 0022, 0777}) {
    const Umask umask(mask);
    const fs::path directory = folder() / ("made" + std::to_string(mask)) / "below";
    ASSERT_TRUE(makePrivateDirectory(directory));
    EXPECT_EQ(modeOf(directory), 0700);
    EXPECT_EQ(modeOf(directory.parent_path()), 0700);
    for (const mode_t mode : {0600, 0644}) {
      ASSERT_TRUE(writeDurably(file(), "x", mode));
      EXPECT_EQ(modeOf(file()), mode);
    }
  }
  ::chmod(folder().c_str(), 0755);
  ASSERT_TRUE(makeDirectory(folder() / "a" / "b"));
  EXPECT_EQ(modeOf(folder()), 0755);
  ASSERT_TRUE(makePrivateDirectory(folder()));
  EXPECT_EQ(modeOf(folder()), 0700);
  ASSERT_TRUE(writeDurably(file(), "x"));
  EXPECT_FALSE(makePrivateDirectory(file()));
  EXPECT_FALSE(makePrivateDirectory(file() / "below"));
}

TEST_F(DurableFileTest, aSymbolicLinkStaysOne) {
  const fs::path target = folder() / "elsewhere" / "target.json";
  fs::create_directory(target.parent_path());
  fs::create_symlink("elsewhere/target.json", folder() / "second");
  fs::create_symlink("second", file());
  for (const char* text : {"through a link to nothing", "through a link to a file"}) {
    ASSERT_TRUE(writeDurably(file(), text));
    EXPECT_TRUE(fs::is_symlink(file()));
    EXPECT_TRUE(fs::is_symlink(folder() / "second"));
    EXPECT_FALSE(fs::is_symlink(target));
    EXPECT_EQ(contents(target), text);
  }
}

TEST_F(DurableFileTest, createNeverReplaces) {
  EXPECT_EQ(createDurably(file(), "first"), true);
  EXPECT_EQ(createDurably(file(), "second"), false);
  EXPECT_EQ(contents(file()), "first");
  EXPECT_EQ(names(), std::set<std::string>{"file.json"});
  fs::remove(file());
  for (int number = 1;; ++number) {
    FailingCalls calls(number, EIO);
    const Result<bool> created = createDurably(file(), "again", 0600, calls);
    if (calls.failed().empty())
      break;
    EXPECT_EQ(fs::exists(file()), created.has_value()) << calls.failed();
    fs::remove(file());
    EXPECT_EQ(names(), std::set<std::string>());
  }
}

TEST_F(DurableFileTest, namesCanBeAsLongAsTheSystemAllows) {
  const fs::path longest = folder() / std::string(255, 'n');
  ASSERT_TRUE(writeDurably(longest, "x"));
  ASSERT_TRUE(writeDurably(longest, "y"));
  EXPECT_EQ(contents(longest), "y");
}

TEST_F(DurableFileTest, readingTellsMissingFromUnreadable) {
  EXPECT_EQ(contents(folder() / "missing"), std::nullopt);
  EXPECT_EQ(contents(folder() / "missing" / "below"), std::nullopt);
  ASSERT_TRUE(writeDurably(file(), std::string("a\0b", 3)));
  EXPECT_EQ(readWholeFile(file(), 3), std::string("a\0b", 3));
  EXPECT_THAT(readWholeFile(file(), 2).error().message, HasSubstr("larger than 2 bytes"));
  EXPECT_FALSE(readWholeFile(folder(), 10));
  const fs::path pipe = folder() / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_FALSE(readWholeFile(pipe, 10)) << "and it did not wait for a writer";
}

} // namespace
} // namespace notlet
