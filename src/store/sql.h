// Statement formatting for the one database connection.
//
// Statements are printf-style texts ("insert into pcv(...) values(%d,'%s',...)")
// filled into a string that grows as needed, so no value can overrun a
// buffer. Who escapes a text is decided per statement: with
// SqlTexts::kEscape (what the row operations and the jobs' own statements
// use) every text that stands inside a quoted literal is escaped here, as it
// is formatted, unless it is marked AlreadyEscaped (a note escaped before it
// was wrapped); with kAsGiven texts are sent as they are. Either way every
// text inside a quoted literal is then checked, and a value that would end its
// literal early refuses the whole statement, so no input can change what a
// statement does.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "util/text.h"

// One value for a conversion of a statement text.
struct SqlArg {
  enum class Kind { kText, kInteger, kReal, kChar };

  SqlArg(const char* value) : kind(Kind::kText), text(value != nullptr ? value : "") {}
  SqlArg(const std::string& value) : kind(Kind::kText), text(value) {}
  SqlArg(std::string_view value) : kind(Kind::kText), text(value) {}
  template <std::size_t N>
  SqlArg(const Text<N>& value) : kind(Kind::kText), text(value.view()), cut(value.cut != 0) {}
  SqlArg(char value) : kind(Kind::kChar), character(value) {}
  SqlArg(double value) : kind(Kind::kReal), real(value) {}
  SqlArg(float value) : kind(Kind::kReal), real(value) {}
  template <typename T, typename = std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, char>>>
  SqlArg(T value) : kind(Kind::kInteger), integer(static_cast<long long>(value)) {}

  Kind kind;
  std::string_view text;
  long long integer = 0;
  double real = 0;
  char character = 0;
  bool escaped = false;  // already escaped: never escaped again (see AlreadyEscaped)
  bool cut = false;      // a Text field that was cut when it was filled (see Text::cut)
};

// Marks a text that its caller has escaped already, so that a statement
// formatted with SqlTexts::kEscape sends it as it is rather than twice
// escaped: the notes of a record entry, which are escaped before they are
// wrapped so that the stored line breaks stay where they were.
inline SqlArg AlreadyEscaped(SqlArg arg) {
  arg.escaped = true;
  return arg;
}

// How FormatSql treats the texts that stand inside quoted literals.
enum class SqlTexts {
  kAsGiven,  // sent as they are (the caller escaped them)
  kEscape,   // escaped while formatting, except those marked AlreadyEscaped
};

// Fills `statement`, which uses %s, %c, %d, %I64d (a signed 64-bit decimal),
// %f and %.Nf, and %% for a literal percent sign. A one-character value that
// is the zero character is written as nothing, so '%c' stays a whole (empty)
// literal. With SqlTexts::kEscape, texts and characters inside a quoted
// literal are escaped after any precision of their conversion has cut them,
// so a width applies to the text as it came, never to its escaped form.
// Returns true with the text in `out`; false with the reason in `error` when
// a text inside a quoted literal would end it early, or when the values do
// not match the conversions. A value written to a column that was cut to its
// field, or that a reader took only in part, goes to the loss report with the
// column the statement gives it (see written_columns.h).
bool FormatSql(std::string& out, std::string& error, const char* statement,
               std::initializer_list<SqlArg> args, SqlTexts texts = SqlTexts::kAsGiven);

// Appends `text` escaped for a single-quoted literal: quote, double quote,
// backslash, line feed, carriage return, NUL and Ctrl-Z each become a
// backslash sequence, as the client library's escape gives them. The
// connection speaks latin1, a one-byte character set, so no byte can be
// part of a wider character and the escape needs no connection.
void AppendEscapedSql(std::string& out, std::string_view text);

// True when `value` can stand between single quotes without ending the
// literal: every quote is escaped (\' or '') and no backslash is left dangling.
bool IsSafeLiteral(std::string_view value);

// What a statement does, as far as the run's safety needs to know: its verb
// (lower case: "insert", "update", "select", ...), the table it writes (as
// written, without backquotes; empty for statements that write none), and
// for an UPDATE or DELETE the text of its WHERE condition (empty when it has
// none), without a trailing ';'. Quoted texts are skipped, so a "where"
// inside a value is not taken for the keyword.
struct StatementParts {
  std::string verb;
  std::string table;
  std::string where;
  bool has_order_or_limit = false;  // the condition is followed by ORDER BY or LIMIT
};

StatementParts SplitStatement(std::string_view statement);

// The index just past the quoted text that starts at `at` (a ', " or `),
// with backslash escapes and doubled quotes; the end of `text` when it is
// not closed.
std::size_t SkipQuoted(std::string_view text, std::size_t at);

// True when the statement would end an open transaction by itself (DDL, LOCK
// TABLES, COMMIT, SET autocommit, ...): a dry run or an atomic run refuses it.
bool CommitsImplicitly(const StatementParts& parts, std::string_view statement);
