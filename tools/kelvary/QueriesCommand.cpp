#include "QueriesCommand.h"

#include "QueryCommand.h"
#include "Session.h"
#include "StoredQueries.h"

namespace kelvary::cli {

int QueriesCommand(const Arguments& args, Output& out) {
  const Sources sources = ReadSources(args);
  InfoLink link;
  Connect(link, sources, Access::kReadOnly);

  Document document;
  Rows rows;
  rows.columns = {"Query", "Template", "Name", "BuildMethod", "Method", "Levels"};
  for (const auto& query : ListStoredQueries(link)) {
    rows.rows.push_back({Variant(query.id), Variant(), Variant(query.name),
                         Variant(static_cast<int32_t>(query.build_method)),
                         Variant(BuildMethodName(query.build_method)), Variant(query.levels)});
    for (const auto& [id, name] : query.templates) {
      rows.rows.push_back(
          {Variant(query.id), Variant(id), Variant(name), Variant(), Variant(), Variant()});
    }
    for (const auto& note : query.notes)
      document.notes.push_back("query " + std::to_string(query.id) + ": " + note);
  }
  document.sections.push_back({"queries", std::move(rows)});
  out.Print(document);
  return 0;
}

}  // namespace kelvary::cli
