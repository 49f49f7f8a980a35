// kelvary query: prints the statement of a stored query and its rows (an
// indented tree for a multi-level query). The demo walks through stored
// queries with the same code.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "kelvary/service/InfoLink.h"

namespace kelvary::cli {

struct QueryRequest {
  int32_t query_id = 0;
  int32_t template_id = 0;
  bool xtal = false;      // conditions in report-formula syntax
  bool sql_only = false;  // print the statement alone
  bool show_parameters = false;
  // Restrictions the host puts on levels: level ID and WHERE text.
  std::vector<std::pair<int32_t, std::string>> wheres;
  struct Record {
    int32_t table_id = 0;
    int32_t entry_id = 0;
    int32_t field_id = 0;
    std::string field_name;
  };
  std::optional<Record> record;  // restrict the query to one record
  int32_t max_rows = -1;         // rows of the top level to print; -1 all
  // The dialect the service object writes (MainDBType): Access by default,
  // Oracle for a server that runs TO_Date and || (PostgreSQL among them).
  StdDBTypes dialect = sdbAccess;
};

// RunStoredQuery loads the query through the active service object, does
// what a host does before running it (the levels a stored text's markers
// name, the template's conditions, the restrictions asked for), and prints
// its statement and rows to out. An unknown query, a level that is not
// there, or a statement that does not open raises CommandError (after the
// statement has been printed).
void RunStoredQuery(InfoLink& link, const QueryRequest& request, std::ostream& out);

// QueryCommand: "kelvary query" with its arguments (after the word query).
int QueryCommand(const std::vector<std::string>& args, std::ostream& out);

}  // namespace kelvary::cli
