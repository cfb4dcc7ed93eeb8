// DsWC species list import (being written).
#pragma once

int ImportDswcSpecies();
