#include "LookupCommand.h"

#include <limits>

#include "Session.h"
#include "StoredQueries.h"
#include "kelvary/platform/Text.h"

namespace kelvary::cli {

namespace {

ProjectDataSources SourceOf(const Arguments& args) {
  const std::string source = args.Get("--source").value_or("main");
  if (source == "main") return pdsmaindata;
  if (source == "system") return pdssystem;
  throw UsageError("--source is main or system, not " + source);
}

const char* SourceName(ProjectDataSources source) {
  switch (source) {
    case pdsmaindata:
      return "main";
    case pdssystem:
      return "system";
    case pdsSequenceGenerator:
      return "sequence";
    default:
      return "raw";
  }
}

int32_t RequiredId(const Arguments& args, std::string_view name) {
  const auto value = args.Id(name);
  if (!value) {
    throw UsageError("kelvary lookup " + args.Positional()[0] + " needs " + std::string(name) +
                     " (see kelvary help lookup)");
  }
  return *value;
}

std::optional<int16_t> Width(const Arguments& args) {
  const auto width = args.Integer("--width", 0, std::numeric_limits<int16_t>::max());
  if (!width) return std::nullopt;
  return static_cast<int16_t>(*width);
}

std::string Quote(const std::string& text) {
  return "\"" + text + "\"";
}

// The statements the look-up ran, as the service object's history reports
// them.
class StatementLog {
 public:
  explicit StatementLog(InfoLink& link) : link_(link) {
    link_.LogFileEntrySetting = lfetSelectSQL;
    link_.SetSQLHistoryObserver(
        [this](LogFileEntryTypes, const std::string& sql) { statements_.push_back(sql); });
  }
  ~StatementLog() {
    link_.SetSQLHistoryObserver(nullptr);
    link_.LogFileEntrySetting = lfetNone;
  }
  StatementLog(const StatementLog&) = delete;
  StatementLog& operator=(const StatementLog&) = delete;
  Variant Text() const {
    if (statements_.empty()) return Variant::Null();
    std::string text;
    for (const auto& s : statements_)
      text += (text.empty() ? "" : "; ") + s;
    return Variant(text);
  }

 private:
  InfoLink& link_;
  std::vector<std::string> statements_;
};

Rows OneResult(const std::string& call, const Variant& value, const StatementLog& log) {
  Rows rows;
  rows.columns = {"member", "value", "statement"};
  rows.rows.push_back({Variant(call), value, log.Text()});
  rows.one_record = true;
  return rows;
}

Rows LinkDetails(InfoLink& link, const std::vector<int32_t>& ids, bool quiet_when_missing) {
  Rows rows;
  rows.columns = {
      "Link",          "Window",          "SearchDisplayField", "SearchValueField",
      "SearchTable",   "SearchTableName", "SourceData",         "SQLStmt",
      "SelectCaption", "HasManyEntries",  "DefNewScreenID",     "SecondaryDisplayField"};
  for (const int32_t id : ids) {
    MessageCatcher catcher;
    std::string display, value, table_name, sql, caption, secondary;
    int32_t table = 0;
    ProjectDataSources source = pdsRawData;
    bool many = false;
    int16_t screen = 0;
    const int32_t window = link.GetSearchLinkDetails(id, display, value, table, table_name, source,
                                                     sql, caption, &many, &screen, &secondary);
    if (!catcher.Take().empty()) {
      if (quiet_when_missing) continue;
      throw CommandError("Problem in SearchLinkID " + std::to_string(id));
    }
    rows.rows.push_back({Variant(id), Variant(window), Variant(display), Variant(value),
                         Variant(table), Variant(table_name), Variant(SourceName(source)),
                         Variant(sql), Variant(caption), Variant(many),
                         Variant(static_cast<int32_t>(screen)), Variant(secondary)});
  }
  return rows;
}

}  // namespace

int LookupCommand(const Arguments& args, Output& out) {
  if (args.Positional().empty()) {
    throw UsageError("kelvary lookup needs a MEMBER: description, code, value, multi or link");
  }
  const std::string member = args.Positional()[0];
  if (member != "description" && member != "code" && member != "value" && member != "multi" &&
      member != "link") {
    throw UsageError("lookup MEMBER is description, code, value, multi or link, not " + member);
  }
  const Sources sources = ReadSources(args);
  InfoLink link;
  Connect(link, sources, Access::kReadOnly);
  MessageCatcher catcher;
  Document document;

  if (member == "link") {
    if (args.Has("--table")) {
      const std::string table = args.Required("--table");
      Rows all =
          LinkDetails(link, ReadIds(link, "Select ID From FillNSearchLinks Order By ID"), true);
      Rows rows;
      rows.columns = all.columns;
      for (auto& row : all.rows) {
        if (EqualsNoCase(TextOf(row[5]), table)) rows.rows.push_back(std::move(row));
      }
      if (rows.rows.empty()) throw CommandError("no search link reads the table " + table);
      document.sections.push_back({"links", std::move(rows)});
    } else {
      Rows rows = LinkDetails(link, {RequiredId(args, "--link")}, false);
      rows.one_record = true;
      document.sections.push_back({"link", std::move(rows)});
    }
    catcher.ThrowIfAny();
    out.Print(document);
    return 0;
  }

  StatementLog log(link);
  std::string call;
  Variant value;
  if (member == "description") {
    const int32_t id = RequiredId(args, "--link");
    const int32_t code = RequiredId(args, "--code");
    call = "GetDescription(" + std::to_string(id) + ", " + std::to_string(code) + ")";
    value = Variant(link.GetDescription(id, code, Width(args)));
  } else if (member == "code") {
    const std::string table = args.Get("--table").value_or("");
    const std::string field = args.Required("--field");
    const std::string by = args.Get("--by").value_or("ID");
    const int32_t code = RequiredId(args, "--code");
    const ProjectDataSources source = SourceOf(args);
    const std::string sql = args.Get("--sql").value_or("");
    if (table.empty() && sql.empty()) throw UsageError("lookup code needs --table or --sql");
    const auto secondary = args.Get("--secondary");
    call = "GetDescriptionFromCode(" + std::to_string(code) + ", " + Quote(table) + ", " +
           Quote(field) + ", " + Quote(by) + ", " + SourceName(source) + ")";
    value = Variant(
        link.GetDescriptionFromCode(code, table, field, by, source, sql, Width(args), secondary));
  } else if (member == "value") {
    const std::string table = args.Get("--table").value_or("");
    const std::string field = args.Required("--field");
    const std::string by = args.Get("--by").value_or("ID");
    const ProjectDataSources source = SourceOf(args);
    const std::string sql = args.Get("--sql").value_or("");
    if (table.empty() && sql.empty()) throw UsageError("lookup value needs --table or --sql");
    if (args.Has("--text") == args.Has("--code")) {
      throw UsageError("lookup value needs one of --code N and --text TEXT");
    }
    if (args.Has("--text")) {
      const std::string text = args.Required("--text");
      call = "GetCorrespondingValueFromText(" + Quote(text) + ", " + Quote(table) + ", " +
             Quote(field) + ", " + Quote(by) + ", " + SourceName(source) + ")";
      value = link.GetCorrespondingValueFromText(text, table, field, by, source, sql);
    } else {
      const int32_t code = RequiredId(args, "--code");
      call = "GetCorrespondingValue(" + std::to_string(code) + ", " + Quote(table) + ", " +
             Quote(field) + ", " + Quote(by) + ", " + SourceName(source) + ")";
      value = link.GetCorrespondingValue(code, table, field, by, source, sql);
    }
  } else {  // multi
    const int32_t id = RequiredId(args, "--multi");
    const int32_t parent = RequiredId(args, "--parent");
    call = "GetMultiString(" + std::to_string(id) + ", " + std::to_string(parent) + ")";
    value = Variant(link.GetMultiString(id, parent));
  }
  catcher.ThrowIfAny();
  document.sections.push_back({"lookup", OneResult(call, value, log)});
  out.Print(document);
  return 0;
}

}  // namespace kelvary::cli
