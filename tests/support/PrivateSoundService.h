#pragma once

#include <gtest/gtest.h>

#include <QProcess>
#include <QStringList>
#include <fstream>

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
    m_service.setStandardErrorFile(QProcess::nullDevice());
    m_service.start(QStringLiteral("pulseaudio"),
                    {QStringLiteral("-n"), QStringLiteral("--daemonize=no"),
                     QStringLiteral("--exit-idle-time=-1"), QStringLiteral("--disable-shm=yes"),
                     QStringLiteral("--realtime=no"), QStringLiteral("--high-priority=no"),
                     QStringLiteral("--use-pid-file=no"), QStringLiteral("-L"),
                     QStringLiteral("module-native-protocol-unix auth-anonymous=1 socket=") + socket});
    while (m_service.waitForStarted() && !control({QStringLiteral("info")}).has_value())
      EXPECT_LT(++m_attempts, 100) << "the sound service does not start";
  }
  ~PrivateSoundService() { die(); }
  PrivateSoundService(const PrivateSoundService&) = delete;
  PrivateSoundService& operator=(const PrivateSoundService&) = delete;

  /// Plugs a microphone in; what is written into speakInto() is what it hears. Gives what unplug() takes.
  QString plugMicrophone() {
    const auto module = control({QStringLiteral("load-module"), QStringLiteral("module-pipe-source"),
                                 QStringLiteral("source_name=microphone"), QStringLiteral("format=s16le"),
                                 QStringLiteral("rate=16000"), QStringLiteral("channels=1"),
                                 QStringLiteral("file=%1").arg(QString::fromStdString(speakInto()))});
    EXPECT_TRUE(module.has_value());
    control({QStringLiteral("set-default-source"), QStringLiteral("microphone")});
    return module.value_or(QString());
  }
  /// Loudspeakers, whose sound can be listened to as well.
  void plugLoudspeakers() {
    EXPECT_TRUE(control({QStringLiteral("load-module"), QStringLiteral("module-null-sink")}).has_value());
  }
  void unplug(const QString& module) {
    EXPECT_TRUE(control({QStringLiteral("unload-module"), module}).has_value());
  }
  void die() {
    m_service.kill();
    m_service.waitForFinished();
  }

  [[nodiscard]] std::string speakInto() const { return m_directory.path() / "microphone"; }

 private:
  /// What `pactl` answers; nothing when it fails.
  std::optional<QString> control(const QStringList& arguments) {
    QProcess pactl;
    pactl.start(QStringLiteral("pactl"), arguments);
    pactl.waitForFinished();
    if (pactl.exitStatus() != QProcess::NormalExit || pactl.exitCode() != 0)
      return std::nullopt;
    return QString::fromUtf8(pactl.readAllStandardOutput()).trimmed();
  }

  TemporaryDirectory m_directory;
  QProcess m_service;
  int m_attempts = 0;
};

} // namespace notlet
