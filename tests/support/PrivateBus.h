#pragma once

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QProcess>
#include <QUuid>
#include <fstream>

#include "platform/linux/BusSource.h"
#include "support/TemporaryDirectory.h"

namespace notlet {

/// A session bus of the test's own. It can die.
class PrivateBus {
 public:
  /// `startable` names services that the bus would start for a call, in vain.
  explicit PrivateBus(const std::vector<std::string>& startable = {}) {
    const std::filesystem::path directory = m_directory.path();
    const std::filesystem::path services = directory / "services";
    std::filesystem::create_directories(services);
    for (const std::string& name : startable)
      std::ofstream(services / (name + ".service"))
          << "[D-BUS Service]\nName=" << name << "\nExec=/bin/false\n";
    std::ofstream(directory / "bus.conf")
        << "<busconfig><type>session</type><listen>unix:dir=" << directory.string() << "</listen>"
        << "<auth>EXTERNAL</auth><servicedir>" << services.string() << "</servicedir>"
        << "<policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
        << "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>";
    m_daemon.start(QStringLiteral("dbus-daemon"),
                   {QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
                    QStringLiteral("--print-address=1"),
                    QStringLiteral("--config-file=%1").arg(QString::fromStdString(directory / "bus.conf"))});
    while (!m_daemon.canReadLine() && m_daemon.waitForReadyRead()) {
    }
    m_address = QString::fromUtf8(m_daemon.readLine()).trimmed();
    EXPECT_FALSE(m_address.isEmpty()) << m_daemon.readAllStandardError().toStdString();
  }

  ~PrivateBus() {
    for (const QString& name : m_names)
      QDBusConnection::disconnectFromBus(name);
    die();
  }

  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;

  /// Another program's connection; may be called from any thread that the test waits for.
  [[nodiscard]] QDBusConnection connect() {
    const QString name = QUuid::createUuid().toString();
    m_names.append(name);
    return QDBusConnection::connectToBus(m_address, name);
  }

  /// One connection for all that ask, as in the program.
  [[nodiscard]] BusSource source() {
    return [connection = connect()] { return connection; };
  }

  void die() {
    m_daemon.kill();
    m_daemon.waitForFinished();
  }

 private:
  TemporaryDirectory m_directory;
  QProcess m_daemon;
  QString m_address;
  QStringList m_names;
};

} // namespace notlet
