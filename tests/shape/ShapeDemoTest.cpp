// The demo practice's multi-level queries, opened end to end as the host
// opens them: a service object connected by ConnectDefault to the embedded
// databases, the query interpreter's SHAPE statement, and the hierarchical
// recordset it gives, checked row by row against the tables.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "ShapeTree.h"
#include "kelvary/platform/Connection.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/query/QueryInterpretor.h"
#include "kelvary/service/InfoLink.h"
#include "support/TestDatabase.h"

namespace kelvary::testing {
namespace {

class ShapeDemo : public ::testing::Test {
 protected:
  ShapeDemo() : system_("system.db"), main_("main.db") {
    system_.RunFile("system_schema.sql");
    system_.RunFile("demo_system.sql");
    main_.RunFile("main_schema.sql");
    main_.RunFile("demo_main.sql");
    std::shared_ptr<Connection> main_xion, system_xion;
    connected_ = link_.ConnectDefault(main_xion, system_xion, main_.Path(), system_.Path());
  }

  // Opened: query id as AssignRecordSet opens it, restricted to patient 1
  // when asked.
  std::shared_ptr<Recordset> Opened(int32_t query_id, bool one_patient = false) {
    QueryInterpretor qi;
    qi.InitSettings("", query_id, 0, false);
    if (one_patient) qi.AssignIDBasedWhereClause(1, 1, 0, "ID");
    std::shared_ptr<Recordset> rs;
    EXPECT_TRUE(qi.AssignRecordSet(rs)) << qi.FinalSQLStmt;
    statement_ = qi.FinalSQLStmt;
    return rs;
  }

  int32_t Count(const std::string& sql) {
    return CLng(main_.Connection()->Execute(sql)->Fields(0).Value());
  }

  // Related: checks that the rows of chapter under every parent row carry
  // that row's parent_key in child_key, calls each for every chapter, and
  // returns the rows of all chapters.
  static int32_t Related(Recordset& parent, const char* parent_key, const char* chapter,
                         const char* child_key,
                         const std::function<void(Recordset&)>& each = nullptr) {
    int32_t rows = 0;
    if (parent.RecordCount() == 0) return 0;
    for (parent.MoveFirst(); !parent.Eof(); parent.MoveNext()) {
      const Variant key = parent.Fields(parent_key).Value();
      auto child = parent.Fields(chapter).Value().ObjectAs<Recordset>();
      EXPECT_TRUE(child);
      if (!child) continue;
      rows += child->RecordCount();
      if (child->RecordCount() == 0) continue;
      for (child->MoveFirst(); !child->Eof(); child->MoveNext()) {
        EXPECT_EQ(CompareValues(child->Fields(child_key).Value(), key), 0) << chapter;
      }
      if (each) each(*child);
    }
    return rows;
  }

  TestDatabase system_;
  TestDatabase main_;
  InfoLink link_;
  bool connected_ = false;
  std::string statement_;
};

TEST_F(ShapeDemo, EveryChildRowReachesItsParentAtEveryLevel) {
  ASSERT_TRUE(connected_);
  auto two = Opened(3);
  EXPECT_EQ(two->RecordCount(), Count("Select Count(*) From patients"));
  EXPECT_EQ(Related(*two, "ID", "Visits", "PatientID"), Count("Select Count(*) From visits"));

  // Three levels in a chain.
  int32_t invoices = 0;
  EXPECT_EQ(Related(*Opened(4), "ID", "Visits", "PatientID",
                    [&](Recordset& v) { invoices += Related(v, "ID", "Invoices", "VisitID"); }),
            Count("Select Count(*) From visits"));
  EXPECT_EQ(invoices, Count("Select Count(*) From invoices"));

  // Two children of one patient, the second with a child of its own; the
  // same statement through FillRecordSet.
  auto account = Opened(5, true);
  ASSERT_EQ(account->RecordCount(), 1);
  EXPECT_EQ(Related(*account, "ID", "Visits", "PatientID"),
            Count("Select Count(*) From visits Where PatientID = 1"));
  int32_t items = 0;
  EXPECT_EQ(Related(*account, "ID", "Invoices", "PatientID",
                    [&](Recordset& i) { items += Related(i, "ID", "Items", "InvoiceID"); }),
            Count("Select Count(*) From invoices Where PatientID = 1"));
  EXPECT_EQ(items, Count("Select Count(*) From invoiceitems i, invoices v Where i.InvoiceID = "
                         "v.ID And v.PatientID = 1"));
  EXPECT_GT(items, 0);
  std::shared_ptr<Recordset> again;
  ASSERT_TRUE(link_.FillRecordSet(pdsmaindata, again, statement_, adOpenKeyset, adLockReadOnly));
  EXPECT_EQ(ShapeTree(*again), ShapeTree(*account));
}

}  // namespace
}  // namespace kelvary::testing
