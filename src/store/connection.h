// The one process-wide database connection, and the way every statement of
// the program reaches the server.
//
// Single-threaded by design: the connection, the last-error text and the
// escape work area belong to the one thread of the run.
#pragma once

#include <mysql.h>

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

#include "store/sql.h"
#include "util/text.h"

// Connects to `server`:`port` as `user` (no default database, reconnecting by
// itself when the link drops) and selects `database`. Returns 0 when
// connected, 1 on failure (the half-made connection is closed again).
int ConnectDatabase(const char* server, const char* database, const char* user,
                    const char* password, int port);

// Closes the connection. Returns 0.
int CloseDatabase();

// Why the last statement failed: the server's message, or our own when the
// statement was refused before sending. Valid until the next call.
const char* LastDbError();

// Escapes `text` in place for use inside a single-quoted SQL literal (quote,
// double quote, backslash, line breaks, NUL and Ctrl-Z get a backslash). The
// buffer must have room for twice the text's length plus one. Needs an open
// connection. Returns `text`.
char* EscapeSql(char* text);

// Escapes a copy of `text` into a growing string; no size limit applies.
std::string EscapeSqlText(std::string_view text);

// Escapes `text` into the field; when the escaped form does not fit, it is cut
// before the escape sequence that would not fit, so the result stays a safe
// literal.
template <std::size_t N>
void EscapeSql(Text<N>& text) {
  std::string escaped = EscapeSqlText(text.view());
  std::size_t keep = escaped.size() < N - 1 ? escaped.size() : N - 1;
  // Never keep the first half of a backslash pair.
  std::size_t safe_end = 0;
  for (std::size_t i = 0; i < keep; ++i) {
    if (escaped[i] == '\\') {
      if (i + 1 == keep) break;
      ++i;
    }
    safe_end = i + 1;
  }
  text.Assign(std::string_view(escaped).substr(0, safe_end));
}

// Formats `statement` with `args` (see FormatSql) and sends it. Returns 0 on
// success; the library's non-zero code when the server refused it; 1 when it
// was refused before sending (LastDbError says why).
int ExecuteSql(const char* statement, std::initializer_list<SqlArg> args);

// The automatic key of the row the last insert created.
long long LastInsertId();

// The whole result of a SELECT, freed when the object goes.
class SqlResult {
 public:
  SqlResult() = default;
  explicit SqlResult(MYSQL_RES* result) : result_(result) {}
  ~SqlResult();
  SqlResult(SqlResult&& other) noexcept : result_(other.result_) { other.result_ = nullptr; }
  SqlResult& operator=(SqlResult&& other) noexcept;
  SqlResult(const SqlResult&) = delete;
  SqlResult& operator=(const SqlResult&) = delete;

  // False when the statement failed or returned no result set.
  explicit operator bool() const { return result_ != nullptr; }

  // The next row, or nullptr when there is none. Columns that are null come
  // back as nullptr.
  MYSQL_ROW NextRow();

 private:
  MYSQL_RES* result_ = nullptr;
};

// Formats and sends a SELECT and takes its whole result. An empty SqlResult
// means failure (LastDbError says why) or no result set.
SqlResult QuerySql(const char* statement, std::initializer_list<SqlArg> args);

// Formats and sends a SELECT and reads the first column of its first row as
// an integer (atoi rules); `fallback` when the statement fails, there is no
// row or the column is null.
int QueryInt(const char* statement, std::initializer_list<SqlArg> args, int fallback);

// Copies a column into `field`, a null column as the empty text.
template <std::size_t N>
void CopyColumn(Text<N>& field, const char* column) {
  field = column != nullptr ? column : "";
}
