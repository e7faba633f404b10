#include <QCoreApplication>
#include <QEventLoop>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <gmock/gmock.h>
#include <map>
#include <poll.h>
#include <random>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "storage/ModelContext.h"
#include "storage/StoreFixture.h"

namespace notlet {
namespace {

using namespace std::chrono_literals;
using Contents = std::map<Uuid, std::string>;

/// A process that writes to the store and tells over a pipe what it does.
class WriterProcess {
 public:
  WriterProcess(const std::filesystem::path& store, unsigned seed, int saves) {
    int ends[2] = {};
    EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    m_output = ends[0];
    // The writer must not have to wait for a reader.
    EXPECT_GT(::fcntl(m_output, F_SETPIPE_SZ, 1 << 20), 0);
    std::string program = NOTLET_STORE_WRITER;
    std::string file = store.string();
    std::string seedText = std::to_string(seed);
    std::string savesText = std::to_string(saves);
    char* arguments[] = {program.data(), file.data(), seedText.data(), savesText.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    EXPECT_EQ(::posix_spawn(&m_pid, program.c_str(), &actions, nullptr, arguments, environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
  }
  WriterProcess(const WriterProcess&) = delete;
  WriterProcess& operator=(const WriterProcess&) = delete;
  ~WriterProcess() { ::close(m_output); }

  int confirmations = 0;

  [[nodiscard]] pid_t pid() const { return m_pid; }
  void waitUntilItWrites() const {
    pollfd output{m_output, POLLIN, 0};
    EXPECT_EQ(::poll(&output, 1, 10'000), 1);
  }
  void kill() const { ::kill(m_pid, SIGKILL); }

  /// Waits for the end and notes in `confirmed` and `attempted` what the process had said by then.
  int finish(Contents& confirmed, Contents& attempted) {
    attempted = confirmed;
    std::string said;
    char buffer[65536];
    for (ssize_t count = 0; (count = ::read(m_output, buffer, sizeof buffer)) > 0;)
      said.append(buffer, static_cast<std::size_t>(count));
    for (std::size_t end = 0; (end = said.find('\n')) != std::string::npos; said.erase(0, end + 1))
      take(said.substr(0, end), confirmed, attempted);
    int status = 0;
    ::waitpid(m_pid, &status, 0);
    return status;
  }

 private:
  void take(const std::string& line, Contents& confirmed, Contents& attempted) {
    constexpr std::size_t idLength = 36;
    if (line == ".") {
      confirmed = attempted;
      ++confirmations;
    } else if (line.front() == '+') {
      attempted[Uuid::parse(line.substr(1, idLength)).value()] = line.substr(idLength + 2);
    } else {
      attempted.erase(Uuid::parse(line.substr(1)).value());
    }
  }

  pid_t m_pid = 0;
  int m_output = -1;
};

class KillTest : public StoreFixture {
 protected:
  KillTest() : StoreFixture(Medium::Disk) {}

  Contents stored(Access access = Access::ReadOnly) const {
    Contents contents;
    const auto database = openStore(access);
    if (!database)
      return contents;
    const auto read = database->newest(1'000'000);
    EXPECT_TRUE(read) << read.error().message;
    for (const NotletEntry& entry : read.value_or(std::vector<NotletEntry>()))
      contents.emplace(entry.id, entry.content);
    return contents;
  }
};

TEST_F(KillTest, nothingConfirmedIsLostNorComesBack) {
  constexpr int kills = 100;
  std::mt19937 random(7);
  Contents confirmed;
  Contents attempted;
  int answered = 0;
  int unanswered = 0;
  for (int round = 0; round < kills; ++round) {
    WriterProcess writer(store(), static_cast<unsigned>(round), 1'000'000);
    writer.waitUntilItWrites();
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 40'000));
    writer.kill();
    writer.finish(confirmed, attempted);
    answered += writer.confirmations;
    const Contents found = stored(round % 2 == 0 ? Access::ReadOnly : Access::ReadWrite);
    ASSERT_FALSE(HasFailure()) << "round " << round;
    ASSERT_TRUE(found == confirmed || found == attempted) << "round " << round;
    unanswered += confirmed != attempted ? 1 : 0;
    confirmed = found;
  }
  EXPECT_GT(answered, kills / 2) << "the writers were killed before they had written anything";
  EXPECT_GT(unanswered, kills / 10) << "hardly any was killed within a save";
}

TEST_F(KillTest, twoProcessesWriteAtOnceAndTheListFollows) {
  ModelContext context(openStore());
  WriterProcess first(store(), 1, 150);
  WriterProcess second(store(), 2, 150);
  first.waitUntilItWrites();
  std::ifstream maps("/proc/" + std::to_string(first.pid()) + "/maps");
  const std::string libraries(std::istreambuf_iterator<char>(maps), {});
  EXPECT_THAT(libraries, testing::HasSubstr("libsqlite3"));
  EXPECT_THAT(libraries, testing::Not(testing::HasSubstr("libQt"))) << "a program without windows loads Qt";

  const NotletEntry ours = notletAt(1, "ours");
  context.insert(ours);
  bool isSaved = false;
  for (int attempt = 0; !isSaved && attempt < 100; ++attempt)
    isSaved = context.save().has_value();
  EXPECT_TRUE(isSaved);

  Contents expected{{ours.id, ours.content.str()}};
  for (WriterProcess* writer : {&first, &second}) {
    Contents confirmed;
    Contents attempted;
    EXPECT_EQ(writer->finish(confirmed, attempted), 0);
    EXPECT_EQ(confirmed, attempted);
    expected.merge(confirmed);
  }
  EXPECT_EQ(stored(), expected);
  const auto listed = [&] {
    Contents contents;
    for (std::size_t index = 0; index < context.size(); ++index)
      contents.emplace(context.at(index).id, context.at(index).content);
    return contents;
  };
  const auto end = std::chrono::steady_clock::now() + 5s;
  while (listed() != expected && std::chrono::steady_clock::now() < end)
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 20);
  EXPECT_EQ(listed(), expected);
}

} // namespace
} // namespace notlet
