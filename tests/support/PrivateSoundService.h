#pragma once

#include <gtest/gtest.h>

#include <QString>
#include <fstream>
#include <optional>
#include <thread>

#include "support/ChildProcess.h"
#include "support/TemporaryDirectory.h"

namespace notlet {

/// A sound service of the test's own, without hardware. Programs in this process that ask for sound find it.
class PrivateSoundService {
 public:
  PrivateSoundService() {
    const QString directory = QString::fromStdString(m_directory.path().string());
    const QString socket = directory + QStringLiteral("/native");
    for (const char* variable : {"XDG_RUNTIME_DIR", "PULSE_RUNTIME_PATH", "HOME"})
      qputenv(variable, directory.toUtf8());
    qputenv("PULSE_SERVER", QStringLiteral("unix:%1").arg(socket).toUtf8());
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    m_service.emplace(std::vector<std::string>{
        "pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--disable-shm=yes", "--realtime=no",
        "--high-priority=no", "--use-pid-file=no", "-L",
        "module-native-protocol-unix auth-anonymous=1 socket=" + socket.toStdString()});
    while (!control({"info"}).has_value()) {
      if (++m_attempts > 100)
        throw std::runtime_error("the sound service does not start");
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
  }
  ~PrivateSoundService() { die(); }
  PrivateSoundService(const PrivateSoundService&) = delete;
  PrivateSoundService& operator=(const PrivateSoundService&) = delete;

  /// Plugs a microphone in; what is written into speakInto() is what it hears. Gives what unplug() takes.
  std::string plugMicrophone() {
    const auto module = control({"load-module", "module-pipe-source", "source_name=microphone",
                                 "format=s16le", "rate=16000", "channels=1", "file=" + speakInto()});
    EXPECT_TRUE(module.has_value());
    control({"set-default-source", "microphone"});
    return module.value_or(std::string());
  }
  /// Loudspeakers, whose sound can be listened to as well.
  void plugLoudspeakers() { EXPECT_TRUE(control({"load-module", "module-null-sink"}).has_value()); }
  void unplug(const std::string& module) { EXPECT_TRUE(control({"unload-module", module}).has_value()); }
  /// As in a crash.
  void die() {
    if (m_service)
      m_service->signal(SIGKILL);
    m_service.reset();
  }

  [[nodiscard]] std::string speakInto() const { return m_directory.path() / "microphone"; }

 private:
  /// What `pactl` answers; nothing when it fails. Not by Qt's processes: their child shares the memory of
  /// this process for a while, which leaves the thread sanitizer blind.
  std::optional<std::string> control(const std::vector<std::string>& arguments) const {
    const std::string answer = m_directory.path() / "answer";
    std::vector<std::string> command{"sh", "-c", "exec pactl \"$@\" >\"$0\"", answer};
    command.insert(command.end(), arguments.begin(), arguments.end());
    if (ChildProcess(command).wait() != 0)
      return std::nullopt;
    std::string line;
    std::getline(std::ifstream(answer) >> std::ws, line);
    return line;
  }

  TemporaryDirectory m_directory;
  std::optional<ChildProcess> m_service;
  int m_attempts = 0;
};

} // namespace notlet
