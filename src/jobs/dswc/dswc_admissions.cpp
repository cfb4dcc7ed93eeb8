#include "jobs/dswc/dswc_admissions.h"

int ImportDswcAdmissions() { return 0; }
