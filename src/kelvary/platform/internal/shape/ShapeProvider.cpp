#include "kelvary/platform/internal/shape/ShapeProvider.h"

#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/Text.h"
#include "kelvary/platform/internal/drivers/Driver.h"
#include "kelvary/platform/internal/shape/RelateIndex.h"
#include "kelvary/platform/internal/shape/ShapeParser.h"

namespace kelvary::shape {
namespace {

constexpr const char* kSource = "Shape";

// How every level of one statement is run and held.
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

RowSet RunLevel(const ShapeLevel& level, const Run& run, int32_t max_rows);

// Chapters: runs a child level once and makes, for every row of the parent,
// the recordset of its related child rows (an empty one when there are
// none).
std::vector<Variant> Chapters(const ShapeLevel& parent_level, const RowSet& parent,
                              const ShapeChild& child, const Run& run) {
  RowSet rows = RunLevel(child.level, run, 0);
  std::vector<size_t> parent_columns;
  std::vector<size_t> child_columns;
  for (const RelatePair& pair : child.relations) {
    parent_columns.push_back(ColumnOf(parent, pair.parent_column, parent_level, "parent"));
    child_columns.push_back(ColumnOf(rows, pair.child_column, child.level, "child"));
  }
  RelateGroups groups = Relate(parent, parent_columns, rows, child_columns);

  // Every chapter reads its rows where the child result holds them: nothing
  // is moved or copied, whatever the number of rows. Parents that share a
  // key (duplicates) get copies of the row list, the last of them the list
  // itself.
  std::vector<uint32_t> holders(groups.group_rows.size(), 0);
  for (int32_t g : groups.parent_group) {
    if (g != RelateGroups::kNoGroup) ++holders[static_cast<size_t>(g)];
  }
  const auto store = std::make_shared<const RowSet>(std::move(rows));
  std::vector<Variant> chapters;
  chapters.reserve(groups.parent_group.size());
  for (int32_t g : groups.parent_group) {
    std::vector<uint32_t> members;
    if (g != RelateGroups::kNoGroup) {
      std::vector<uint32_t>& list = groups.group_rows[static_cast<size_t>(g)];
      if (--holders[static_cast<size_t>(g)] == 0) {
        members = std::move(list);
      } else {
        members = list;
      }
    }
    chapters.push_back(run.make_chapter.Chapter(store, std::move(members), child.level.command));
  }
  return chapters;
}

// RunLevel: the rows of one level with a chapter column appended for each
// of its children. Every provider command runs once, whatever the number
// of parent rows.
RowSet RunLevel(const ShapeLevel& level, const Run& run, int32_t max_rows) {
  StatementResult result = run.driver.Run(level.command, {}, max_rows);
  if (!result.has_rows) {
    throw Error(kErrProviderFailure,
                "SHAPE command: the command of level " + LevelName(level) + " returns no rows",
                kSource)
        .WithStatement(level.command);
  }
  RowSet rows = std::move(result.rows);
  if (level.children.empty()) return rows;

  std::vector<std::vector<Variant>> chapters;
  chapters.reserve(level.children.size());
  for (const ShapeChild& child : level.children) {
    chapters.push_back(Chapters(level, rows, child, run));
  }

  // Widen the rows once for all chapters.
  const size_t count = rows.RowCount();
  const size_t width = rows.columns.size();
  RowSet shaped;
  shaped.columns = std::move(rows.columns);
  for (size_t c = 0; c < level.children.size(); ++c) {
    const ShapeChild& child = level.children[c];
    ColumnInfo chapter;
    // An unnamed chapter takes the child's alias, else Chapter1, Chapter2, ...
    chapter.name = !child.chapter_name.empty()  ? child.chapter_name
                   : !child.level.alias.empty() ? child.level.alias
                                                : "Chapter" + std::to_string(c + 1);
    chapter.type = adChapter;
    chapter.nullable = false;
    shaped.columns.push_back(std::move(chapter));
  }
  shaped.cells.reserve(count * shaped.columns.size());
  for (size_t r = 0; r < count; ++r) {
    Variant* row = rows.cells.data() + r * width;
    std::move(row, row + width, std::back_inserter(shaped.cells));
    for (auto& column : chapters)
      shaped.cells.push_back(std::move(column[r]));
  }
  return shaped;
}

}  // namespace

RowSet RunShape(const std::string& command, DriverConnection& driver, int32_t max_records,
                ChapterMaker& make_chapter) {
  const ShapeLevel top = ParseShape(command);
  return RunLevel(top, Run{driver, make_chapter}, max_records);
}

}  // namespace kelvary::shape
