#include "Output.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "Arguments.h"
#include "Session.h"
#include "TablePrinter.h"

namespace kelvary::cli {

namespace {

std::string Two(int value) {
  char text[8];
  std::snprintf(text, sizeof text, "%02d", value);
  return text;
}

std::string NumberJson(double value) {
  if (!std::isfinite(value)) return "null";
  // The shortest text that reads back as the same number.
  char text[32];
  const auto result = std::to_chars(text, text + sizeof text, value);
  return std::string(text, result.ptr);
}

std::string CurrencyText(Currency value) {
  // Exact: four decimals, trailing zeros dropped.
  const bool negative = value.scaled < 0;
  const uint64_t magnitude =
      negative ? 0 - static_cast<uint64_t>(value.scaled) : static_cast<uint64_t>(value.scaled);
  std::string text = std::to_string(magnitude / 10000);
  uint64_t fraction = magnitude % 10000;
  if (fraction != 0) {
    std::string digits = std::to_string(fraction);
    digits.insert(0, 4 - digits.size(), '0');
    digits.erase(digits.find_last_not_of('0') + 1);
    text += "." + digits;
  }
  return negative ? "-" + text : text;
}

bool IsRightAligned(const Variant& value) {
  return value.IsNumber();
}

void PrintRowsAsTable(std::ostream& out, const Rows& rows) {
  if (rows.one_record && rows.rows.size() == 1) {
    size_t width = 0;
    for (const auto& column : rows.columns)
      width = std::max(width, column.size());
    for (size_t c = 0; c < rows.columns.size(); ++c) {
      out << "  " << rows.columns[c] << ":" << std::string(width - rows.columns[c].size() + 1, ' ')
          << CellText(rows.rows[0][c]) << "\n";
    }
    return;
  }
  std::vector<size_t> widths;
  std::vector<bool> right(rows.columns.size(), false);
  for (const auto& column : rows.columns)
    widths.push_back(column.size());
  std::vector<std::vector<std::string>> cells;
  for (const auto& row : rows.rows) {
    std::vector<std::string> line;
    for (size_t c = 0; c < rows.columns.size(); ++c) {
      const Variant& value = c < row.size() ? row[c] : Variant();
      line.push_back(value.IsEmpty() ? "" : CellText(value));
      widths[c] = std::max(widths[c], line.back().size());
      if (IsRightAligned(value)) right[c] = true;
    }
    cells.push_back(std::move(line));
  }
  auto print = [&](const std::vector<std::string>& line, bool header) {
    std::string text = "  ";
    for (size_t c = 0; c < line.size(); ++c) {
      if (c > 0) text += "  ";
      const std::string fill(widths[c] - line[c].size(), ' ');
      if (right[c] && !header) {
        text += fill + line[c];
      } else {
        text += line[c] + (c + 1 == line.size() ? "" : fill);
      }
    }
    while (!text.empty() && text.back() == ' ')
      text.pop_back();
    out << text << "\n";
  };
  print(rows.columns, true);
  std::vector<std::string> rules;
  for (size_t w : widths)
    rules.push_back(std::string(w, '-'));
  print(rules, true);
  for (const auto& line : cells)
    print(line, false);
  out << "  (" << rows.rows.size() << (rows.rows.size() == 1 ? " row)\n" : " rows)\n");
}

void PrintRowsAsJson(std::ostream& out, const Rows& rows) {
  if (rows.one_record && rows.rows.size() == 1) {
    out << "{";
    for (size_t c = 0; c < rows.columns.size(); ++c) {
      out << (c ? ", " : "") << JsonString(rows.columns[c]) << ": " << JsonText(rows.rows[0][c]);
    }
    out << "}";
    return;
  }
  out << "[";
  for (size_t r = 0; r < rows.rows.size(); ++r) {
    out << (r ? ",\n    {" : "\n    {");
    for (size_t c = 0; c < rows.columns.size(); ++c) {
      const Variant value = c < rows.rows[r].size() ? rows.rows[r][c] : Variant();
      out << (c ? ", " : "") << JsonString(rows.columns[c]) << ": " << JsonText(value);
    }
    out << "}";
  }
  out << (rows.rows.empty() ? "]" : "\n  ]");
}

void PrintRowsAsCsv(std::ostream& out, const Rows& rows) {
  for (size_t c = 0; c < rows.columns.size(); ++c)
    out << (c ? "," : "") << CsvField(Variant(rows.columns[c]));
  out << "\r\n";
  for (const auto& row : rows.rows) {
    for (size_t c = 0; c < rows.columns.size(); ++c)
      out << (c ? "," : "") << CsvField(c < row.size() ? row[c] : Variant());
    out << "\r\n";
  }
}

void WriteRowObject(std::ostream& out, Recordset& rs);

void WriteRecordsetRows(std::ostream& out, Recordset& rs, int64_t max_rows) {
  out << "[";
  int64_t written = 0;
  if (rs.State() == adStateOpen && rs.RecordCount() != 0) {
    rs.MoveFirst();
    for (; !rs.Eof() && (max_rows < 0 || written < max_rows); rs.MoveNext()) {
      out << (written ? ", " : "");
      WriteRowObject(out, rs);
      ++written;
    }
  }
  out << "]";
}

void WriteRowObject(std::ostream& out, Recordset& rs) {
  out << "{";
  for (int32_t i = 0; i < rs.FieldCount(); ++i) {
    out << (i ? ", " : "") << JsonString(rs.Fields(i).Name()) << ": ";
    const Variant value = rs.Fields(i).Value();
    if (rs.Fields(i).Type() == adChapter) {
      auto child = value.ObjectAs<Recordset>();
      if (child) {
        WriteRecordsetRows(out, *child, -1);
      } else {
        out << "[]";
      }
    } else {
      out << JsonText(value);
    }
  }
  out << "}";
}

}  // namespace

Format ParseFormat(const std::string& text) {
  if (text == "table") return Format::kTable;
  if (text == "csv") return Format::kCsv;
  if (text == "json") return Format::kJson;
  throw UsageError("--format is table, csv or json, not " + text);
}

std::string IsoText(Date date) {
  std::string text = std::to_string(Year(date)) + "-" + Two(Month(date)) + "-" + Two(Day(date));
  if (HasTime(date)) {
    text += "T" + Two(Hour(date)) + ":" + Two(Minute(date)) + ":" + Two(Second(date));
  }
  return text;
}

std::string JsonString(const std::string& text) {
  std::string out = "\"";
  for (const char ch : text) {
    const auto c = static_cast<unsigned char>(ch);
    switch (c) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\t':
        out += "\\t";
        break;
      default:
        if (c < 0x20) {
          char escaped[8];
          std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
          out += escaped;
        } else {
          out += ch;
        }
    }
  }
  return out + "\"";
}

std::string JsonText(const Variant& value) {
  switch (value.Type()) {
    case vbEmpty:
    case vbNull:
      return "null";
    case vbBoolean:
      return *value.Get<bool>() ? "true" : "false";
    case vbInteger:
    case vbLong:
    case vbLongLong:
      return std::to_string(CLngLng(value));
    case vbSingle:
    case vbDouble:
      return NumberJson(CDbl(value));
    case vbCurrency:
      return CurrencyText(*value.Get<Currency>());
    case vbDate:
      return JsonString(IsoText(*value.Get<Date>()));
    case vbObject: {
      auto rs = value.ObjectAs<Recordset>();
      if (!rs) return "null";
      std::ostringstream out;
      WriteRecordsetRows(out, *rs, -1);
      return out.str();
    }
    default:
      return JsonString(TextOf(value));
  }
}

std::string CsvField(const Variant& value) {
  std::string text;
  if (value.IsEmpty() || value.IsNull() || value.IsObject()) {
    text = "";
  } else if (value.Type() == vbDate) {
    text = IsoText(*value.Get<Date>());
  } else if (value.Type() == vbCurrency) {
    text = CurrencyText(*value.Get<Currency>());
  } else if (value.Type() == vbSingle || value.Type() == vbDouble) {
    text = NumberJson(CDbl(value));
  } else {
    text = TextOf(value);
  }
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (char c : text)
    quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
  return quoted + "\"";
}

void WriteRecordsetJson(std::ostream& out, Recordset& rs, int64_t max_rows) {
  WriteRecordsetRows(out, rs, max_rows);
}

void WriteRecordsetCsv(std::ostream& out, Recordset& rs, int64_t max_rows) {
  for (int32_t i = 0; i < rs.FieldCount(); ++i) {
    if (rs.Fields(i).Type() == adChapter) {
      throw CommandError("the result has levels (" + rs.Fields(i).Name() +
                         "), which csv cannot hold: use --format json or table");
    }
  }
  for (int32_t i = 0; i < rs.FieldCount(); ++i)
    out << (i ? "," : "") << CsvField(Variant(rs.Fields(i).Name()));
  out << "\r\n";
  int64_t written = 0;
  if (rs.RecordCount() != 0) {
    rs.MoveFirst();
    for (; !rs.Eof() && (max_rows < 0 || written < max_rows); rs.MoveNext(), ++written) {
      for (int32_t i = 0; i < rs.FieldCount(); ++i)
        out << (i ? "," : "") << CsvField(rs.Fields(i).Value());
      out << "\r\n";
    }
  }
}

void Output::Print(const Document& document) {
  switch (format_) {
    case Format::kTable: {
      for (const auto& [name, value] : document.header)
        stream_ << name << ": " << CellText(value) << "\n";
      for (const auto& [name, rows] : document.sections) {
        if (!document.header.empty() || document.sections.size() > 1) stream_ << name << ":\n";
        PrintRowsAsTable(stream_, rows);
      }
      for (const auto& note : document.notes)
        stream_ << note << "\n";
      break;
    }
    case Format::kCsv: {
      if (document.sections.size() != 1) {
        throw CommandError(
            "this result is not one table of rows, which csv needs: use --format "
            "json or table");
      }
      PrintRowsAsCsv(stream_, document.sections[0].second);
      break;
    }
    case Format::kJson: {
      stream_ << "{";
      bool first = true;
      for (const auto& [name, value] : document.header) {
        stream_ << (first ? "\n  " : ",\n  ") << JsonString(name) << ": " << JsonText(value);
        first = false;
      }
      for (const auto& [name, rows] : document.sections) {
        stream_ << (first ? "\n  " : ",\n  ") << JsonString(name) << ": ";
        PrintRowsAsJson(stream_, rows);
        first = false;
      }
      stream_ << "\n}\n";
      break;
    }
  }
}

}  // namespace kelvary::cli
