#include "jobs/csaq_pks/pks_text.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

#include "util/strings.h"

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

enum class TagKind { kPlain, kWithAttributes };

struct MarkupRule {
  const char* pattern;
  TagKind kind;
  const char* replacement;
};

// Applied in this order. A bare paragraph tag becomes a line feed (row 1)
// before the last row removes paragraph tags that carry attributes.
constexpr MarkupRule kMarkupRules[] = {
    {"&lt;p&gt;", TagKind::kPlain, "\n"},
    {"&lt;/p&gt;", TagKind::kPlain, ""},
    {"&lt;ol&gt;", TagKind::kPlain, ""},
    {"&lt;/ol&gt;", TagKind::kPlain, ""},
    {"&lt;li&gt;", TagKind::kPlain, "\n*"},
    {"&lt;/li&gt;", TagKind::kPlain, ""},
    {"&lt;div&gt;", TagKind::kPlain, ""},
    {"&lt;/div&gt;", TagKind::kPlain, ""},
    {"&lt;strong&gt;", TagKind::kPlain, ""},
    {"&lt;/strong&gt;", TagKind::kPlain, ""},
    {"&lt;em&gt;", TagKind::kPlain, ""},
    {"&lt;/em&gt;", TagKind::kPlain, ""},
    {"&amp;nbsp;", TagKind::kPlain, " "},
    {"&lt;table", TagKind::kWithAttributes, "\n"},
    {"&lt;/table&gt;", TagKind::kPlain, ""},
    {"&lt;tbody", TagKind::kWithAttributes, ""},
    {"&lt;/tbody&gt;", TagKind::kPlain, ""},
    {"&lt;td", TagKind::kWithAttributes, ""},
    {"&lt;/td&gt;", TagKind::kPlain, " "},
    {"&lt;tr", TagKind::kWithAttributes, ""},
    {"&lt;/tr&gt;", TagKind::kPlain, "\n"},
    {"&lt;span", TagKind::kWithAttributes, ""},
    {"&lt;/span&gt;", TagKind::kPlain, ""},
    {"&ldquo;", TagKind::kPlain, "\""},
    {"&rdquo;", TagKind::kPlain, "\""},
    {"&amp;lsquo;", TagKind::kPlain, "'"},
    {"&amp;rsquo;", TagKind::kPlain, "'"},
    {"&amp;ndash;", TagKind::kPlain, "-"},
    {"&lt;p", TagKind::kWithAttributes, ""},
};

constexpr std::string_view kTagEnd = "&gt;";

// Replaces each match of `pattern`; `match_end` gives, for a match at
// `start`, where the replaced text ends (npos: leave this match and the rest).
template <typename MatchEnd>
void Replace(std::string& text, std::string_view pattern, std::string_view replacement, MatchEnd match_end) {
  std::size_t start = text.find(pattern);
  if (start == std::string::npos) return;
  std::string result;
  result.reserve(text.size());
  std::size_t copied = 0;  // text before this position is in `result`
  while (start != std::string::npos) {
    std::size_t end = match_end(start);
    if (end == std::string::npos) break;
    result.append(text, copied, start - copied);
    result.append(replacement);
    copied = end;
    start = text.find(pattern, end);
  }
  result.append(text, copied, std::string::npos);
  text.swap(result);
}

}  // namespace

Text<11> StripDateQualifier(const char* note_date) {
  const char* date = note_date;
  if (std::strstr(note_date, "~ before ") != nullptr) {
    date = note_date + 9;
  } else if (std::strstr(note_date, "~ from ") != nullptr) {
    date = note_date + 7;
  }
  Text<11> result{};
  result = date;
  return result;
}

bool ReadCount(const char* text, int& value) {
  const char* p = text;
  while (*p == ' ' || *p == '\t' || *p == '\n' || *p == '\v' || *p == '\f' || *p == '\r') ++p;
  if (*p == '+' || *p == '-') ++p;
  if (!IsDigit(*p)) return false;
  value = ReadInteger(text);
  return true;
}

bool ReadDecimal(const char* text, double& value) {
  char* end = nullptr;
  double read = std::strtod(text, &end);
  if (end == text || !std::isfinite(read)) return false;
  value = ReadNumber(text);  // the same number; tells the loss report of what follows it
  return true;
}

void DropFirstApostrophe(char* text) {
  if (char* apostrophe = std::strchr(text, '\'')) std::memmove(apostrophe, apostrophe + 1, std::strlen(apostrophe));
}

void DropFirstApostrophe(std::string& text) {
  std::size_t apostrophe = text.find('\'');
  if (apostrophe != std::string::npos) text.erase(apostrophe, 1);
}

void ReplaceAll(std::string& text, std::string_view pattern, std::string_view replacement) {
  if (pattern.empty()) return;
  Replace(text, pattern, replacement, [&](std::size_t start) { return start + pattern.size(); });
}

void ReplaceTagWithAttributes(std::string& text, std::string_view pattern, std::string_view replacement) {
  if (pattern.empty()) return;
  Replace(text, pattern, replacement, [&](std::size_t start) {
    std::size_t tag_end = text.find(kTagEnd, start + pattern.size());
    return tag_end == std::string::npos ? tag_end : tag_end + kTagEnd.size();
  });
}

void CleanMarkup(std::string& text) {
  for (const MarkupRule& rule : kMarkupRules) {
    if (rule.kind == TagKind::kPlain) {
      ReplaceAll(text, rule.pattern, rule.replacement);
    } else {
      ReplaceTagWithAttributes(text, rule.pattern, rule.replacement);
    }
  }
}
