#include "jobs/repairs/line_length_repair.h"

int fixLineLengths(bool) { return 0; }
