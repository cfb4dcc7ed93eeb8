// How the free-text cells of the seabird rescue's case log become the coded
// values of a patient: case number, age class, sex, found address, colour
// marker, and the units of weight and culmen. No database work here; every
// function is pure apart from the year counters it is handed.
//
// "Equals" compares whole texts, "begins with" the length of the key; a
// comparison ignores (ASCII) letter case only where a comment says so.
#pragma once

#include <cstdint>

#include "store/patient_store.h"
#include "util/text.h"

// Case numbers read "<centre>-<year>-<n>". Both centres share one numbering
// per year, which the import rebuilds in file order; it knows the years
// 2000 to 2016.
constexpr int kSbrFirstYear = 2000;
constexpr int kSbrLastYear = 2016;

// How many cases of each year the run has numbered so far. Start from `{}`.
struct SbrYearCounters {
  int32_t taken[kSbrLastYear - kSbrFirstYear + 1];
};

// Reads the year between the first two dashes of `case_number` (its first 31
// characters): a two-character year starting with the letter O reads it as
// the digit 0 ("O9" is 09), and years below 2000 get 2000 added. Takes the
// next number of that year and writes "%d-%04.4d" into `patient_id`
// ("LA-16-001" as the first case of 2016 is "2016-0001"). Returns false,
// taking no number and leaving `patient_id` alone, when there are not two
// dashes or the year lies outside 2000..2016.
bool MakeSbrPatientId(const char* case_number, SbrYearCounters& counters, Text<16>& patient_id);

// Sets `age` to the age class of a bird: the first-choice code when it is
// longer than one character, else the second-choice code when it is, else
// the description read through the phrase table ("Adult" is "AHY",
// "Fledgling" is "HY", "2 weeks" is "L", ...); "UNK" when the description is
// missing, empty, a single blank or not in the table. Null texts are missing.
void MapSbrAge(Text<15>& age, const char* description, const char* second_choice, const char* first_choice);

// "M" when `sex` starts with M or m, "F" when with F or f, otherwise "UNK".
void MapSbrSex(const char* sex, Text<11>& result);

// Trims white space at both ends (see TrimLeft and TrimRight), then removes
// one double quote at the end and one at the start, if there.
void TrimAndUnquote(char* text);

// Splits a found address (already trimmed and unquoted) into the finder's
// street, city, state and zip: "street", "street, city", or "street, city,
// rest" where the rest is a zip when it starts with a digit, else "state zip"
// or a state alone; the state stays "CA" unless the rest names one. The
// centre's known places ("Astoria, OR", the dealership) have fixed values.
// Each part is stored without leading white space and cut to its field; an
// address without a comma is cut to the street field before its leading
// white space goes.
// Changes `address` while splitting it.
void ParseSbrFoundAddress(char* address, PatientFinderInfo& finder);

// Writes the colour-marker code of the patient's species into `aux_marker`:
// "01A <marker> <first><second>" with the species' two numbers as two digits
// each (a brown pelican with marker A7 is "01A A7 0305"). Returns 0 and
// changes nothing when `marker` is null or shorter than 2 characters; 1 when
// the species carries no markers; 2 when the code would not fit the field.
// `aux_marker` is left alone unless the result is 0.
int MakeSbrAuxMarker(const char* marker, PatientRecord& patient);

// A weight in grams: the number the text starts with (standard atof
// reading), times 1000 when the text holds a decimal point (kilograms).
float ParseWeightGrams(const char* text);

// A culmen in millimetres: as ParseWeightGrams with the factor 10 (a value
// with a decimal point is in centimetres).
float ParseCulmenMm(const char* text);
