#include "CheckCommand.h"

#include <chrono>
#include <iostream>

#include "QueryCommand.h"
#include "Session.h"
#include "StoredQueries.h"

namespace kelvary::cli {

namespace {

struct Finding {
  std::string kind;  // "problem" or "note"
  std::string where;
  std::string detail;
};

// Progress on standard error, once the walk has taken a while (or always
// when asked): at most one line a second.
class Progress {
 public:
  explicit Progress(bool always) : always_(always) {}
  void Step(const std::string& stage, size_t done, size_t total) {
    const auto now = Clock::now();
    if (!always_ && now - start_ < std::chrono::seconds(2)) return;
    if (!always_ && now - last_ < std::chrono::seconds(1) && done != total) return;
    last_ = now;
    std::cerr << "kelvary check: " << stage << " " << done << " of " << total << "\n";
  }

 private:
  using Clock = std::chrono::steady_clock;
  bool always_;
  Clock::time_point start_ = Clock::now();
  Clock::time_point last_{};
};

// Opens statement on source and reads at most one row; the failure reason,
// or "" when it opened.
std::string TryOpen(InfoLink& link, ProjectDataSources source, const std::string& statement) {
  MessageCatcher catcher;
  auto rs = std::make_shared<Recordset>();
  rs->MaxRecords(1);
  link.FillRecordSet(source, rs, statement, adOpenForwardOnly, adLockReadOnly);
  link.SafelyCloseRecordSet(rs);
  const auto messages = catcher.Take();
  return messages.empty() ? "" : LastLine(messages.front());
}

struct Walk {
  InfoLink& link;
  Progress& progress;
  std::vector<Finding> findings;
  int links = 0, multis = 0, queries = 0, templates = 0, tables = 0;

  void Problem(const std::string& where, const std::string& detail) {
    findings.push_back({"problem", where, detail});
  }

  void SearchLinks() {
    const auto ids = ReadIds(link, "Select ID From FillNSearchLinks Where ID <> 0 Order By ID");
    for (size_t i = 0; i < ids.size(); ++i) {
      progress.Step("search links", i + 1, ids.size());
      ++links;
      const std::string where = "search link " + std::to_string(ids[i]);
      MessageCatcher catcher;
      std::string display, value, table_name, sql, caption, secondary;
      int32_t table = 0;
      ProjectDataSources source = pdsRawData;
      bool many = false;
      int16_t screen = 0;
      link.GetSearchLinkDetails(ids[i], display, value, table, table_name, source, sql, caption,
                                &many, &screen, &secondary);
      if (!catcher.Take().empty()) {
        // The cache holds the links whose table is in DataTables; a link
        // built on its own statement has none.
        const Variant own =
            link.GetCorrespondingValue(ids[i], "FillNSearchLinks", "SQLStmt", "ID", pdssystem, "");
        const Variant table_id = link.GetCorrespondingValue(ids[i], "FillNSearchLinks",
                                                            "SearchTable", "ID", pdssystem, "");
        if (CLng(table_id.IsEmpty() || table_id.IsNull() ? Variant(0) : table_id) <= 0 &&
            !TextOf(own.IsEmpty() ? Variant("") : own).empty()) {
          if (auto why = TryOpen(link, pdsmaindata, TextOf(own)); !why.empty()) {
            Problem(where, "its statement does not open: " + why);
          }
        } else {
          Problem(where, "its table (DataTables ID " + TextOf(table_id) + ") is not defined");
        }
        continue;
      }
      // Table and columns: the look-up a screen makes for a description.
      if (table > 0) {
        MessageCatcher lookups;
        link.GetDescriptionFromCode(
            0, table_name, display, value, source, "", std::nullopt,
            secondary.empty() ? std::nullopt : std::optional<std::string>(secondary));
        const auto messages = lookups.Take();
        if (!messages.empty()) {
          Problem(where, "its table " + table_name +
                             " or columns do not open: " + LastLine(messages.front()));
          continue;
        }
      }
      if (auto why = TryOpen(link, source, sql); !why.empty()) {
        Problem(where, "its statement does not open: " + why);
      }
    }
  }

  void MultiSelects() {
    const auto ids = ReadIds(link, "Select ID From MultiSelects Order By ID");
    for (size_t i = 0; i < ids.size(); ++i) {
      progress.Step("multi-selects", i + 1, ids.size());
      ++multis;
      const std::string where = "multi-select " + std::to_string(ids[i]);
      MessageCatcher catcher;
      std::string description_table, sql, display, value;
      int32_t values_link = 0;
      const std::string store =
          link.SupplyMultiListdata(ids[i], description_table, sql, display, value, &values_link);
      if (store.empty() || !catcher.Take().empty()) {
        Problem(where,
                "its links or tables are not defined (parent link, values link or store "
                "table missing from the configuration)");
        continue;
      }
      // The chosen values of a record: the store and description tables.
      link.GetMultiString(ids[i], 0);
      if (auto messages = catcher.Take(); !messages.empty()) {
        Problem(where, "its tables " + store + " and " + description_table +
                           " do not open: " + LastLine(messages.front()));
        continue;
      }
      if (auto why = TryOpen(link, pdsmaindata, sql); !why.empty()) {
        Problem(where, "its values' statement does not open: " + why);
      }
    }
  }

  // One build of a query: "" when it built and opened.
  std::string BuildAndOpen(int32_t query_id, int32_t template_id) {
    try {
      QueryRequest request;
      request.query_id = query_id;
      request.template_id = template_id;
      PreparedQuery prepared = PrepareQuery(link, request);
      if (!prepared.notes.empty()) return prepared.notes.front();
      QueryInterpretor& qi = *prepared.qi;
      MessageCatcher catcher;
      qi.EncodeSQLStmt();
      if (!Opens(qi.QueryBuildMethod)) return "";
      auto rs = std::make_shared<Recordset>();
      rs->MaxRecords(1);
      qi.AssignRecordSet(rs);
      link.SafelyCloseRecordSet(rs);
      const auto messages = catcher.Take();
      return messages.empty() ? "" : "does not open: " + LastLine(messages.front());
    } catch (const CommandError& e) {
      return e.what();
    } catch (const Error& e) {
      return "does not build: " + OneLine(e.Description());
    }
  }

  void Queries() {
    const auto stored = ListStoredQueries(link);
    for (size_t i = 0; i < stored.size(); ++i) {
      progress.Step("stored queries", i + 1, stored.size());
      const StoredQuery& query = stored[i];
      ++queries;
      const std::string where = "query " + std::to_string(query.id) + " (" + query.name + ")";
      if (!query.notes.empty()) {
        Problem(where, "does not load: " + query.notes.front());
        continue;
      }
      if (auto why = BuildAndOpen(query.id, 0); !why.empty()) {
        Problem(where, why);
        continue;
      }
      for (const auto& [template_id, description] : query.templates) {
        ++templates;
        if (auto why = BuildAndOpen(query.id, template_id); !why.empty()) {
          Problem(where + ", template " + std::to_string(template_id), why);
        }
      }
    }
  }

  void DataTables() {
    const auto ids = ReadIds(link, "Select ID From DataTables Where ID > 0 Order By ID");
    for (size_t i = 0; i < ids.size(); ++i) {
      progress.Step("data tables", i + 1, ids.size());
      ++tables;
      const int32_t id = ids[i];
      const std::string name =
          TextOf(link.GetCorrespondingValue(id, "DataTables", "ValuesTable", "ID", pdssystem, ""));
      const std::string where = "data table " + std::to_string(id) + " (" + name + ")";
      if (name.empty()) {
        Problem(where, "names no table (ValuesTable is empty)");
        continue;
      }
      const Variant location_value =
          link.GetCorrespondingValue(id, "DataTables", "TableLocation", "ID", pdssystem, "");
      const int32_t location = location_value.IsNull() ? 0 : CLng(location_value);
      if (location != pdsmaindata && location != pdssystem) {
        Problem(where, "its TableLocation " + std::to_string(location) +
                           " is neither 1 (main database) nor 2 (system database)");
        continue;
      }
      std::string fields;
      {
        MessageCatcher catcher;
        std::shared_ptr<Recordset> rs;
        if (link.FillRecordSet(pdssystem, rs,
                               "Select FieldName From DataTableFields Where DataTableID = " +
                                   std::to_string(id) + " Order By ID",
                               adOpenForwardOnly, adLockReadOnly)) {
          for (; !rs->Eof(); rs->MoveNext())
            fields += (fields.empty() ? "" : ", ") + TextOf(rs->Fields(0).Value());
        }
        link.SafelyCloseRecordSet(rs);
      }
      const std::string statement =
          "Select " + (fields.empty() ? std::string("*") : fields) + " From " + name;
      if (auto why = TryOpen(link, static_cast<ProjectDataSources>(location), statement);
          !why.empty()) {
        Problem(where, "does not open in the " +
                           std::string(location == pdsmaindata ? "main" : "system") +
                           " database with its fields: " + why);
        continue;
      }
      const Variant mark =
          link.GetCorrespondingValue(id, "DataTables", "FirstSampleDataID", "ID", pdssystem, "");
      if (!mark.IsNull() && !mark.IsEmpty() && CLng(mark) > 0) {
        findings.push_back(
            {"note", where,
             "holds sample data from ID " + TextOf(mark) + " (removed by DeleteSampleData)"});
      }
    }
  }
};

}  // namespace

int CheckCommand(const Arguments& args, Output& out) {
  const Sources sources = ReadSources(args);
  InfoLink link;
  Connect(link, sources, Access::kReadOnly);
  Progress progress(args.Has("--progress"));
  Walk walk{link, progress, {}};
  walk.SearchLinks();
  walk.MultiSelects();
  walk.Queries();
  walk.DataTables();

  int problems = 0;
  for (const auto& f : walk.findings)
    problems += f.kind == "problem" ? 1 : 0;
  auto count = [](int n, const std::string& one, const std::string& many) {
    return std::to_string(n) + " " + (n == 1 ? one : many);
  };
  const std::string summary =
      count(walk.links, "search link", "search links") + ", " +
      count(walk.multis, "multi-select", "multi-selects") + ", " +
      count(walk.queries, "stored query", "stored queries") + " with " +
      count(walk.templates, "template", "templates") + ", " +
      count(walk.tables, "data table", "data tables") + " checked in the " +
      DialectName(sources.dialect) +
      " dialect: " + (problems == 0 ? "no problems" : count(problems, "problem", "problems"));

  if (out.format() == Format::kTable) {
    for (const auto& f : walk.findings) {
      out.stream() << (f.kind == "note" ? "note: " : "") << f.where << ": " << f.detail << "\n";
    }
    out.stream() << summary << "\n";
  } else {
    Document document;
    if (out.format() == Format::kJson) {
      document.header.push_back({"summary", Variant(summary)});
      document.header.push_back({"problems", Variant(problems)});
    }
    Rows rows;
    rows.columns = {"Kind", "Where", "Detail"};
    for (const auto& f : walk.findings)
      rows.rows.push_back({Variant(f.kind), Variant(f.where), Variant(f.detail)});
    document.sections.push_back({"findings", std::move(rows)});
    out.Print(document);
  }
  return problems == 0 ? 0 : 1;
}

}  // namespace kelvary::cli
