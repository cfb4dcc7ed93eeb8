// Date conversions into the database's YYYY-MM-DD form, and the import time
// stamp. The accepted years and the day/month swap decide which source rows
// a job accepts, so they are fixed exactly as the jobs expect them.
#pragma once

#include <cstddef>

#include "util/text.h"

// Reads month/day/year ("3/4/2011", "25/12/2010 10:15", "3/4/11") into
// `out`. Two-digit years are 20xx; written years outside 1950..2016 fail. When
// the first number is over 12 it is the day. Returns 0 on success, 1 on
// failure with `out` untouched. A date that does not fit `out` whole (a
// month or day of three digits in a YYYY-MM-DD field) fails: it is never cut.
int ParseSlashDate(const char* text, char* out, std::size_t out_size);

template <std::size_t N>
int ParseSlashDate(const char* text, Text<N>& out) {
  return ParseSlashDate(text, out.data(), N);
}

// Reads the dates of exported tables: "2014-05-12T00:00:00" (the caller's
// text is ended at its first 'T' and the rest copied), or month, day and year
// split at '/' (or at '-' when there is no '/'); years up to 14 are 20xx,
// 15..99 are 19xx. Returns 0 on success, -1 when fewer than three parts or
// when the date does not fit `out` whole (then `out` is untouched).
int ParseExportDate(char* text, char* out, std::size_t out_size);

template <std::size_t N>
int ParseExportDate(char* text, Text<N>& out) {
  return ParseExportDate(text, out.data(), N);
}

// The current local time as "YYYY-MM-DD HH:MM:SS", in a buffer that the next
// call overwrites.
const char* NowTimestamp();
