#include "jobs/repairs/cbc_pcv_repair.h"

int fix_CBC_PCV_Records() { return 0; }
