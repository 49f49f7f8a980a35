// Reading SHAPE statements: the forms the query interpreter writes, the
// quoting and nesting the grammar allows, and where a bad text went wrong.
#include <gtest/gtest.h>

#include <string>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/internal/shape/ShapeParser.h"

namespace kelvary::shape {
namespace {

// Outline: the tree in one line, so that a whole statement is checked at once:
// alias{command}[chapter: relations -> child ...].
std::string Outline(const ShapeLevel& level) {
  std::string text = level.alias + "{" + level.command + "}";
  for (const ShapeChild& child : level.children) {
    text += "[" + child.chapter_name + ":";
    for (const RelatePair& pair : child.relations) {
      text += " " + pair.parent_column + "=" + pair.child_column;
    }
    text += " -> " + Outline(child.level) + "]";
  }
  return text;
}

TEST(ShapeParser, ReadsEveryFormOfTheGrammar) {
  const struct {
    std::string text, outline;
  } cases[] = {
      // As the query interpreter writes them: doubled blanks, quoted relate
      // columns, the child's name twice, a middle level that is itself a SHAPE.
      {" SHAPE { Select ID From p  } as P APPEND ((SHAPE {Select ID,PID From v  }   as V APPEND "
       "({Select VID From i  }   as I RELATE 'ID' TO  'VID' ) AS I) RELATE 'ID' TO  'PID' ) AS V",
       "P{Select ID From p}[V: ID=PID -> V{Select ID,PID From v}[I: ID=VID -> I{Select VID From "
       "i}]]"},
      // Two children of the root, each with its own APPEND.
      {" SHAPE { Select ID From p  } as P APPEND ({Select PID From v  }   as V RELATE 'ID' TO  "
       "'PID' ) AS V APPEND ({Select PID From l  }   as L RELATE 'ID' TO  'PID' ) AS L",
       "P{Select ID From p}[V: ID=PID -> V{Select PID From v}][L: ID=PID -> L{Select PID From l}]"},
      // Siblings separated by commas, several RELATE pairs, no AS, any case.
      {"shape {select * from p} p append ({select * from c} c relate a to x, b to y) c1, ({select "
       "* from d} relate a TO z) d1",
       "p{select * from p}[c1: a=x b=y -> c{select * from c}][d1: a=z -> {select * from d}]"},
      // A parenthesised SHAPE at the top, extended by a further APPEND, and an
      // unparenthesised SHAPE as a child.
      {"SHAPE (SHAPE {a} AS A APPEND ({b} RELATE x TO y) AS B) APPEND (SHAPE {c} AS C APPEND ({d} "
       "RELATE p TO q) AS D RELATE x TO z) AS CC",
       "A{a}[B: x=y -> {b}][CC: x=z -> C{c}[D: p=q -> {d}]]"},
      // No APPEND at all, and no names anywhere.
      {"SHAPE{Select 1}", "{Select 1}"},
      {"SHAPE {p} APPEND ({c} RELATE a TO b)", "{p}[: a=b -> {c}]"},
      // Quoted names; a keyword is a name when quoted.
      {"SHAPE {p} AS 'Parent''s' APPEND ({c} AS \"Child \"\"1\"\"\" RELATE [Patient ID] TO "
       "'o''id', \"x\" TO [a]]b]) AS [Visits of]",
       "Parent's{p}[Visits of: Patient ID=o'id x=a]b -> Child \"1\"{c}]"},
      {"SHAPE {p} APPEND ({c} RELATE 'to' TO [relate]) AS 'Append'",
       "{p}[Append: to=relate -> {c}]"},
      // Braces in quoted text, in brackets and in nested pairs belong to the
      // provider's command.
      {"SHAPE { Select '}' AS x, \"a}\" From [t}] Where n = 'it''s {' } AS P",
       "P{Select '}' AS x, \"a}\" From [t}] Where n = 'it''s {'}"},
      {"SHAPE {Select {fn UCASE(Name)} From t Where {T.ID} > 0} AS P",
       "P{Select {fn UCASE(Name)} From t Where {T.ID} > 0}"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Outline(ParseShape(c.text)), c.outline) << c.text;
  }
}

// The message of the Error that parsing text raises.
std::string ErrorText(const std::string& text) {
  try {
    ParseShape(text);
  } catch (const Error& e) {
    EXPECT_EQ(e.Number(), kErrProviderFailure) << text;
    EXPECT_EQ(e.Statement(), text);
    return e.Description();
  }
  return "no error";
}

TEST(ShapeParser, SaysWhereABadStatementWentWrong) {
  const struct {
    std::string text, message;
  } cases[] = {
      {"SHAPE Select a From t", "7: expected { or (, found \"Select\""},
      {"SHAPE {Select a From t",
       "23: expected } closing the command that opens at position 7, found the end of the text"},
      {"SHAPE {  } AS P", "8: expected a provider command, found \" \""},
      {"SHAPE {p} APPEND ({c} RELATE a b)", "32: expected TO, found \"b\""},
      {"SHAPE {p} APPEND ({c} AS C a TO b)", "28: expected RELATE, found \"a\""},
      {"SHAPE {p} APPEND ({c} RELATE TO b)",
       "30: expected a column name of the parent, found \"TO\""},
      {"SHAPE {p} APPEND ({c} RELATE 'a TO b)",
       "38: expected ' closing the name that opens at position 30, found the end of the text"},
      {"SHAPE {p} AS P junk here", "16: expected APPEND or the end of the command, found \"junk\""},
      {"SHAPE {p} APPEND ({c} RELATE a TO b) AS",
       "40: expected a name after AS, found the end of the text"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ErrorText(c.text), "Syntax error in SHAPE command at position " + c.message);
  }
  EXPECT_EQ(ErrorText("SHAPE {p} COMPUTE c BY x"),
            "SHAPE command at position 11: COMPUTE is not supported; only APPEND with RELATE is");
}

}  // namespace
}  // namespace kelvary::shape
