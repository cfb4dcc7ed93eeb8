#include "jobs/uprc/uprc_import.h"

int ImportUprcPatients() { return 0; }
