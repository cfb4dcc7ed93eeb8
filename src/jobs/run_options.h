// What a job may need of the run beyond its organisation and data type: the
// values of "-year" and "-region". The driver fills one of these from the
// command line and the dispatch table hands each job the parts it reads, so
// the jobs never depend on how the options were parsed.
#pragma once

#include <cstdint>

#include "util/text.h"

struct RunOptions {
  int32_t year;      // "-year"; 0 when it did not convert
  Text<32> region;   // "-region"; empty when not given
};
