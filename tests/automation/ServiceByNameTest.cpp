// The service object and the query interpreter called by member name on the
// demonstration databases: each member gives by name what it gives called
// directly, by-reference arguments come back filled, the host's controls
// are filled, and the member tables leave no member without a case here.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "automation/HostObject.h"
#include "kelvary/automation/Classes.h"
#include "kelvary/automation/Dispatch.h"
#include "kelvary/automation/internal/NativeDispatch.h"
#include "kelvary/query/QueryInterpretor.h"
#include "kelvary/service/InfoLink.h"
#include "support/MessageRecorder.h"
#include "support/RecordingListControl.h"
#include "support/TestDatabase.h"

namespace kelvary::automation {
namespace {

using Obj = std::shared_ptr<DispatchObject>;

Obj ObjectOf(const Variant& v) {
  Obj o = AsDispatch(v);
  EXPECT_NE(o, nullptr) << v;
  return o;
}

Args ArgsOf(std::initializer_list<Variant> values) {
  Args args;
  for (const Variant& v : values)
    args.push_back(Arg{v});
  return args;
}

class ServiceByName : public ::testing::Test {
 protected:
  void SetUp() override {
    main_db_.RunFile("main_schema.sql");
    main_db_.RunFile("demo_main.sql");
    sys_db_.RunFile("system_schema.sql");
    sys_db_.RunFile("demo_system.sql");
    link_ = CreateObject("Kelvary.InfoLink");
    native_ = NativeOf<InfoLink>(link_.get());
    Args connect{Arg::Ref(Connection(main_db_)), Arg::Ref(Connection(sys_db_)), Arg{""}, Arg{""}};
    ASSERT_EQ(CallByName(*link_, "ConnectDefault", kInvokeMethod, connect), Variant(true));
  }
  void TearDown() override { EXPECT_EQ(messages_.Texts(), std::vector<std::string>{}); }

  static Variant Connection(const testing::TestDatabase& db) {
    Obj c = CreateObject("Kelvary.Connection");
    Call(*c, "Open", {db.ConnectionString()});
    return Variant(c);
  }
  Variant By(std::string_view name, Args& args) {
    return CallByName(*link_, name, kInvokeMethod, args);
  }
  Variant By(std::string_view name, Args&& args) { return By(name, args); }

  testing::MessageRecorder messages_;
  testing::TestDatabase main_db_{"main.db"}, sys_db_{"system.db"};
  Obj link_;
  std::shared_ptr<InfoLink> native_;
};

// The members without side effects, by name and directly.
struct SameAsNative {
  std::string name;
  Args args;
  std::function<Variant(InfoLink&)> native;
};

std::vector<SameAsNative> PureCases() {
  const Date day = DateSerial(2023, 11, 5);
  return {
      {"InterpretUserDataLocation", {}, [](InfoLink& l) { return l.InterpretUserDataLocation(); }},
      {"GetSQLEntityName", ArgsOf({"Last Name"}),
       [](InfoLink& l) { return l.GetSQLEntityName("Last Name"); }},
      {"GetInvertedCommaSafeString", ArgsOf({"O'Neil"}),
       [](InfoLink& l) { return l.GetInvertedCommaSafeString("O'Neil"); }},
      {"FormatDateToDBStr", ArgsOf({day}), [=](InfoLink& l) { return l.FormatDateToDBStr(day); }},
      {"CreateCheckForNullStmt", ArgsOf({"Phone"}),
       [](InfoLink& l) { return l.CreateCheckForNullStmt("Phone"); }},
      {"GetNameClause", ArgsOf({"patients", "P", "Name"}),
       [](InfoLink& l) { return l.GetNameClause("patients", "P", "Name"); }},
      {"CreateAlphaClause", ArgsOf({"LastName", int16_t{4}}),
       [](InfoLink& l) { return l.CreateAlphaClause("LastName", 4); }},
      {"GetCombinedPhone", ArgsOf({"555", "777"}),
       [](InfoLink& l) { return l.GetCombinedPhone("555", "777"); }},
      {"GetComparisionClause", ArgsOf({"Age", 2, 4, 0, 3, 9, true, false}),
       [](InfoLink& l) {
         return l.GetComparisionClause("Age", FieldDataTypes(2), cmpBetween, 0, 3, 9, true, false);
       }},
      {"GetBooleanCompareClause", ArgsOf({"Active", 1, true, true}),
       [](InfoLink& l) { return l.GetBooleanCompareClause("Active", cmpEquals, true, true); }},
      {"GetComparisionClauseForDefEqual", ArgsOf({"City", 1, "Westfield", false, false}),
       [](InfoLink& l) {
         return l.GetComparisionClauseForDefEqual("City", GeneralDataTypes(1), "Westfield", false,
                                                  false);
       }},
      {"GetDateSqlFromValues", ArgsOf({"Visit", 1000, day, day}),
       [=](InfoLink& l) {
         return l.GetDateSqlFromValues("Visit", DateRangeSpecs(1000), day, day);
       }},
      {"GetDateSqlFromValues", ArgsOf({"Visit", 1000, day, day, true}),
       [=](InfoLink& l) {
         return l.GetDateSqlFromValues("Visit", DateRangeSpecs(1000), day, day, true);
       }},
      {"GetDescription", ArgsOf({2, 3}), [](InfoLink& l) { return l.GetDescription(2, 3); }},
      {"GetDescription", ArgsOf({2, 3, int16_t{2}}),
       [](InfoLink& l) { return l.GetDescription(2, 3, 2); }},
      {"GetDefinitionTable", ArgsOf({2}), [](InfoLink& l) { return l.GetDefinitionTable(2); }},
      {"GetCoreName", ArgsOf({3, "patients"}),
       [](InfoLink& l) { return l.GetCoreName(3, "patients"); }},
      {"GetDescriptionFromCode", ArgsOf({2, "Cities", "Description", "ID", 1, ""}),
       [](InfoLink& l) {
         return l.GetDescriptionFromCode(2, "Cities", "Description", "ID", pdsmaindata, "");
       }},
      {"GetCorrespondingValue", ArgsOf({2, "Cities", "ParentID", "ID", 1, ""}),
       [](InfoLink& l) {
         return l.GetCorrespondingValue(2, "Cities", "ParentID", "ID", pdsmaindata, "");
       }},
      {"GetCorrespondingValueFromText",
       ArgsOf({"visits", "DataTables", "ID", "ValuesTable", 2, ""}),
       [](InfoLink& l) {
         return l.GetCorrespondingValueFromText("visits", "DataTables", "ID", "ValuesTable",
                                                pdssystem, "");
       }},
      {"GetHierarchicalParentNonZeroLongValue", ArgsOf({7, "Cities", "ParentID", "ID", 1}),
       [](InfoLink& l) {
         return l.GetHierarchicalParentNonZeroLongValue(7, "Cities", "ParentID", "ID", pdsmaindata);
       }},
      {"IsCheckListAttributeEnabled", ArgsOf({1, "PatientAllergies", "ValueID", 2, "SourceID", 1}),
       [](InfoLink& l) {
         return l.IsCheckListAttributeEnabled(pdsmaindata, "PatientAllergies", "ValueID", 2,
                                              "SourceID", 1);
       }},
      {"GetTableIDFromName", ArgsOf({"visits"}),
       [](InfoLink& l) { return l.GetTableIDFromName("visits"); }},
      {"GetMultiString", ArgsOf({1, 3}), [](InfoLink& l) { return l.GetMultiString(1, 3); }},
      {"GetRegNo", ArgsOf({"Ann", "B", "Cole"}),
       [](InfoLink& l) { return l.GetRegNo("Ann", "B", "Cole"); }},
      {"GetKeyFieldSQL", ArgsOf({false, "visits", 3.0, 0.0, "ID", ""}),
       [](InfoLink& l) { return l.GetKeyFieldSQL(false, "visits", 3, 0, "ID", ""); }},
      {"GetShowableRecordClause", ArgsOf({"patients", true}),
       [](InfoLink& l) { return l.GetShowableRecordClause("patients", true); }},
      {"DoesSampleDataExist", {}, [](InfoLink& l) { return l.DoesSampleDataExist(); }},
  };
}

TEST_F(ServiceByName, EachMemberGivesByNameWhatItGivesDirectly) {
  for (const SameAsNative& c : PureCases()) {
    SCOPED_TRACE(c.name);
    const Variant expected = c.native(*native_);
    EXPECT_EQ(By(c.name, Args(c.args)), expected);
    // Any case of the name will do.
    EXPECT_EQ(By(LowerCase(c.name), Args(c.args)), expected);
  }
}

TEST_F(ServiceByName, ByReferenceArgumentsComeBackFilled) {
  // GetSearchLinkDetails: seven by-reference results and three optional ones.
  std::string display, value, table_name, sql, caption, secondary;
  int32_t table = 0;
  ProjectDataSources source = pdsRawData;
  bool many = false;
  int16_t screen = 0;
  const int32_t expected = native_->GetSearchLinkDetails(
      2, display, value, table, table_name, source, sql, caption, &many, &screen, &secondary);
  Args args{Arg{2},          Arg::Ref(""),         Arg::Ref(""), Arg::Ref(0),
            Arg::Ref(""),    Arg::Ref(0),          Arg::Ref(""), Arg::Ref(""),
            Arg::Ref(false), Arg::Ref(int16_t{0}), Arg::Ref("")};
  EXPECT_EQ(By("GetSearchLinkDetails", args), Variant(expected));
  const std::vector<Variant> filled = {display, value,   table, table_name, int32_t{source},
                                       sql,     caption, many,  screen,     secondary};
  for (size_t i = 0; i < filled.size(); ++i)
    EXPECT_EQ(args[i + 1].value, filled[i]) << "argument " << i + 2;
  EXPECT_EQ(args[1].value, Variant("LastName"));
  // The optional ones left out: the others still come back.
  args.resize(8);
  for (size_t i = 1; i < 8; ++i)
    args[i].value = Variant();
  By("GetSearchLinkDetails", args);
  EXPECT_EQ(args[4].value, Variant(table_name));

  // GetSrchlinkControlType: a Variant by reference.
  Variant lots;
  const ControlTypes type = native_->GetSrchlinkControlType(2, lots);
  args = {Arg{2}, Arg::Ref(Variant())};
  EXPECT_EQ(By("GetSrchlinkControlType", args), Variant(int32_t{type}));
  EXPECT_EQ(args[1].value, lots);

  // The multi-select members.
  std::string storage, parent_table;
  const int32_t settings = native_->GetMultiSettings(1, storage, &parent_table);
  args = {Arg{1}, Arg::Ref(""), Arg::Ref("")};
  EXPECT_EQ(By("GetMultiSettings", args), Variant(settings));
  EXPECT_EQ(args[1].value, Variant(storage));
  EXPECT_EQ(args[2].value, Variant(parent_table));

  int32_t search_link = 0;
  const int32_t parent = native_->GetMultiListParentWnd(1, &search_link);
  args = {Arg{1}, Arg::Ref(0)};
  EXPECT_EQ(By("GetMultiListParentWnd", args), Variant(parent));
  EXPECT_EQ(args[1].value, Variant(search_link));

  std::string description_table, sql_text, display_field, value_field;
  int32_t link_id = 0;
  const std::string multi = native_->SupplyMultiListdata(1, description_table, sql_text,
                                                         display_field, value_field, &link_id);
  args = {Arg{1}, Arg::Ref(""), Arg::Ref(""), Arg::Ref(""), Arg::Ref(""), Arg::Ref(0)};
  EXPECT_EQ(By("SupplyMultiListdata", args), Variant(multi));
  EXPECT_EQ(args[2].value, Variant(sql_text));
  EXPECT_EQ(args[5].value, Variant(link_id));

  std::string select_display, select_value;
  ProjectDataSources select_source = pdsRawData;
  const std::string select =
      native_->GetMultiSelectSQL(-1001, select_display, select_value, select_source);
  args = {Arg{-1001}, Arg::Ref(""), Arg::Ref(""), Arg::Ref(0)};
  EXPECT_EQ(By("GetMultiSelectSQL", args), Variant(select));
  EXPECT_EQ(args[3].value, Variant(int32_t{select_source}));
  messages_.Clear();  // an unknown option may be reported; the same either way
}

TEST_F(ServiceByName, RecordsetsCrossAsOurOwnObjects) {
  // FillRecordSet creates the recordset it is not given and hands it back.
  Args args{Arg{1}, Arg::Ref(Variant()), Arg{"SELECT ID, LastName FROM patients ORDER BY ID"},
            Arg{adOpenStatic}, Arg{adLockOptimistic}};
  EXPECT_EQ(By("FillRecordSet", args), Variant(true));
  Obj rs = AsDispatch(args[1].value);
  ASSERT_NE(rs, nullptr);
  EXPECT_EQ(By("IsValidRecord", {Arg{Variant(rs)}}), Variant(true));
  const Variant first_id = ValueOf(Get(*rs, "Fields", {"ID"}));
  // Given the same recordset again, it refills that one.
  args[2].value = "SELECT ID, LastName FROM patients ORDER BY ID DESC";
  By("FillRecordSet", args);
  EXPECT_EQ(AsDispatch(args[1].value), rs);
  EXPECT_NE(ValueOf(Get(*rs, "Fields", {"ID"})), first_id);

  By("AssignFieldValuesToAllRecs", {Arg{Variant(rs)}, Arg{"LastName"}, Arg{"Same"}});
  Call(*rs, "MoveFirst");
  EXPECT_EQ(ValueOf(Get(*rs, "Fields", {"LastName"})), Variant("Same"));
  By("RemoveNonNulls", {Arg{Variant(rs)}});
  EXPECT_EQ(By("InterpretRecordErrorStatus", {Arg{1}, Arg{}, Arg{Variant(rs)}}),
            Variant(native_->InterpretRecordErrorStatus(pdsmaindata, nullptr,
                                                        NativeOf<Recordset>(rs.get()))));
  By("SafelyCloseRecordSet", {Arg{Variant(rs)}});
  EXPECT_EQ(Get(*rs, "State"), Variant(int32_t{adStateClosed}));

  // Statements, their history and the caches.
  std::vector<std::string> history;
  native_->SetSQLHistoryObserver(
      [&](LogFileEntryTypes, const std::string& sql) { history.push_back(sql); });
  By("WriteSQLHistory", {Arg{lfetUpdateSQL}, Arg{"UPDATE x"}});
  EXPECT_EQ(By("ExecuteSQL", {Arg{1}, Arg{"UPDATE Cities SET Description = 'X' WHERE ID = 1"}}),
            Variant(true));
  EXPECT_EQ(history, std::vector<std::string>{"UPDATE x"});
  By("InitLists", {Arg{true}, Arg{false}});
  EXPECT_EQ(By("GetDescriptionFromCode", ArgsOf({1, "Cities", "Description", "ID", 1, ""})),
            Variant("X"));
}

TEST_F(ServiceByName, KeysAndSafeDeleteRunByName) {
  const int32_t next = native_->GenerateNumericCode(pdsmaindata, "visits", "ID");
  EXPECT_EQ(By("GenerateNumericCode", ArgsOf({1, "visits", "ID"})), Variant(next));
  EXPECT_EQ(By("GenerateNumericCodeAsDouble", ArgsOf({1, "visits", "ID", "ID > 0"})),
            Variant(native_->GenerateNumericCodeAsDouble(pdsmaindata, "visits", "ID",
                                                         std::string("ID > 0"))));
  By("UpdateTableMaxID", ArgsOf({"visits", 500}));

  auto sink = std::make_shared<testing::HostObject>();
  sink->On(
          "BeforePostActionHistory", [](InvokeFlags, std::span<Arg>) { return Variant(); }, 5)
      .On(
          "AfterPostActionHistory", [](InvokeFlags, std::span<Arg>) { return Variant(); }, 7)
      .On(
          "AfterPostActionHistoryAsDouble", [](InvokeFlags, std::span<Arg>) { return Variant(); },
          9);
  auto subscription = SubscribeEvents(*link_, sink);
  Let(*link_, "UseSafeDelete", true);
  Args del{Arg{1},    Arg{1},  Arg{"patients"},    Arg{1}, Arg{3}, Arg{0},
           Arg{"ID"}, Arg{""}, Arg::Ref(Variant())};
  By("SafeDeleteRecord", del);
  By("MassSafeDeleteEntries", ArgsOf({1, 1, "patients", 1, 0, 0, "ID = 4", "ID", ""}));
  By("PostRecordActionHistory", ArgsOf({1, 1, 1, "patients", 1, 5, 0, "ID", ""}));
  By("PostRecordActionHistoryAsDouble", ArgsOf({1, 1, 1, "patients", 1, 6.0, 0.0, "ID", ""}));
  std::vector<std::string> names;
  for (const std::string& call : sink->Calls())
    names.push_back(call.substr(0, call.find('(')));
  EXPECT_EQ(names, (std::vector<std::string>{"BeforePostActionHistory", "AfterPostActionHistory",
                                             "BeforePostActionHistory", "AfterPostActionHistory",
                                             "BeforePostActionHistory", "AfterPostActionHistory",
                                             "AfterPostActionHistoryAsDouble"}));
  UnsubscribeEvents(*link_, subscription);

  // Sample data: the question is answered No, then the confirmation.
  By("DeleteSampleData", {});
  messages_.Clear();
}

TEST_F(ServiceByName, HostControlsAreFilledByName) {
  // Each fill by name leaves the host's control as the same fill leaves the
  // library's recording control.
  struct Case {
    std::string name;
    std::function<Args(Variant control)> args;
    std::function<void(InfoLink&, ListControl&)> native;
  };
  const Variant rs_holder = [&] {
    Args a{Arg{1}, Arg::Ref(Variant()), Arg{"SELECT Description, ID FROM Cities ORDER BY ID"},
           Arg{adOpenStatic}, Arg{adLockReadOnly}};
    By("FillRecordSet", a);
    return a[1].value;
  }();
  const std::vector<Case> cases = {
      {"FillComboWithOptions",
       [](Variant c) {
         return Args{Arg{c}, Arg{2}};
       },
       [](InfoLink& l, ListControl& c) { l.FillComboWithOptions(c, 2); }},
      {"FillComboWithSQL",
       [](Variant c) {
         return Args{
             Arg{c},    Arg{1},   Arg{"SELECT Description, ID FROM Cities"}, Arg{"Description"},
             Arg{"ID"}, Arg{true}};
       },
       [](InfoLink& l, ListControl& c) {
         l.FillComboWithSQL(c, pdsmaindata, "SELECT Description, ID FROM Cities", "Description",
                            "ID", true);
       }},
      {"AddRecsToCombo",
       [&](Variant c) {
         return Args{Arg{rs_holder}, Arg{"Description"}, Arg{"ID"}, Arg{c}};
       },
       [&](InfoLink& l, ListControl& c) {
         l.AddRecsToCombo(NativeOf<Recordset>(AsDispatch(rs_holder).get()), "Description", "ID", c);
       }},
      {"RefreshHierarchicalList",
       [](Variant c) {
         return Args{Arg{1}, Arg{c}, Arg{"Description"}, Arg{"ID"}, Arg{"Cities"}, Arg{""}};
       },
       [](InfoLink& l, ListControl& c) {
         l.RefreshHierarchicalList(pdsmaindata, c, "Description", "ID", "Cities", "");
       }},
      {"FillComboWithValidDataTypes",
       [](Variant c) {
         return Args{Arg{c}, Arg{1}};
       },
       [](InfoLink& l, ListControl& c) { l.FillComboWithValidDataTypes(c, 1); }},
      {"FillWithMultiListOptions",
       [](Variant c) {
         return Args{Arg{2}, Arg{c}};
       },
       [](InfoLink& l, ListControl& c) { l.FillWithMultiListOptions(2, c); }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    testing::RecordingListControl expected;
    c.native(*native_, expected);
    auto host = std::make_shared<testing::HostObject>();
    std::vector<std::string> texts;
    host->On("Tag", [](InvokeFlags, std::span<Arg>) { return Variant(""); })
        .On("Clear",
            [&](InvokeFlags, std::span<Arg>) {
              texts.clear();
              return Variant();
            })
        .On("AddItem",
            [&](InvokeFlags, std::span<Arg> a) {
              texts.push_back(TextOf(a[0].value));
              return Variant();
            })
        .On("ListIndex", [](InvokeFlags, std::span<Arg>) { return Variant(); })
        .On("ListCount",
            [&](InvokeFlags, std::span<Arg>) { return Variant(int32_t(texts.size())); })
        .On("Visible", [](InvokeFlags, std::span<Arg>) { return Variant(); })
        .On("Caption", [](InvokeFlags, std::span<Arg>) { return Variant("List"); });
    Call(*AsDispatch(rs_holder), "MoveFirst");
    By(c.name, c.args(Variant(std::shared_ptr<DispatchObject>(host))));
    EXPECT_EQ(texts, expected.ItemTexts());
    EXPECT_FALSE(texts.empty());
  }
  // A control that is not an object is refused at its position.
  Args bad{Arg{"not a control"}, Arg{1}};
  try {
    By("FillComboWithOptions", bad);
    ADD_FAILURE();
  } catch (const AutomationError& e) {
    EXPECT_EQ(e.Failure(), DispatchFailure::kTypeMismatch);
    EXPECT_EQ(e.ArgPosition(), 1);
  }
  // Date controls.
  auto from = std::make_shared<testing::HostObject>();
  from->On("Value", [](InvokeFlags, std::span<Arg>) { return Variant(DateSerial(2024, 1, 2)); });
  auto to = std::make_shared<testing::HostObject>();
  to->On("Value", [](InvokeFlags, std::span<Arg>) { return Variant(DateSerial(2024, 2, 3)); });
  EXPECT_EQ(By("GetDateSqlFromControls",
               {Arg{"Visit"}, Arg{1000}, Arg{Variant(std::shared_ptr<DispatchObject>(from))},
                Arg{Variant(std::shared_ptr<DispatchObject>(to))}}),
            Variant(native_->GetDateSqlFromValues("Visit", DateRangeSpecs(1000),
                                                  DateSerial(2024, 1, 2), DateSerial(2024, 2, 3))));
}

TEST_F(ServiceByName, AStoredQueryRunsThroughTheInterpreterByName) {
  Obj query = CreateObject("Kelvary.QueryInterpretor");
  QueryInterpretor twin;
  Call(*query, "InitSettings", {"R", 1, 1, false});
  twin.InitSettings("R", 1, 1, false);
  EXPECT_EQ(Get(*query, "TemplateDescription"), Variant(twin.TemplateDescription));
  EXPECT_EQ(CLng(Get(*ObjectOf(Get(*query, "ShapeNests")), "Count")), twin.ShapeNests()->Count());
  Call(*query, "AssignIDBasedWhereClause", {1, 3, 0, "ID"});
  twin.AssignIDBasedWhereClause(1, 3, 0, "ID");
  Call(*query, "EncodeSQLStmt");
  twin.EncodeSQLStmt();
  EXPECT_EQ(Get(*query, "FinalSQLStmt"), Variant(twin.FinalSQLStmt));
  Args assign{Arg::Ref(Variant())};
  const bool opened = CBool(CallByName(*query, "AssignRecordSet", kInvokeMethod, assign));
  std::shared_ptr<Recordset> twin_rs;
  EXPECT_EQ(opened, twin.AssignRecordSet(twin_rs));
  if (opened) {
    Obj rs = AsDispatch(assign[0].value);
    ASSERT_NE(rs, nullptr);
    EXPECT_EQ(CLng(Get(*rs, "RecordCount")), twin_rs->RecordCount());
  }
  // The members about conditions, on the loaded groups.
  Obj conditions = ObjectOf(Get(*query, "CurrentConditions"));
  if (CLng(Get(*conditions, "Count")) > 0) {
    Obj group = ObjectOf(Get(*conditions, "Item", {1}));
    EXPECT_EQ(Call(*query, "GetConditionString", {Variant(group)}),
              Variant(twin.GetConditionString(twin.CurrentConditions()->Item(1))));
  }
  Obj param = CreateObject("Kelvary.RepParam");
  Let(*param, "FieldName", "Age");
  Let(*param, "DataFormat", fdtText);
  Let(*param, "Operator", cmpEquals);
  Let(*param, "Value1", 4);
  EXPECT_NE(TextOf(Call(*query, "GetSqlPhrase", {Variant(param), false, "P.Age"})), "");
  EXPECT_EQ(Call(*query, "AreThereAnyParameters", {false}),
            Variant(twin.AreThereAnyParameters(false)));
  EXPECT_EQ(Call(*query, "AreNeededParametersOK"), Variant(true));
  EXPECT_EQ(Call(*query, "GetCurrentSpecs"), Variant(""));
  EXPECT_EQ(Call(*query, "IsSimpleTemplate"), Variant(twin.IsSimpleTemplate()));
}

TEST(MemberTables, EveryMethodOfTheServiceObjectHasACaseByName) {
  std::set<std::string> covered;
  for (const SameAsNative& c : PureCases())
    covered.insert(c.name);
  // Exercised by the other cases of this file and by the rules' tests.
  for (const char* name : {"ConnectDefault",
                           "GetSearchLinkDetails",
                           "GetSrchlinkControlType",
                           "GetMultiSettings",
                           "GetMultiListParentWnd",
                           "SupplyMultiListdata",
                           "GetMultiSelectSQL",
                           "FillRecordSet",
                           "IsValidRecord",
                           "AssignFieldValuesToAllRecs",
                           "RemoveNonNulls",
                           "InterpretRecordErrorStatus",
                           "SafelyCloseRecordSet",
                           "WriteSQLHistory",
                           "ExecuteSQL",
                           "InitLists",
                           "GenerateNumericCode",
                           "GenerateNumericCodeAsDouble",
                           "UpdateTableMaxID",
                           "SafeDeleteRecord",
                           "MassSafeDeleteEntries",
                           "PostRecordActionHistory",
                           "PostRecordActionHistoryAsDouble",
                           "DeleteSampleData",
                           "FillComboWithOptions",
                           "FillComboWithSQL",
                           "AddRecsToCombo",
                           "RefreshHierarchicalList",
                           "FillComboWithValidDataTypes",
                           "FillWithMultiListOptions",
                           "GetDateSqlFromControls"}) {
    covered.insert(name);
  }
  for (const MemberInfo& m : FindTable("InfoLink")->Members()) {
    if (m.Answers(kInvokeMethod)) {
      EXPECT_TRUE(covered.count(m.name)) << m.name << " has no case";
    }
  }
}

}  // namespace
}  // namespace kelvary::automation
