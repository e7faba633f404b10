#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>
#include <filesystem>

namespace notlet {

/// Tells when somebody, this process included, may have written the store. Asleep while nobody does.
class StoreWatch : public QObject {
  Q_OBJECT

 public:
  explicit StoreWatch(const std::filesystem::path& store, QObject* parent = nullptr);

  /// Looks at what is at the store's place now, be it other files and folders than before.
  void restart();

 Q_SIGNALS:
  /// Once for the many writes of one save.
  void touched();

 private:
  void notice();
  void watchAll();

  QStringList m_paths;
  QFileSystemWatcher m_watcher;
  QTimer m_pause;
};

} // namespace notlet
