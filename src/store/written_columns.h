// Which column each value of a write statement goes to: what the loss report
// needs to name a value that was cut or misread. Works on a statement's
// format ("insert into t(a,b) values('%s',%d)", "update t set a='%s' where
// id=%d") to place a conversion, and on a sent statement to find the value
// of a column again. Only INSERT/REPLACE with a column list (or with SET)
// and UPDATE are understood; anything else places nothing. Quoted texts are
// skipped, so a comma or parenthesis inside a value never misleads it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// The columns a write statement names and, per row it writes, where in the
// text each value stands.
struct WrittenColumns {
  struct Span {
    std::size_t begin = 0;
    std::size_t end = 0;  // one past the value's last byte
  };
  std::vector<std::string> columns;     // as written, without backquotes
  std::vector<std::vector<Span>> rows;  // one span per column, in column order
};

// Splits `statement` as above; empty when it is not a write it understands.
WrittenColumns SplitWrittenColumns(std::string_view statement);

// The column that the value holding `offset` (a position in the statement)
// goes to; empty when the offset lies outside every value (a WHERE clause).
std::string ColumnAt(const WrittenColumns& written, std::size_t offset);

// The value sent for `column` (letter case ignored) in row `row` (0 for the
// first) of the sent `statement` into `value`, its quotes and backslash
// escapes undone; an UPDATE, or any statement of one row, gives its value for
// every row. Returns false when the statement does not name the column.
bool ValueOfColumn(std::string_view statement, std::string_view column, std::size_t row, std::string& value);
