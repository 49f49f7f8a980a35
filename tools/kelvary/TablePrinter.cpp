#include "TablePrinter.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace kelvary::cli {

namespace {

struct Row {
  std::vector<std::string> cells;
  std::vector<std::pair<std::string, std::shared_ptr<Recordset>>> chapters;
};

void PrintLevel(std::ostream& out, Recordset& rs, const PrintOptions& options, int32_t indent,
                bool top) {
  std::vector<int32_t> columns;   // ordinals of the plain columns
  std::vector<int32_t> chapters;  // ordinals of the chapter columns
  for (int32_t i = 0; i < rs.FieldCount(); ++i) {
    (rs.Fields(i).Type() == adChapter ? chapters : columns).push_back(i);
  }
  std::vector<size_t> widths;
  std::vector<bool> right;
  for (int32_t c : columns) {
    widths.push_back(rs.Fields(c).Name().size());
    right.push_back(IsNumericType(rs.Fields(c).Type()));
  }

  const int32_t total = rs.RecordCount();
  const int32_t limit = top && options.max_rows >= 0 ? options.max_rows : total;
  std::vector<Row> rows;
  if (total > 0) rs.MoveFirst();
  for (; !rs.Eof() && static_cast<int32_t>(rows.size()) < limit; rs.MoveNext()) {
    Row row;
    for (size_t k = 0; k < columns.size(); ++k) {
      row.cells.push_back(CellText(rs.Fields(columns[k]).Value()));
      widths[k] = std::max(widths[k], row.cells.back().size());
    }
    for (int32_t c : chapters) {
      row.chapters.emplace_back(rs.Fields(c).Name(), rs.Fields(c).Value().ObjectAs<Recordset>());
    }
    rows.push_back(std::move(row));
  }

  const std::string pad(static_cast<size_t>(indent), ' ');
  auto line = [&](const std::vector<std::string>& cells, bool header) {
    std::string text = pad;
    for (size_t k = 0; k < cells.size(); ++k) {
      if (k > 0) text += "  ";
      const std::string fill(widths[k] - cells[k].size(), ' ');
      const bool is_last = k + 1 == cells.size();
      if (right[k] && !header) {
        text += fill + cells[k];
      } else {
        text += cells[k] + (is_last ? "" : fill);
      }
    }
    out << text << "\n";
  };

  std::vector<std::string> names;
  std::vector<std::string> rules;
  for (size_t k = 0; k < columns.size(); ++k) {
    names.push_back(rs.Fields(columns[k]).Name());
    rules.push_back(std::string(widths[k], '-'));
  }
  line(names, true);
  line(rules, true);
  for (auto& row : rows) {
    line(row.cells, false);
    for (auto& [name, child] : row.chapters) {
      if (!child || child->State() != adStateOpen || child->RecordCount() == 0) continue;
      const int32_t child_indent = indent + options.step;
      out << std::string(static_cast<size_t>(child_indent), ' ') << name << ":\n";
      PrintLevel(out, *child, options, child_indent, false);
    }
  }
  if (top) {
    if (static_cast<int32_t>(rows.size()) < total) {
      out << pad << "(first " << rows.size() << " of " << total << " rows)\n";
    } else {
      out << pad << "(" << total << (total == 1 ? " row)\n" : " rows)\n");
    }
  }
}

}  // namespace

std::string CellText(const Variant& value) {
  if (value.IsNull()) return "Null";
  if (value.IsObject()) return "(object)";
  return TextOf(value);
}

void PrintRecordset(std::ostream& out, Recordset& rs, const PrintOptions& options) {
  PrintLevel(out, rs, options, options.indent, true);
}

}  // namespace kelvary::cli
