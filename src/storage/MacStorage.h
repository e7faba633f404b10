#pragma once

#include <QObject>
#include <QTimer>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "storage/SharedModelContainer.h"

namespace notlet {

/// Opens the store once and remembers the container, or why there is none. What keeps the store from being
/// opened may pass; then there is a container later on.
class MacStorage : public QObject {
  Q_OBJECT

 public:
  /// Without a data directory there is no container.
  explicit MacStorage(const std::optional<std::filesystem::path>& dataDirectory, QObject* parent = nullptr);

  /// The storage of the process in the directory set below; opened by the first call, never closed.
  [[nodiscard]] static MacStorage& shared();
  /// Says where shared() looks. To be called before its first use.
  static void setSharedDirectory(std::optional<std::filesystem::path> dataDirectory);

  /// Null exactly when there is an error description.
  [[nodiscard]] SharedModelContainer* container() const;
  [[nodiscard]] std::optional<std::string> errorDescription() const;

  /// For the screens, which can be typed in before the store is open. Null when it will never be.
  [[nodiscard]] ModelContext* context() const;
  /// Whether it is too early to call the store unavailable: it is not open and was asked for just now.
  [[nodiscard]] bool isAwaited() const { return m_patience.isActive(); }

 Q_SIGNALS:
  /// Of the answers above.
  void changed();

 private:
  void stopWaiting();

  std::unique_ptr<SharedModelContainer> m_container;
  std::optional<std::string> m_errorDescription;
  QTimer m_patience;
};

} // namespace notlet
