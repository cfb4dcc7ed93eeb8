#include "store/sql.h"

#include <cstdio>
#include <cstring>

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

}  // namespace

bool FormatSql(std::string& out, std::string& error, const char* statement,
               std::initializer_list<SqlArg> args, SqlTexts texts) {
  out.clear();
  error.clear();
  const SqlArg* next = args.begin();
  bool in_literal = false;  // inside a single-quoted literal of the statement text
  int number = 0;
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
    ++next;
  }
  if (next != args.end()) {
    error = "More values than conversions in statement";
    return false;
  }
  return true;
}
