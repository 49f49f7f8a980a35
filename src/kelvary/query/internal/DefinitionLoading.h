// The loaders of a stored query definition, one per definition table, in
// the order InitSettings runs them. Each reads through the ServicePort it is
// given (the active service object's, or a test's) and adds what it reads to
// the interpreter's fields and collections; a missing row leaves them as
// they were. Internal to kelvary/query/.
#pragma once

#include <cstdint>

#include "kelvary/query/QueryInterpretor.h"
#include "kelvary/service/internal/ServicePort.h"

namespace kelvary::query_internal {

// LoadQueryRow: the Queries row QueryID (build method, stored text, data
// supplier, system-data flag, number of levels); false when there is none.
bool LoadQueryRow(ServicePort& services, QueryInterpretor& query);
// LoadTemplateHeader: the template's description and, for a report
// template, its supplier and set.
void LoadTemplateHeader(ServicePort& services, QueryInterpretor& query, int32_t QueryTemplateId);
// LoadLevels: the levels (QueryShapeNests), parents before children.
void LoadLevels(ServicePort& services, QueryInterpretor& query);
// LoadLevelTables: the tables of every level (QueryDataTables).
// REQUIRES: LoadLevels has run (a table's level is looked up by key).
void LoadLevelTables(ServicePort& services, QueryInterpretor& query);
// LoadOutputFields: the output fields of every table, in the database's
// order, which is the column order of the statement.
// REQUIRES: LoadLevelTables has run.
void LoadOutputFields(ServicePort& services, QueryInterpretor& query);

}  // namespace kelvary::query_internal
