// GLFH patient register import (being written).
#pragma once

int ImportGlfhPatients();
