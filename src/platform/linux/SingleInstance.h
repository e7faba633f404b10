#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QObject>
#include <filesystem>
#include <memory>
#include <optional>

#include "core/Error.h"

namespace notlet {

/// Makes sure that one program at a time serves a user: the first start owns a lock and a socket, any later
/// one hands over through it.
class SingleInstance : public QObject {
  Q_OBJECT

 public:
  enum class Role { First, HandedOver };

  /// `directory` holds lock and socket; without one every start is a first.
  explicit SingleInstance(std::optional<std::filesystem::path> directory, QObject* parent = nullptr);

  /// Becomes the first instance or asks the first to come forward. Fails when another instance holds the
  /// lock but does not answer within three seconds.
  [[nodiscard]] Result<Role> start();

 Q_SIGNALS:
  /// A later start asks this one to come forward.
  void activationRequested();

 private:
  [[nodiscard]] bool handOver() const;
  [[nodiscard]] Result<Role> listen();
  void acceptConnection();

  std::optional<std::filesystem::path> m_directory;
  std::unique_ptr<QLockFile> m_lock;
  QLocalServer m_server;
};

} // namespace notlet
