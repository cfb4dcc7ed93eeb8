#include "store/disposition_store.h"

#include "store/connection.h"

int InsertRelease(int record_entry_id, const ReleaseRecord& r) {
  return ExecuteSql(kEscapeTexts,
                    "insert into releases(record_entry_id,patient_id,date,how_age,how_sex,band_number,band_size,"
                    "weight,released_by,location,city,state,county,comments,lat,lon,district,country,id_type,"
                    "tracker_type,details,pub_priv,aux_marker) values(%d,'%s','%s','%s','%s','%s','%s',%d,'%s',"
                    "'%s','%s','%s','%s','%s',%.6f,%.6f,'%s','%s','%s','%s','%s','%s','%s');",
                    {record_entry_id, r.patient_id, r.date, r.how_age, r.how_sex, r.band_number, r.band_size,
                     r.weight, r.released_by, r.location, r.city, r.state, r.county, r.comments, r.lat, r.lon,
                     r.district, r.country, r.id_type, r.tracker_type, r.details, r.pub_priv, r.aux_marker}) != 0
             ? 1
             : 0;
}

int InsertTransfer(int record_entry_id, const TransferRecord& t) {
  return ExecuteSql(kEscapeTexts,
                    "insert into transfers(record_entry_id,patient_id,date,name,addr,city,state,zip,county,permit,"
                    "reason,country) values(%d,'%s','%s','%s','%s','%s','%s','%s','%s','%s','%s','%s');",
                    {record_entry_id, t.patient_id, t.date, t.name, t.addr, t.city, t.state, t.zip, t.county,
                     t.permit, t.reason, t.country}) != 0
             ? 1
             : 0;
}
