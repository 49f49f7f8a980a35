// Reading SHAPE statements: the forms the query interpreter writes, the
// quoting and nesting the grammar allows, and where a bad text went wrong.
#include <gtest/gtest.h>

#include <string>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/shape/ShapeParser.h"

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

std::string Parsed(const std::string& text) {
  return Outline(ParseShape(text));
}

TEST(ShapeParser, ReadsTheFormsTheQueryInterpreterWrites) {
  // Two levels, with the doubled blanks and the child's name twice.
  EXPECT_EQ(Parsed(" SHAPE { Select a,b From t  } as Parent APPEND ({Select c,d From u  }   as "
                   "Child RELATE 'b' TO  'd' ) AS Child"),
            "Parent{Select a,b From t}[Child: b=d -> Child{Select c,d From u}]");
  // Three levels in a chain: the middle level is itself a SHAPE.
  EXPECT_EQ(Parsed(" SHAPE { Select ID,Name From patients  } as Patients APPEND ((SHAPE {Select "
                   "ID,PatientID From visits  }   as Visits APPEND ({Select VisitID,Amount From "
                   "invoices  }   as Invoices RELATE 'ID' TO  'VisitID' ) AS Invoices) RELATE "
                   "'ID' TO  'PatientID' ) AS Visits"),
            "Patients{Select ID,Name From patients}[Visits: ID=PatientID -> "
            "Visits{Select ID,PatientID From visits}[Invoices: ID=VisitID -> "
            "Invoices{Select VisitID,Amount From invoices}]]");
  // Two children of the root, each with its own APPEND.
  EXPECT_EQ(Parsed(" SHAPE { Select ID From p  } as P APPEND ({Select PID From v  }   as V "
                   "RELATE 'ID' TO  'PID' ) AS V APPEND ({Select PID From l  }   as L RELATE "
                   "'ID' TO  'PID' ) AS L"),
            "P{Select ID From p}[V: ID=PID -> V{Select PID From v}][L: ID=PID -> "
            "L{Select PID From l}]");
}

TEST(ShapeParser, ReadsTheGeneralGrammar) {
  // Siblings separated by commas, several RELATE pairs, no AS, any case.
  EXPECT_EQ(Parsed("shape {select * from p} p append ({select * from c} c relate a to x, b to "
                   "y) c1, ({select * from d} relate a TO z) d1"),
            "p{select * from p}[c1: a=x b=y -> c{select * from c}][d1: a=z -> {select * from d}]");
  // A parenthesised SHAPE at the top, extended by a further APPEND, and an
  // unparenthesised SHAPE as a child.
  EXPECT_EQ(Parsed("SHAPE (SHAPE {a} AS A APPEND ({b} RELATE x TO y) AS B) APPEND (SHAPE {c} AS "
                   "C APPEND ({d} RELATE p TO q) AS D RELATE x TO z) AS CC"),
            "A{a}[B: x=y -> {b}][CC: x=z -> C{c}[D: p=q -> {d}]]");
  // No APPEND at all, and no names anywhere.
  EXPECT_EQ(Parsed("SHAPE{Select 1}"), "{Select 1}");
  EXPECT_EQ(Parsed("SHAPE {p} APPEND ({c} RELATE a TO b)"), "{p}[: a=b -> {c}]");
}

TEST(ShapeParser, ReadsQuotedNames) {
  EXPECT_EQ(Parsed("SHAPE {p} AS 'Parent''s' APPEND ({c} AS \"Child \"\"1\"\"\" RELATE [Patient "
                   "ID] TO 'o''id', \"x\" TO [a]]b]) AS [Visits of]"),
            "Parent's{p}[Visits of: Patient ID=o'id x=a]b -> Child \"1\"{c}]");
  // A keyword is a name when quoted.
  EXPECT_EQ(Parsed("SHAPE {p} APPEND ({c} RELATE 'to' TO [relate]) AS 'Append'"),
            "{p}[Append: to=relate -> {c}]");
}

TEST(ShapeParser, KeepsProviderCommandsWhole) {
  // Braces in quoted text, in brackets and in nested pairs belong to the command.
  EXPECT_EQ(Parsed("SHAPE { Select '}' AS x, \"a}\" From [t}] Where n = 'it''s {' } AS P"),
            "P{Select '}' AS x, \"a}\" From [t}] Where n = 'it''s {'}");
  EXPECT_EQ(Parsed("SHAPE {Select {fn UCASE(Name)} From t Where {T.ID} > 0} AS P"),
            "P{Select {fn UCASE(Name)} From t Where {T.ID} > 0}");
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
  const std::string prefix = "Syntax error in SHAPE command at position ";
  EXPECT_EQ(ErrorText("SHAPE Select a From t"), prefix + "7: expected { or (, found \"Select\"");
  EXPECT_EQ(ErrorText("SHAPE {Select a From t"),
            prefix +
                "23: expected } closing the command that opens at position 7, found the "
                "end of the text");
  EXPECT_EQ(ErrorText("SHAPE {  } AS P"), prefix + "8: expected a provider command, found \" \"");
  EXPECT_EQ(ErrorText("SHAPE {p} APPEND ({c} RELATE a b)"),
            prefix + "32: expected TO, found \"b\"");
  EXPECT_EQ(ErrorText("SHAPE {p} APPEND ({c} AS C a TO b)"),
            prefix + "28: expected RELATE, found \"a\"");
  EXPECT_EQ(ErrorText("SHAPE {p} APPEND ({c} RELATE TO b)"),
            prefix + "30: expected a column name of the parent, found \"TO\"");
  EXPECT_EQ(ErrorText("SHAPE {p} APPEND ({c} RELATE 'a TO b)"),
            prefix +
                "38: expected ' closing the name that opens at position 30, found the end "
                "of the text");
  EXPECT_EQ(ErrorText("SHAPE {p} AS P junk here"),
            prefix + "16: expected APPEND or the end of the command, found \"junk\"");
  EXPECT_EQ(ErrorText("SHAPE {p} APPEND ({c} RELATE a TO b) AS"),
            prefix + "40: expected a name after AS, found the end of the text");
  EXPECT_EQ(ErrorText("SHAPE {p} COMPUTE c BY x"),
            "SHAPE command at position 11: COMPUTE is not supported; only APPEND with RELATE is");
}

}  // namespace
}  // namespace kelvary::shape
