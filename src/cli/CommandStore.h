#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "cli/CommandError.h"
#include "core/NotletEntry.h"
#include "storage/NotletDatabase.h"

namespace notlet {

/// Where the notlets are kept; fails when the system offers no folder for them.
[[nodiscard]] CommandResult<std::filesystem::path> storePath();

/// The store as a command uses it: opened for its short run, patient with other programs.
class CommandStore {
 public:
  /// A store that is not there yet is created with its first write; until then it is empty.
  [[nodiscard]] static CommandResult<CommandStore> open(Access access);

  /// Hands out the notlets, newest first, until there are no more or `visit` returns false. Few are in memory
  /// at a time, whatever the archive holds.
  [[nodiscard]] CommandResult<void> visit(const std::function<bool(const NotletEntry&)>& visit);

  /// Hands out the notlets that the filter admits, in the order of their writing, each before the filter
  /// looks at another. One that is written meanwhile may come twice.
  [[nodiscard]] CommandResult<void> scan(RowFilter& filter,
                                         const std::function<void(const NotletEntry&)>& visit);

  /// The notlet of this id, or nothing.
  [[nodiscard]] CommandResult<std::optional<NotletEntry>> find(const Uuid& id);
  /// The notlet whose id begins so; hyphens and letter case are free. Fails when there is none or several.
  [[nodiscard]] CommandResult<NotletEntry> find(std::string_view idBeginning);
  [[nodiscard]] CommandResult<Uuid> findId(std::string_view idBeginning);
  /// In ascending order.
  [[nodiscard]] CommandResult<std::vector<Uuid>> allIds();

  /// Stores all changes or none.
  [[nodiscard]] CommandResult<void> apply(const ChangeSet& changes);

 private:
  explicit CommandStore(std::unique_ptr<NotletDatabase> database) : m_database(std::move(database)) {}

  /// None while there is no store.
  std::unique_ptr<NotletDatabase> m_database;
};

} // namespace notlet
