// practice_host: what a practice application does with the library, in a
// page: show the system's messages its own way, listen to record actions,
// connect, look a value up, run a stored query with a template, and make a
// new key.
//
//   practice_host SYSTEM MAIN     (SQLite files or ODBC data-source names;
//                                  kelvary demo DIR makes a pair)
#include <iostream>
#include <memory>

#include "kelvary/platform/Messages.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/query/QueryInterpretor.h"
#include "kelvary/service/InfoLink.h"

using namespace kelvary;

// The host writes the audit row when a record action is announced.
class AuditTrail : public InfoLinkEvents {
 public:
  void AfterPostActionHistory(ProjectDataSources, DBRecordActionTypes action, int32_t,
                              const std::string& table, int32_t user, int32_t key, int32_t,
                              const std::string&, const std::string&) override {
    std::cout << "audit: action " << action << " on " << table << " " << key << " by user " << user
              << "\n";
  }
};

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: practice_host SYSTEM MAIN\n";
    return 2;
  }
  // A desktop host shows a message box; this one prints.
  SetMessageHandler([](const std::string& text, MsgBoxStyle buttons, const std::string&) {
    std::cout << "[message] " << text << "\n";
    return buttons == vbYesNo ? vbNo : vbOK;
  });

  InfoLink link;
  link.MainDBType = sdbAccess;  // sdbOracle for PostgreSQL
  link.CurrentUserID = 1;
  link.Advise(std::make_shared<AuditTrail>());
  std::shared_ptr<Connection> main_xion, system_xion;  // empty: ConnectDefault opens them
  if (!link.ConnectDefault(main_xion, system_xion, argv[2], argv[1])) {
    std::cerr << "cannot connect\n";
    return 1;
  }

  std::cout << "city 7 is " << link.GetDescription(1, 7) << "\n";
  std::cout << "patient 19's allergies: " << link.GetMultiString(1, 19) << "\n";

  QueryInterpretor query;
  query.InitSettings("", 1, 1, false);  // query 1 with its template 1
  for (const auto& group : *query.CurrentConditions()) {
    if (group->ParentGroupId == 0) {
      for (const auto& level : *query.ShapeNests()) {
        if (level->ID == group->NestedBinding) {
          level->AssignedWhereClause = query.GetConditionString(group);
        }
      }
    }
  }
  std::shared_ptr<Recordset> rows;
  if (query.AssignRecordSet(rows)) {
    for (; !rows->Eof(); rows->MoveNext()) {
      std::cout << "  " << TextOf(rows->Fields("LastName").Value()) << ", "
                << TextOf(rows->Fields("FirstName").Value()) << "\n";
    }
  }
  link.SafelyCloseRecordSet(rows);

  std::cout << "next patient ID: " << link.GenerateNumericCode(pdsmaindata, "patients", "ID")
            << "\n";
  return 0;
}
