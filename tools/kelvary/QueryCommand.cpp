#include "QueryCommand.h"

#include <cctype>
#include <limits>

#include "Session.h"
#include "TablePrinter.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/platform/Text.h"

namespace kelvary::cli {

namespace {

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

// A template must exist and be one of the query's own.
void CheckTemplate(InfoLink& link, const QueryInterpretor& qi) {
  const char* table =
      qi.QueryBuildMethod == qbmXtalReportQuery ? "XQueryTemplates" : "QueryTemplates";
  const Variant owner =
      link.GetCorrespondingValue(qi.TemplateId, table, "QueryID", "ID", pdssystem, "");
  if (owner.IsEmpty()) {
    throw CommandError("template " + std::to_string(qi.TemplateId) + " not found");
  }
  if (CLng(owner) != qi.QueryID) {
    throw CommandError("template " + std::to_string(qi.TemplateId) + " belongs to query " +
                       std::to_string(CLng(owner)) + ", not to query " +
                       std::to_string(qi.QueryID));
  }
}

// A field named for --record must be one of the data table's fields.
void CheckRecordField(InfoLink& link, const QueryRequest::Record& r) {
  if (!r.field_given) return;  // the table's ID
  std::shared_ptr<Recordset> rs;
  bool found = false;
  if (link.FillRecordSet(pdssystem, rs,
                         "Select ID, FieldName From DataTableFields Where DataTableID = " +
                             std::to_string(r.table_id),
                         adOpenForwardOnly, adLockReadOnly)) {
    for (; !rs->Eof() && !found; rs->MoveNext()) {
      found = r.field_id > 0 ? CLng(rs->Fields("ID").Value()) == r.field_id
                             : EqualsNoCase(TextOf(rs->Fields("FieldName").Value()), r.field_name);
    }
  }
  link.SafelyCloseRecordSet(rs);
  if (!found) {
    throw CommandError("data table " + std::to_string(r.table_id) + " has no field " +
                       (r.field_id > 0 ? std::to_string(r.field_id) : r.field_name));
  }
}

bool IsFieldName(const std::string& text) {
  if (text.empty() || !(std::isalpha(static_cast<unsigned char>(text[0])) || text[0] == '_')) {
    return false;
  }
  for (char c : text) {
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_') return false;
  }
  return true;
}

QueryRequest::Record ParseRecord(const std::string& v) {
  // TABLE:ENTRY[:FIELD], FIELD a field ID or a field name.
  const size_t c1 = v.find(':');
  if (c1 == std::string::npos) throw UsageError("--record needs TABLE:ENTRY[:FIELD], not " + v);
  const size_t c2 = v.find(':', c1 + 1);
  constexpr int64_t kMin = std::numeric_limits<int32_t>::min();
  constexpr int64_t kMax = std::numeric_limits<int32_t>::max();
  QueryRequest::Record r;
  r.table_id = static_cast<int32_t>(ParseInteger(v.substr(0, c1), "--record's table", 1, kMax));
  r.entry_id = static_cast<int32_t>(
      ParseInteger(v.substr(c1 + 1, c2 == std::string::npos ? c2 : c2 - c1 - 1), "--record's entry",
                   kMin, kMax));
  if (c2 == std::string::npos) return r;
  const std::string field = v.substr(c2 + 1);
  r.field_given = true;
  if (!field.empty() && field.find_first_not_of("0123456789") == std::string::npos) {
    r.field_id = static_cast<int32_t>(ParseInteger(field, "--record's field", 1, kMax));
    r.field_name.clear();
  } else if (IsFieldName(field)) {
    r.field_name = field;
  } else {
    throw UsageError("--record's field is a field ID or a field name (letters, digits, _), not '" +
                     field + "'");
  }
  return r;
}

void PrintParameters(InfoLink& link, QueryInterpretor& qi, Rows& rows) {
  rows.columns = {"Title", "Text"};
  for (const auto& group : *qi.CurrentConditions()) {
    for (const auto& param : *group->ChildConditions()) {
      // As a host does: a coded value is described by its search link.
      if (param->SearchLinkID > 0 && !param->Value1.IsEmpty()) {
        param->Value1Description = link.GetDescription(param->SearchLinkID, CLng(param->Value1));
      }
      rows.rows.push_back({Variant(param->Title), Variant(param->GetSimpleText())});
    }
  }
}

}  // namespace

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

bool Opens(QueryBuildMethods method) {
  return method == qbmDirectADO || method == qbmDigitalBuild;
}

PreparedQuery PrepareQuery(InfoLink& link, const QueryRequest& request) {
  MessageCatcher catcher;
  PreparedQuery prepared;
  QueryInterpretor& qi = *prepared.qi;
  qi.InitSettings("", request.query_id, request.template_id, request.xtal);
  catcher.ThrowIfAny();
  if (request.template_id != 0) CheckTemplate(link, qi);

  if (qi.QueryBuildMethod == qbmDirectADO) AddMarkerLevels(link, qi);
  for (const auto& group : *qi.CurrentConditions()) {
    if (group->ParentGroupId != 0) continue;
    const std::string text = qi.GetConditionString(group);
    if (text.empty()) continue;
    auto level = LevelOf(qi, group->NestedBinding);
    Restrict(*level, text);
    prepared.conditions.emplace_back(level->ShapeName, text);
  }
  for (const auto& [level_id, clause] : request.wheres)
    Restrict(*LevelOf(qi, level_id), clause);
  if (request.record) {
    const auto& r = *request.record;
    CheckRecordField(link, r);
    try {
      qi.AssignIDBasedWhereClause(r.table_id, r.entry_id, r.field_id, r.field_name);
    } catch (const Error&) {
      throw CommandError("query " + std::to_string(qi.QueryID) + " reads no data table " +
                         std::to_string(r.table_id));
    }
  }
  for (const auto& message : catcher.Take())
    prepared.notes.push_back(OneLine(message));
  return prepared;
}

void RunStoredQuery(InfoLink& link, const QueryRequest& request, Output& out) {
  PreparedQuery prepared = PrepareQuery(link, request);
  QueryInterpretor& qi = *prepared.qi;
  MessageCatcher catcher;
  std::ostream& stream = out.stream();

  if (request.sql_only) {
    qi.EncodeSQLStmt();
    catcher.ThrowIfAny();
    if (out.format() == Format::kTable) {
      stream << qi.FinalSQLStmt << "\n";
    } else {
      Document document;
      document.sections.push_back({"statement", Rows{{"statement"}, {{Variant(qi.FinalSQLStmt)}}}});
      if (out.format() == Format::kJson) {
        document.sections.clear();
        document.header.push_back({"statement", Variant(qi.FinalSQLStmt)});
      }
      out.Print(document);
    }
    return;
  }

  const std::string description =
      link.GetDescriptionFromCode(qi.QueryID, "Queries", "Description", "ID", pdssystem, "");
  const int32_t levels = qi.ShapeNests()->Count();
  Rows parameters;
  if (request.show_parameters) PrintParameters(link, qi, parameters);
  for (const auto& message : catcher.Take())
    prepared.notes.push_back(OneLine(message));

  if (out.format() == Format::kTable) {
    stream << "Query " << qi.QueryID << ": " << description << " ("
           << BuildMethodName(qi.QueryBuildMethod);
    if (qi.QueryBuildMethod == qbmDigitalBuild) {
      stream << ", " << levels << (levels == 1 ? " level" : " levels");
    }
    stream << ")\n";
    if (qi.TemplateId > 0) {
      stream << "Template " << qi.TemplateId << ": " << qi.TemplateDescription << "\n";
    }
    if (request.show_parameters) {
      stream << "Parameters (title [description]):\n";
      for (const auto& row : parameters.rows)
        stream << "  " << TextOf(row[0]) << " [" << TextOf(row[1]) << "]\n";
    }
    for (const auto& [level, text] : prepared.conditions)
      stream << "Condition on " << level << ":\n  " << text << "\n";
    for (const auto& note : prepared.notes)
      stream << "  message: " << note << "\n";
  }

  qi.EncodeSQLStmt();
  if (out.format() == Format::kTable) stream << "Statement:\n  " << qi.FinalSQLStmt << "\n";
  std::shared_ptr<Recordset> rs;
  if (Opens(qi.QueryBuildMethod)) {
    qi.AssignRecordSet(rs);
    const auto messages = catcher.Take();
    if (!messages.empty()) {
      throw CommandError("cannot open the statement: " + LastLine(messages[0]));
    }
  }

  switch (out.format()) {
    case Format::kTable:
      if (!rs) {
        stream << "(a query of this build method is run by the host, not opened here)\n";
        return;
      }
      {
        stream << "Rows:\n";
        PrintOptions options;
        options.max_rows = static_cast<int32_t>(request.max_rows);
        PrintRecordset(stream, *rs, options);
      }
      return;
    case Format::kCsv:
      if (!rs) throw CommandError("query " + std::to_string(qi.QueryID) + " is run by the host");
      WriteRecordsetCsv(stream, *rs, request.max_rows);
      return;
    case Format::kJson: {
      stream << "{\n  \"query\": " << qi.QueryID
             << ",\n  \"description\": " << JsonString(description)
             << ",\n  \"build_method\": " << static_cast<int>(qi.QueryBuildMethod)
             << ",\n  \"levels\": " << levels;
      if (qi.TemplateId > 0) {
        stream << ",\n  \"template\": " << qi.TemplateId
               << ",\n  \"template_description\": " << JsonString(qi.TemplateDescription);
      }
      if (request.show_parameters) {
        stream << ",\n  \"parameters\": [";
        for (size_t i = 0; i < parameters.rows.size(); ++i) {
          stream << (i ? ", " : "") << "{\"title\": " << JsonText(parameters.rows[i][0])
                 << ", \"text\": " << JsonText(parameters.rows[i][1]) << "}";
        }
        stream << "]";
      }
      stream << ",\n  \"conditions\": [";
      for (size_t i = 0; i < prepared.conditions.size(); ++i) {
        stream << (i ? ", " : "") << "{\"level\": " << JsonString(prepared.conditions[i].first)
               << ", \"text\": " << JsonString(prepared.conditions[i].second) << "}";
      }
      stream << "],\n  \"statement\": " << JsonString(qi.FinalSQLStmt) << ",\n  \"rows\": ";
      if (rs) {
        WriteRecordsetJson(stream, *rs, request.max_rows);
        stream << ",\n  \"row_count\": " << rs->RecordCount();
      } else {
        stream << "null";
      }
      stream << "\n}\n";
      return;
    }
  }
}

int QueryCommand(const Arguments& args, Output& out) {
  const Sources sources = ReadSources(args);
  QueryRequest request;
  const auto query = args.Id("--query");
  if (!query) throw UsageError("kelvary query needs --query ID (see kelvary help query)");
  request.query_id = *query;
  request.template_id = static_cast<int32_t>(
      args.Integer("--template", 0, std::numeric_limits<int32_t>::max()).value_or(0));
  request.xtal = args.Has("--xtal");
  request.sql_only = args.Has("--sql-only");
  request.show_parameters = args.Has("--parameters");
  request.max_rows =
      args.Integer("--max-rows", 0, std::numeric_limits<int32_t>::max()).value_or(-1);
  for (const auto& v : args.All("--where")) {
    const size_t eq = v.find('=');
    if (eq == std::string::npos) throw UsageError("--where needs LEVEL=CLAUSE, not " + v);
    request.wheres.emplace_back(
        static_cast<int32_t>(ParseInteger(v.substr(0, eq), "--where's level", 1,
                                          std::numeric_limits<int32_t>::max())),
        v.substr(eq + 1));
  }
  if (auto record = args.Get("--record")) request.record = ParseRecord(*record);

  InfoLink link;
  Connect(link, sources, Access::kReadOnly);
  RunStoredQuery(link, request, out);
  return 0;
}

}  // namespace kelvary::cli
