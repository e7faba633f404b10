#include "storage/RowFilterSql.h"

#include <array>
#include <sqlite3.h>

namespace notlet {

namespace {

std::string_view textOf(sqlite3_value* value) {
  const auto* start = reinterpret_cast<const char*>(sqlite3_value_text(value));
  return {start, start != nullptr ? static_cast<std::size_t>(sqlite3_value_bytes(value)) : 0};
}

RowFilter& filterOf(sqlite3_context* context) {
  return *static_cast<RowFilter*>(sqlite3_user_data(context));
}

void admitsTags(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  sqlite3_result_int(context, filterOf(context).admitsTags(textOf(values[0])) ? 1 : 0);
}
void admitsText(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  sqlite3_result_int(context, static_cast<int>(filterOf(context).admitsText(textOf(values[0]))));
}
void admitsWords(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  const std::string_view keywords = textOf(values[1]);
  sqlite3_result_int(context, filterOf(context).admitsWords(textOf(values[0]), keywords) ? 1 : 0);
}

struct Function {
  const char* name;
  int parameters;
  void (*function)(sqlite3_context*, int, sqlite3_value**);
};
constexpr std::array<Function, 3> functions{
    {{"admitsTags", 1, admitsTags}, {"admitsText", 1, admitsText}, {"admitsWords", 2, admitsWords}}};

bool define(sqlite3* handle, RowFilter* filter) {
  bool isDefined = true;
  for (const Function& each : functions)
    isDefined = sqlite3_create_function_v2(
                    handle, each.name, each.parameters, SQLITE_UTF8 | SQLITE_DIRECTONLY, filter,
                    filter != nullptr ? each.function : nullptr, nullptr, nullptr, nullptr) == SQLITE_OK &&
                isDefined;
  return isDefined;
}

} // namespace

RowFilterSql::RowFilterSql(SqliteConnection& connection, RowFilter& filter)
    : m_connection(connection), m_filter(filter), m_isReady(define(connection.handle(), &filter)) {
}

RowFilterSql::~RowFilterSql() {
  define(m_connection.handle(), nullptr);
}

StoreResult<void> RowFilterSql::status() const {
  if (!m_isReady)
    return std::unexpected(m_connection.lastError());
  return {};
}

std::string RowFilterSql::condition() const {
  std::string condition;
  if (m_filter.looksAtTags())
    condition += " AND admitsTags(hashtags)";
  if (m_filter.looksAtText())
    // The one form in which SQLite promises not to look at the words first.
    condition += " AND CASE admitsText(content) WHEN " +
                 std::to_string(static_cast<int>(RowFilter::Answer::No)) + " THEN 0 WHEN " +
                 std::to_string(static_cast<int>(RowFilter::Answer::Yes)) +
                 " THEN 1 ELSE admitsWords(hashtags, keywords) END";
  return condition;
}

} // namespace notlet
