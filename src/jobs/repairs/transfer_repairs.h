// Transfer name and 180-day report repairs (being written).
#pragma once

int fixTransfers();
int fix180DayReports();
