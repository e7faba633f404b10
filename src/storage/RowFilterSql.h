#pragma once

#include <string>

#include "storage/RowFilter.h"
#include "storage/SqliteConnection.h"

namespace notlet {

/// A row filter as functions of SQL, there until this goes.
class RowFilterSql {
 public:
  /// Both must outlive the object.
  RowFilterSql(SqliteConnection& connection, RowFilter& filter);
  RowFilterSql(const RowFilterSql&) = delete;
  RowFilterSql& operator=(const RowFilterSql&) = delete;
  ~RowFilterSql();

  /// Fails when the functions could not be made.
  [[nodiscard]] StoreResult<void> status() const;
  /// The condition on a row of notlets, to follow other conditions.
  [[nodiscard]] std::string condition() const;

 private:
  SqliteConnection& m_connection;
  RowFilter& m_filter;
  bool m_isReady = false;
};

} // namespace notlet
