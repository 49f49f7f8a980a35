// Reading SHAPE statements: the forms the query interpreter writes, the
// quoting and nesting the grammar allows, and where a bad text went wrong.
#include <gtest/gtest.h>

#include <string>

#include "kelvary/platform/Date.h"
#include "kelvary/platform/Error.h"
#include "kelvary/platform/internal/shape/CalcExpression.h"
#include "kelvary/platform/internal/shape/ShapeParser.h"

namespace kelvary::shape {
namespace {

// Outline: the tree in one line, so that a whole statement is checked at once:
// alias{command}[chapter: relations -> child ...].
// A COMPUTE level shows as COMPUTE[chapter: -> grouped] with its columns
// (+kind:what=name) and BY fields after it; a parameter as ?n.
std::string Outline(const ShapeLevel& level) {
  std::string text = level.compute ? "COMPUTE" : level.alias + "{" + level.command + "}";
  for (const ShapeChild& child : level.children) {
    text += "[" + child.chapter_name + ":";
    for (const RelatePair& pair : child.relations) {
      text += " " + pair.parent_column + "=" +
              (pair.parameter >= 0 ? "?" + std::to_string(pair.parameter) : pair.child_column);
    }
    text += " -> " + Outline(child.level) + "]";
  }
  for (const ShapeColumn& column : level.columns) {
    text += " +";
    switch (column.kind) {
      case ShapeColumn::kAggregate:
        text += column.function + ":" + column.chapter + "." + column.field;
        break;
      case ShapeColumn::kCalc:
        text += "CALC:" + column.expression;
        break;
      case ShapeColumn::kNew:
        text += "NEW:" + column.type + "/" + std::to_string(column.size);
        break;
    }
    text += "=" + column.name;
  }
  for (const std::string& field : level.by)
    text += " BY " + field;
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
      // TABLE names a whole table; a name that is no plain word is quoted.
      {"SHAPE TABLE patients AS P APPEND (TABLE [visit list] AS V RELATE ID TO PatientID) V",
       "P{SELECT * FROM patients}[V: ID=PatientID -> V{SELECT * FROM \"visit list\"}]"},
      // Parameters, aggregates over a chapter, CALC and NEW columns.
      {"SHAPE {p} APPEND ({c WHERE a = ? AND b = ?} RELATE ID TO PARAMETER 0, Code TO parameter "
       "1) AS kids, SUM(kids.Amount) AS Total, COUNT(kids) N APPEND NEW adVarChar(20) AS Note, "
       "CALC(Len(Name) + (1)) AS L, max([kids].[Amount])",
       "{p}[kids: ID=?0 Code=?1 -> {c WHERE a = ? AND b = ?}] +SUM:kids.Amount=Total "
       "+COUNT:kids.=N +NEW:adVarChar/20=Note +CALC:Len(Name) + (1)=L +MAX:kids.Amount="},
      // COMPUTE groups the rows before it by the BY fields; without BY, all of them.
      {"SHAPE {Select * From v} AS v COMPUTE v AS Visits, AVG(v.Amount), STDEV(v.Amount) AS Spread "
       "BY PatientID, [Kind]",
       "COMPUTE[Visits: -> v{Select * From v}] +AVG:v.Amount= +STDEV:v.Amount=Spread BY PatientID "
       "BY Kind"},
      {"SHAPE (SHAPE {x} AS x COMPUTE x BY a) AS y COMPUTE y, ANY(y.a) AS A",
       "COMPUTE[: -> COMPUTE[: -> x{x}] BY a] +ANY:y.a=A"},
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
      {"SHAPE Select a From t", "7: expected {, ( or TABLE, found \"Select\""},
      {"SHAPE {Select a From t",
       "23: expected } closing the command that opens at position 7, found the end of the text"},
      {"SHAPE {  } AS P", "8: expected a provider command, found \" \""},
      {"SHAPE {p} APPEND ({c} RELATE a b)", "32: expected TO, found \"b\""},
      {"SHAPE {p} APPEND ({c} AS C a TO b)", "28: expected RELATE, found \"a\""},
      {"SHAPE {p} APPEND ({c} RELATE TO b)",
       "30: expected a column name of the parent, found \"TO\""},
      {"SHAPE {p} APPEND ({c} RELATE 'a TO b)",
       "38: expected ' closing the name that opens at position 30, found the end of the text"},
      {"SHAPE {p} AS P junk here",
       "16: expected APPEND, COMPUTE or the end of the command, found \"junk\""},
      {"SHAPE {p} COMPUTE c BY x",
       "19: expected the alias of the rows before COMPUTE (none was given), found \"c\""},
      {"SHAPE {p} APPEND MEDIAN(c.x)",
       "18: expected ( or SUM, AVG, MIN, MAX, COUNT, STDEV, ANY, CALC or NEW, found \"MEDIAN\""},
      {"SHAPE {p} APPEND SUM(c)", "23: expected . and a field of the chapter, found \")\""},
      {"SHAPE {p} APPEND ({c} RELATE a TO PARAMETER x)",
       "45: expected a parameter number, found \"x\""},
      {"SHAPE {p} APPEND ({c} RELATE a TO b) AS",
       "40: expected a name after AS, found the end of the text"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ErrorText(c.text), "Syntax error in SHAPE command at position " + c.message);
  }
}

TEST(ShapeParser, NestingStopsAtAClearErrorNotTheStack) {
  auto nested = [](int levels) {
    std::string text = "SHAPE ";
    for (int i = 1; i < levels; ++i)
      text += "(SHAPE ";
    text += "{x}";
    for (int i = 1; i < levels; ++i)
      text += ")";
    return text;
  };
  EXPECT_EQ(ParseShape(nested(kMaxShapeNesting)).command, "x");
  for (int levels : {kMaxShapeNesting + 1, 15000}) {
    EXPECT_NE(ErrorText(nested(levels)).find("levels are nested more than 64 deep"),
              std::string::npos);
  }
  std::string children = "SHAPE {x}";
  for (int i = 0; i < 15000; ++i)
    children += " APPEND ((SHAPE {c}";
  EXPECT_NE(ErrorText(children).find("nested more than 64 deep"), std::string::npos);
}

TEST(CalcExpression, ComputesFromTheRowsFields) {
  const Variant row[] = {Variant(7), Variant("ab"), Variant::Null(),
                         Variant(DateSerial(2024, 3, 5))};
  auto resolve = [](std::string_view name) -> int32_t {
    const std::string_view names[] = {"A", "B", "C", "D"};
    for (int32_t i = 0; i < 4; ++i) {
      if (name == names[i]) return i;
    }
    return -1;
  };
  const struct {
    const char* text;
    Variant value;
  } cases[] = {
      {"A * 2 + 1", Variant(15)},
      {"(1 + 2) * 3 - [A]", Variant(2)},
      {"A \\ 2 + A MOD 4", Variant(6)},
      {"2 ^ 3 / 4", Variant(2.0)},
      {"A / 2", Variant(3.5)},
      {"B & C & 'x' & \"y\"", Variant("abxy")},
      {"'a' + B", Variant("aab")},
      {"A + C", Variant::Null()},
      {"Len(B) + Year(D) + Month(D) + Day(D)", Variant(2034)},
      {"IIf(A > 5, 'big', 'small')", Variant("big")},
      {"IIf(IsNull(C), 0, C)", Variant(0)},
      {"UCase$(B) & LCase('Q') & Trim('  t  ')", Variant("ABqt")},
      {"Mid('hello', 2, 3) & Left('hello', 2) & Right('hello', 1)", Variant("ellheo")},
      {"Round(2.5) + Round(3.5) + Int(-1.5) + Abs(-2)", Variant(6)},
      {"InStr('Hello', 'L')", Variant(3)},
      {"A = 7", Variant(true)},
      {"D > #1/1/2024#", Variant(true)},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(CalcExpression::Parse(c.text, resolve).Evaluate(row), c.value) << c.text;
  }
  for (const std::string& text :
       {std::string("A +"), std::string("Nope(1)"), std::string("Left(B)"), std::string("Zed * 2"),
        std::string("(A"), std::string(65, '(') + "A" + std::string(65, ')')}) {
    const Error e = [&] {
      try {
        CalcExpression::Parse(text, resolve);
      } catch (const Error& error) {
        return error;
      }
      return Error(0, "");
    }();
    EXPECT_EQ(e.Number(), kErrProviderFailure) << text;
    EXPECT_NE(e.Description().find("cannot compute CALC("), std::string::npos) << text;
  }
  try {
    CalcExpression::Parse("A / (A - 7)", resolve).Evaluate(row);
    ADD_FAILURE() << "no error";
  } catch (const Error& e) {
    EXPECT_EQ(e.Number(), 11);
  }
}

}  // namespace
}  // namespace kelvary::shape
