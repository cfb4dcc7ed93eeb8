#include "store/reference_store.h"

#include <cstdlib>
#include <string>

#include "store/connection.h"
#include "util/strings.h"

int InsertSpecies(SpeciesRecord& r) {
  if (ExecuteSql(kEscapeTexts,
                 "insert into species (abbrev,scientific_name,common_name,nord,native,info_page,species_group,"
                 "cost_category,state_soc,federal_soc,value,hms,habitat) values ('%s','%s','%s','%c','%c','%s',"
                 "'%s',%d,%d,%d,%.2f,'%c','%c');",
                 {r.abbrev, r.scientific_name, r.common_name, r.nord, r.native, r.info_page, r.species_group,
                  r.cost_category, r.state_soc, r.federal_soc, r.value, r.hms, r.habitat}) != 0) {
    return 1;
  }
  r.id = static_cast<int32_t>(LastInsertId());
  return ExecuteSql(kEscapeTexts,
                    "update species set kingdom='%s',phylum='%s',class='%s',_order='%s',family='%s',genus='%s',"
                    "species='%s' where id=%d;",
                    {r.kingdom, r.phylum, r.class_, r._order, r.family, r.genus, r.species, r.id}) != 0
             ? 1
             : 0;
}

int GetSpeciesByAbbrev(const char* abbrev, SpeciesRecord& r) {
  SqlResult result = QuerySql(
      kEscapeTexts,
      "Select id,scientific_name,common_name,nord,native,info_page,species_group,cost_category,state_soc,"
      "federal_soc,kingdom,phylum,class,_order,family,genus,species,value,hms,habitat from species "
      "where abbrev = '%s';",
      {abbrev});
  MYSQL_ROW row = result.NextRow();
  if (row == nullptr) return 1;
  r.id = row[0] != nullptr ? ToInt(row[0]) : 0;
  r.abbrev = abbrev;
  auto text = [&](auto& field, const char* column) {
    if (column != nullptr) field = column;
  };
  auto number = [&](int32_t& field, const char* column) {
    if (column != nullptr) field = ToInt(column);
  };
  auto flag = [&](char& field, const char* column) {
    if (column != nullptr) field = column[0];
  };
  text(r.scientific_name, row[1]);
  text(r.common_name, row[2]);
  flag(r.nord, row[3]);
  flag(r.native, row[4]);
  text(r.info_page, row[5]);
  text(r.species_group, row[6]);
  number(r.cost_category, row[7]);
  number(r.state_soc, row[8]);
  number(r.federal_soc, row[9]);
  text(r.kingdom, row[10]);
  text(r.phylum, row[11]);
  text(r.class_, row[12]);
  text(r._order, row[13]);
  text(r.family, row[14]);
  text(r.genus, row[15]);
  text(r.species, row[16]);
  if (row[17] != nullptr) r.value = static_cast<float>(std::atof(row[17]));
  flag(r.hms, row[18]);
  flag(r.habitat, row[19]);
  return 0;
}

int GetSpeciesAbbrevByCommonName(const char* common_name, Text<16>& abbrev) {
  SqlResult result = QuerySql(kEscapeTexts, "Select abbrev from species where common_name='%s'", {common_name});
  MYSQL_ROW row = result.NextRow();
  if (row == nullptr) return 1;
  CopyColumn(abbrev, row[0]);
  return 0;
}

int InsertLocation(const LocationRecord& r) {
  return ExecuteSql(kEscapeTexts,
                    "insert into location(name,dimensions,capacity,special,feed_order,display_order,flags,alert,"
                    "x_coord,y_coord,combo_lock,curator,volume,description,flow_rate,level) values ('%s','%s',%d,"
                    "'%s',%.2f,%.2f,%d,'%s',%d,%d,'%s','%s',%.1f,'%s',%.1f,%d);",
                    {r.name, r.dimensions, r.capacity, r.special, r.feed_order, r.display_order, r.flags,
                     r.alert, r.x_coord, r.y_coord, r.combo_lock, r.curator, r.volume, r.description,
                     r.flow_rate, r.level}) != 0
             ? 1
             : 0;
}

int GetLocationId(const char* name) {
  SqlResult result = QuerySql(kEscapeTexts, "select id from location where name = '%s';", {name});
  MYSQL_ROW row = result.NextRow();
  return row != nullptr && row[0] != nullptr ? ToInt(row[0]) : 0;
}

int CountSpecies() { return QueryInt(kEscapeTexts, "select count(*) from species;", {}, 0); }

int CountLocations() { return QueryInt(kEscapeTexts, "select count(*) from location;", {}, 0); }

int InsertAddressBookEntry(AddressBookEntry& e) {
  if (ExecuteSql(kEscapeTexts,
                 "insert into addressBook (org,contactName,addr,addr2,city,state,zip,county,phone1,phone2,phone3,"
                 "email,permit,lookingFor,lat,lon,type,availability,notes,country,cellProvider,"
                 "daily_availability,dob,webAddress) values ('%s','%s','%s','%s','%s','%s','%s','%s','%s','%s',"
                 "'%s','%s','%s','%s',%.6f,%.6f,%d,'%s','%s','%s','%s',%d,'%s','%s');",
                 {e.org, e.contactName, e.addr, e.addr2, e.city, e.state, e.zip, e.county, e.phone1, e.phone2,
                  e.phone3, e.email, e.permit, e.lookingFor, e.lat, e.lon, e.type, e.availability, e.notes,
                  e.country, e.cellProvider, e.daily_availability, e.dob, e.webAddress}) != 0) {
    return 1;
  }
  e.id = static_cast<int32_t>(LastInsertId());
  return 0;
}
