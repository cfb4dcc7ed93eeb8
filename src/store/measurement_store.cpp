#include "store/measurement_store.h"

#include <string>

#include "store/connection.h"
#include "util/strings.h"

int InsertBiometric(int record_entry_id, const BiometricRecord& r) {
  return ExecuteSql(kEscapeTexts,
                    "insert into biometric (record_entry_id,date,weight,wc,hallux,culmen,length,fork_length,"
                    "standard_length,girth,disc_width,disc_length,straight_NPN_length,curved_NPN_length,"
                    "straight_carapace_width,curved_carapace_width,sv_length) values (%d,'%s',%.6f,%.2f,%.2f,"
                    "%.2f,%.2f,%.2f,%.2f,%.2f,%.2f,%.2f,%.2f,%.2f,%.2f,%.2f,%.2f);",
                    {record_entry_id, r.date, r.weight, r.wc, r.hallux, r.culmen, r.length, r.fork_length,
                     r.standard_length, r.girth, r.disc_width, r.disc_length, r.straight_NPN_length,
                     r.curved_NPN_length, r.straight_carapace_width, r.curved_carapace_width, r.sv_length}) != 0
             ? 1
             : 0;
}

int InsertPcv(int record_entry_id, const PcvRecord& r) {
  return ExecuteSql(kEscapeTexts,
                    "insert into pcv(record_entry_id,date,pcv,ts,serum,buffy) values(%d,'%s',%d,%.1f,'%s',%.1f);",
                    {record_entry_id, r.date, r.pcv, r.ts, r.serum, r.buffy}) != 0
             ? 1
             : 0;
}

int InsertBandReport(int record_entry_id, const BandReportRecord& r) {
  return ExecuteSql(kEscapeTexts,
                    "insert into band_report (record_entry_id,date,lat,lon,finder_info,location,notes,"
                    "present_condition,how,band,aux_marker) values (%d,'%s',%f,%f,'%s','%s','%s',%d,%d,'%s','%s');",
                    {record_entry_id, r.date, r.lat, r.lon, r.finder_info, r.location, r.notes, r.present_condition,
                     r.how, r.band, r.aux_marker}) != 0
             ? 1
             : 0;
}

int InsertWaterQuality(int location_record_entry_id, int location_id, const WaterQualityRecord& r) {
  return ExecuteSql(
             kEscapeTexts,
             "insert into water_quality (location_record_entry_id,location_id,date,who,pH,temp,fecal_coliform,"
             "chlorine,salinity,nh3,no2,no3,do,phosphate,cu2,percent_abs,hardness,residual_ozone,orp,alk,ca2,"
             "copper_sulfate,chloroquine,kh,nh4,fe,sio2,co2,TAN) values (%d,%d,'%s','%s',%.4f,%.4f,%.4f,%.4f,"
             "%.4f,%.4f,%.4f,%.4f,%.4f,%.4f,%.4f,%.4f,%.4f,%.4f,%.4f,%.4f,%.4f,%.4f,%.4f,%.4f,%.4f,%.4f,%.4f,"
             "%.4f,%.4f);",
             {location_record_entry_id, location_id, r.date, r.who, r.pH, r.temp, r.fecal_coliform, r.chlorine,
              r.salinity, r.nh3, r.no2, r.no3, r.do_, r.phosphate, r.cu2, r.percent_abs, r.hardness,
              r.residual_ozone, r.orp, r.alk, r.ca2, r.copper_sulfate, r.chloroquine, r.kh, r.nh4, r.fe, r.sio2,
              r.co2, r.TAN}) != 0
             ? 1
             : 0;
}

int GetEnrichment(int id, EnrichmentRecord& r) {
  SqlResult result = QuerySql(
      kEscapeTexts,
      "Select date_format(date,'%%Y-%%m-%%d'),type,who,what,goal,location,behavior,interactionLevel,"
      "interactionTime,overallTime,comments from enrichment where id = %d;",
      {id});
  MYSQL_ROW row = result.NextRow();
  if (row == nullptr) return 1;
  auto text = [&](auto& field, const char* column) {
    if (column != nullptr) field = column;
  };
  text(r.date, row[0]);
  if (row[1] != nullptr) r.type = ToInt(row[1]);
  text(r.who, row[2]);
  text(r.what, row[3]);
  text(r.goal, row[4]);
  text(r.location, row[5]);
  text(r.behavior, row[6]);
  if (row[7] != nullptr) r.interactionLevel = ToInt(row[7]);
  text(r.interactionTime, row[8]);
  text(r.overallTime, row[9]);
  text(r.comments, row[10]);
  return 0;
}
