// How the zoo-records import reads the texts of the export: dates with their
// qualifiers, numbers, names with apostrophes, and note texts that carry the
// escaped HTML markup of the records system's editor. Pure functions; none
// of them prints or touches the database.
#pragma once

#include <string>
#include <string_view>

#include "util/text.h"

// The date of a NoteDate text: what follows a leading "~ before " or
// "~ from " qualifier (the qualifier is taken to stand at the start), cut to
// 10 characters. "~ before 2012-05-01" and "2012-05-01T00:00:00" both give
// "2012-05-01"; a text without qualifier is only cut.
Text<11> StripDateQualifier(const char* note_date);

// Reads an integer the way atoi does (leading white space, a sign, digits up
// to the first other character). Returns false, `value` untouched, when the
// text holds no digit where the number should start.
bool ReadCount(const char* text, int& value);

// Reads a decimal number the way atof does. Returns false, `value` untouched,
// when the text does not start with a finite number.
bool ReadDecimal(const char* text, double& value);

// Removes the first apostrophe of `text`, if it has one.
void DropFirstApostrophe(char* text);
void DropFirstApostrophe(std::string& text);

// Replaces every occurrence of `pattern`, scanning left to right; replaced
// text is not scanned again.
void ReplaceAll(std::string& text, std::string_view pattern, std::string_view replacement);

// Replaces every occurrence of `pattern` together with everything after it up
// to and including the next "&gt;" (a tag with its attributes). An occurrence
// with no "&gt;" after it, and everything after that, stays as it is.
void ReplaceTagWithAttributes(std::string& text, std::string_view pattern, std::string_view replacement);

// Turns the escaped markup of a note into plain text by a fixed list of
// replacements applied one after another: paragraphs and table rows become
// line feeds, list items "\n*", typographic quotes and dashes plain ones, and
// every other tag of the list vanishes. The text never grows.
void CleanMarkup(std::string& text);
