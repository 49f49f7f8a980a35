// The data-access objects as a host script drives them by name: a command
// with parameters, rows in bulk, batch updating and Seek.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kelvary/automation/Classes.h"
#include "kelvary/automation/Dispatch.h"
#include "support/TestDatabase.h"

namespace kelvary::automation {
namespace {

using Obj = std::shared_ptr<DispatchObject>;

class DataAccessByName : public ::testing::Test {
 protected:
  void SetUp() override {
    db_.Run(
        "CREATE TABLE patients (ID INTEGER PRIMARY KEY, LastName TEXT);"
        "INSERT INTO patients VALUES (1, 'Smith'), (2, 'Jones'), (3, 'Brown'), (4, 'Lee');");
    connection_ = CreateObject("Kelvary.Connection");
    ASSERT_NE(connection_, nullptr);
    Call(*connection_, "Open", {Variant(db_.ConnectionString())});
  }
  Obj Open(const std::string& sql, LockTypeEnum lock = adLockReadOnly) {
    Obj rs = CreateObject("Kelvary.Recordset");
    Call(*rs, "Open",
         {Variant(sql), Variant(connection_), Variant(int32_t{adOpenStatic}),
          Variant(int32_t{lock})});
    return rs;
  }
  static std::string Ids(DispatchObject& rs) {
    std::string ids;
    if (CLng(Get(rs, "RecordCount")) == 0) return ids;
    for (Call(rs, "MoveFirst"); !CBool(Get(rs, "EOF")); Call(rs, "MoveNext"))
      ids += (ids.empty() ? "" : ",") + CStr(ValueOf(Get(rs, "Fields", {Variant("ID")})));
    return ids;
  }
  kelvary::testing::TestDatabase db_;
  Obj connection_;
};

TEST_F(DataAccessByName, ACommandRunsWithItsParametersNeverInTheText) {
  Obj command = CreateObject("Kelvary.Command");
  ASSERT_NE(command, nullptr);
  Set(*command, "ActiveConnection", Variant(connection_));
  Let(*command, "CommandText", "SELECT ID FROM patients WHERE ID > ? ORDER BY ID");
  Obj parameter = AsDispatch(Call(*command, "CreateParameter",
                                  {Variant("min"), Variant(int32_t{adInteger}), Variant(int32_t{1}),
                                   Variant(int32_t{0}), Variant("2")}));
  ASSERT_NE(parameter, nullptr);
  Obj parameters = AsDispatch(Get(*command, "Parameters"));
  Call(*parameters, "Append", {Variant(parameter)});
  EXPECT_EQ(Get(*parameters, "Count"), Variant(int32_t{1}));
  EXPECT_EQ(AsDispatch(Get(*parameters, "Item", {Variant("MIN")})), parameter);
  EXPECT_EQ(AsDispatch(Get(*command, "Parameters")), parameters);  // one collection

  EXPECT_EQ(Ids(*AsDispatch(Call(*command, "Execute"))), "3,4");
  Let(*parameter, "Value", "3' OR 1=1 --");  // a value, never text of the statement
  EXPECT_EQ(Ids(*AsDispatch(Call(*command, "Execute"))), "");
  // A value given to Execute takes the marker's place.
  EXPECT_EQ(Ids(*AsDispatch(Call(*command, "Execute", {Variant(), Variant(int32_t{1})}))), "2,3,4");
  Call(*parameters, "Delete", {Variant(int32_t{0})});
  EXPECT_EQ(Get(*parameters, "Count"), Variant(int32_t{0}));
}

TEST_F(DataAccessByName, GetRowsHandsBackATwoDimensionalArray) {
  Obj rs = Open("SELECT ID, LastName FROM patients ORDER BY ID");
  Call(*rs, "MoveNext");
  const Variant rows = Call(*rs, "GetRows", {Variant(int32_t{2})});
  const auto array = rows.ObjectAs<ValueArray>();
  ASSERT_NE(array, nullptr);
  EXPECT_EQ(array->Extent(0), 2u);  // fields
  EXPECT_EQ(array->Extent(1), 2u);  // rows
  EXPECT_EQ(array->At(0, 0), Variant(int32_t{2}));
  EXPECT_EQ(array->At(1, 1), Variant("Brown"));
  const auto names =
      Call(*rs, "GetRows",
           {Variant(int32_t{-1}), Variant(int32_t{adBookmarkFirst}), Variant("LastName")})
          .ObjectAs<ValueArray>();
  ASSERT_NE(names, nullptr);
  EXPECT_EQ(names->Extent(0), 1u);
  EXPECT_EQ(names->Extent(1), 4u);
  EXPECT_EQ(names->At(0, 3), Variant("Lee"));
}

// A host's Array(...) reaches a member as a one-dimensional ValueArray.
Variant List(std::vector<Variant> items) {
  return Variant(std::make_shared<ValueArray>(items));
}

TEST_F(DataAccessByName, ListsOfFieldsAndValuesAreTakenAsArrays) {
  Obj rs = Open("SELECT ID, LastName FROM patients ORDER BY ID", adLockOptimistic);
  Call(*rs, "AddNew", {List({Variant("ID"), Variant(int32_t{1})}), List({5, Variant("Nolan")})});
  Call(*rs, "MoveFirst");
  Call(*rs, "Update", {List({Variant("LastName")}), List({Variant("Smyth")})});
  EXPECT_EQ(Ids(*Open("SELECT ID FROM patients WHERE LastName IN ('Nolan', 'Smyth') ORDER BY ID")),
            "1,5");
  // GetRows by names and ordinals; Seek by an array of one key; Execute with
  // an array of the markers' values.
  const auto rows = Call(*rs, "GetRows",
                         {Variant(int32_t{2}), Variant(int32_t{adBookmarkFirst}),
                          List({Variant(int32_t{1}), Variant("ID")})})
                        .ObjectAs<ValueArray>();
  ASSERT_NE(rows, nullptr);
  EXPECT_EQ(rows->Extent(0), 2u);
  EXPECT_EQ(rows->At(0, 0), Variant("Smyth"));
  EXPECT_EQ(rows->At(1, 1), Variant(int32_t{2}));
  Let(*rs, "Index", "ID");
  Call(*rs, "Seek", {List({Variant(int32_t{4})})});
  EXPECT_EQ(ValueOf(Get(*rs, "Fields", {Variant("LastName")})), Variant("Lee"));
  Obj command = CreateObject("Kelvary.Command");
  Set(*command, "ActiveConnection", Variant(connection_));
  Let(*command, "CommandText", "SELECT ID FROM patients WHERE ID BETWEEN ? AND ? ORDER BY ID");
  EXPECT_EQ(Ids(*AsDispatch(Call(*command, "Execute",
                                 {Variant(), List({Variant(int32_t{2}), Variant(int32_t{3})})}))),
            "2,3");
}

TEST_F(DataAccessByName, ListsThatCannotBeReadAreRefusedAndNothingIsWritten) {
  Obj rs = Open("SELECT ID, LastName FROM patients ORDER BY ID", adLockOptimistic);
  const Variant table(std::make_shared<ValueArray>(
      std::vector<std::vector<Variant>>{{Variant("ID")}, {Variant("LastName")}}));
  const auto failure = [&](const char* member, const Variant& fields, const Variant& values) {
    try {
      Call(*rs, member, {fields, values});
    } catch (const AutomationError& e) {
      return e.Number();
    }
    return int32_t{0};
  };
  EXPECT_EQ(failure("Update", table, List({Variant("x"), Variant("y")})), kErrTypeMismatch);
  EXPECT_NE(failure("Update", List({Variant("LastName")}), List({})), 0);  // counts differ
  EXPECT_NE(failure("Update", List({Variant(int32_t{7})}), List({Variant("x")})), 0);
  // Everywhere else an array is no value.
  EXPECT_EQ(failure("Move", List({Variant(int32_t{1})}), Variant()), kErrTypeMismatch);
  EXPECT_EQ(failure("Find", List({Variant("ID = 1")}), Variant()), kErrTypeMismatch);
  Call(*rs, "CancelUpdate");
  EXPECT_EQ(Ids(*Open("SELECT ID FROM patients WHERE LastName = 'Smith'")), "1");
}

TEST_F(DataAccessByName, BatchUpdatingAndSeekAnswerByName) {
  Obj rs = Open("SELECT ID, LastName FROM patients ORDER BY ID", adLockBatchOptimistic);
  Let(*rs, "Index", "ID");
  Call(*rs, "Seek", {Variant(int32_t{3})});
  EXPECT_EQ(ValueOf(Get(*rs, "Fields", {Variant("LastName")})), Variant("Brown"));
  Let(*AsDispatch(Get(*rs, "Fields", {Variant("LastName")})), "Value", "Browne");
  Call(*rs, "Update");
  EXPECT_EQ(Get(*rs, "Status"), Variant(int32_t{adRecModified}));
  Call(*rs, "CancelBatch");
  EXPECT_EQ(ValueOf(Get(*rs, "Fields", {Variant("LastName")})), Variant("Brown"));
  Let(*AsDispatch(Get(*rs, "Fields", {Variant("LastName")})), "Value", "Browne");
  Call(*rs, "UpdateBatch");
  EXPECT_EQ(Get(*rs, "Status"), Variant(int32_t{adRecOK}));
  Obj check = Open("SELECT LastName FROM patients WHERE ID = 3");
  EXPECT_EQ(ValueOf(Get(*check, "Fields", {Variant(int32_t{0})})), Variant("Browne"));
}

}  // namespace
}  // namespace kelvary::automation
