// Measurement and observation rows: body measurements, packed cell volume
// tests and band reports hang on a patient's record entry, water quality
// readings on a location's; enrichment log rows are read back for repair.
#pragma once

#include <cstdint>

#include "util/text.h"

struct BiometricRecord {
  Text<12> date;
  float weight;
  float wc;
  float hallux;
  float culmen;
  float length;
  float fork_length;
  float standard_length;
  float girth;
  float disc_width;
  float disc_length;
  float straight_NPN_length;
  float curved_NPN_length;
  float straight_carapace_width;
  float curved_carapace_width;
  float sv_length;
};

struct PcvRecord {
  Text<12> date;
  int16_t pcv;
  float ts;  // total solids
  float buffy;  // buffy coat
  Text<32> serum;  // serum appearance
};

struct BandReportRecord {
  Text<12> date;
  float lat;
  float lon;
  Text<256> finder_info;
  Text<256> location;
  Text<132> notes;
  int32_t present_condition;
  int32_t how;
  Text<64> band;
  Text<16> aux_marker;
};

struct WaterQualityRecord {
  Text<20> date;  // date and time
  Text<32> who;
  float temp;
  float pH;
  float fecal_coliform;
  float chlorine;
  float salinity;
  float nh3;
  float no2;
  float no3;
  float do_;  // column `do`
  float phosphate;
  float cu2;
  float percent_abs;
  float hardness;
  float residual_ozone;
  float orp;
  float alk;
  float ca2;
  float copper_sulfate;
  float chloroquine;
  float kh;
  float nh4;
  float fe;
  float sio2;
  float co2;
  float TAN;
};

// The texts are as wide as their columns, so that a row read here and
// written back keeps every character it held.
struct EnrichmentRecord {
  Text<20> date;
  Text<16> who;
  Text<320> what;
  int32_t type;  // one bit per kind of enrichment
  Text<128> goal;
  Text<64> location;
  Text<128> behavior;
  int32_t interactionLevel;
  Text<128> interactionTime;
  Text<32> overallTime;
  Text<65536> comments;  // a TEXT column
};

// Each writes its row under the given record entry; 0 or 1. Like every row
// operation of this file, it escapes its texts itself as it formats the
// statement: callers hand them over unescaped.
int InsertBiometric(int record_entry_id, const BiometricRecord& record);
int InsertPcv(int record_entry_id, const PcvRecord& record);

// Escapes every text itself, as the statement is formatted. The record is not
// changed. 0 or 1.
int InsertBandReport(int record_entry_id, const BandReportRecord& record);

// Writes a reading under a location record entry of location `location_id`.
int InsertWaterQuality(int location_record_entry_id, int location_id, const WaterQualityRecord& record);

// Fills `record` from enrichment row `id`; null columns leave the caller's
// fields as they were. Returns 0 when found, 1 otherwise.
int GetEnrichment(int id, EnrichmentRecord& record);
