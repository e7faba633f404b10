#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <chrono>
#include <deque>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "core/Error.h"
#include "platform/Descriptor.h"
#include "platform/LaunchRequest.h"
#include "platform/linux/LaunchPeer.h"

namespace notlet {

/// How long two starts wait for each other.
struct InstancePatience {
  /// What a later start gets to tell its request.
  std::chrono::milliseconds withPeers = std::chrono::seconds(2);
  /// What the first one gets to listen, and to answer.
  std::chrono::milliseconds withTheFirst = std::chrono::seconds(3);
};

/// Makes sure that one program at a time serves a user's session and writes their drafts: the first start
/// owns a lock and a socket in each of these places, any later one hands what it asks for over through it
/// (see platform/InstanceSocket.h).
///
/// The kernel drops lock and socket with the process, so a crash leaves nothing that matters.
class SingleInstance : public QObject {
  Q_OBJECT

 public:
  enum class Role {
    First,
    HandedOver,
    /// None of the places can be used: another instance may run.
    Unguarded,
  };

  /// The directories hold locks and sockets. All starts name those that they share in the same order.
  explicit SingleInstance(std::vector<std::filesystem::path> directories, InstancePatience patience = {},
                          QObject* parent = nullptr);
  ~SingleInstance() override;

  /// Becomes the first instance or hands the request to the first; without a request a later start leaves the
  /// first alone. Fails, and holds nothing, when another instance has a lock and refuses the request or does
  /// not answer. A directory that cannot be used is passed over.
  [[nodiscard]] Result<Role> start(const std::optional<LaunchRequest>& request);

 Q_SIGNALS:
  /// A later start asks this of the first.
  void requested(const notlet::LaunchRequest& request);

 private:
  /// A directory whose lock this instance has.
  struct Place {
    std::filesystem::path directory;
    Descriptor lock;
    Descriptor socket;
    std::unique_ptr<QSocketNotifier> notifier;
  };

  [[nodiscard]] Result<Role> takeAll(const std::optional<LaunchRequest>& request);
  [[nodiscard]] Result<Role> take(const std::filesystem::path& directory,
                                  const std::optional<LaunchRequest>& request);
  void listen(Place& place);
  void acceptWaiting(Place& place);
  void admit(Descriptor connection);
  void pause(Place& place);

  std::vector<std::filesystem::path> m_directories;
  InstancePatience m_patience;
  /// Does not grow once they are listened to.
  std::vector<Place> m_places;
  /// Those that are still telling, the oldest first.
  std::deque<LaunchPeer*> m_peers;
};

} // namespace notlet
