// The rules of late-bound calls, each over many members of many classes:
// names and IDs, argument counts, types, optional and by-reference
// arguments, let and set, default members, enumeration, errors, identity.
#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "automation/HostObject.h"
#include "kelvary/automation/Classes.h"
#include "kelvary/automation/Dispatch.h"
#include "kelvary/automation/internal/NativeDispatch.h"
#include "kelvary/platform/Text.h"
#include "support/TestDatabase.h"

namespace kelvary::automation {
namespace {

using Obj = std::shared_ptr<DispatchObject>;

Obj Create(std::string_view prog_id) {
  Obj o = CreateObject(prog_id);
  EXPECT_NE(o, nullptr) << prog_id;
  return o;
}

Obj ObjectOf(const Variant& v) {
  Obj o = AsDispatch(v);
  EXPECT_NE(o, nullptr) << v;
  return o;
}

// Failure: what a call raised, or nothing.
struct Failure {
  DispatchFailure kind = DispatchFailure::kException;
  int32_t number = 0;
  int32_t position = 0;
  std::string source;
  friend std::ostream& operator<<(std::ostream& os, const Failure& f) {
    return os << "failure " << static_cast<int>(f.kind) << " number " << f.number << " at "
              << f.position;
  }
};
Failure FailureOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const AutomationError& e) {
    return Failure{e.Failure(), e.Number(), e.ArgPosition(), e.Source()};
  }
  ADD_FAILURE() << "the call raised nothing";
  return Failure{};
}

Variant InvokeByName(DispatchObject& o, std::string_view name, InvokeFlags flags, Args args) {
  return CallByName(o, name, flags, args);
}

TEST(DispatchRules, EveryMemberAnswersToItsNameInAnyCaseAndToItsId) {
  std::set<std::string> prog_ids;
  for (const MemberTable* table : AllTables()) {
    SCOPED_TRACE(table->ClassName());
    EXPECT_TRUE(prog_ids.insert(LowerCase(table->ProgId())).second);
    EXPECT_EQ(FindTable(table->ProgId()), table);
    std::set<DispId> ids;
    for (const MemberInfo& m : table->Members()) {
      SCOPED_TRACE(m.name);
      EXPECT_TRUE(ids.insert(m.id).second) << "dispatch ID used twice";
      std::string upper = m.name, lower = LowerCase(m.name);
      for (char& c : upper)
        c = AsciiUpper(c);
      EXPECT_EQ(table->IdOfName(m.name), m.id);
      EXPECT_EQ(table->IdOfName(upper), m.id);
      EXPECT_EQ(table->IdOfName(lower), m.id);
      ASSERT_NE(table->Find(m.id), nullptr);
      EXPECT_EQ(table->Find(m.id)->name, m.name);
      EXPECT_NE(m.kinds, 0);
      EXPECT_TRUE(m.invoke);
    }
    EXPECT_EQ(table->IdOfName("NoSuchMember"), kDispIdUnknown);
    EXPECT_EQ(table->Find(4000), nullptr);
  }
  // Every class a host reaches, with its events in dispatch order.
  EXPECT_EQ(AllTables().size(), 28u);
  const MemberTable* link = FindTable("Kelvary.InfoLink");
  ASSERT_NE(link, nullptr);
  const std::vector<std::string> events = {"CheckAllowRecordDelete",
                                           "BeforeDeleteRecord",
                                           "AfterDeleteRecord",
                                           "RequestRemoteNextID",
                                           "BeforePostActionHistory",
                                           "RequestRemoteNextIDAsDouble",
                                           "AfterPostActionHistory",
                                           "BeforePostActionHistoryAsDouble",
                                           "AfterPostActionHistoryAsDouble"};
  ASSERT_EQ(link->Events().size(), events.size());
  for (size_t i = 0; i < events.size(); ++i) {
    EXPECT_EQ(link->Events()[i].name, events[i]);
    EXPECT_EQ(link->Events()[i].id, static_cast<DispId>(i + 1));
  }
}

TEST(DispatchRules, CreatableClassesAreMadeByProgIdAndNoOthers) {
  for (const MemberTable* table : AllTables()) {
    SCOPED_TRACE(table->ClassName());
    Obj o = CreateObject(table->ProgId());
    EXPECT_EQ(o != nullptr, table->Creatable());
    if (o) {
      EXPECT_EQ(o->Table(), table);
    }
  }
  EXPECT_EQ(CreateObject("Kelvary.NoSuchClass"), nullptr);
  EXPECT_NE(CreateObject("kelvary.infolink"), nullptr);
}

TEST(DispatchRules, WrongArgumentCountIsRefused) {
  Obj tables = Create("Kelvary.QueryDataTables");
  Obj table = Create("Kelvary.QueryDataTable");
  Obj values = Create("Kelvary.ValueSets");
  struct Case {
    Obj object;
    std::string member;
    InvokeFlags flags;
    Args args;
  };
  const std::vector<Case> cases = {
      {table, "GetSQLName", kInvokeMethod, {Arg{1}}},                 // none wanted
      {tables, "Count", kInvokePropertyGet, {Arg{1}, Arg{2}}},        // none wanted, Long result
      {tables, "Add", kInvokeMethod, {Arg{1}, Arg{"a"}}},             // ten required
      {values, "Add", kInvokeMethod, {Arg{1}}},                       // two required
      {values, "Add", kInvokeMethod, Args(7, Arg{1})},                // six at most
      {table, "TableName", kInvokePropertyPut, {}},                   // a let needs its value
      {table, "TableName", kInvokePropertyPut, {Arg{"a"}, Arg{"b"}}}  // and nothing else
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.member);
    Failure f = FailureOf([&] { InvokeByName(*c.object, c.member, c.flags, c.args); });
    EXPECT_EQ(f.kind, DispatchFailure::kBadParamCount);
    EXPECT_EQ(f.number, kErrWrongArgumentCount);
  }
}

TEST(DispatchRules, ArgumentOfTheWrongTypeIsRefusedWithItsPosition) {
  Obj tables = Create("Kelvary.QueryDataTables");
  Obj table = Create("Kelvary.QueryDataTable");
  Obj nodes = Create("Kelvary.ConditionNodes");
  Obj field_links = Create("Kelvary.FieldLinks");
  struct Case {
    Obj object;
    std::string member;
    InvokeFlags flags;
    Args args;
    DispatchFailure kind;
    int32_t position;
  };
  const Args good = {Arg{1}, Arg{"a"}, Arg{1}, Arg{1},   Arg{0},
                     Arg{0}, Arg{0},   Arg{1}, Arg{"t"}, Arg{"T"}};
  auto with = [](Args a, size_t i, Variant v) {
    a[i].value = std::move(v);
    return a;
  };
  const std::vector<Case> cases = {
      {tables, "Add", kInvokeMethod, with(good, 0, "x"), DispatchFailure::kTypeMismatch, 1},
      {tables, "Add", kInvokeMethod, with(good, 7, "abc"), DispatchFailure::kTypeMismatch, 8},
      {tables, "Add", kInvokeMethod, with(good, 7, 40000), DispatchFailure::kOverflow, 8},
      {tables, "Add", kInvokeMethod, with(good, 2, Variant::Null()), DispatchFailure::kTypeMismatch,
       3},
      {table, "Depth", kInvokePropertyPut, {Arg{"deep"}}, DispatchFailure::kTypeMismatch, 1},
      {table,
       "OutputFields",
       kInvokePropertyPutRef,
       {Arg{Variant(table)}},
       DispatchFailure::kTypeMismatch,
       1},  // an object of another class
      {nodes,
       "Add",
       kInvokeMethod,
       {Arg{1}, Arg{1}, Arg{"any"}, Arg{1}, Arg{1}},
       DispatchFailure::kTypeMismatch,
       3},
      {field_links,
       "Add",
       kInvokeMethod,
       {Arg{1}, Arg{0}, Arg{0}, Arg{1e10}, Arg{"c"}, Arg{}, Arg{0}, Arg{"C"}},
       DispatchFailure::kOverflow,
       4},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.member + " position " + std::to_string(c.position));
    Failure f = FailureOf([&] { InvokeByName(*c.object, c.member, c.flags, c.args); });
    EXPECT_EQ(f.kind, c.kind);
    EXPECT_EQ(f.position, c.position);
    EXPECT_EQ(f.number, c.kind == DispatchFailure::kOverflow ? kErrOverflow : kErrTypeMismatch);
  }
  // Nothing was added by the refused calls.
  EXPECT_EQ(CLng(Get(*tables, "Count")), 0);
  EXPECT_EQ(CLng(Get(*nodes, "Count")), 0);
}

TEST(DispatchRules, MissingRequiredArgumentIsRefusedWithItsPosition) {
  Obj options = Create("Kelvary.QueryTemplateSortOptions");
  Obj params = Create("Kelvary.RepParams");
  Failure f = FailureOf([&] {
    InvokeByName(*options, "Add", kInvokeMethod, {Arg{true}, Arg::Missing(), Arg{1}});
  });
  EXPECT_EQ(f.kind, DispatchFailure::kParamNotOptional);
  EXPECT_EQ(f.number, kErrArgumentNotOptional);
  EXPECT_EQ(f.position, 2);
  f = FailureOf([&] {
    InvokeByName(*params, "Add", kInvokeMethod,
                 {Arg{1}, Arg{2}, Arg{false}, Arg::Missing(), Arg::Missing()});
  });
  EXPECT_EQ(f.position, 4);
  // The optional key may be missing.
  InvokeByName(*params, "Add", kInvokeMethod,
               {Arg{1}, Arg{2}, Arg{false}, Arg{true}, Arg::Missing()});
  EXPECT_EQ(CLng(Get(*params, "Count")), 1);
}

TEST(DispatchRules, UnknownNamesAndUnusableKindsAreRefused) {
  Obj table = Create("Kelvary.QueryDataTable");
  Obj link = Create("Kelvary.InfoLink");
  Failure f = FailureOf([&] { Call(*table, "NoSuchMember"); });
  EXPECT_EQ(f.kind, DispatchFailure::kUnknownName);
  EXPECT_EQ(f.number, kErrObjectDoesntSupportMember);
  // A method cannot be assigned, a read-only property not let.
  f = FailureOf([&] { Let(*table, "GetSQLName", "x"); });
  EXPECT_EQ(f.kind, DispatchFailure::kMemberNotFound);
  f = FailureOf([&] { Let(*Create("Kelvary.RepParams"), "Count", 3); });
  EXPECT_EQ(f.kind, DispatchFailure::kMemberNotFound);
  // A plain value is no object to set.
  f = FailureOf([&] { Set(*link, "MainDBType", 1); });
  EXPECT_EQ(f.kind, DispatchFailure::kMemberNotFound);
  // An unknown ID.
  Args none;
  f = FailureOf([&] { table->Invoke(3999, kInvokeMethod, none); });
  EXPECT_EQ(f.kind, DispatchFailure::kMemberNotFound);
}

TEST(DispatchRules, FailuresOfTheSystemCrossWithTheirNumberDescriptionAndSource) {
  Obj tables = Create("Kelvary.QueryDataTables");
  Obj outputs = Create("Kelvary.QueryOutputFields");
  const Args add = {Arg{1}, Arg{"a"}, Arg{1},   Arg{1},   Arg{0},   Arg{0},
                    Arg{0}, Arg{1},   Arg{"t"}, Arg{"T"}, Arg{"K1"}};
  InvokeByName(*tables, "Add", kInvokeMethod, add);
  struct Case {
    std::function<void()> call;
    int32_t number;
  };
  const std::vector<Case> cases = {
      {[&] { Get(*tables, "Item", {7}); }, kErrInvalidProcedureCall},
      {[&] { Get(*tables, "Item", {"nokey"}); }, kErrInvalidProcedureCall},
      {[&] { Call(*tables, "Remove", {"nokey"}); }, kErrInvalidProcedureCall},
      {[&] { InvokeByName(*tables, "Add", kInvokeMethod, add); }, kErrKeyAlreadyAssociated},
  };
  for (const Case& c : cases) {
    Failure f = FailureOf(c.call);
    EXPECT_EQ(f.kind, DispatchFailure::kException);
    EXPECT_EQ(f.number, c.number);
    EXPECT_EQ(f.source, "Kelvary.QueryDataTables");
  }
  // Removing an absent column is silent, as the collection of columns wants.
  Call(*outputs, "Remove", {"nokey"});
  EXPECT_EQ(CLng(Get(*tables, "Count")), 1);
}

TEST(DispatchRules, OmittedOptionalArgumentsStayAnswerable) {
  Obj values = Create("Kelvary.ValueSets");
  // Value, ID, [sKey], [ValDataType], [DefaultValue], [Scope]
  Obj plain = ObjectOf(Call(*values, "Add", {"v", 1}));
  EXPECT_TRUE(Get(*plain, "DefaultValue").IsEmpty());
  EXPECT_EQ(CLng(Get(*plain, "ValDataType")), 0);
  EXPECT_EQ(CLng(Get(*plain, "Scope")), 0);
  Obj full = ObjectOf(
      InvokeByName(*values, "Add", kInvokeMethod,
                   {Arg{"w"}, Arg{2}, Arg{"K"}, Arg{4}, Arg{Variant::Null()}, Arg{int16_t{3}}}));
  EXPECT_TRUE(Get(*full, "DefaultValue").IsNull());
  EXPECT_EQ(CLng(Get(*full, "ValDataType")), 4);
  EXPECT_EQ(CLng(Get(*full, "Scope")), 3);
  // A gap: the key passed as missing, the type given.
  Obj gap = ObjectOf(
      InvokeByName(*values, "Add", kInvokeMethod, {Arg{"x"}, Arg{3}, Arg::Missing(), Arg{8}}));
  EXPECT_EQ(CLng(Get(*gap, "ValDataType")), 8);
  EXPECT_EQ(CLng(Get(*values, "Count")), 3);
  EXPECT_EQ(AsDispatch(Get(*values, "Item", {"k"})), full);
}

TEST(DispatchRules, ByReferenceArgumentsAreWrittenBackAndTypedOnesMustMatch) {
  testing::TestDatabase db;
  db.Run(
      "CREATE TABLE t (ID INTEGER PRIMARY KEY, Name TEXT); INSERT INTO t VALUES (1,'a');"
      "INSERT INTO t VALUES (2,'b')");
  Obj connection = Create("Kelvary.Connection");
  Call(*connection, "Open", {db.ConnectionString()});
  // Execute(CommandText, [RecordsAffected] by reference, [Options])
  Args args{Arg{"UPDATE t SET Name = 'c'"}, Arg::Ref(Variant(-7))};
  CallByName(*connection, "Execute", kInvokeMethod, args);
  EXPECT_EQ(args[1].value, Variant(int32_t{2}));
  // Passed by value, the slot is left as the caller gave it.
  args = {Arg{"UPDATE t SET Name = 'd'"}, Arg{Variant(-7)}};
  CallByName(*connection, "Execute", kInvokeMethod, args);
  EXPECT_EQ(args[1].value, Variant(int32_t{-7}));
  // A typed variable of another type is refused, and nothing runs.
  args = {Arg{"UPDATE t SET Name = 'e'"}, Arg::Ref(Variant("count"))};
  args[1].fixed_type = true;
  Failure f = FailureOf([&] { CallByName(*connection, "Execute", kInvokeMethod, args); });
  EXPECT_EQ(f.kind, DispatchFailure::kTypeMismatch);
  EXPECT_EQ(f.position, 2);
  Obj rs = ObjectOf(Call(*connection, "Execute", {"SELECT Name FROM t WHERE ID = 1"}));
  EXPECT_EQ(ValueOf(Get(*rs, "Fields", {"Name"})), Variant("d"));

  // Objects by reference: ConnectDefault shares the connections it is given
  // and hands the same objects back.
  testing::TestDatabase main_db("main.db"), sys_db("sys.db");
  main_db.RunFile("main_schema.sql");
  sys_db.RunFile("system_schema.sql");
  Obj main_xion = Create("Kelvary.Connection");
  Call(*main_xion, "Open", {main_db.ConnectionString()});
  Obj sys_xion = Create("Kelvary.Connection");
  Call(*sys_xion, "Open", {sys_db.ConnectionString()});
  Obj link = Create("Kelvary.InfoLink");
  Args connect{Arg::Ref(Variant(main_xion)), Arg::Ref(Variant(sys_xion)), Arg{"Main"},
               Arg{"System"}};
  EXPECT_EQ(CallByName(*link, "ConnectDefault", kInvokeMethod, connect), Variant(true));
  EXPECT_EQ(AsDispatch(connect[0].value), main_xion);
  EXPECT_EQ(AsDispatch(connect[1].value), sys_xion);
  EXPECT_EQ(AsDispatch(Get(*link, "AppDataXion")), main_xion);
  EXPECT_EQ(AsDispatch(Get(*link, "ConfigsXion")), sys_xion);
  // A connection of another library is refused, at its position.
  auto foreign = std::make_shared<testing::HostObject>();
  connect[1].value = Variant(std::shared_ptr<DispatchObject>(foreign));
  f = FailureOf([&] { CallByName(*link, "ConnectDefault", kInvokeMethod, connect); });
  EXPECT_EQ(f.kind, DispatchFailure::kTypeMismatch);
  EXPECT_EQ(f.position, 2);
}

TEST(DispatchRules, PropertiesAreLetWithValuesAndSetWithObjects) {
  Obj value_set = Create("Kelvary.ValueSet");
  Obj table = Create("Kelvary.QueryDataTable");
  Obj fields = Create("Kelvary.QueryOutputFields");
  // Plain fields of every type read back what was let, converted.
  Let(*table, "TableName", "Patients");
  Let(*table, "Depth", "3");
  Let(*table, "ID", 7.0);
  EXPECT_EQ(Get(*table, "TableName"), Variant("Patients"));
  EXPECT_EQ(Get(*table, "Depth"), Variant(int16_t{3}));
  EXPECT_EQ(Get(*table, "ID"), Variant(int32_t{7}));
  EXPECT_EQ(Get(*table, "GetSQLName"), Variant("Patients"));
  // A Variant field: a let stores the value, a set the object itself.
  Let(*value_set, "Value", 12.5);
  EXPECT_EQ(Get(*value_set, "Value"), Variant(12.5));
  Set(*value_set, "Value", Variant(table));
  EXPECT_EQ(AsDispatch(Get(*value_set, "Value")), table);
  Set(*table, "OutputFields", Variant(fields));
  EXPECT_EQ(AsDispatch(Get(*table, "OutputFields")), fields);
  // An object field set to Nothing gives a fresh empty collection next time.
  Set(*table, "OutputFields", Variant(std::shared_ptr<Object>()));
  Obj fresh = AsDispatch(Get(*table, "OutputFields"));
  ASSERT_NE(fresh, nullptr);
  EXPECT_NE(fresh, fields);
  EXPECT_EQ(CLng(Get(*fresh, "Count")), 0);
  // A set is refused a plain value.
  Failure f = FailureOf([&] { Set(*value_set, "Value", 3); });
  EXPECT_EQ(f.kind, DispatchFailure::kTypeMismatch);
}

TEST(DispatchRules, EveryReadWritePropertyReadsBackWhatWasAssigned) {
  // A sample of each type; objects are fresh ones of the property's class.
  auto sample = [](const TypeRef& type) -> Variant {
    switch (type.kind) {
      case ValueKind::kBoolean:
        return true;
      case ValueKind::kInteger:
        return int16_t{3};
      case ValueKind::kLong:
        return int32_t{2};
      case ValueKind::kSingle:
        return 1.5f;
      case ValueKind::kDouble:
        return 2.5;
      case ValueKind::kDate:
        return DateSerial(2024, 5, 6);
      case ValueKind::kString:
        return "Text";
      case ValueKind::kVariant:
        return 12.25;
      case ValueKind::kObject:
        return Variant(std::shared_ptr<Object>(CreateObject(type.name)));
      default:
        return Variant();
    }
  };
  int checked = 0;
  for (const MemberTable* table : AllTables()) {
    Obj o = CreateObject(table->ProgId());
    if (!o) continue;
    for (const MemberInfo& m : table->Members()) {
      if (!m.params.empty() || !m.Answers(kInvokePropertyGet)) continue;
      const bool lets = m.Answers(kInvokePropertyPut), sets = m.Answers(kInvokePropertyPutRef);
      if (!lets && !sets) continue;
      SCOPED_TRACE(table->ClassName() + "." + m.name);
      const Variant value = sample(m.result);
      if (m.result.kind == ValueKind::kObject) {
        ASSERT_NE(AsDispatch(value), nullptr);
      }
      try {
        Args a{Arg{value}};
        o->Invoke(m.id, lets ? kInvokePropertyPut : kInvokePropertyPutRef, a);
      } catch (const AutomationError& e) {
        // A closed recordset has no rows to mark or filter.
        EXPECT_EQ(table->ClassName(), "Recordset") << e.what();
        continue;
      }
      Args none;
      const Variant read = o->Invoke(m.id, kInvokePropertyGet, none);
      Variant expected = value;
      if (m.name == "CoreDataTable") expected = "TEXT";  // stored upper-cased
      if (m.result.kind == ValueKind::kObject) {
        EXPECT_EQ(AsDispatch(read), AsDispatch(value));
      } else {
        EXPECT_EQ(CompareValues(read, expected), 0) << read << " for " << expected;
        EXPECT_EQ(read.Type(),
                  m.result.kind == ValueKind::kVariant ? vbDouble : Variant(value).Type());
      }
      ++checked;
      // A Variant property also takes an object by reference.
      if (m.result.kind == ValueKind::kVariant && sets) {
        Obj object = CreateObject("Kelvary.ValueSet");
        Set(*o, m.name, Variant(object));
        EXPECT_EQ(AsDispatch(Get(*o, m.name)), object);
      }
    }
    // A service object with a connection stamps its session when it goes.
    if (table->ClassName() == "InfoLink")
      Set(*o, "AppDataXion", Variant(std::shared_ptr<Object>()));
  }
  EXPECT_GT(checked, 140);
}

TEST(DispatchRules, DefaultMembersChainFromARecordsetToAFieldValue) {
  testing::TestDatabase db;
  db.Run("CREATE TABLE t (ID INTEGER PRIMARY KEY, Name TEXT); INSERT INTO t VALUES (4,'Ann')");
  Obj connection = Create("Kelvary.Connection");
  Call(*connection, "Open", {db.ConnectionString()});
  Obj rs = Create("Kelvary.Recordset");
  Call(*rs, "Open",
       {"SELECT ID, Name FROM t", Variant(connection), adOpenStatic, adLockOptimistic});
  // rs("Name"), rs(0), rs.Fields("Name"), rs.Fields.Item("Name").Value
  Args by_name{Arg{"name"}};
  EXPECT_EQ(ValueOf(rs->Invoke(kDispIdValue, kInvokePropertyGet, by_name)), Variant("Ann"));
  Args by_ordinal{Arg{0}};
  EXPECT_EQ(ValueOf(rs->Invoke(kDispIdValue, kInvokePropertyGet, by_ordinal)), Variant(int32_t{4}));
  Obj fields = ObjectOf(Get(*rs, "Fields"));
  Obj field = ObjectOf(Get(*fields, "Item", {"Name"}));
  EXPECT_EQ(Get(*field, "Value"), Variant("Ann"));
  EXPECT_EQ(ValueOf(Variant(field)), Variant("Ann"));
  // A let of the field's value changes the row.
  Let(*field, "Value", "Bea");
  Call(*rs, "Update");
  EXPECT_EQ(ValueOf(rs->Invoke(kDispIdValue, kInvokePropertyGet, by_name)), Variant("Bea"));
}

TEST(DispatchRules, EveryCollectionEnumeratesItsMembersInOrder) {
  struct Case {
    std::string prog_id;
    std::function<void(DispatchObject&, int)> add;
  };
  const std::vector<Case> cases = {
      {"Kelvary.QueryShapeNests",
       [](DispatchObject& c, int i) {
         Call(c, "Add", {1, 1, false, i, "S", "T"});
       }},
      {"Kelvary.QueryDataTables",
       [](DispatchObject& c, int i) {
         Call(c, "Add", {1, "a", 1, i, 0, 0, 0, 1, "t", "T"});
       }},
      {"Kelvary.QueryOutputFields",
       [](DispatchObject& c, int i) {
         Call(c, "Add", {1, "a", 0, 0, i, 1, "s", "t", "F"});
       }},
      {"Kelvary.QueryTemplateSortOptions",
       [](DispatchObject& c, int i) {
         Call(c, "Add", {false, i, 1});
       }},
      {"Kelvary.ConditionNodes",
       [](DispatchObject& c, int i) {
         Call(c, "Add", {0, 1, 0, 1, i});
       }},
      {"Kelvary.RepParams",
       [](DispatchObject& c, int i) {
         Call(c, "Add", {i, 1, false, false});
       }},
      {"Kelvary.ValueSets",
       [](DispatchObject& c, int i) {
         Call(c, "Add", {"v", i});
       }},
      {"Kelvary.FieldLinks",
       [](DispatchObject& c, int i) {
         Call(c, "Add", {i, 0, 0, 1, "c", "", 0, "C"});
       }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.prog_id);
    Obj collection = Create(c.prog_id);
    for (int i = 1; i <= 3; ++i)
      c.add(*collection, i);
    Args none;
    Variant e = collection->Invoke(kDispIdNewEnum, kInvokePropertyGet | kInvokeMethod, none);
    auto enumerator = e.ObjectAs<Enumerator>();
    ASSERT_NE(enumerator, nullptr);
    Variant item;
    for (int i = 1; i <= 3; ++i) {
      ASSERT_TRUE(enumerator->Next(item));
      // The member enumerated is the one Item gives.
      EXPECT_EQ(AsDispatch(item), AsDispatch(Get(*collection, "Item", {i})));
    }
    EXPECT_FALSE(enumerator->Next(item));
    enumerator->Reset();
    EXPECT_TRUE(enumerator->Skip(2));
    EXPECT_FALSE(enumerator->Skip(2));
    // Clear empties it; the default member is Item.
    Call(*collection, "Clear");
    EXPECT_EQ(CLng(Get(*collection, "Count")), 0);
    EXPECT_EQ(collection->GetIdOfName("item"), kDispIdValue);
  }
}

TEST(DispatchRules, AConnectionsErrorsAreThoseOfItsLastFailedOperation) {
  testing::TestDatabase db;
  db.Run("CREATE TABLE t (ID INTEGER PRIMARY KEY)");
  Obj connection = Create("Kelvary.Connection");
  Call(*connection, "Open", {db.ConnectionString()});
  Obj errors = ObjectOf(Get(*connection, "Errors"));
  EXPECT_EQ(CLng(Get(*errors, "Count")), 0);

  const Failure failed =
      FailureOf([&] { Call(*connection, "Execute", {"SELECT * FROM nowhere"}); });
  ASSERT_GE(CLng(Get(*errors, "Count")), 1) << "the collection reads the connection as it is now";
  Obj first = ObjectOf(Get(*errors, "Item", {0}));
  EXPECT_EQ(CLng(Get(*first, "Number")), failed.number);
  EXPECT_NE(Get(*first, "Description"), Variant(""));
  EXPECT_EQ(ValueOf(Variant(first)), Get(*first, "Description")) << "the default member";
  // One wrapper per error; the enumeration gives the ones Item gives.
  EXPECT_EQ(AsDispatch(Get(*errors, "Item", {0})), first);
  EXPECT_EQ(AsDispatch(Get(*connection, "Errors")), errors);
  Args none;
  auto all = errors->Invoke(kDispIdNewEnum, kInvokePropertyGet, none).ObjectAs<Enumerator>();
  ASSERT_NE(all, nullptr);
  Variant item;
  ASSERT_TRUE(all->Next(item));
  EXPECT_EQ(AsDispatch(item), first);
  // Out of range, and gone once an operation succeeds.
  EXPECT_EQ(FailureOf([&] { Get(*errors, "Item", {99}); }).number, kErrItemNotFound);
  Call(*connection, "Execute", {"SELECT * FROM t"});
  EXPECT_EQ(CLng(Get(*errors, "Count")), 0);
  EXPECT_EQ(FailureOf([&] { Get(*first, "Number"); }).number, kErrItemNotFound);
}

TEST(DispatchRules, OneWrapperPerObjectSoThatIsHolds) {
  Obj nests = Create("Kelvary.QueryShapeNests");
  Obj added = ObjectOf(Call(*nests, "Add", {1, 1, false, 9, "S", "T", "S9"}));
  EXPECT_EQ(AsDispatch(Get(*nests, "Item", {1})), added);
  EXPECT_EQ(AsDispatch(Get(*nests, "Item", {"s9"})), added);
  Obj tables = ObjectOf(Get(*added, "OutPutTables"));
  EXPECT_EQ(AsDispatch(Get(*added, "OutPutTables")), tables);

  testing::TestDatabase db;
  db.Run("CREATE TABLE t (ID INTEGER PRIMARY KEY, Name TEXT); INSERT INTO t VALUES (1,'a')");
  Obj connection = Create("Kelvary.Connection");
  Call(*connection, "Open", {db.ConnectionString()});
  Obj rs = ObjectOf(Call(*connection, "Execute", {"SELECT * FROM t"}));
  EXPECT_EQ(AsDispatch(Get(*rs, "ActiveConnection")), connection);
  EXPECT_EQ(AsDispatch(Get(*rs, "Fields")), AsDispatch(Get(*rs, "Fields")));
  Obj fields = ObjectOf(Get(*rs, "Fields"));
  EXPECT_EQ(AsDispatch(Get(*fields, "Item", {"name"})), AsDispatch(Get(*fields, "Item", {1})));
  EXPECT_NE(AsDispatch(Get(*fields, "Item", {0})), AsDispatch(Get(*fields, "Item", {1})));
  EXPECT_NE(AsDispatch(Get(*rs, "Fields")), rs);

  // Wrappers go with their last holder.
  const size_t before = internal::LiveWrapperCount();
  {
    Obj extra = Create("Kelvary.ValueSet");
    EXPECT_EQ(internal::LiveWrapperCount(), before + 1);
  }
  EXPECT_EQ(internal::LiveWrapperCount(), before);
}

}  // namespace
}  // namespace kelvary::automation
