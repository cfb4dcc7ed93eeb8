#include "jobs/csaq_pks/pks_taxonomy.h"

#include <cstdio>
#include <string>

#include "store/connection.h"
#include "util/line_reader.h"
#include "util/strings.h"
#include "util/tokenizer.h"

namespace {

constexpr const char* kTaxonomyFile = "./MissingTaxonomy.txt";
constexpr std::size_t kMaxLine = 510;
constexpr int kFieldCount = 9;
constexpr int kFirstTaxonomyField = 2;  // 0-based: kingdom; species is the last field

}  // namespace

int FindSpeciesIdByCommonName(const char* common_name) {
  SqlResult result = QuerySql(kEscapeTexts, "Select id from species where common_name = '%s';", {common_name});
  MYSQL_ROW row = result.NextRow();
  return row != nullptr && row[0] != nullptr ? ToInt(row[0]) : 0;
}

int UpdateSpeciesTaxonomy(int id, const char* const taxonomy[7]) {
  return ExecuteSql(kEscapeTexts,
                    "update species set kingdom='%s',phylum='%s',class='%s',_order='%s',family='%s',genus='%s',"
                    "species='%s' where id=%d;",
                    {taxonomy[0], taxonomy[1], taxonomy[2], taxonomy[3], taxonomy[4], taxonomy[5], taxonomy[6], id});
}

int RepairTaxonomy() {
  LineReader reader(kTaxonomyFile, kMaxLine);
  if (!reader.CanRead()) {
    std::printf("Unable to open '%s'\n", kTaxonomyFile);
    return 1;
  }
  std::string line;
  while (reader.ReadLine(line) && reader.last_was_cut()) {
  }  // the header, however long
  int updated = 0;
  while (reader.ReadLine(line)) {
    if (IsEmptyLine(line)) continue;  // an empty line names no species; any other goes through
    Tokenizer tokenizer(line);
    char* field[kFieldCount];
    int found = TakeFields(tokenizer, field, kFieldCount, "\t\n", "\t\n");
    if (!HasFields(found, kFieldCount, field[0])) continue;
    const char* common_name = field[0];
    int id = FindSpeciesIdByCommonName(common_name);
    if (id <= 0) {
      std::printf("\tERROR - unable to find species record for '%s'\n", common_name);
    } else if (UpdateSpeciesTaxonomy(id, field + kFirstTaxonomyField) != 0) {
      std::printf("\tERROR - unable to update species record for '%s'\n", common_name);
    } else {
      ++updated;
    }
  }
  std::printf("Loaded %d taxonomy records\n", updated);
  return 0;
}
