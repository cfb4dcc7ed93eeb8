// Reading the columns of the repairs' own selections, which the server
// delivers as texts and where any column may be null.
#pragma once

#include "util/strings.h"

// The column's text, or the empty text for a null column.
inline const char* ColumnText(const char* column) { return column != nullptr ? column : ""; }

// The column read with the atoi rules; a null column reads as 0.
inline int ColumnInt(const char* column) { return ToInt(ColumnText(column)); }
