// UPRC yearly patient log import (being written).
#pragma once

int ImportUprcPatients();
