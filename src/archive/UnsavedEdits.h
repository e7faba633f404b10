#pragma once

#include <QObject>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/Uuid.h"
#include "platform/DraftKeeper.h"

namespace notlet {

/// The edited texts of notlets that have not been saved, one file each, so that they survive the closing of
/// the editor as well as a crash.
class UnsavedEdits : public QObject {
  Q_OBJECT

 public:
  /// Brings back the edits of the last run. Without a directory, edits live as long as the process.
  UnsavedEdits(std::optional<std::filesystem::path> directory, Scheduler& scheduler,
               QObject* parent = nullptr);

  /// The kept text, null when there is none.
  [[nodiscard]] const std::string* find(const Uuid& id) const;
  /// All kept texts, by the identifier of their notlet.
  [[nodiscard]] const std::map<Uuid, std::string>& texts() const { return m_texts; }

  /// Which texts are not safe on disk at the moment and which could not be read, a line each with the reason;
  /// without those that were dismissed.
  [[nodiscard]] std::string warning() const;
  /// What is warned of now is known. Another reason is told again.
  void dismissWarning();

  /// Keeps this text from now on, in place of an earlier one.
  void keep(const Uuid& id, std::string text);
  void forget(const Uuid& id);
  /// Writes now what is not written yet and waits for it.
  void flush();
  /// Whether an end of the program now would lose no text.
  [[nodiscard]] bool isSafe() const;

 Q_SIGNALS:
  void warningChanged();

 private:
  void restore(const std::filesystem::path& directory);
  DraftKeeper& keeperOf(const Uuid& id);
  void setUnsafe(const Uuid& id, const std::string& reason);

  std::optional<std::filesystem::path> m_directory;
  Scheduler& m_scheduler;
  std::map<Uuid, std::string> m_texts;
  struct Warning {
    std::string reason;
    bool isDismissed = false;
  };
  std::vector<std::string> m_unreadable;
  std::map<Uuid, Warning> m_unsafe;
  std::map<Uuid, std::unique_ptr<DraftKeeper>> m_keepers;
};

} // namespace notlet
