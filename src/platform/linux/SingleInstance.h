#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <filesystem>
#include <memory>
#include <optional>

#include "core/Error.h"
#include "platform/linux/Descriptor.h"

namespace notlet {

/// Makes sure that one program at a time serves a user: the first start owns a lock and a socket, any later
/// one hands over through it.
///
/// A connection is the whole message: whoever connects asks the first instance to come forward and gets one
/// byte as an answer. The kernel drops lock and socket with the process, so a crash leaves nothing that
/// matters.
class SingleInstance : public QObject {
  Q_OBJECT

 public:
  enum class Role { First, HandedOver };

  /// `directory` holds lock and socket; without one every start is a first.
  explicit SingleInstance(std::optional<std::filesystem::path> directory, QObject* parent = nullptr);
  ~SingleInstance() override;

  /// Becomes the first instance or asks the first to come forward. Fails when another instance holds the
  /// lock but does not answer within three seconds.
  [[nodiscard]] Result<Role> start();

 Q_SIGNALS:
  /// A later start asks this one to come forward.
  void activationRequested();

 private:
  [[nodiscard]] Result<Role> startIn(const std::filesystem::path& directory);
  [[nodiscard]] Result<bool> lock(const std::filesystem::path& file);
  [[nodiscard]] Result<Role> listen(const std::filesystem::path& socket);
  void answer();

  std::optional<std::filesystem::path> m_directory;
  Descriptor m_lock;
  Descriptor m_socket;
  std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace notlet
