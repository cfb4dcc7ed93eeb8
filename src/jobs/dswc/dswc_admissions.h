// DsWC yearly admissions import (being written).
#pragma once

int ImportDswcAdmissions();
