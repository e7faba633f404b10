#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <chrono>
#include <deque>
#include <filesystem>
#include <memory>
#include <optional>

#include "core/Error.h"
#include "platform/Descriptor.h"
#include "platform/LaunchRequest.h"
#include "platform/linux/LaunchPeer.h"

namespace notlet {

/// Makes sure that one program at a time serves a user: the first start owns a lock and a socket, any later
/// one hands what it asks for over through it (see platform/InstanceSocket.h).
///
/// The kernel drops lock and socket with the process, so a crash leaves nothing that matters.
class SingleInstance : public QObject {
  Q_OBJECT

 public:
  enum class Role { First, HandedOver };

  /// `directory` holds lock and socket; without one every start is a first. `patience` is what a later start
  /// gets to tell its request.
  explicit SingleInstance(std::optional<std::filesystem::path> directory,
                          std::chrono::milliseconds patience = std::chrono::seconds(2),
                          QObject* parent = nullptr);
  ~SingleInstance() override;

  /// Becomes the first instance or hands the request to the first; without a request a later start leaves the
  /// first alone. Fails when another instance holds the lock and refuses the request, or does not answer
  /// within three seconds.
  [[nodiscard]] Result<Role> start(const std::optional<LaunchRequest>& request);

 Q_SIGNALS:
  /// A later start asks this of the first.
  void requested(const notlet::LaunchRequest& request);

 private:
  [[nodiscard]] Result<Role> startIn(const std::filesystem::path& directory,
                                     const std::optional<LaunchRequest>& request);
  [[nodiscard]] Result<bool> lock(const std::filesystem::path& file);
  [[nodiscard]] Result<Role> listen(const std::filesystem::path& socket);
  void acceptWaiting();
  void admit(Descriptor connection);
  void pause();

  std::optional<std::filesystem::path> m_directory;
  std::chrono::milliseconds m_patience;
  Descriptor m_lock;
  Descriptor m_socket;
  std::unique_ptr<QSocketNotifier> m_notifier;
  /// Those that are still telling, the oldest first.
  std::deque<LaunchPeer*> m_peers;
};

} // namespace notlet
