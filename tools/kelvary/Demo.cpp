#include "Demo.h"

#include <filesystem>
#include <functional>
#include <memory>

#include "QueryCommand.h"
#include "Session.h"
#include "TablePrinter.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/service/InfoLink.h"

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

void LookUp(std::ostream& out, const std::string& call, const std::string& result,
            const std::string& note) {
  out << "  " << call << " -> \"" << result << "\"   " << note << "\n";
}

}  // namespace

int DemoCommand(const std::vector<std::string>& args, std::ostream& out) {
  std::string folder = "kelvary-demo";
  std::string data_dir = DefaultDataDir();
  bool have_folder = false;
  for (size_t i = 0; i < args.size(); ++i) {
    if (args[i] == "--data") {
      if (i + 1 >= args.size()) throw CommandError("--data needs a folder");
      data_dir = args[++i];
    } else if (!have_folder && !args[i].empty() && args[i][0] != '-') {
      folder = args[i];
      have_folder = true;
    } else {
      throw CommandError("unknown argument " + args[i] + " (see kelvary help)");
    }
  }

  const DemoFiles files = BuildDemoDatabases(folder, data_dir);
  InfoLink link;
  link.CurrentUserSessionID = 1;  // the demo's session: its logout is stamped at the end
  Connect(link, files.main, files.system);

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
    RunStoredQuery(link, request, out);
  });

  Step(out, 2, "A stored query nested three deep, with sibling levels, for one patient", [&] {
    QueryRequest request;
    request.query_id = 5;
    request.record = QueryRequest::Record{1, 1, 101, ""};
    RunStoredQuery(link, request, out);
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
    RunStoredQuery(link, request, out);
  });

  Step(out, 5, "A stored-text query: a restriction spliced in at the level's marker", [&] {
    QueryRequest request;
    request.query_id = 6;
    request.wheres.emplace_back(1, "Cities.ID = 13");
    request.max_rows = 8;
    RunStoredQuery(link, request, out);
  });

  out << "\nTry: kelvary query --system " << files.system << " --main " << files.main
      << " --query 4\n";
  return 0;
}

}  // namespace kelvary::cli
