#include "jobs/repairs/transfer_repairs.h"

int fixTransfers() { return 0; }
int fix180DayReports() { return 0; }
