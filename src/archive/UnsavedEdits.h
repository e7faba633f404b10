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

  /// Why a text is not safe on disk at the moment or could not be read; empty when there is nothing to tell.
  /// Where there are several, the next one waits until this one is over or dismissed.
  [[nodiscard]] std::string warning() const;
  /// The user knows of this one. Another reason for the same text is told again.
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

  struct Warning {
    /// The edit that is not safe; none when it could not be read.
    std::optional<Uuid> edit;
    std::string reason;
    bool isDismissed = false;
  };

  std::optional<std::filesystem::path> m_directory;
  Scheduler& m_scheduler;
  std::map<Uuid, std::string> m_texts;
  std::vector<Warning> m_warnings;
  std::map<Uuid, std::unique_ptr<DraftKeeper>> m_keepers;
};

} // namespace notlet
