// CBC and PCV repair (being written).
#pragma once

int fix_CBC_PCV_Records();
