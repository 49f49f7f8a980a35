// QueryCase: one data-driven case of the query interpreter, read from a
// small text file in tests/query/cases/ (the format is described in
// tests/query/cases/README.md): definition rows to add to the demo
// configuration, what the host does, and the statement, condition texts,
// rows and messages expected.
#pragma once

#include <string>
#include <vector>

#include "kelvary/service/Enums.h"

namespace kelvary::testing {

struct QueryCase {
  std::string name;                            // the file's stem
  std::string purpose;                         // "# purpose:" line
  std::string definition;                      // SQL run on the system database
  std::vector<std::vector<std::string>> host;  // directives, split into words
  bool has_statement = false;
  std::string statement;  // the quoted lines, joined
  bool has_conditions = false;
  std::vector<std::string> conditions;  // one per root condition group
  bool has_rows = false;
  std::vector<std::string> columns;
  std::vector<std::vector<std::string>> rows;
  std::vector<std::string> messages;  // messages expected, in order
};

// ReadQueryCase parses a case file as it reads in a dialect: for the Oracle
// dialect a section's "oracle" variant ([statement oracle] ...) stands in
// for the section, for any other the variants are passed over. A malformed
// file raises std::runtime_error naming the file and the line.
QueryCase ReadQueryCase(const std::string& path, StdDBTypes dialect = sdbAccess);

// QueryCaseFiles: the case files of a folder, sorted by name.
std::vector<std::string> QueryCaseFiles(const std::string& folder);

}  // namespace kelvary::testing
