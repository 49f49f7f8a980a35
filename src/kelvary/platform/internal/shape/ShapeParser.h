// ShapeParser: reads the text of a SHAPE statement into a tree of levels.
//
//   SHAPE {provider command} [[AS] alias]
//     [APPEND (child [[AS] alias] RELATE parent TO child [, parent TO child ...]) [[AS] chapter]
//             [, (...) [[AS] chapter] | APPEND (...) [[AS] chapter] ...]]
//
// where a child is {provider command}, (SHAPE ...) or SHAPE ... again, to any
// depth. Keywords are read without regard to case; names are plain, or in
// apostrophes, double quotes or brackets (a doubled closing mark stands for
// itself). Sibling chapters may be separated by commas or each start with its
// own APPEND, which is how the query interpreter writes them. A provider
// command runs to the brace that closes it; braces inside quoted text or
// brackets do not count, nested pairs do.
//
// The parser knows nothing of connections; ShapeProvider runs the tree.
// Pure functions, any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kelvary::shape {

// RelatePair: one "parent TO child" of a RELATE clause, names as written
// (quotes removed).
struct RelatePair {
  std::string parent_column;
  std::string child_column;
};

struct ShapeChild;

// ShapeLevel: one provider command and the chapters appended to its rows.
struct ShapeLevel {
  std::string command;  // the provider command, without its braces and outer blanks
  std::string alias;    // empty when none was written
  std::vector<ShapeChild> children;
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
