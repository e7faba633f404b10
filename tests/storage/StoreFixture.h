#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <chrono>
#include <filesystem>
#include <gmock/gmock.h>
#include <memory>
#include <string>

#include "storage/NotletDatabase.h"

namespace notlet {

/// A notlet made `second` seconds after some fixed time, with the hashtag "work".
inline NotletEntry notletAt(int second, std::string content = "Call Anna") {
  NotletEntry entry;
  entry.id = Uuid::random();
  entry.content = std::move(content);
  entry.createdAt =
      Timestamp(std::chrono::seconds(1'700'000'000 + second)) + std::chrono::microseconds(123'457);
  entry.hashtags = {"work"};
  return entry;
}

/// A folder of its own for each test, and the store in it. In memory, where syncing takes no time, unless the
/// test wants a real disk.
class StoreFixture : public testing::Test {
 protected:
  enum class Medium { Memory, Disk };

  explicit StoreFixture(Medium medium = Medium::Memory)
      : m_folder((medium == Medium::Memory && QFileInfo(memory).isWritable() ? memory : QDir::tempPath()) %
                 QStringLiteral("/notlet-XXXXXX")) {}

  [[nodiscard]] std::filesystem::path folder() const {
    return QFile::encodeName(m_folder.path()).toStdString();
  }
  [[nodiscard]] std::filesystem::path store() const { return folder() / "Notlet.store"; }
  [[nodiscard]] std::filesystem::path journal() const { return folder() / "Notlet.store-journal"; }

  [[nodiscard]] std::unique_ptr<NotletDatabase> openStore(Access access = Access::ReadWrite) const {
    StoreResult<std::unique_ptr<NotletDatabase>> database = NotletDatabase::open(store(), access);
    if (!database) {
      ADD_FAILURE() << database.error().message;
      return nullptr;
    }
    return std::move(*database);
  }

  /// Stores the notlets through a connection of its own, as another process would.
  void storeElsewhere(const std::vector<NotletEntry>& entries,
                      const std::vector<Uuid>& deletions = {}) const {
    ChangeSet changes;
    changes.deletions = deletions;
    for (const NotletEntry& entry : entries)
      changes.upserts.push_back(&entry);
    const auto written = openStore()->apply(changes);
    ASSERT_TRUE(written) << written.error().message;
  }

 private:
  static inline const QString memory = QStringLiteral("/dev/shm");

  QTemporaryDir m_folder;
};

} // namespace notlet
