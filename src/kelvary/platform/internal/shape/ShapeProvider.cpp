#include "kelvary/platform/internal/shape/ShapeProvider.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/Text.h"
#include "kelvary/platform/internal/drivers/Driver.h"
#include "kelvary/platform/internal/shape/CalcExpression.h"
#include "kelvary/platform/internal/shape/RelateIndex.h"
#include "kelvary/platform/internal/shape/ShapeParser.h"

namespace kelvary::shape {
namespace {

constexpr const char* kSource = "Shape";

// How every level of one statement is run and its chapters made.
struct Run {
  DriverConnection& driver;
  ChapterMaker& make_chapter;
};

std::string LevelName(const ShapeLevel& level) {
  return level.alias.empty() ? "{" + level.command + "}" : level.alias;
}

// ColumnOf: the column a RELATE name refers to, without regard to case
// (PostgreSQL reports names in lower case). A qualified name (t.ID) also
// finds the bare column, as drivers report columns without their table.
size_t ColumnOf(const RowSet& rows, const std::string& name, const ShapeLevel& level,
                const char* side) {
  for (size_t i = 0; i < rows.columns.size(); ++i) {
    if (EqualsNoCase(rows.columns[i].name, name)) return i;
  }
  const size_t dot = name.rfind('.');
  if (dot != std::string::npos) {
    const std::string_view bare = std::string_view(name).substr(dot + 1);
    for (size_t i = 0; i < rows.columns.size(); ++i) {
      if (EqualsNoCase(rows.columns[i].name, bare)) return i;
    }
  }
  throw Error(kErrProviderFailure,
              "SHAPE command: RELATE names the column '" + name + "', which the " + side +
                  " level " + LevelName(level) + " does not return",
              kSource)
      .WithStatement(level.command);
}

RowSet RunLevel(const ShapeLevel& level, const Run& run, int32_t max_rows,
                const std::vector<Variant>& params);

// ChapterName: the field that shows a child: its chapter alias, else the
// child's alias, else Chapter1, Chapter2, ...
std::string ChapterName(const ShapeChild& child, size_t index) {
  return !child.chapter_name.empty()  ? child.chapter_name
         : !child.level.alias.empty() ? child.level.alias
                                      : "Chapter" + std::to_string(index + 1);
}

bool IsNullish(const Variant& v) {
  return v.IsNull() || v.IsEmpty();
}

// Appended: the columns added to a level's rows, column by column.
struct Appended {
  std::vector<ColumnInfo> columns;
  std::vector<std::vector<Variant>> values;  // per column, per parent row

  void Add(ColumnInfo column, std::vector<Variant> cells) {
    columns.push_back(std::move(column));
    values.push_back(std::move(cells));
  }
};

// Aggregate: column's function over the members of rows (field: the
// column it reads, or npos for COUNT of rows).
Variant Aggregate(const ShapeColumn& column, const RowSet& rows, size_t field,
                  const std::vector<uint32_t>& members) {
  const std::string& f = column.function;
  if (f == "COUNT") {
    int32_t count = 0;
    for (uint32_t r : members) {
      if (field == std::string::npos || !IsNullish(rows.Cell(r, field))) ++count;
    }
    return Variant(count);
  }
  const Variant* best = nullptr;
  double sum = 0;
  double squares = 0;
  int64_t n = 0;
  for (uint32_t r : members) {
    const Variant& v = rows.Cell(r, field);
    if (IsNullish(v)) continue;
    if (f == "ANY") return v;
    if (f == "MIN" || f == "MAX") {
      if (!best || (f == "MIN" ? CompareValues(v, *best) < 0 : CompareValues(v, *best) > 0)) {
        best = &v;
      }
      continue;
    }
    const double d = CDbl(v);
    sum += d;
    squares += d * d;
    ++n;
  }
  if (f == "MIN" || f == "MAX") return best ? *best : Variant::Null();
  if (f == "SUM") return n ? Variant(sum) : Variant::Null();
  if (f == "AVG") return n ? Variant(sum / static_cast<double>(n)) : Variant::Null();
  if (f == "STDEV") {
    if (n < 2) return Variant::Null();
    const double mean = sum / static_cast<double>(n);
    const double variance =
        (squares - static_cast<double>(n) * mean * mean) / static_cast<double>(n - 1);
    return Variant(std::sqrt(std::max(variance, 0.0)));
  }
  return Variant::Null();  // ANY over Nulls only
}

// NewColumnType: the type a NEW column names (the data-type constants by
// name, with or without their "ad").
DataTypeEnum NewColumnType(const ShapeColumn& column, const std::string& statement) {
  static const std::pair<const char*, DataTypeEnum> kTypes[] = {
      {"SmallInt", adSmallInt},
      {"Integer", adInteger},
      {"Single", adSingle},
      {"Double", adDouble},
      {"Currency", adCurrency},
      {"Date", adDate},
      {"Boolean", adBoolean},
      {"Variant", adVariant},
      {"Decimal", adDecimal},
      {"TinyInt", adTinyInt},
      {"BigInt", adBigInt},
      {"Numeric", adNumeric},
      {"Char", adChar},
      {"WChar", adWChar},
      {"VarChar", adVarChar},
      {"VarWChar", adVarWChar},
      {"LongVarChar", adLongVarChar},
      {"BSTR", adBSTR},
      {"LongVarWChar", adLongVarWChar},
      {"DBTimeStamp", adDBTimeStamp},
  };
  std::string_view name = column.type;
  if (StartsWithNoCase(name, "ad")) name.remove_prefix(2);
  for (const auto& [type_name, type] : kTypes) {
    if (EqualsNoCase(name, type_name)) return type;
  }
  throw Error(kErrProviderFailure, "SHAPE command: NEW names the unknown type " + column.type,
              kSource)
      .WithStatement(statement);
}

// Computed: the aggregate, CALC and NEW columns of level for its rows, the
// aggregates read from the child rows each chapter holds.
void Computed(
    const ShapeLevel& level, size_t parent_count,
    const std::vector<std::pair<const RowSet*, const std::vector<std::vector<uint32_t>>*>>&
        chapter_rows,
    Appended& out) {
  for (const ShapeColumn& column : level.columns) {
    ColumnInfo info;
    std::vector<Variant> cells;
    cells.reserve(parent_count);
    switch (column.kind) {
      case ShapeColumn::kNew:
        info.name =
            column.name.empty() ? "New" + std::to_string(out.columns.size() + 1) : column.name;
        info.type = NewColumnType(column, level.command);
        info.defined_size = column.size;
        cells.assign(parent_count, Variant::Null());
        break;
      case ShapeColumn::kCalc:
        // Computed once the row holds every other field (CalcColumns).
        info.name =
            column.name.empty() ? "Calc" + std::to_string(out.columns.size() + 1) : column.name;
        info.type = adVariant;
        cells.assign(parent_count, Variant::Null());
        break;
      case ShapeColumn::kAggregate:
      default: {
        size_t chapter = 0;
        // The chapter by its name, or by the alias of the rows it holds (which
        // is how COMPUTE's aggregates name them).
        while (chapter < level.children.size() &&
               !EqualsNoCase(ChapterName(level.children[chapter], chapter), column.chapter) &&
               !EqualsNoCase(level.children[chapter].level.alias, column.chapter))
          ++chapter;
        if (chapter == level.children.size()) {
          throw Error(kErrProviderFailure,
                      "SHAPE command: " + column.function + " reads the chapter " + column.chapter +
                          ", which the level does not have",
                      kSource)
              .WithStatement(level.command);
        }
        const RowSet& rows = *chapter_rows[chapter].first;
        const auto& members = *chapter_rows[chapter].second;
        size_t field = std::string::npos;
        if (!column.field.empty()) {
          field = ColumnOf(rows, column.field, level.children[chapter].level, "child");
        }
        info.name = column.name.empty() ? column.function + "(" + column.chapter +
                                              (column.field.empty() ? "" : "." + column.field) + ")"
                                        : column.name;
        info.type =
            column.function == "COUNT" ? adInteger
            : (column.function == "MIN" || column.function == "MAX" || column.function == "ANY")
                ? rows.columns[field].type
                : adDouble;
        for (size_t r = 0; r < parent_count; ++r)
          cells.push_back(Aggregate(column, rows, field, members[r]));
      }
    }
    out.Add(std::move(info), std::move(cells));
  }
}

// ChildRows: a child level's rows and, per parent row, the numbers of the
// rows related to it.
struct ChildRows {
  std::vector<std::shared_ptr<const RowSet>> stores;  // one, or one per parent row
  std::vector<std::vector<uint32_t>> members;         // per parent row
};

// Related: runs a child level once and groups its rows under the parent rows
// by the RELATE columns; a parameterised child runs once per parent row
// with that row's values as its parameters.
ChildRows Related(const ShapeLevel& parent_level, const RowSet& parent, const ShapeChild& child,
                  const Run& run) {
  ChildRows out;
  const size_t count = parent.RowCount();
  if (child.relations.front().parameter >= 0) {
    std::vector<std::pair<size_t, size_t>> bindings;  // parent column, parameter number
    for (const RelatePair& pair : child.relations) {
      if (pair.parameter < 0) {
        throw Error(kErrProviderFailure,
                    "SHAPE command: a RELATE that passes PARAMETERs passes only parameters",
                    kSource)
            .WithStatement(child.level.command);
      }
      bindings.emplace_back(ColumnOf(parent, pair.parent_column, parent_level, "parent"),
                            static_cast<size_t>(pair.parameter));
    }
    size_t width = 0;
    for (const auto& b : bindings)
      width = std::max(width, b.second + 1);
    for (size_t r = 0; r < count; ++r) {
      std::vector<Variant> params(width);
      for (const auto& [column, number] : bindings)
        params[number] = parent.Cell(r, column);
      auto rows = std::make_shared<RowSet>(RunLevel(child.level, run, 0, params));
      std::vector<uint32_t> all(rows->RowCount());
      for (size_t i = 0; i < all.size(); ++i)
        all[i] = static_cast<uint32_t>(i);
      out.members.push_back(std::move(all));
      out.stores.push_back(std::move(rows));
    }
    return out;
  }
  RowSet rows = RunLevel(child.level, run, 0, {});
  std::vector<size_t> parent_columns;
  std::vector<size_t> child_columns;
  for (const RelatePair& pair : child.relations) {
    if (pair.parameter >= 0) {
      throw Error(kErrProviderFailure,
                  "SHAPE command: a RELATE that passes PARAMETERs passes only parameters", kSource)
          .WithStatement(child.level.command);
    }
    parent_columns.push_back(ColumnOf(parent, pair.parent_column, parent_level, "parent"));
    child_columns.push_back(ColumnOf(rows, pair.child_column, child.level, "child"));
  }
  RelateGroups groups = Relate(parent, parent_columns, rows, child_columns);
  // The last parent row holding a group takes its list; the others copy it.
  std::vector<uint32_t> holders(groups.group_rows.size(), 0);
  for (int32_t g : groups.parent_group) {
    if (g != RelateGroups::kNoGroup) ++holders[static_cast<size_t>(g)];
  }
  out.members.reserve(count);
  for (int32_t g : groups.parent_group) {
    if (g == RelateGroups::kNoGroup) {
      out.members.emplace_back();
      continue;
    }
    std::vector<uint32_t>& list = groups.group_rows[static_cast<size_t>(g)];
    if (--holders[static_cast<size_t>(g)] == 0) {
      out.members.push_back(std::move(list));
    } else {
      out.members.push_back(list);
    }
  }
  out.stores.push_back(std::make_shared<const RowSet>(std::move(rows)));
  return out;
}

// Chapters: the recordset of each parent row's related rows (an empty one
// when there are none). Rows held in one store are shared, never copied.
std::vector<Variant> Chapters(const ShapeChild& child, ChildRows& related, const Run& run) {
  std::vector<Variant> chapters;
  chapters.reserve(related.members.size());
  for (size_t r = 0; r < related.members.size(); ++r) {
    const auto& store = related.stores.size() == 1 ? related.stores.front() : related.stores[r];
    chapters.push_back(
        run.make_chapter.Chapter(store, std::move(related.members[r]), child.level.command));
  }
  return chapters;
}

// Grouped: the rows of a COMPUTE level: one per distinct value of the BY
// fields among the child's rows (in the order they first appear), or one
// for all the rows when there is no BY; the members of each group.
RowSet Grouped(const ShapeLevel& level, const RowSet& rows,
               std::vector<std::vector<uint32_t>>& members) {
  const ShapeChild& child = level.children.front();
  RowSet groups;
  std::vector<size_t> by;
  for (const std::string& name : level.by) {
    by.push_back(ColumnOf(rows, name, child.level, "grouped"));
    groups.columns.push_back(rows.columns[by.back()]);
  }
  const size_t count = rows.RowCount();
  if (by.empty()) {
    members.emplace_back(count);
    for (size_t i = 0; i < count; ++i)
      members.back()[i] = static_cast<uint32_t>(i);
    return groups;
  }
  // The rows related to themselves put equal keys in one group; rows with a
  // Null in their key are grouped by their keys' text.
  const RelateGroups self = Relate(rows, by, rows, by);
  std::vector<int32_t> slot(self.group_rows.size(), -1);
  std::unordered_map<std::string, size_t> nullish;
  for (size_t r = 0; r < count; ++r) {
    const int32_t g = self.parent_group[r];
    size_t fresh = members.size();
    if (g != RelateGroups::kNoGroup) {
      if (slot[static_cast<size_t>(g)] < 0)
        slot[static_cast<size_t>(g)] = static_cast<int32_t>(fresh);
      fresh = static_cast<size_t>(slot[static_cast<size_t>(g)]);
    } else {
      std::string key;
      for (size_t c : by) {
        const Variant& v = rows.Cell(r, c);
        key += IsNullish(v) ? std::string("\x01") : std::to_string(v.Type()) + ":" + CStr(v);
        key += '\x1f';
      }
      fresh = nullish.emplace(std::move(key), fresh).first->second;
    }
    if (fresh == members.size()) {
      members.emplace_back();
      for (size_t c : by)
        groups.cells.push_back(rows.Cell(r, c));
    }
    members[fresh].push_back(static_cast<uint32_t>(r));
  }
  return groups;
}

// ComputedOverChildren: Computed for a level of APPENDed children: the rows
// of a parameterised child, one store per parent row, are gathered into one.
void ComputedOverChildren(const ShapeLevel& level, size_t parent_count,
                          const std::vector<std::shared_ptr<const RowSet>>& keep,
                          const std::vector<std::vector<std::vector<uint32_t>>>& kept_members,
                          Appended& appended) {
  std::vector<std::pair<const RowSet*, const std::vector<std::vector<uint32_t>>*>> chapter_rows;
  // Aggregates over a parameterised child read one store per parent row:
  // gather those rows into one for the count.
  std::vector<RowSet> gathered(level.children.size());
  std::vector<std::vector<std::vector<uint32_t>>> gathered_members(level.children.size());
  size_t store_at = 0;
  for (size_t c = 0; c < level.children.size(); ++c) {
    const bool per_parent = level.children[c].relations.front().parameter >= 0;
    if (!per_parent) {
      chapter_rows.emplace_back(keep[store_at].get(), &kept_members[c]);
      ++store_at;
      continue;
    }
    RowSet& all = gathered[c];
    for (size_t r = 0; r < kept_members[c].size(); ++r) {
      const RowSet& one = *keep[store_at + r];
      if (all.columns.empty()) all.columns = one.columns;
      std::vector<uint32_t> numbers;
      const size_t first = all.RowCount();
      for (size_t i = 0; i < one.RowCount(); ++i)
        numbers.push_back(static_cast<uint32_t>(first + i));
      all.cells.insert(all.cells.end(), one.cells.begin(), one.cells.end());
      gathered_members[c].push_back(std::move(numbers));
    }
    store_at += kept_members[c].size();
    chapter_rows.emplace_back(&all, &gathered_members[c]);
  }
  Computed(level, parent_count, chapter_rows, appended);
}

// CalcColumns: the CALC columns of level, which stand in rows from column
// first on, computed from each row's other fields.
void CalcColumns(const ShapeLevel& level, size_t first, RowSet& rows) {
  const size_t width = rows.columns.size();
  const size_t count = rows.RowCount();
  for (size_t i = 0; i < level.columns.size(); ++i) {
    if (level.columns[i].kind != ShapeColumn::kCalc) continue;
    const size_t at = first + i;
    const CalcExpression expression =
        CalcExpression::Parse(level.columns[i].expression, [&](std::string_view name) {
          for (size_t c = 0; c < width; ++c) {
            if (c != at && EqualsNoCase(rows.columns[c].name, name)) return static_cast<int32_t>(c);
          }
          return int32_t{-1};
        });
    for (size_t r = 0; r < count; ++r) {
      Variant* row = rows.cells.data() + r * width;
      row[at] = expression.Evaluate(row);
    }
  }
}

// RunLevel: the rows of one level with its chapters and computed columns
// appended. Every provider command runs once, whatever the number of parent
// rows, unless its RELATE passes parameters.
RowSet RunLevel(const ShapeLevel& level, const Run& run, int32_t max_rows,
                const std::vector<Variant>& params) {
  RowSet rows;
  Appended appended;
  std::vector<std::shared_ptr<const RowSet>> keep;  // the child rows the aggregates read
  std::vector<std::vector<std::vector<uint32_t>>> kept_members;
  std::vector<std::pair<const RowSet*, const std::vector<std::vector<uint32_t>>*>> chapter_rows;
  kept_members.reserve(level.children.size());

  if (level.compute) {
    const ShapeChild& child = level.children.front();
    auto child_rows = std::make_shared<const RowSet>(RunLevel(child.level, run, 0, params));
    std::vector<std::vector<uint32_t>> members;
    RowSet groups = Grouped(level, *child_rows, members);
    if (max_rows > 0 && members.size() > static_cast<size_t>(max_rows)) {
      members.resize(static_cast<size_t>(max_rows));
      groups.cells.resize(members.size() * groups.columns.size());
    }
    ChildRows related{{child_rows}, members};
    kept_members.push_back(std::move(members));
    chapter_rows.emplace_back(child_rows.get(), &kept_members.back());
    ColumnInfo chapter;
    chapter.name = ChapterName(child, 0);
    chapter.type = adChapter;
    chapter.nullable = false;
    appended.Add(std::move(chapter), Chapters(child, related, run));
    Computed(level, kept_members.back().size(), chapter_rows, appended);
    // The BY fields follow the chapter and the computed columns.
    const size_t group_count = kept_members.back().size();
    for (size_t c = 0; c < groups.columns.size(); ++c) {
      std::vector<Variant> cells;
      cells.reserve(group_count);
      for (size_t r = 0; r < group_count; ++r)
        cells.push_back(std::move(groups.cells[r * groups.columns.size() + c]));
      appended.Add(groups.columns[c], std::move(cells));
    }
    rows.cells.clear();
  } else {
    StatementResult result = run.driver.Run(level.command, params, max_rows);
    if (!result.has_rows) {
      throw Error(kErrProviderFailure,
                  "SHAPE command: the command of level " + LevelName(level) + " returns no rows",
                  kSource)
          .WithStatement(level.command);
    }
    rows = std::move(result.rows);
    if (level.children.empty() && level.columns.empty()) return rows;
    for (size_t c = 0; c < level.children.size(); ++c) {
      const ShapeChild& child = level.children[c];
      ChildRows related = Related(level, rows, child, run);
      keep.insert(keep.end(), related.stores.begin(), related.stores.end());
      // The aggregates read the row lists after the chapters have taken them.
      kept_members.push_back(level.columns.empty() ? std::vector<std::vector<uint32_t>>()
                                                   : related.members);
      ColumnInfo chapter;
      chapter.name = ChapterName(child, c);
      chapter.type = adChapter;
      chapter.nullable = false;
      appended.Add(std::move(chapter), Chapters(child, related, run));
    }
    if (!level.columns.empty()) {
      ComputedOverChildren(level, rows.RowCount(), keep, kept_members, appended);
    }
  }

  // Widen the rows once for every appended column.
  const size_t width = rows.columns.size();
  const size_t count = level.compute ? appended.values.front().size() : rows.RowCount();
  RowSet shaped;
  shaped.columns = std::move(rows.columns);
  for (ColumnInfo& column : appended.columns)
    shaped.columns.push_back(std::move(column));
  shaped.cells.reserve(count * shaped.columns.size());
  for (size_t r = 0; r < count; ++r) {
    if (width > 0) {
      Variant* row = rows.cells.data() + r * width;
      std::move(row, row + width, std::back_inserter(shaped.cells));
    }
    for (auto& column : appended.values)
      shaped.cells.push_back(std::move(column[r]));
  }
  CalcColumns(level, width + level.children.size(), shaped);
  return shaped;
}

}  // namespace

RowSet RunShape(const std::string& command, DriverConnection& driver, int32_t max_records,
                ChapterMaker& make_chapter) {
  const ShapeLevel top = ParseShape(command);
  return RunLevel(top, Run{driver, make_chapter}, max_records, {});
}

}  // namespace kelvary::shape
