#include "storage/StoreWatch.h"

#include <QFile>

namespace notlet {

using namespace std::chrono_literals;

StoreWatch::StoreWatch(const std::filesystem::path& store, QObject* parent) : QObject(parent) {
  // The journal lies beside the file itself, not beside a link to it.
  std::error_code ignored;
  const std::filesystem::path file = std::filesystem::weakly_canonical(store, ignored);
  // A save ends with the journal: shortened when it is there, made in the folder when it is not.
  for (const std::filesystem::path& path :
       {file.parent_path(), file, std::filesystem::path(file.string() + "-journal")})
    m_paths.append(QFile::decodeName(path.c_str()));
  m_pause.setSingleShot(true);
  m_pause.setInterval(20ms);
  connect(&m_pause, &QTimer::timeout, this, &StoreWatch::touched);
  connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &StoreWatch::notice);
  connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &StoreWatch::notice);
  watchAll();
}

void StoreWatch::restart() {
  if (const QStringList watched = m_watcher.files() + m_watcher.directories(); !watched.isEmpty())
    m_watcher.removePaths(watched);
  watchAll();
}

void StoreWatch::notice() {
  watchAll();
  if (!m_pause.isActive())
    m_pause.start();
}

void StoreWatch::watchAll() {
  const QStringList watched = m_watcher.files() + m_watcher.directories();
  for (const QString& path : m_paths) {
    if (!watched.contains(path) && QFile::exists(path))
      m_watcher.addPath(path);
  }
}

} // namespace notlet
