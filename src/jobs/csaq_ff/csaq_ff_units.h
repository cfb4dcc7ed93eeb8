// Unit words of the CSAQ_FF husbandry export. Measures are free texts with
// the unit written after the number ("2.3 kg", "5 lbs", "14 in"); these turn
// them into grams and millimetres. The unit words are looked for anywhere
// in the text and letter case counts ("1.5 KG" is 1.5 g).
#pragma once

// Grams: the leading number times 1000 for "kg"; as is for "g" (also "gr");
// times 1000 / 2.2 for "lb" (also "lbs"); -1 (invalid) for "oz"; as is when
// the text names no unit. Tested in that order.
float WeightToGrams(const char* text);

// Millimetres: the leading number times 10 for "cm"; times 25.4 for "in"
// (also "inches"); times 10 (centimetres) when the text names no unit.
float LengthToMillimetres(const char* text);
