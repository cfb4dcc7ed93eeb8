#include "store/sql.h"

#include <cstdio>
#include <cctype>
#include <cstring>
#include <strings.h>
#include <vector>

#include "store/written_losses.h"
#include "util/loss_report.h"

bool IsSafeLiteral(std::string_view value) {
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] == '\\') {
      if (i + 1 == value.size()) return false;
      ++i;
    } else if (value[i] == '\'') {
      if (i + 1 == value.size() || value[i + 1] != '\'') return false;
      ++i;
    }
  }
  return true;
}

void AppendEscapedSql(std::string& out, std::string_view text) {
  for (char c : text) {
    switch (c) {
      case '\0': out += "\\0"; break;
      case '\n': out += "\\n"; break;
      case '\r': out += "\\r"; break;
      case '\\': out += "\\\\"; break;
      case '\'': out += "\\'"; break;
      case '"': out += "\\\""; break;
      case '\032': out += "\\Z"; break;
      default: out.push_back(c); break;
    }
  }
}

namespace {

// The conversion texts come from the fixed statement texts, never from data.
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

// Appends `value` printed with `format`, however long the result.
template <typename T>
void AppendFormatted(std::string& out, const std::string& format, T value) {
  int n = std::snprintf(nullptr, 0, format.c_str(), value);
  if (n <= 0) return;
  std::size_t start = out.size();
  out.resize(start + static_cast<std::size_t>(n) + 1);
  std::snprintf(out.data() + start, static_cast<std::size_t>(n) + 1, format.c_str(), value);
  out.resize(start + static_cast<std::size_t>(n));
}

// Formats one `conversion` ("%.2f", "%d", "%I64d", ...) with `arg`.
bool FormatOne(std::string& out, std::string_view conversion, const SqlArg& arg) {
  // Flags, width and precision; any length modifier (I64, ll, l, h) is
  // dropped because the value's own type decides how it is printed.
  std::string format(conversion.substr(0, conversion.find_first_not_of("%-+ #0123456789.")));
  switch (conversion.back()) {
    case 's':
      if (arg.kind != SqlArg::Kind::kText) return false;
      if (format == "%") {
        out.append(arg.text);
      } else {
        AppendFormatted(out, format + 's', std::string(arg.text).c_str());
      }
      return true;
    case 'c':
      if (arg.kind != SqlArg::Kind::kChar) return false;
      if (arg.character != '\0') out.push_back(arg.character);
      return true;
    case 'd':
    case 'i':
      if (arg.kind != SqlArg::Kind::kInteger) return false;
      AppendFormatted(out, format + "lld", arg.integer);
      return true;
    case 'f':
      if (arg.kind != SqlArg::Kind::kReal) return false;
      AppendFormatted(out, format + 'f', arg.real);
      return true;
    default:
      return false;
  }
}

// True for an INSERT, REPLACE or UPDATE: the statements that store a record.
bool WritesRows(const char* statement) {
  while (std::isspace(static_cast<unsigned char>(*statement))) ++statement;
  return strncasecmp(statement, "insert", 6) == 0 || strncasecmp(statement, "update", 6) == 0 ||
         strncasecmp(statement, "replace", 7) == 0;
}

}  // namespace

bool FormatSql(std::string& out, std::string& error, const char* statement,
               std::initializer_list<SqlArg> args, SqlTexts texts) {
  out.clear();
  error.clear();
  const SqlArg* next = args.begin();
  bool in_literal = false;  // inside a single-quoted literal of the statement text
  int number = 0;
  const bool reads_waiting = AnyReadInPart();
  std::vector<FormattedValue> for_report;  // allocates only when there is something to report
  for (const char* p = statement; *p != '\0'; ++p) {
    if (*p != '%') {
      if (*p == '\'') in_literal = !in_literal;
      out.push_back(*p);
      continue;
    }
    if (p[1] == '%') {
      out.push_back('%');
      ++p;
      continue;
    }
    const char* start = p++;
    while (*p != '\0' && std::strchr("sdcfi", *p) == nullptr) ++p;
    if (*p == '\0') {
      error = "Malformed conversion in statement";
      return false;
    }
    ++number;
    if (next == args.end()) {
      error = "Missing value for conversion " + std::to_string(number);
      return false;
    }
    std::size_t before = out.size();
    if (!FormatOne(out, std::string_view(start, static_cast<std::size_t>(p - start + 1)), *next)) {
      error = "Value " + std::to_string(number) + " does not match its conversion";
      return false;
    }
    if (in_literal && texts == SqlTexts::kEscape && !next->escaped && next->kind != SqlArg::Kind::kInteger &&
        next->kind != SqlArg::Kind::kReal) {
      std::string value = out.substr(before);
      out.resize(before);
      AppendEscapedSql(out, value);
    }
    if (in_literal && !IsSafeLiteral(std::string_view(out).substr(before))) {
      error = "Value " + std::to_string(number) + " would end its quoted text early: '" +
              out.substr(before) + "'";
      return false;
    }
    if (next->cut || reads_waiting) {
      for_report.push_back({next, static_cast<std::size_t>(start - statement), before, out.size()});
    }
    ++next;
  }
  if (next != args.end()) {
    error = "More values than conversions in statement";
    return false;
  }
  if (reads_waiting && WritesRows(statement)) NoteStatementWhileReadsWait();
  if (!for_report.empty()) ReportWrittenLosses(statement, out, for_report);
  return true;
}

std::size_t SkipQuoted(std::string_view text, std::size_t at) {
  char quote = text[at];
  for (std::size_t i = at + 1; i < text.size(); ++i) {
    if (text[i] == '\\' && quote != '`') {
      ++i;
    } else if (text[i] == quote) {
      if (i + 1 < text.size() && text[i + 1] == quote) {
        ++i;
      } else {
        return i + 1;
      }
    }
  }
  return text.size();
}

namespace {

bool IsWordChar(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '$' || c == '`' ||
         static_cast<unsigned char>(c) >= 0x80;
}

// The words of `text` outside quotes, with where each starts.
struct Word {
  std::string lower;
  std::size_t start;
  std::size_t end;
};

// Stops after `limit` words: an INSERT needs only its first few.
std::vector<Word> Words(std::string_view text, std::size_t limit = static_cast<std::size_t>(-1)) {
  std::vector<Word> words;
  std::size_t i = 0;
  while (i < text.size() && words.size() < limit) {
    char c = text[i];
    if (c == '\'' || c == '"') {
      i = SkipQuoted(text, i);
    } else if (IsWordChar(c)) {
      std::size_t start = i;
      while (i < text.size() && IsWordChar(text[i])) {
        i = text[i] == '`' ? SkipQuoted(text, i) : i + 1;
      }
      std::string word;
      for (char w : text.substr(start, i - start)) {
        if (w != '`') word.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(w))));
      }
      words.push_back({word, start, i});
    } else {
      ++i;
    }
  }
  return words;
}

std::string Unquoted(std::string_view name) {
  std::string plain;
  for (char c : name) {
    if (c != '`') plain.push_back(c);
  }
  return plain;
}

}  // namespace

StatementParts SplitStatement(std::string_view statement) {
  StatementParts parts;
  std::vector<Word> words = Words(statement, 1);
  if (words.empty()) return parts;
  parts.verb = words[0].lower;
  if (parts.verb == "update" || parts.verb == "delete") {
    words = Words(statement);
  } else {
    words = Words(statement, 6);
  }
  std::size_t table = 1;
  if (parts.verb == "insert" || parts.verb == "replace") {
    while (table < words.size() && (words[table].lower == "into" || words[table].lower == "ignore" ||
                                    words[table].lower == "low_priority" || words[table].lower == "delayed")) {
      ++table;
    }
  } else if (parts.verb == "delete") {
    while (table < words.size() && words[table].lower != "from") ++table;
    ++table;
  } else if (parts.verb == "update") {
    while (table < words.size() && (words[table].lower == "ignore" || words[table].lower == "low_priority")) ++table;
  } else {
    return parts;
  }
  if (table >= words.size()) return parts;
  std::string_view name = statement.substr(words[table].start, words[table].end - words[table].start);
  // "db.table": the table is what follows the dot.
  std::size_t after = words[table].end;
  if (after < statement.size() && statement[after] == '.' && table + 1 < words.size()) {
    name = statement.substr(words[table + 1].start, words[table + 1].end - words[table + 1].start);
  }
  parts.table = Unquoted(name);
  if (parts.verb != "update" && parts.verb != "delete") return parts;
  for (std::size_t i = table + 1; i < words.size(); ++i) {
    if (words[i].lower != "where") continue;
    std::size_t end = statement.size();
    for (std::size_t k = i + 1; k < words.size(); ++k) {
      if ((words[k].lower == "order" && k + 1 < words.size() && words[k + 1].lower == "by") ||
          words[k].lower == "limit") {
        parts.has_order_or_limit = true;
        end = words[k].start;
        break;
      }
    }
    std::string_view where = statement.substr(words[i].end, end - words[i].end);
    while (!where.empty() && (where.back() == ';' || std::isspace(static_cast<unsigned char>(where.back())))) {
      where.remove_suffix(1);
    }
    while (!where.empty() && std::isspace(static_cast<unsigned char>(where.front()))) where.remove_prefix(1);
    parts.where = std::string(where);
    return parts;
  }
  for (std::size_t i = table + 1; i < words.size(); ++i) {
    if (words[i].lower == "limit" || (words[i].lower == "order" && i + 1 < words.size() && words[i + 1].lower == "by")) {
      parts.has_order_or_limit = true;
    }
  }
  return parts;
}

bool CommitsImplicitly(const StatementParts& parts, std::string_view statement) {
  static constexpr const char* kCommitting[] = {
      "alter",  "analyze", "begin",  "cache",    "change",  "commit", "create",   "drop",   "flush",
      "grant",  "install", "load",   "lock",     "optimize", "purge", "rename",   "repair", "reset",
      "revoke", "rollback", "start", "truncate", "uninstall", "unlock", "xa",
  };
  for (const char* verb : kCommitting) {
    if (parts.verb == verb) return true;
  }
  if (parts.verb == "set") {
    for (const Word& word : Words(statement)) {
      if (word.lower == "autocommit" || word.lower == "@@autocommit" || word.lower == "transaction") return true;
    }
  }
  return false;
}
