#include "QueryCommand.h"

#include <memory>

#include "Session.h"
#include "TablePrinter.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/query/QueryInterpretor.h"

namespace kelvary::cli {

namespace {

const char* BuildMethodName(QueryBuildMethods method) {
  switch (method) {
    case qbmDirectADO:
      return "stored text";
    case qbmDigitalBuild:
      return "built from its definition";
    case qbmXtalReportQuery:
      return "report query";
    default:
      return "build method";
  }
}

// The description part of a failure message: what follows its first line
// (which repeats the statement), on one line. A server's description takes
// several lines: its own message, the driver's, the SQLSTATE and the text
// sent; all of them are kept.
std::string Reason(const std::string& message) {
  const size_t end = message.find_last_not_of("\r\n");
  if (end == std::string::npos) return message;
  const size_t first = message.find_first_of("\r\n");
  if (first == std::string::npos || first > end) return message.substr(0, end + 1);
  return OneLine(message.substr(message.find_first_not_of("\r\n", first), std::string::npos));
}

void ReportNotes(MessageCatcher& catcher, std::ostream& out) {
  for (const auto& message : catcher.Take())
    out << "  message: " << OneLine(message) << "\n";
}

// A stored text's markers name levels that the definition loading does not
// read: the host adds them from QueryShapeNests.
void AddMarkerLevels(InfoLink& link, QueryInterpretor& qi) {
  std::shared_ptr<Recordset> rs;
  if (link.FillRecordSet(pdssystem, rs,
                         "Select * From QueryShapeNests Where QueryId = " +
                             std::to_string(qi.QueryID) + " Order by Depth, ID",
                         adOpenForwardOnly, adLockReadOnly)) {
    for (; !rs->Eof(); rs->MoveNext()) {
      const int32_t id = CLng(rs->Fields("ID").Value());
      qi.ShapeNests()->Add(CLng(rs->Fields("BaseTableID").Value()),
                           CInt(rs->Fields("Depth").Value()),
                           CBool(rs->Fields("PreExistingWhereClause").Value()), id,
                           TextOf(rs->Fields("ShapeName").Value()),
                           TextOf(rs->Fields("Title").Value()), "S" + std::to_string(id));
    }
  }
  link.SafelyCloseRecordSet(rs);
}

std::shared_ptr<QueryShapeNest> LevelOf(QueryInterpretor& qi, int32_t id) {
  for (const auto& level : *qi.ShapeNests()) {
    if (level->ID == id) return level;
  }
  throw CommandError("query " + std::to_string(qi.QueryID) + " has no level " + std::to_string(id));
}

void Restrict(QueryShapeNest& level, const std::string& clause) {
  level.AssignedWhereClause =
      level.AssignedWhereClause.empty() ? clause : level.AssignedWhereClause + " AND " + clause;
}

int32_t Number(const std::string& text, const std::string& what) {
  try {
    size_t used = 0;
    const long value = std::stol(text, &used);
    if (used == text.size()) return static_cast<int32_t>(value);
  } catch (const std::exception&) {
  }
  throw CommandError(what + " is not a number: " + text);
}

}  // namespace

void RunStoredQuery(InfoLink& link, const QueryRequest& request, std::ostream& out) {
  MessageCatcher catcher;
  QueryInterpretor qi;
  qi.InitSettings("", request.query_id, request.template_id, request.xtal);
  if (auto messages = catcher.Take(); !messages.empty()) throw CommandError(OneLine(messages[0]));

  if (qi.QueryBuildMethod == qbmDirectADO) AddMarkerLevels(link, qi);
  std::vector<std::pair<std::string, std::string>> conditions;  // level name, text
  for (const auto& group : *qi.CurrentConditions()) {
    if (group->ParentGroupId != 0) continue;
    const std::string text = qi.GetConditionString(group);
    if (text.empty()) continue;
    auto level = LevelOf(qi, group->NestedBinding);
    Restrict(*level, text);
    conditions.emplace_back(level->ShapeName, text);
  }
  for (const auto& [level_id, clause] : request.wheres)
    Restrict(*LevelOf(qi, level_id), clause);
  if (request.record) {
    const auto& r = *request.record;
    try {
      qi.AssignIDBasedWhereClause(r.table_id, r.entry_id, r.field_id, r.field_name);
    } catch (const Error&) {
      throw CommandError("query " + std::to_string(qi.QueryID) + " reads no data table " +
                         std::to_string(r.table_id));
    }
  }

  if (request.sql_only) {
    qi.EncodeSQLStmt();
    out << qi.FinalSQLStmt << "\n";
    return;
  }

  const std::string description =
      link.GetDescriptionFromCode(qi.QueryID, "Queries", "Description", "ID", pdssystem, "");
  out << "Query " << qi.QueryID << ": " << description << " ("
      << BuildMethodName(qi.QueryBuildMethod);
  if (qi.QueryBuildMethod == qbmDigitalBuild) {
    out << ", " << qi.ShapeNests()->Count()
        << (qi.ShapeNests()->Count() == 1 ? " level" : " levels");
  }
  out << ")\n";
  if (qi.TemplateId > 0) {
    out << "Template " << qi.TemplateId << ": " << qi.TemplateDescription << "\n";
  }
  if (request.show_parameters) {
    out << "Parameters (title [description]):\n";
    for (const auto& group : *qi.CurrentConditions()) {
      for (const auto& param : *group->ChildConditions()) {
        // As a host does: a coded value is described by its search link.
        if (param->SearchLinkID > 0 && !param->Value1.IsEmpty()) {
          param->Value1Description = link.GetDescription(param->SearchLinkID, CLng(param->Value1));
        }
        out << "  " << param->Title << " [" << param->GetSimpleText() << "]\n";
      }
    }
  }
  for (const auto& [level, text] : conditions) {
    out << "Condition on " << level << ":\n  " << text << "\n";
  }
  ReportNotes(catcher, out);

  qi.EncodeSQLStmt();
  out << "Statement:\n  " << qi.FinalSQLStmt << "\n";
  if (qi.QueryBuildMethod != qbmDirectADO && qi.QueryBuildMethod != qbmDigitalBuild) {
    out << "(a query of this build method is run by the host, not opened here)\n";
    return;
  }
  std::shared_ptr<Recordset> rs;
  qi.AssignRecordSet(rs);
  const auto messages = catcher.Take();
  if (!messages.empty()) throw CommandError("cannot open the statement: " + Reason(messages[0]));
  out << "Rows:\n";
  PrintOptions options;
  options.max_rows = request.max_rows;
  PrintRecordset(out, *rs, options);
}

int QueryCommand(const std::vector<std::string>& args, std::ostream& out) {
  std::string main_source;
  std::string system_source;
  QueryRequest request;
  bool have_query = false;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    auto value = [&]() -> const std::string& {
      if (i + 1 >= args.size()) throw CommandError(a + " needs a value");
      return args[++i];
    };
    if (a == "--system") {
      system_source = value();
    } else if (a == "--main") {
      main_source = value();
    } else if (a == "--query") {
      request.query_id = Number(value(), "--query");
      have_query = true;
    } else if (a == "--template") {
      request.template_id = Number(value(), "--template");
    } else if (a == "--xtal") {
      request.xtal = true;
    } else if (a == "--sql-only") {
      request.sql_only = true;
    } else if (a == "--parameters") {
      request.show_parameters = true;
    } else if (a == "--dialect") {
      const std::string& v = value();
      if (v == "access") {
        request.dialect = sdbAccess;
      } else if (v == "oracle") {
        request.dialect = sdbOracle;
      } else if (v == "sqlserver") {
        request.dialect = sdbSQLServer;
      } else {
        throw CommandError("--dialect is access, oracle or sqlserver, not " + v);
      }
    } else if (a == "--max-rows") {
      request.max_rows = Number(value(), "--max-rows");
    } else if (a == "--where") {
      const std::string& v = value();
      const size_t eq = v.find('=');
      if (eq == std::string::npos) throw CommandError("--where needs LEVEL=CLAUSE");
      request.wheres.emplace_back(Number(v.substr(0, eq), "the level"), v.substr(eq + 1));
    } else if (a == "--record") {
      // TABLE:ENTRY[:FIELD], FIELD a field ID or a field name.
      const std::string& v = value();
      const size_t c1 = v.find(':');
      if (c1 == std::string::npos) throw CommandError("--record needs TABLE:ENTRY[:FIELD]");
      const size_t c2 = v.find(':', c1 + 1);
      QueryRequest::Record r;
      r.table_id = Number(v.substr(0, c1), "the table");
      r.entry_id =
          Number(v.substr(c1 + 1, c2 == std::string::npos ? c2 : c2 - c1 - 1), "the entry");
      const std::string field = c2 == std::string::npos ? "ID" : v.substr(c2 + 1);
      if (!field.empty() && field.find_first_not_of("0123456789") == std::string::npos) {
        r.field_id = Number(field, "the field");
      } else {
        r.field_name = field;
      }
      request.record = r;
    } else {
      throw CommandError("unknown argument " + a + " (see kelvary help)");
    }
  }
  if (!have_query) throw CommandError("--query ID is required");
  InfoLink link;
  link.MainDBType = request.dialect;
  Connect(link, main_source, system_source);
  RunStoredQuery(link, request, out);
  return 0;
}

}  // namespace kelvary::cli
