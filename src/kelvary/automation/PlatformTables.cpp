// The member tables of the data-access objects a host holds: Connection,
// Recordset, a recordset's Fields and Field, and a connection's Errors and
// Error. A recordset's default
// member is Fields, whose default is Item, whose default is the field's
// Value: rs("X") reads rs.Fields.Item("X").Value.
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kelvary/automation/internal/Classes.h"
#include "kelvary/automation/internal/CollectionMembers.h"
#include "kelvary/platform/Text.h"

namespace kelvary::automation {

using internal::ClassBuilder;
using internal::CommandParameters;
using internal::ConnectionError;
using internal::ConnectionErrors;
using internal::RecordsetField;
using internal::RecordsetFields;

namespace {

std::shared_ptr<RecordsetField> FieldAt(const std::shared_ptr<Recordset>& rs, int32_t ordinal) {
  rs->Fields(ordinal);  // an ordinal out of range raises here
  return std::make_shared<RecordsetField>(RecordsetField{rs, ordinal});
}

// FieldNamed: the field by name; an unknown name raises the recordset's own
// error.
std::shared_ptr<RecordsetField> FieldNamed(const std::shared_ptr<Recordset>& rs,
                                           std::string_view name) {
  const kelvary::Field& wanted = rs->Fields(name);
  for (int32_t i = 0; i < rs->FieldCount(); ++i) {
    if (&rs->Fields(i) == &wanted) return std::make_shared<RecordsetField>(RecordsetField{rs, i});
  }
  throw ItemNotFoundError("", "");
}

// FieldNames: the fields a host named for GetRows, AddNew or Update: one
// field or an array of them, each by name or by ordinal (an ordinal out of
// range raises the recordset's own error).
std::vector<std::string> FieldNames(Recordset& rs, const Variant& given, int32_t position) {
  std::vector<std::string> names;
  for (const Variant& field : ListOf(given, position)) {
    names.push_back(field.IsNumber() ? rs.Fields(CLng(field)).Name() : CStr(field));
  }
  return names;
}

// ConnectionArg: a recordset's connection given as a Connection or as a
// connection string (opened for this recordset alone).
std::shared_ptr<Connection> ConnectionArg(const Variant& given) {
  if (given.IsString()) {
    auto connection = std::make_shared<Connection>();
    connection->Open(std::string(given.Text()));
    return connection;
  }
  if (given.IsEmpty()) return nullptr;
  auto connection = NativeOf<Connection>(AsDispatch(given).get());
  if (!connection) connection = given.ObjectAs<Connection>();
  if (!connection) {
    throw AutomationError(DispatchFailure::kTypeMismatch, kErrTypeMismatch,
                          "The connection must be a Kelvary.Connection or a connection string", 2);
  }
  return connection;
}

}  // namespace

const MemberTable& ClassTraits<Connection>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "Connection",
        {"{64320204-9CAF-54EC-BC3A-E13CF59FD0D8}", "{B622A036-CB67-5AE2-81AA-F5CF4E55C768}", ""},
        true, "An open session with one database");
    ClassBuilder<Connection> b(t);
    using C = Connection;
    b.Property(
        "CursorLocation", +[](C& c) { return c.CursorLocation(); },
        +[](C& c, CursorLocationEnum v) { c.CursorLocation(v); });
    b.Method(
        "Open",
        +[](C& c, std::optional<std::string> ConnectionString, std::optional<std::string> UserID,
            std::optional<std::string> Password, std::optional<int32_t> Options) {
          c.Open(ConnectionString.value_or(c.ConnectionString()), UserID.value_or(""),
                 Password.value_or(""), Options.value_or(adCmdUnspecified));
        },
        {"ConnectionString", "UserID", "Password", "Options"});
    b.Method("Close", &C::Close);
    b.Getter("State", &C::State);
    b.Property(
        "ConnectionString", +[](C& c) { return c.ConnectionString(); },
        +[](C& c, std::string v) { c.ConnectionString(v); });
    b.Method("Execute",
             +[](C& c, std::string CommandText, int32_t* RecordsAffected,
                 std::optional<int32_t> Options) {
               int32_t affected = 0;
               auto rs = c.Execute(CommandText, affected, Options.value_or(adCmdUnspecified));
               if (RecordsAffected != nullptr) *RecordsAffected = affected;
               return rs;
             },
             {"CommandText", "RecordsAffected", "Options"});
    b.Method("BeginTrans", &C::BeginTrans);
    b.Method("CommitTrans", &C::CommitTrans);
    b.Method("RollbackTrans", &C::RollbackTrans);
    b.Property(
        "CommandTimeout", +[](C& c) { return c.CommandTimeout(); },
        +[](C& c, int32_t v) { c.CommandTimeout(v); });
    b.Getter(
        "Version", +[](C&) { return Connection::Version(); });
    b.Property(
        "Mode", +[](C& c) { return static_cast<int32_t>(c.Mode()); },
        +[](C& c, int32_t v) { c.Mode(static_cast<ConnectModeEnum>(v)); });
    b.Property(
        "Provider", +[](C& c) { return c.Provider(); },
        +[](C& c, std::string v) { c.Provider(v); });
    b.Getter(
        "Errors", +[](C& c) {
          return std::make_shared<ConnectionErrors>(ConnectionErrors{c.shared_from_this()});
        });
    return t;
  }();
  return table;
}

const MemberTable& ClassTraits<Recordset>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "Recordset",
        {"{2F3C3A22-0881-59B8-94D0-29FD5916D7EA}", "{B5C2627F-963B-55B2-AE0B-C183222FD743}", ""},
        true, "The rows of one statement");
    ClassBuilder<Recordset> b(t);
    using C = Recordset;
    b.Getter(
        "Fields",
        +[](C& rs) {
          return std::make_shared<RecordsetFields>(RecordsetFields{rs.shared_from_this()});
        },
        {}, kDispIdValue);
    b.Method("Open",
             +[](C& rs, std::optional<std::string> Source, const Variant& ActiveConnection,
                 std::optional<CursorTypeEnum> CursorType, std::optional<LockTypeEnum> LockType,
                 std::optional<int32_t> Options) {
               rs.Open(Source.value_or(""), ConnectionArg(ActiveConnection),
                       CursorType.value_or(adOpenUnspecified), LockType.value_or(adLockUnspecified),
                       Options.value_or(adCmdUnspecified));
             },
             {"Source", "ActiveConnection", "CursorType", "LockType", "Options"});
    b.Method("Close", &C::Close);
    b.Getter("State", &C::State);
    b.Getter("BOF", &C::Bof);
    b.Getter("EOF", &C::Eof);
    b.Getter("RecordCount", &C::RecordCount);
    b.Property(
        "AbsolutePosition", +[](C& rs) { return rs.AbsolutePosition(); },
        +[](C& rs, int32_t v) { rs.AbsolutePosition(v); });
    b.Property(
        "Bookmark", +[](C& rs) { return rs.Bookmark(); },
        +[](C& rs, Variant v) { rs.Bookmark(v); });
    b.Method("MoveFirst", &C::MoveFirst);
    b.Method("MoveLast", &C::MoveLast);
    b.Method("MoveNext", &C::MoveNext);
    b.Method("MovePrevious", &C::MovePrevious);
    b.Method("Move",
             +[](C& rs, int32_t NumRecords, std::optional<Variant> Start) {
               rs.Move(NumRecords, Start.value_or(Variant()));
             },
             {"NumRecords", "Start"});
    b.Method("Find",
             +[](C& rs, std::string Criteria, std::optional<int32_t> SkipRecords,
                 std::optional<SearchDirectionEnum> SearchDirection, std::optional<Variant> Start) {
               rs.Find(Criteria, SkipRecords.value_or(0), SearchDirection.value_or(adSearchForward),
                       Start.value_or(Variant()));
             },
             {"Criteria", "SkipRecords", "SearchDirection", "Start"});
    b.Property(
        "Filter", +[](C& rs) { return rs.Filter(); },
        +[](C& rs, Variant v) {
          // A number is one of the filter groups; anything else is criteria.
          if (v.IsNumber()) return rs.Filter(static_cast<FilterGroupEnum>(CLng(v)));
          rs.Filter(CStr(v));
        });
    // AddNew and Update take one field and its value (lists need arrays,
    // which this interface does not carry).
    // AddNew and Update take one field and its value, or an array of fields
    // (names or ordinals) and an array of as many values.
    b.Method("AddNew",
             +[](C& rs, std::optional<ValueOrList> FieldList, std::optional<ValueOrList> Values) {
               if (!FieldList) return rs.AddNew();
               rs.AddNew(FieldNames(rs, FieldList->value, 1),
                         ListOf(Values ? Values->value : Variant(), 2));
             },
             {"FieldList", "Values"});
    b.Method("Update",
             +[](C& rs, std::optional<ValueOrList> Fields, std::optional<ValueOrList> Values) {
               if (!Fields) return rs.Update();
               rs.Update(FieldNames(rs, Fields->value, 1),
                         ListOf(Values ? Values->value : Variant(), 2));
             },
             {"Fields", "Values"});
    b.Method("Delete",
             +[](C& rs, std::optional<int32_t> AffectRecords) {
               rs.Delete(static_cast<AffectEnum>(AffectRecords.value_or(adAffectCurrent)));
             },
             {"AffectRecords"});
    b.Method("CancelUpdate", &C::CancelUpdate);
    b.Method("Cancel", &C::Cancel);
    b.Getter("EditMode", &C::EditMode);
    b.Property(
        "MaxRecords", +[](C& rs) { return rs.MaxRecords(); },
        +[](C& rs, int32_t v) { rs.MaxRecords(v); });
    b.Property(
        "CursorType", +[](C& rs) { return rs.CursorType(); },
        +[](C& rs, CursorTypeEnum v) { rs.CursorType(v); });
    b.Property(
        "LockType", +[](C& rs) { return rs.LockType(); },
        +[](C& rs, LockTypeEnum v) { rs.LockType(v); });
    b.Property(
        "CursorLocation", +[](C& rs) { return rs.CursorLocation(); },
        +[](C& rs, CursorLocationEnum v) { rs.CursorLocation(v); });
    b.Property(
        "Source", +[](C& rs) { return rs.Source(); }, +[](C& rs, std::string v) { rs.Source(v); });
    b.Property(
        "ActiveConnection", +[](C& rs) { return rs.ActiveConnection(); },
        +[](C& rs, const Variant& v) { rs.ActiveConnection(ConnectionArg(v)); });
    b.Getter("FieldCount", &C::FieldCount);
    b.Property(
        "Sort", +[](C& rs) { return rs.Sort(); }, +[](C& rs, std::string v) { rs.Sort(v); });
    b.Method("Clone",
             +[](C& rs, std::optional<LockTypeEnum> LockType) {
               return rs.Clone(LockType.value_or(adLockUnspecified));
             },
             {"LockType"});
    b.Method("Supports", +[](C& rs, int32_t CursorOptions) { return rs.Supports(CursorOptions); },
             {"CursorOptions"});
    b.Method("GetString",
             +[](C& rs, std::optional<int32_t> StringFormat, std::optional<int32_t> NumRows,
                 std::optional<std::string> ColumnDelimeter,
                 std::optional<std::string> RowDelimeter, std::optional<std::string> NullExpr) {
               return rs.GetString(StringFormat.value_or(adClipString),
                                   NumRows.value_or(adGetRowsRest), ColumnDelimeter.value_or("\t"),
                                   RowDelimeter.value_or("\r"), NullExpr.value_or(""));
             },
             {"StringFormat", "NumRows", "ColumnDelimeter", "RowDelimeter", "NullExpr"});
    b.Method("UpdateBatch",
             +[](C& rs, std::optional<int32_t> AffectRecords) {
               rs.UpdateBatch(static_cast<AffectEnum>(AffectRecords.value_or(adAffectAll)));
             },
             {"AffectRecords"});
    b.Method("CancelBatch",
             +[](C& rs, std::optional<int32_t> AffectRecords) {
               rs.CancelBatch(static_cast<AffectEnum>(AffectRecords.value_or(adAffectAll)));
             },
             {"AffectRecords"});
    b.Getter("Status", &C::Status);
    // GetRows: a two-dimensional array, [field, row]; Fields is one field or
    // an array of them.
    b.Method("GetRows",
             +[](C& rs, std::optional<int32_t> Rows, std::optional<Variant> Start,
                 std::optional<ValueOrList> Fields) {
               return Variant(std::make_shared<ValueArray>(
                   rs.GetRows(Rows.value_or(adGetRowsRest), ValueOf(Start.value_or(Variant())),
                              FieldNames(rs, Fields ? Fields->value : Variant(), 3))));
             },
             {"Rows", "Start", "Fields"});
    b.Property(
        "Index", +[](C& rs) { return rs.Index(); }, +[](C& rs, std::string v) { rs.Index(v); });
    // Seek takes the key value, alone or as an array of one.
    b.Method("Seek",
             +[](C& rs, ValueOrList KeyValues, std::optional<int32_t> SeekOption) {
               rs.Seek(ListOf(KeyValues.value, 1),
                       static_cast<SeekEnum>(SeekOption.value_or(adSeekFirstEQ)));
             },
             {"KeyValues", "SeekOption"});
    return t;
  }();
  return table;
}

const MemberTable& ClassTraits<Command>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "Command",
        {"{671CD239-7123-58B1-B056-B7CC81C6B0DD}", "{59361D33-7EB8-5222-8B04-0A8FDBFDB409}", ""},
        true, "A statement with parameters, run on a connection");
    ClassBuilder<Command> b(t);
    using C = Command;
    b.Property(
        "ActiveConnection", +[](C& c) { return c.ActiveConnection(); },
        +[](C& c, const Variant& v) { c.ActiveConnection(ConnectionArg(v)); });
    b.Property(
        "CommandText", +[](C& c) { return c.CommandText(); },
        +[](C& c, std::string v) { c.CommandText(v); });
    b.Property(
        "CommandType", +[](C& c) { return c.CommandType(); },
        +[](C& c, int32_t v) { c.CommandType(v); });
    b.Property(
        "CommandTimeout", +[](C& c) { return c.CommandTimeout(); },
        +[](C& c, int32_t v) { c.CommandTimeout(v); });
    b.Property(
        "Prepared", +[](C& c) { return c.Prepared(); }, +[](C& c, bool v) { c.Prepared(v); });
    b.Getter(
        "Parameters",
        +[](C& c) {
          return std::make_shared<CommandParameters>(CommandParameters{c.shared_from_this()});
        },
        {}, kDispIdValue);
    b.Method("CreateParameter",
             +[](C&, std::optional<std::string> Name, std::optional<DataTypeEnum> Type,
                 std::optional<int32_t> Direction, std::optional<int32_t> Size,
                 std::optional<Variant> Value) {
               return Command::CreateParameter(
                   Name.value_or(""), Type.value_or(adEmpty),
                   static_cast<ParameterDirectionEnum>(Direction.value_or(adParamInput)),
                   Size.value_or(0), ValueOf(Value.value_or(Variant())));
             },
             {"Name", "Type", "Direction", "Size", "Value"});
    // Execute: Parameters, when given, is the value of the one marker or an
    // array of the markers' values; otherwise the Parameters' values go.
    b.Method("Execute",
             +[](C& c, int32_t* RecordsAffected, std::optional<ValueOrList> Parameters,
                 std::optional<int32_t> Options) {
               std::vector<Variant> values = ListOf(Parameters ? Parameters->value : Variant(), 2);
               int32_t affected = 0;
               auto rs = c.Execute(affected, values, Options.value_or(adCmdUnspecified));
               if (RecordsAffected != nullptr) *RecordsAffected = affected;
               return rs;
             },
             {"RecordsAffected", "Parameters", "Options"});
    return t;
  }();
  return table;
}

const MemberTable& ClassTraits<Parameter>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "Parameter",
        {"{AC3C9320-42AA-5B22-A66A-4E0A647ADFFD}", "{50AF4951-B10E-59BA-8A19-AC1996BDD6E3}", ""},
        true, "One parameter of a command");
    ClassBuilder<Parameter> b(t);
    using C = Parameter;
    b.Property(
        "Value", +[](C& p) { return p.Value(); }, +[](C& p, Variant v) { p.Value(ValueOf(v)); },
        kDispIdValue);
    b.Property(
        "Name", +[](C& p) { return p.Name(); }, +[](C& p, std::string v) { p.Name(v); });
    b.Property(
        "Type", +[](C& p) { return p.Type(); }, +[](C& p, DataTypeEnum v) { p.Type(v); });
    b.Property(
        "Direction", +[](C& p) { return static_cast<int32_t>(p.Direction()); },
        +[](C& p, int32_t v) { p.Direction(static_cast<ParameterDirectionEnum>(v)); });
    b.Property(
        "Size", +[](C& p) { return p.Size(); }, +[](C& p, int32_t v) { p.Size(v); });
    return t;
  }();
  return table;
}

const MemberTable& ClassTraits<CommandParameters>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "Parameters",
        {"{518610B9-29CD-5CF3-AF15-D3832E85D5C1}", "{7E4DC84F-A966-5605-A7F0-21813FFAB5D2}", ""},
        false, "The parameters of a command, in the order of its markers");
    ClassBuilder<CommandParameters> b(t);
    using C = CommandParameters;
    b.Getter(
        "Item",
        +[](C& p, const Variant& Index) {
          const Variant index = ValueOf(Index);
          if (index.IsString()) return p.command->Parameters().Item(index.Text());
          return p.command->Parameters().Item(CLng(index));
        },
        {"Index"}, kDispIdValue);
    b.Getter(
        "Count", +[](C& p) { return p.command->Parameters().Count(); });
    b.Method("Append",
             +[](C& p, std::shared_ptr<Parameter> Object) {
               p.command->Parameters().Append(std::move(Object));
             },
             {"Object"});
    b.Method("Delete",
             +[](C& p, const Variant& Index) {
               const Variant index = ValueOf(Index);
               if (index.IsString()) return p.command->Parameters().Delete(index.Text());
               p.command->Parameters().Delete(CLng(index));
             },
             {"Index"});
    b.Method(
        "Refresh", +[](C& p) { p.command->Parameters().Refresh(); });
    b.Getter(
        "NewEnum",
        +[](C& p) {
          std::vector<Variant> items;
          const Parameters& parameters = p.command->Parameters();
          for (int32_t i = 0; i < parameters.Count(); ++i) {
            items.push_back(
                internal::Converter<std::shared_ptr<Parameter>>::Write(parameters.Item(i)));
          }
          return std::make_shared<Enumerator>(std::move(items));
        },
        {}, kDispIdNewEnum);
    return t;
  }();
  return table;
}

const MemberTable& ClassTraits<RecordsetFields>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "Fields",
        {"{202220C3-9FCE-5ED1-A3A0-B9F3C83429E4}", "{23B57E3F-1D28-5E1A-9F0F-EC531440D0A3}", ""},
        false, "The fields of a recordset's current row");
    ClassBuilder<RecordsetFields> b(t);
    using C = RecordsetFields;
    b.Getter(
        "Item",
        +[](C& f, const Variant& Index) {
          const Variant index = ValueOf(Index);
          if (index.IsString()) return FieldNamed(f.recordset, index.Text());
          return FieldAt(f.recordset, CLng(index));
        },
        {"Index"}, kDispIdValue);
    b.Getter(
        "Count", +[](C& f) { return f.recordset->FieldCount(); });
    b.Getter(
        "NewEnum",
        +[](C& f) {
          std::vector<Variant> items;
          for (int32_t i = 0; i < f.recordset->FieldCount(); ++i) {
            items.push_back(internal::Converter<std::shared_ptr<RecordsetField>>::Write(
                FieldAt(f.recordset, i)));
          }
          return std::make_shared<Enumerator>(std::move(items));
        },
        {}, kDispIdNewEnum);
    return t;
  }();
  return table;
}

const MemberTable& ClassTraits<RecordsetField>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "Field",
        {"{4B94F23F-EDAA-5B8E-8187-FC759395E3A7}", "{6EF85796-4BBB-53AC-8EE0-874252C292E0}", ""},
        false, "One field of a recordset's current row");
    ClassBuilder<RecordsetField> b(t);
    using C = RecordsetField;
    b.Property(
        "Value", +[](C& f) { return f.Native().Value(); },
        +[](C& f, Variant v) { f.Native().Value(v); }, kDispIdValue);
    b.Getter(
        "Name", +[](C& f) { return f.Native().Name(); });
    b.Getter(
        "Type", +[](C& f) { return f.Native().Type(); });
    b.Getter(
        "DefinedSize", +[](C& f) { return f.Native().DefinedSize(); });
    b.Getter(
        "OriginalValue", +[](C& f) { return f.Native().OriginalValue(); });
    b.Getter(
        "Status", +[](C& f) { return f.Native().Status(); });
    b.Getter(
        "UnderlyingValue", +[](C& f) { return f.Native().UnderlyingValue(); });
    b.Getter(
        "Precision", +[](C& f) { return static_cast<int32_t>(f.Native().Precision()); });
    b.Getter(
        "NumericScale", +[](C& f) { return static_cast<int32_t>(f.Native().NumericScale()); });
    b.Getter(
        "Attributes", +[](C& f) { return f.Native().Attributes(); });
    return t;
  }();
  return table;
}

const kelvary::Error& internal::ConnectionError::Native() const {
  const std::vector<Error>& errors = connection->Errors();
  if (index < 0 || index >= static_cast<int32_t>(errors.size())) {
    throw ItemNotFoundError("", "");
  }
  return errors[static_cast<size_t>(index)];
}

const MemberTable& ClassTraits<ConnectionErrors>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "Errors",
        {"{A60B160A-51C7-55C4-96E4-A1E9608DB809}", "{F21A219B-7881-5514-B438-C0C6DD0D1BF6}", ""},
        false, "The errors of a connection's last failed operation");
    ClassBuilder<ConnectionErrors> b(t);
    using C = ConnectionErrors;
    b.Getter(
        "Item",
        +[](C& e, int32_t Index) {
          auto error = std::make_shared<ConnectionError>(ConnectionError{e.connection, Index});
          error->Native();  // an index out of range raises here
          return error;
        },
        {"Index"}, kDispIdValue);
    b.Getter(
        "Count", +[](C& e) { return static_cast<int32_t>(e.connection->Errors().size()); });
    b.Getter(
        "NewEnum",
        +[](C& e) {
          std::vector<Variant> items;
          for (size_t i = 0; i < e.connection->Errors().size(); ++i) {
            items.push_back(internal::Converter<std::shared_ptr<ConnectionError>>::Write(
                std::make_shared<ConnectionError>(
                    ConnectionError{e.connection, static_cast<int32_t>(i)})));
          }
          return std::make_shared<Enumerator>(std::move(items));
        },
        {}, kDispIdNewEnum);
    return t;
  }();
  return table;
}

const MemberTable& ClassTraits<ConnectionError>::Table() {
  static const MemberTable table = [] {
    MemberTable t(
        "Error",
        {"{1F47D588-6DB0-5B2A-A926-21539BA97AE8}", "{E4EAC51C-75CE-5AB4-B225-45F2438E9D31}", ""},
        false, "One error of a connection's last failed operation");
    ClassBuilder<ConnectionError> b(t);
    using C = ConnectionError;
    b.Getter(
        "Description", +[](C& e) { return e.Native().Description(); }, {}, kDispIdValue);
    b.Getter(
        "Number", +[](C& e) { return e.Native().Number(); });
    b.Getter(
        "Source", +[](C& e) { return e.Native().Source(); });
    b.Getter(
        "SQLState", +[](C& e) { return e.Native().SqlState(); });
    b.Getter(
        "NativeError", +[](C& e) { return e.Native().NativeError(); });
    return t;
  }();
  return table;
}

}  // namespace kelvary::automation
