// Note line-length repair (being written).
#pragma once

int fixLineLengths(bool test);
