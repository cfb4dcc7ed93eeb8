// CSAQ_FF biometrics and vital statistics: measurements of animals that the
// patient and rehabilitation imports have already written. Each becomes a
// dated, weighed `record_entry` and, for turtles and vital statistics, a
// `biometric` row with the lengths (centimetres in the export, millimetres
// stored). The animal is the patient whose notes end with a text of the row:
// those imports end a patient's notes with its identity tag or stranding
// number.
#pragma once

#include <string>

// Reads "./LoggerHeadDailyLogs.xml", then "./SnakeStatTable.xml". Rows whose
// animal has no patient are reported and counted as errors. Returns 0; 1
// when a file cannot be loaded, no patient exists yet, or a row cannot be
// written (rows already written stay).
int ImportCsaqFfBiometrics();

// Reads the "Vital Stats" rows of "./Husbandry.xml" (weights in grams, or
// kilograms when the text says kg in any case; lengths in centimetres).
// Returns as ImportCsaqFfBiometrics does.
int ImportCsaqFfVitalStats();

// The species code and notes tag that find the patient of a daily-log
// "Turtle" text: "Loggerhead 12" gives "LOGGER" and "12" (the text after
// the first blank), "Green turtle 21" gives "GREENTURTLE" and "21" (after
// the second blank). Null when the text names neither.
const char* TurtleSpeciesCode(const char* turtle, std::string& tag);

// The species code of a "Snake" text (letter case counts), or null.
const char* SnakeSpeciesCode(const char* snake);

// A vital-statistics weight in grams: the leading number, times 1000 when
// the text holds "kg" in any letter case.
float VitalStatsGrams(const char* weight);
