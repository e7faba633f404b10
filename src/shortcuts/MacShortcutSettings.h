#pragma once

#include <QObject>
#include <filesystem>
#include <optional>
#include <string>

#include "core/Error.h"
#include "platform/FileOpener.h"
#include "shortcuts/MacShortcutConfig.h"

namespace notlet {

/// The shortcuts in force and the file `config.json` that keeps them, which the user may also edit by hand.
///
/// Nothing here fails loudly: what goes wrong is told by `errorMessage()`, and the shortcuts in force stay.
class MacShortcutSettings : public QObject {
  Q_OBJECT

 public:
  /// Loads the file. Without a directory there is no file, and the defaults are in force. The opener must
  /// outlive this object.
  MacShortcutSettings(std::optional<std::filesystem::path> directory, FileOpener& opener,
                      QObject* parent = nullptr);

  [[nodiscard]] const MacShortcutConfig& config() const { return m_config; }
  /// Where the file is, or will be; nothing when there is no place for it.
  [[nodiscard]] std::optional<std::filesystem::path> location() const;
  /// Why the last load or save failed, or what else went wrong with the keyboard, as whole sentences (UTF-8).
  [[nodiscard]] const std::optional<std::string>& errorMessage() const { return m_errorMessage; }
  void setErrorMessage(std::optional<std::string> message);

  /// Reads the file again. A missing file is written with the shortcuts in force; a file of an older version
  /// is brought up to date; any other file is left as it is.
  void reload();
  /// Writes the configuration and brings it into force, unless it is not valid.
  void save(const MacShortcutConfig& config);
  /// Writes the configuration to the file, valid or not, and changes nothing else.
  [[nodiscard]] Result<void> write(const MacShortcutConfig& config) const;
  /// Opens the file with the user's application for it; a missing file is saved first.
  void openConfigFile();

 Q_SIGNALS:
  /// The shortcuts in force or the error message differ from before.
  void changed();

 private:
  [[nodiscard]] Result<void> load();
  [[nodiscard]] Result<void> store(const MacShortcutConfig& config) const;
  [[nodiscard]] Result<void> makeFolder() const;
  [[nodiscard]] std::filesystem::path file() const;
  void setConfig(const MacShortcutConfig& config);

  std::optional<std::filesystem::path> m_directory;
  FileOpener& m_opener;
  MacShortcutConfig m_config;
  std::optional<std::string> m_errorMessage;
};

} // namespace notlet
