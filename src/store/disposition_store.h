// Releases to the wild and transfers to other facilities: detail rows hung on
// a record entry, naming the patient by its text case number. Every text is
// escaped here as the statement is formatted: callers hand them over as they
// came from the input (a place from a job's own table included).
#pragma once

#include <cstdint>

#include "util/text.h"

// One row of `releases`. Clear it with `= {}` before filling.
struct ReleaseRecord {
  Text<16> patient_id;
  Text<11> date;
  Text<32> how_age;  // "NA" when not determined
  Text<32> how_sex;  // "NA" when not determined
  Text<64> band_number;
  Text<8> band_size;
  Text<17> aux_marker;
  int32_t weight;
  Text<32> released_by;
  Text<64> location;  // release site
  Text<21> district;
  Text<32> city;
  Text<21> state;
  Text<16> county;
  Text<16> country;
  Text<130> comments;
  float lat;
  float lon;
  Text<16> id_type;  // "Leg band" or "None"
  Text<32> tracker_type;  // "None" when there is none
  Text<128> details;
  Text<8> pub_priv;  // "UNK" when not known
};

// One row of `transfers`. Clear it with `= {}` before filling.
struct TransferRecord {
  Text<16> patient_id;
  Text<11> date;
  Text<64> name;  // receiving facility or person
  Text<32> addr;
  Text<32> city;
  Text<21> state;
  Text<16> country;
  Text<11> zip;
  Text<16> county;
  Text<128> permit;
  Text<16> reason;  // reason code, e.g. "E/S"
};

// Writes the release under record entry `record_entry_id`. 0 or 1.
int InsertRelease(int record_entry_id, const ReleaseRecord& release);

// Writes the transfer under record entry `record_entry_id`. 0 or 1.
int InsertTransfer(int record_entry_id, const TransferRecord& transfer);
