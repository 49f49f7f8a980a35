// kelvary query: prints the statement of a stored query and its rows (an
// indented tree for a multi-level query in the table form, nested arrays in
// JSON). The demo walks through stored queries with the same code, and
// kelvary check builds and opens every stored query with it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "Arguments.h"
#include "Output.h"
#include "kelvary/query/QueryInterpretor.h"
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
    std::string field_name = "ID";  // when field_id is 0
    bool field_given = false;       // by the user (checked against the table's fields)
  };
  std::optional<Record> record;  // restrict the query to one record
  int64_t max_rows = -1;         // rows of the top level to print; -1 all
};

// PreparedQuery: a stored query loaded and made ready to run, as a host
// does before running one: the levels a stored text's markers name, the
// template's conditions and the restrictions asked for are in place.
struct PreparedQuery {
  std::unique_ptr<QueryInterpretor> qi = std::make_unique<QueryInterpretor>();
  std::vector<std::pair<std::string, std::string>> conditions;  // level name, condition text
  std::vector<std::string> notes;  // the system's messages while loading, if any
};

// PrepareQuery loads request's query through the active service object. An
// unknown query or template (or a template of another query), a level that
// is not there, or a record field that is not the table's raises
// CommandError.
PreparedQuery PrepareQuery(InfoLink& link, const QueryRequest& request);

// Opens reports whether the build method is one whose statement the
// library opens (stored text and built queries); the others are run by the
// host.
bool Opens(QueryBuildMethods method);
const char* BuildMethodName(QueryBuildMethods method);

// RunStoredQuery prepares the query, prints what loading said, builds the
// statement and prints it, then opens it and prints its rows. A statement
// that does not open raises CommandError after the statement was printed.
void RunStoredQuery(InfoLink& link, const QueryRequest& request, Output& out);

// QueryCommand: "kelvary query".
int QueryCommand(const Arguments& args, Output& out);

}  // namespace kelvary::cli
