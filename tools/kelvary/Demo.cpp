#include "Demo.h"

#include <filesystem>
#include <functional>
#include <memory>

#include "QueryCommand.h"
#include "Session.h"
#include "TablePrinter.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/service/InfoLink.h"
#include "kelvary/service/InfoLinkEvents.h"

namespace kelvary::cli {

namespace {

int32_t CountRows(InfoLink& link, ProjectDataSources source, const std::string& table) {
  return CLng(
      link.GetCorrespondingValue(0, "", "N", "", source, "Select Count(*) AS N From " + table));
}

void Step(std::ostream& out, int number, const std::string& title,
          const std::function<void()>& body) {
  out << "\n== " << number << ". " << title << " ==\n\n";
  try {
    body();
  } catch (const CommandError& e) {
    // The walk goes on: a step that cannot run says why.
    out << "  (" << e.what() << ")\n";
  }
}

// The host's side of the record actions: here it only tells what it hears.
class PrintingSink : public InfoLinkEvents {
 public:
  explicit PrintingSink(std::ostream& out) : out_(out) {}
  void BeforePostActionHistory(ProjectDataSources, DBRecordActionTypes action, int32_t table_id,
                               const std::string& table, int32_t user, int32_t key1, int32_t,
                               const std::string& field1, const std::string&,
                               bool& bContinue) override {
    out_ << "  event BeforePostActionHistory: action " << action << " on " << table << " (table "
         << table_id << "), " << field1 << " = " << key1 << ", user " << user << ", bContinue "
         << (bContinue ? "True" : "False") << "\n";
  }
  void AfterPostActionHistory(ProjectDataSources, DBRecordActionTypes action, int32_t,
                              const std::string& table, int32_t, int32_t key1, int32_t,
                              const std::string& field1, const std::string&) override {
    out_ << "  event AfterPostActionHistory: action " << action << " on " << table << ", " << field1
         << " = " << key1 << " (the host writes its audit row here)\n";
  }

 private:
  std::ostream& out_;
};

void LookUp(std::ostream& out, const std::string& call, const std::string& result,
            const std::string& note) {
  out << "  " << call << " -> \"" << result << "\"   " << note << "\n";
}

}  // namespace

int DemoCommand(const Arguments& args, Output& output) {
  const std::string folder = args.Positional().empty() ? "kelvary-demo" : args.Positional()[0];
  const std::string data_dir = args.Get("--data").value_or(DefaultDataDir());
  std::ostream& out = output.stream();

  const DemoFiles files = BuildDemoDatabases(folder, data_dir);
  InfoLink link;
  link.CurrentUserSessionID = 1;  // the demo's session: its logout is stamped at the end
  Connect(link, Sources{files.main, files.system, sdbAccess}, Access::kReadWrite);

  out << "Kelvary demo practice in " << std::filesystem::absolute(folder).string() << "\n"
      << "  system database " << files.system << ": " << CountRows(link, pdssystem, "DataTables")
      << " data tables, " << CountRows(link, pdssystem, "FillNSearchLinks") << " search links, "
      << CountRows(link, pdssystem, "Queries") << " stored queries\n"
      << "  main database   " << files.main << ": " << CountRows(link, pdsmaindata, "patients")
      << " patients, " << CountRows(link, pdsmaindata, "visits") << " visits, "
      << CountRows(link, pdsmaindata, "invoices") << " invoices\n";

  Step(out, 1, "A stored query of one level, grouped, with aggregates", [&] {
    QueryRequest request;
    request.query_id = 2;
    RunStoredQuery(link, request, output);
  });

  Step(out, 2, "A stored query nested three deep, with sibling levels, for one patient", [&] {
    QueryRequest request;
    request.query_id = 5;
    request.record = QueryRequest::Record{1, 1, 101, ""};
    RunStoredQuery(link, request, output);
  });

  Step(out, 3, "Look-ups through search links and a multi-select", [&] {
    MessageCatcher catcher;
    LookUp(out, "GetDescription(1, 7)", link.GetDescription(1, 7),
           "search link 1 (cities): city 7");
    LookUp(out, "GetDescription(2, 46)", link.GetDescription(2, 46),
           "search link 2 (patients): patient 46");
    LookUp(out, "GetDescription(3, 4)", link.GetDescription(3, 4),
           "search link 3 (doctors, in the system database): user 4");
    LookUp(out, "GetDescriptionFromCode(13, \"Cities\", \"Description\", \"ID\", main)",
           link.GetDescriptionFromCode(13, "Cities", "Description", "ID", pdsmaindata, ""),
           "a look-up by code");
    LookUp(out, "GetMultiString(1, 19)", link.GetMultiString(1, 19),
           "multi-select 1: the allergies of patient 19");
    for (const auto& message : catcher.Take())
      out << "  message: " << OneLine(message) << "\n";
  });

  Step(out, 4, "A query template: parameters, condition text and the rows it selects", [&] {
    QueryRequest request;
    request.query_id = 1;
    request.template_id = 1;
    request.show_parameters = true;
    RunStoredQuery(link, request, output);
  });

  Step(out, 5, "A stored-text query: a restriction spliced in at the level's marker", [&] {
    QueryRequest request;
    request.query_id = 6;
    request.wheres.emplace_back(1, "Cities.ID = 13");
    request.max_rows = 8;
    RunStoredQuery(link, request, output);
  });

  Step(out, 6, "A new key and a safe delete", [&] {
    MessageCatcher catcher;
    out << "  GenerateNumericCode(main, \"patients\", \"ID\") -> "
        << link.GenerateNumericCode(pdsmaindata, "patients", "ID") << "   the next patient ID\n";
    link.UseSafeDelete = true;  // mark rows instead of removing them
    const std::string showable = link.GetShowableRecordClause("patients", false);
    out << "  GetShowableRecordClause(\"patients\", False) -> \"" << showable << "\"\n"
        << "  showable patients: " << CountRows(link, pdsmaindata, "patients Where " + showable)
        << "\n";
    auto sink = std::make_shared<PrintingSink>(out);
    link.Advise(sink);
    std::shared_ptr<Recordset> none;
    link.SafeDeleteRecord(pdsmaindata, 1, "patients", 2, 299, 0, "ID", "", none);
    link.Unadvise(sink);
    out << "  SafeDeleteRecord(main, 1, \"patients\", user 2, ID 299): the row is kept, with "
        << "RecordStatus "
        << CellText(
               link.GetCorrespondingValue(299, "patients", "RecordStatus", "ID", pdsmaindata, ""))
        << "; showable patients: " << CountRows(link, pdsmaindata, "patients Where " + showable)
        << "\n";
    for (const auto& message : catcher.Take())
      out << "  message: " << OneLine(message) << "\n";
  });

  out << "\nTry: kelvary query --system " << files.system << " --main " << files.main
      << " --query 4\n";
  return 0;
}

}  // namespace kelvary::cli
