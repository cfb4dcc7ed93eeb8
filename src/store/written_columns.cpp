#include "store/written_columns.h"

#include <cctype>
#include <initializer_list>

#include "store/sql.h"

namespace {

using Span = WrittenColumns::Span;

bool IsNameChar(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '$' ||
         static_cast<unsigned char>(c) >= 0x80;
}

bool IsSpace(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

std::size_t SkipSpace(std::string_view text, std::size_t at) {
  while (at < text.size() && IsSpace(text[at])) ++at;
  return at;
}

// True when the word at `at` is `keyword` (lower case), letter case ignored.
bool KeywordAt(std::string_view text, std::size_t at, std::string_view keyword) {
  if (at + keyword.size() > text.size()) return false;
  for (std::size_t i = 0; i < keyword.size(); ++i) {
    if (std::tolower(static_cast<unsigned char>(text[at + i])) != keyword[i]) return false;
  }
  std::size_t after = at + keyword.size();
  return after == text.size() || !IsNameChar(text[after]);
}

// A name, plain or in backquotes, possibly "db.table" or "t.column": moves
// `at` past it and returns its last part without quotes.
std::string ReadName(std::string_view text, std::size_t& at) {
  std::string part;
  for (;;) {
    part.clear();
    if (at < text.size() && text[at] == '`') {
      std::size_t end = SkipQuoted(text, at);
      for (std::size_t i = at + 1; i + 1 < end; ++i) {
        if (text[i] != '`' || text[i + 1] != '`') part.push_back(text[i]);
      }
      at = end;
    } else {
      while (at < text.size() && IsNameChar(text[at])) part.push_back(text[at++]);
    }
    if (at < text.size() && text[at] == '.' && !part.empty()) {
      ++at;
      continue;
    }
    return part;
  }
}

// Just past the parenthesis that closes the one at `at`; the end of `text`
// when none does.
std::size_t SkipParens(std::string_view text, std::size_t at) {
  int depth = 0;
  for (std::size_t i = at; i < text.size();) {
    char c = text[i];
    if (c == '\'' || c == '"' || c == '`') {
      i = SkipQuoted(text, i);
      continue;
    }
    if (c == '(') ++depth;
    if (c == ')' && --depth == 0) return i + 1;
    ++i;
  }
  return text.size();
}

Span Trimmed(std::string_view text, std::size_t begin, std::size_t end) {
  while (begin < end && IsSpace(text[begin])) ++begin;
  while (end > begin && IsSpace(text[end - 1])) --end;
  return {begin, end};
}

// The parts of text[begin, end) between commas outside quotes and parentheses.
std::vector<Span> SplitAtCommas(std::string_view text, std::size_t begin, std::size_t end) {
  std::vector<Span> parts;
  std::size_t start = begin;
  for (std::size_t i = begin; i < end;) {
    char c = text[i];
    if (c == '\'' || c == '"' || c == '`') {
      i = SkipQuoted(text, i);
    } else if (c == '(') {
      i = SkipParens(text, i);
    } else if (c == ',') {
      parts.push_back(Trimmed(text, start, i));
      start = ++i;
    } else {
      ++i;
    }
  }
  parts.push_back(Trimmed(text, start, end < text.size() ? end : text.size()));
  return parts;
}

// Where a SET list ends: at WHERE, ORDER BY, LIMIT or ON DUPLICATE outside
// quotes and parentheses, or at a ';'.
std::size_t EndOfSetList(std::string_view text, std::size_t at) {
  while (at < text.size()) {
    char c = text[at];
    if (c == '\'' || c == '"' || c == '`') {
      at = SkipQuoted(text, at);
    } else if (c == '(') {
      at = SkipParens(text, at);
    } else if (c == ';') {
      return at;
    } else if (IsNameChar(c)) {
      if (KeywordAt(text, at, "where") || KeywordAt(text, at, "order") || KeywordAt(text, at, "limit") ||
          KeywordAt(text, at, "on")) {
        return at;
      }
      while (at < text.size() && IsNameChar(text[at])) ++at;
    } else {
      ++at;
    }
  }
  return at;
}

// "a='x', b = 2" into columns and one row of values.
void ReadSetList(std::string_view text, std::size_t at, WrittenColumns& written) {
  std::vector<Span> row;
  for (Span item : SplitAtCommas(text, at, EndOfSetList(text, at))) {
    std::size_t name_at = item.begin;
    std::string name = ReadName(text, name_at);
    name_at = SkipSpace(text, name_at);
    if (name.empty() || name_at >= item.end || text[name_at] != '=') continue;
    written.columns.push_back(name);
    row.push_back(Trimmed(text, name_at + 1, item.end));
  }
  if (!row.empty()) written.rows.push_back(row);
}

void SkipWords(std::string_view text, std::size_t& at, std::initializer_list<std::string_view> words) {
  for (bool skipped = true; skipped;) {
    skipped = false;
    at = SkipSpace(text, at);
    for (std::string_view word : words) {
      if (KeywordAt(text, at, word)) {
        at += word.size();
        skipped = true;
      }
    }
  }
}

}  // namespace

WrittenColumns SplitWrittenColumns(std::string_view text) {
  WrittenColumns written;
  std::size_t at = SkipSpace(text, 0);
  bool insert = KeywordAt(text, at, "insert") || KeywordAt(text, at, "replace");
  if (!insert && !KeywordAt(text, at, "update")) return written;
  while (at < text.size() && IsNameChar(text[at])) ++at;
  SkipWords(text, at, {"low_priority", "delayed", "high_priority", "ignore", "into"});
  ReadName(text, at);  // the table
  at = SkipSpace(text, at);
  if (!insert || KeywordAt(text, at, "set")) {
    if (!KeywordAt(text, at, "set")) return written;
    ReadSetList(text, at + 3, written);
    return written;
  }
  if (at >= text.size() || text[at] != '(') return written;
  std::size_t list_end = SkipParens(text, at);
  for (Span name : SplitAtCommas(text, at + 1, list_end - 1)) {
    std::size_t name_at = name.begin;
    written.columns.push_back(ReadName(text, name_at));
  }
  at = SkipSpace(text, list_end);
  if (!KeywordAt(text, at, "values") && !KeywordAt(text, at, "value")) {
    written.columns.clear();
    return written;
  }
  while (at < text.size() && IsNameChar(text[at])) ++at;
  for (;;) {
    at = SkipSpace(text, at);
    if (at >= text.size() || text[at] != '(') break;
    std::size_t tuple_end = SkipParens(text, at);
    written.rows.push_back(SplitAtCommas(text, at + 1, tuple_end - 1));
    at = SkipSpace(text, tuple_end);
    if (at >= text.size() || text[at] != ',') break;
    ++at;
  }
  return written;
}

std::string ColumnAt(const WrittenColumns& written, std::size_t offset) {
  for (const std::vector<Span>& row : written.rows) {
    for (std::size_t i = 0; i < row.size() && i < written.columns.size(); ++i) {
      if (offset >= row[i].begin && offset < row[i].end) return written.columns[i];
    }
  }
  return "";
}

bool ValueOfColumn(std::string_view statement, std::string_view column, std::size_t row, std::string& plain) {
  plain.clear();
  WrittenColumns written = SplitWrittenColumns(statement);
  if (written.rows.size() == 1) row = 0;  // an UPDATE's values hold for every row it changes
  if (row >= written.rows.size()) return false;
  const std::vector<Span>& values = written.rows[row];
  for (std::size_t i = 0; i < written.columns.size() && i < values.size(); ++i) {
    const std::string& name = written.columns[i];
    if (name.size() != column.size()) continue;
    bool same = true;
    for (std::size_t k = 0; k < name.size() && same; ++k) {
      same = std::tolower(static_cast<unsigned char>(name[k])) == std::tolower(static_cast<unsigned char>(column[k]));
    }
    if (!same) continue;
    std::string_view value = statement.substr(values[i].begin, values[i].end - values[i].begin);
    if (value.size() < 2 || (value.front() != '\'' && value.front() != '"') || value.back() != value.front()) {
      plain = value;
      return true;
    }
    char quote = value.front();
    for (std::size_t k = 1; k + 1 < value.size(); ++k) {
      char c = value[k];
      if (c == quote && value[k + 1] == quote) {
        ++k;
      } else if (c == '\\' && k + 2 < value.size()) {
        c = value[++k];
        switch (c) {
          case '0': c = '\0'; break;
          case 'n': c = '\n'; break;
          case 'r': c = '\r'; break;
          case 't': c = '\t'; break;
          case 'Z': c = '\032'; break;
          default: break;
        }
      }
      plain.push_back(c);
    }
    return true;
  }
  return false;
}
