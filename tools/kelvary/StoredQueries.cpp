#include "StoredQueries.h"

#include <memory>

#include "Session.h"

namespace kelvary::cli {

std::vector<int32_t> ReadIds(InfoLink& link, const std::string& statement) {
  MessageCatcher catcher;
  std::vector<int32_t> ids;
  std::shared_ptr<Recordset> rs;
  if (link.FillRecordSet(pdssystem, rs, statement, adOpenForwardOnly, adLockReadOnly)) {
    for (; !rs->Eof(); rs->MoveNext())
      ids.push_back(CLng(rs->Fields(0).Value()));
  }
  link.SafelyCloseRecordSet(rs);
  catcher.ThrowIfAny();
  return ids;
}

std::vector<StoredQuery> ListStoredQueries(InfoLink& link) {
  std::vector<StoredQuery> queries;
  for (const int32_t id : ReadIds(link, "Select ID From Queries Order By ID")) {
    MessageCatcher catcher;
    StoredQuery query;
    query.id = id;
    QueryInterpretor qi;
    qi.InitSettings("", id, 0, false);
    query.build_method = qi.QueryBuildMethod;
    query.levels =
        qi.QueryBuildMethod == qbmDigitalBuild ? qi.ShapeNests()->Count() : qi.NumNestedLevels;
    query.name = link.GetDescriptionFromCode(id, "Queries", "Description", "ID", pdssystem, "");
    const std::string table =
        qi.QueryBuildMethod == qbmXtalReportQuery ? "XQueryTemplates" : "QueryTemplates";
    std::shared_ptr<Recordset> rs;
    if (link.FillRecordSet(pdssystem, rs,
                           "Select ID, Description From " + table +
                               " Where QueryID = " + std::to_string(id) + " Order By ID",
                           adOpenForwardOnly, adLockReadOnly)) {
      for (; !rs->Eof(); rs->MoveNext()) {
        query.templates.emplace_back(CLng(rs->Fields(0).Value()), TextOf(rs->Fields(1).Value()));
      }
    }
    link.SafelyCloseRecordSet(rs);
    for (const auto& message : catcher.Take())
      query.notes.push_back(OneLine(message));
    queries.push_back(std::move(query));
  }
  return queries;
}

}  // namespace kelvary::cli
