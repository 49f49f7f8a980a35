// StoredQueries: the practice's stored queries with their templates, read
// through the active service object and the query interpreter. kelvary
// queries prints them; kelvary check builds each one.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "kelvary/query/QueryInterpretor.h"
#include "kelvary/service/InfoLink.h"

namespace kelvary::cli {

struct StoredQuery {
  int32_t id = 0;
  std::string name;
  QueryBuildMethods build_method = qbmAppDefined;
  int32_t levels = 0;  // the levels the interpreter loads; the stored count for other methods
  std::vector<std::pair<int32_t, std::string>> templates;  // ID, description
  std::vector<std::string> notes;                          // what loading said
};

// ListStoredQueries: every row of Queries, in ID order. Each is loaded with
// a fresh QueryInterpretor; a query that cannot be loaded keeps what
// loading said in notes.
std::vector<StoredQuery> ListStoredQueries(InfoLink& link);

// ReadIds: the first column of every row a statement on the system
// database returns, as numbers (the configuration tables' IDs).
std::vector<int32_t> ReadIds(InfoLink& link, const std::string& statement);

}  // namespace kelvary::cli
