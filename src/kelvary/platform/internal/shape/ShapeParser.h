// ShapeParser: reads the text of a SHAPE statement into a tree of levels.
//
//   SHAPE table [[AS] alias]
//     [APPEND item [[AS] name] [, item [[AS] name] | APPEND item [[AS] name] ...]]
//   SHAPE table [AS] alias COMPUTE alias [[AS] chapter] [, column [[AS] name] ...]
//     [BY field [, field ...]]
//
//   table  := {provider command} | TABLE name | (SHAPE ...)
//   item   := (child RELATE parent TO child-column | parent TO PARAMETER n [, ...]) | column
//   child  := table [[AS] alias] | SHAPE ...
//   column := SUM|AVG|MIN|MAX|STDEV|ANY(chapter.field) | COUNT(chapter[.field])
//             | CALC(expression) | NEW type [(size[, scale])]
//
// Keywords are read without regard to case; names are plain, or in
// apostrophes, double quotes or brackets (a doubled closing mark stands for
// itself). Sibling items may be separated by commas or each start with its
// own APPEND, which is how the query interpreter writes them. A provider
// command runs to the brace that closes it; braces inside quoted text or
// brackets do not count, nested pairs do. Levels nest at most
// kMaxShapeNesting deep.
//
// The parser knows nothing of connections; ShapeProvider runs the tree.
// Pure functions, any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kelvary::shape {

constexpr int kMaxShapeNesting = 64;

// RelatePair: one "parent TO child" of a RELATE clause, names as written
// (quotes removed); "parent TO PARAMETER n" fills parameter instead of
// child_column: the child's command then runs once per parent row, with the
// parent's value as its parameter n (its n-th "?", from 0).
struct RelatePair {
  std::string parent_column;
  std::string child_column;
  int32_t parameter = -1;
};

// ShapeColumn: a column computed for each row of a level: an aggregate over
// one of its chapters, a CALC expression or a NEW (empty) column.
struct ShapeColumn {
  enum Kind { kAggregate, kCalc, kNew };
  Kind kind = kAggregate;
  std::string function;    // kAggregate: SUM, AVG, MIN, MAX, COUNT, STDEV or ANY
  std::string chapter;     // kAggregate: the chapter it reads
  std::string field;       // kAggregate: the chapter's field; empty for COUNT(chapter)
  std::string expression;  // kCalc: the text between the parentheses
  std::string type;        // kNew: the type's name as written (adInteger, adVarChar...)
  int32_t size = 0;        // kNew: the size in parentheses, when given
  std::string name;        // the alias; empty when none was written
};

struct ShapeChild;

// ShapeLevel: one provider command and the chapters and columns appended
// to its rows. A COMPUTE level has no command: its rows are the groups of
// its one child's rows by the fields in by (one row for all of them when by
// is empty); its fields are the chapter, then the columns, then the by
// fields.
struct ShapeLevel {
  std::string command;  // the provider command, without its braces and outer blanks
  std::string alias;    // empty when none was written
  std::vector<ShapeChild> children;
  std::vector<ShapeColumn> columns;
  bool compute = false;
  std::vector<std::string> by;
};

// ShapeChild: a level related to its parent by RELATE, shown in the parent
// as the chapter column chapter_name.
struct ShapeChild {
  ShapeLevel level;
  std::vector<RelatePair> relations;  // at least one
  std::string chapter_name;           // the alias after the closing parenthesis; may be empty
};

// ParseShape reads a whole SHAPE statement. A statement that cannot be read
// raises Error 3000 whose description names the 1-based position where the
// text went wrong and what was expected there, e.g.
// "Syntax error in SHAPE command at position 42: expected TO, found 'b'".
ShapeLevel ParseShape(std::string_view text);

}  // namespace kelvary::shape
