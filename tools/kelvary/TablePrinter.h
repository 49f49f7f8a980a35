// TablePrinter: a recordset as plain aligned text. Each column is as wide as
// its longest value; numbers are aligned right. A chapter column (a field
// of type adChapter holding a child recordset, as a SHAPE statement returns)
// is not a column: after its parent row the child rows follow as a table of
// their own, indented, and so on down any number of levels.
#pragma once

#include <cstdint>
#include <ostream>

#include "kelvary/platform/Recordset.h"

namespace kelvary::cli {

struct PrintOptions {
  int32_t max_rows = -1;  // rows of the top level to print; -1 for all
  int32_t indent = 2;     // blanks in front of the top level
  int32_t step = 4;       // further blanks for each child level
};

// PrintRecordset writes rs from its first row, then "(n rows)" or, when cut,
// "(first m of n rows)". Leaves rs at its end.
void PrintRecordset(std::ostream& out, Recordset& rs, const PrintOptions& options = {});

// CellText: a value as the table shows it: Null as "Null", anything else as
// the Variant text conversion writes it.
std::string CellText(const Variant& value);

}  // namespace kelvary::cli
