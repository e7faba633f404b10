#include "platform/linux/SingleInstance.h"

#include <QDeadlineTimer>
#include <QLocalSocket>
#include <QThread>
#include <chrono>

#include "platform/DurableFile.h"

namespace notlet {

namespace {

constexpr std::chrono::seconds patience{3};
constexpr int answerMilliseconds = 1000;
const QByteArray activateRequest = "activate\n";
const QByteArray answer = "ok\n";

QString pathIn(const std::filesystem::path& directory, const char* name) {
  return QString::fromStdString((directory / name).string());
}

} // namespace

SingleInstance::SingleInstance(std::optional<std::filesystem::path> directory, QObject* parent)
    : QObject(parent), m_directory(std::move(directory)) {
  m_server.setSocketOptions(QLocalServer::UserAccessOption);
  connect(&m_server, &QLocalServer::newConnection, this, &SingleInstance::acceptConnection);
}

Result<SingleInstance::Role> SingleInstance::start() {
  if (!m_directory)
    return Role::First;
  if (const auto made = makePrivateDirectory(*m_directory); !made)
    return std::unexpected(made.error());
  m_lock = std::make_unique<QLockFile>(pathIn(*m_directory, "notlet.lock"));
  m_lock->setStaleLockTime(0); // Only a dead owner makes the lock stale, however long a living one runs.
  // The first instance may hold the lock already but not listen yet.
  const QDeadlineTimer deadline(patience);
  do {
    if (m_lock->tryLock(0))
      return listen();
    if (handOver())
      return Role::HandedOver;
    QThread::msleep(20);
  } while (!deadline.hasExpired());
  return failure("Notlet is already running but does not answer.");
}

bool SingleInstance::handOver() const {
  QLocalSocket socket;
  socket.connectToServer(pathIn(*m_directory, "notlet.socket"));
  if (!socket.waitForConnected(answerMilliseconds))
    return false;
  socket.write(activateRequest);
  return socket.waitForReadyRead(answerMilliseconds) && socket.readAll() == answer;
}

Result<SingleInstance::Role> SingleInstance::listen() {
  const QString path = pathIn(*m_directory, "notlet.socket");
  QLocalServer::removeServer(path); // Left behind by an instance that was killed; the lock is ours.
  if (!m_server.listen(path))
    return failure("Notlet could not listen for later starts: " + m_server.errorString().toStdString() + ".");
  return Role::First;
}

void SingleInstance::acceptConnection() {
  while (QLocalSocket* socket = m_server.nextPendingConnection()) {
    connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
      if (!socket->canReadLine())
        return;
      if (socket->readLine(activateRequest.size() + 1) != activateRequest) {
        socket->abort();
        return;
      }
      socket->write(answer);
      socket->disconnectFromServer();
      Q_EMIT activationRequested();
    });
  }
}

} // namespace notlet
