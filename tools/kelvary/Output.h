// Output: where a command writes and in which form. Every command that
// prints rows prints them through here, so --format and --output mean the
// same for all of them:
//   table  aligned text for a person (the default);
//   csv    one header line and one line per row (RFC 4180 quoting), for a
//          spreadsheet; a result of several levels cannot be flattened
//          without losing its shape, so it is refused;
//   json   one document: values keep their kinds (numbers as numbers, Null
//          as null, dates as ISO 8601 text), and a SHAPE result's chapters
//          are nested arrays of their rows.
// With --output FILE the text is gathered and the file written only when the
// command got as far as printing its result; without it, standard output.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "kelvary/platform/Recordset.h"
#include "kelvary/platform/Variant.h"

namespace kelvary::cli {

enum class Format { kTable, kCsv, kJson };

// Rows: a small result built by a command (not read from a database).
struct Rows {
  std::vector<std::string> columns;
  std::vector<std::vector<Variant>> rows;
  // In the table form, a single row is shown as "name: value" lines, which
  // reads better for a record with many fields.
  bool one_record = false;
};

// Document: what one command prints: a few named values (its header: the
// statement, the query's name), then named row sets. The table form shows
// the header as "Name: value" lines; csv shows only the single row set;
// json an object holding both.
struct Document {
  std::vector<std::pair<std::string, Variant>> header;
  std::vector<std::pair<std::string, Rows>> sections;
  std::vector<std::string> notes;  // lines the table form adds at the end
};

class Output {
 public:
  Output(Format format, std::ostream& stream) : format_(format), stream_(stream) {}
  Format format() const { return format_; }
  std::ostream& stream() { return stream_; }

  void Print(const Document& document);

 private:
  Format format_;
  std::ostream& stream_;
};

// ParseFormat: "table", "csv" or "json"; a UsageError for anything else.
Format ParseFormat(const std::string& text);

// JsonText: value as a JSON value (a recordset held in it as an array of row
// objects, its chapters nested in the same way).
std::string JsonText(const Variant& value);
// JsonString: text as a quoted JSON string.
std::string JsonString(const std::string& text);
// CsvField: value as one CSV field.
std::string CsvField(const Variant& value);
// IsoText: a date as ISO 8601 (yyyy-mm-dd, with Thh:mm:ss when it has a
// time of day).
std::string IsoText(Date date);

// WriteRecordsetJson writes rs from its first row as an array of row
// objects, at most max_rows of the top level (-1 all). Leaves rs at its end.
void WriteRecordsetJson(std::ostream& out, Recordset& rs, int64_t max_rows);
// WriteRecordsetCsv writes rs's header and rows; a CommandError when rs has
// chapter columns.
void WriteRecordsetCsv(std::ostream& out, Recordset& rs, int64_t max_rows);

}  // namespace kelvary::cli
