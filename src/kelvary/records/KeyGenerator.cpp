// Key generation: new numeric keys by the method GenCodeMethod names, the
// counters behind them, and patient registration numbers.
//
// The Long and Double forms share one body (a template on the key type);
// they differ only where the system makes them differ: the counter column
// of a location (CurrentMaxID or CurrentMaxIDDouble), the event raised to
// the host, and the Long form of the max-collection mode.
#include "kelvary/records/KeyGenerator.h"

#include <cstdint>
#include <optional>
#include <string>
#include <type_traits>

#include "kelvary/lookups/internal/LookupQuery.h"
#include "kelvary/platform/Date.h"
#include "kelvary/platform/Messages.h"
#include "kelvary/platform/Text.h"
#include "kelvary/platform/Transaction.h"
#include "kelvary/platform/internal/drivers/Driver.h"

namespace kelvary::records {
namespace {

using lookups::LookupQuery;

template <class Key>
constexpr bool kIsLong = std::is_same_v<Key, int32_t>;

// KeyOf: a value as a key of the form's type, by the one conversion module
// (a Long that does not fit raises Overflow).
template <class Key>
Key KeyOf(const Variant& value) {
  if constexpr (kIsLong<Key>) {
    return CLng(value);
  } else {
    return CDbl(value);
  }
}

template <class Key>
Key PlusOne(Key key) {
  return KeyOf<Key>(Variant(static_cast<double>(key) + 1.0));
}

template <class Key>
std::string KeyText(Key key) {
  if constexpr (kIsLong<Key>) {
    return std::to_string(key);
  } else {
    return NumberText(key);
  }
}

// The location counter is advanced in one transaction with its read, so
// that two processes asking at the same time never receive the same key.
// Where the transaction takes the write lock when it begins (SQLite's BEGIN
// IMMEDIATE), the read cannot be overtaken by another writer. A server
// locks rows, not the database, and only when they are written: there the
// counter's row is first updated to itself (lock_sql), so that a second
// process waits at that point until the first has committed, and then reads
// the advanced counter. When that update finds no row, the read that
// follows is not protected (ReadIsProtected). Without an open connection
// there is nothing to lock: the reads then fail and report as they always
// did.
class CounterTransaction {
 public:
  CounterTransaction(const std::shared_ptr<Connection>& connection, const std::string& lock_sql) {
    if (connection && connection->State() == adStateOpen) {
      connection_ = connection;
      transaction_.emplace(*connection);
      if (!connection->Driver().BeginLocksForWriting()) Lock(lock_sql);
    }
  }

  // ReadIsProtected: false when the counter's row could not be locked
  // because there was none; a row read after that was created meanwhile by
  // another process, unlocked.
  bool ReadIsProtected() const { return protected_; }

  // Commit keeps the counter; a failed commit is rolled back when the
  // object goes and its error reaches the caller.
  void Commit() {
    if (transaction_) transaction_->Commit();
  }

 private:
  // Lock: a lock that fails (no such table) leaves a clean transaction, so
  // that the system's own read fails and reports in its own words.
  void Lock(const std::string& lock_sql) {
    try {
      int32_t locked = 0;
      connection_->Execute(lock_sql, locked);
      protected_ = locked > 0;
    } catch (const Error&) {
      transaction_->Restart();
    }
  }

  std::shared_ptr<Connection> connection_;  // kept for as long as the transaction
  std::optional<Transaction> transaction_;  // rolls back unless committed
  bool protected_ = true;
};

// FirstLetter: the first character of text (a whole UTF-8 sequence), in
// upper case.
std::string FirstLetter(const std::string& text) {
  if (text.empty()) return "";
  const auto lead = static_cast<unsigned char>(text[0]);
  size_t length = 1;
  if (lead >= 0xF0) {
    length = 4;
  } else if (lead >= 0xE0) {
    length = 3;
  } else if (lead >= 0xC0) {
    length = 2;
  }
  std::string letter = text.substr(0, length);
  if (length == 1 && lead >= 'a' && lead <= 'z') letter[0] = static_cast<char>(lead - 'a' + 'A');
  return letter;
}

}  // namespace

// ---- The public members ----

int32_t KeyGenerator::GenerateNumericCode(ProjectDataSources SourceofData,
                                          const std::string& Table_Name,
                                          const std::string& Field_Name,
                                          const std::optional<std::string>& LimitString) {
  return GenerateCode<int32_t>(SourceofData, Table_Name, Field_Name, LimitString);
}

double KeyGenerator::GenerateNumericCodeAsDouble(ProjectDataSources SourceofData,
                                                 const std::string& Table_Name,
                                                 const std::string& Field_Name,
                                                 const std::optional<std::string>& LimitString) {
  return GenerateCode<double>(SourceofData, Table_Name, Field_Name, LimitString);
}

void KeyGenerator::UpdateTableMaxID(const std::string& Table_Name, int32_t MaxCd) {
  switch (services_.Settings().GenCodeMethod) {
    case cgmMaxCollection:
      cache_.StoreTableKey(Table_Name, Variant(MaxCd));
      break;
    case cgmDynamicTables: {
      cache_.MoveToDataTableRow(Table_Name);
      Recordset& data_tables = *cache_.DataTables();
      data_tables.Fields("MaxID").Value(Variant(MaxCd));
      data_tables.Update();
      break;
    }
    default:
      MsgBox("Not Handled !");
      break;
  }
}

std::string KeyGenerator::GetRegNo(const std::string& FName, const std::string& MName,
                                   const std::string& LName) {
  std::string prefix = FirstLetter(FName);
  size_t letters = 0;  // how many leading characters are not the counter
  const std::string middle = TrimBlanks(MName);
  if (!middle.empty()) {
    prefix += FirstLetter(middle) + FirstLetter(LName);
    letters = 3;
  } else {
    // The "0" is read back as part of the counter, which so has five
    // digits behind two letters: kept, numbers already issued rely on it.
    prefix += FirstLetter(LName) + "0";
    letters = 2;
  }
  // "*" whatever the database: the drivers read it as the LIKE wild card.
  const std::string sql =
      "Select Max(regnno) as MaxVal from patients where regnno like '" + prefix + "*'";
  int32_t next = 1;
  LookupQuery query(services_, pdsmaindata, sql);
  if (query.Found()) {
    const Variant& highest = query.Rows().Fields("MaxVaL").Value();
    if (!highest.IsNull()) {
      const std::string text = TextOf(highest);
      if (text.size() > letters) next = PlusOne(CLng(Variant(text.substr(letters))));
    }
  }
  return prefix + FormatNumber(next, std::string(7 - letters, '0'));
}

// ---- The named steps ----

int32_t KeyGenerator::GetNextMaxValue(ProjectDataSources SourceofData,
                                      const std::string& Table_Name, const std::string& Field_Name,
                                      const std::optional<std::string>& LimitString) {
  return NextMaxValue<int32_t>(SourceofData, Table_Name, Field_Name, LimitString);
}

double KeyGenerator::GetNextMaxValueAsDouble(ProjectDataSources SourceofData,
                                             const std::string& Table_Name,
                                             const std::string& Field_Name,
                                             const std::optional<std::string>& LimitString) {
  return NextMaxValue<double>(SourceofData, Table_Name, Field_Name, LimitString);
}

// The data source and field of the location forms are the system's
// arguments; the counter table says where and what.
int32_t KeyGenerator::GetNextLocationKey(ProjectDataSources /*SourceofData*/,
                                         const std::string& Table_Name,
                                         const std::string& /*Field_Name*/,
                                         const std::optional<std::string>& LimitString) {
  return NextLocationKey<int32_t>(Table_Name, LimitString);
}

double KeyGenerator::GetNextLocationKeyAsDouble(ProjectDataSources /*SourceofData*/,
                                                const std::string& Table_Name,
                                                const std::string& /*Field_Name*/,
                                                const std::optional<std::string>& LimitString) {
  return NextLocationKey<double>(Table_Name, LimitString);
}

template <class Key>
Key KeyGenerator::GenerateCode(ProjectDataSources SourceofData, const std::string& Table_Name,
                               const std::string& Field_Name,
                               const std::optional<std::string>& LimitString) {
  // The named steps of the Long or the Double form.
  const auto next_max = [&] {
    if constexpr (kIsLong<Key>) {
      return GetNextMaxValue(SourceofData, Table_Name, Field_Name, LimitString);
    } else {
      return GetNextMaxValueAsDouble(SourceofData, Table_Name, Field_Name, LimitString);
    }
  };
  switch (services_.Settings().GenCodeMethod) {
    case cgmDefault:
    case cgmRawGenerate:
    case cgmDCOM:
    case cgmStoredProcedure:
      return next_max();

    case cgmMaxCollection: {
      Key n = 0;
      if constexpr (kIsLong<Key>) {
        // Deliberate: the Long form reads the table's name as the last key,
        // not the collection's entry, so it works only for numeric names
        // and raises a type mismatch for any other.
        n = CLng(Variant(Table_Name));
      } else {
        n = CDbl(*cache_.TableKey(Table_Name));
      }
      n = n == 0 ? next_max() : PlusOne(n);
      cache_.StoreTableKey(Table_Name, Variant(n));
      return n;
    }

    case cgmDynamicTables: {
      const bool id_known = cache_.MoveToDataTableRow(Table_Name);
      Recordset& data_tables = *cache_.DataTables();
      const Key n =
          id_known ? PlusOne(KeyOf<Key>(data_tables.Fields("MaxID").Value())) : next_max();
      data_tables.Fields("MaxID").Value(Variant(n));
      data_tables.Update();
      return n;
    }

    case cgmNetworkServer: {
      Key value = 0;
      const std::string limit = LimitString.value_or("");
      services_.Raise([&](InfoLinkEvents& sink) {
        if constexpr (kIsLong<Key>) {
          sink.RequestRemoteNextID(value, SourceofData, Table_Name, Field_Name, limit);
        } else {
          sink.RequestRemoteNextIDAsDouble(value, SourceofData, Table_Name, Field_Name, limit);
        }
      });
      return value;
    }

    case cgmPhysicalLocationWise:
      // System data has no location counters.
      if (SourceofData == pdssystem) return next_max();
      if constexpr (kIsLong<Key>) {
        return GetNextLocationKey(SourceofData, Table_Name, Field_Name, LimitString);
      } else {
        return GetNextLocationKeyAsDouble(SourceofData, Table_Name, Field_Name, LimitString);
      }
  }
  return 0;  // a method the system does not know makes no key
}

template <class Key>
Key KeyGenerator::NextMaxValue(ProjectDataSources SourceofData, const std::string& Table_Name,
                               const std::string& Field_Name,
                               const std::optional<std::string>& LimitString) {
  if (Table_Name.empty()) {
    MsgBox("No Table mentioned");
    return 0;
  }
  std::string sql = "Select Max(" + Field_Name + ")  As Max_Value From " + Table_Name;
  // A limit of five characters or fewer is ignored, deliberately.
  if (LimitString && LimitString->size() > 5) sql += " Where " + *LimitString;
  Key highest = 0;
  LookupQuery query(services_, SourceofData, sql);
  if (query.Found()) {
    const Variant& value = query.Rows().Fields("Max_Value").Value();
    if (!value.IsNull()) highest = KeyOf<Key>(value);
  }
  return PlusOne(highest);
}

template <class Key>
Key KeyGenerator::NextLocationKey(const std::string& Table_Name,
                                  const std::optional<std::string>& LimitString) {
  const int32_t table_id = CLng(*cache_.TableKey(Table_Name));
  if (LimitString && !LimitString->empty()) {
    MsgBox("Limit String : " + *LimitString + " not supported for Table Name :" + Table_Name);
  }
  const std::string counter = kIsLong<Key> ? "CurrentMaxID" : "CurrentMaxIDDouble";
  const ServiceSettings settings = services_.Settings();
  const int32_t location_id = settings.CurrentPhysicalLocationID;
  const std::string sql =
      "Select * from LocationTableKeys where (DataTableID = " + std::to_string(table_id) +
      " )  and ( LocationID = " + std::to_string(location_id) + " ) ";

  const std::string where = " where (DataTableID = " + std::to_string(table_id) +
                            " )  and ( LocationID = " + std::to_string(location_id) + " ) ";
  // One attempt; none when the location's row appeared after the lock was
  // tried, so that its read was not protected.
  const auto advance = [&]() -> std::optional<Key> {
    CounterTransaction transaction(
        services_.ConnectionFor(pdsSequenceGenerator),
        "Update LocationTableKeys set " + counter + " = " + counter + where);
    Key count = 0;
    bool found = false;
    {
      LookupQuery read(services_, pdsSequenceGenerator, sql);
      found = read.Found();
      if (found) {
        if (!transaction.ReadIsProtected()) return std::nullopt;
        const Variant& stored = read.Rows().Fields(counter).Value();
        count = PlusOne(stored.IsNull() ? Key{0} : KeyOf<Key>(stored));
      }
    }
    if (!found) {
      LookupQuery row(services_, pdsSequenceGenerator, sql, adOpenStatic, adLockOptimistic);
      Recordset& rs = row.Rows();
      rs.AddNew();
      rs.Fields("DataTableId").Value(Variant(table_id));
      rs.Fields("LocationID").Value(Variant(location_id));
      rs.Fields(counter).Value(Variant(Key{1}));
      rs.Update();
      count = 1;
    }
    // A counter stored as Null or 0 gives 1 and is left as it is, so it gives
    // 1 again next time: intended, a new row already holds 1.
    if (count > 1) {
      services_.ExecuteSQL(pdsSequenceGenerator,
                           "Update LocationTableKeys set " + counter + " = " + counter +
                               " + 1 where (DataTableID = " + std::to_string(table_id) +
                               " )  and ( LocationID = " +
                               std::to_string(settings.CurrentPhysicalLocationID) + " ) ");
    }
    transaction.Commit();
    return count;
  };
  std::optional<Key> count;
  for (int attempt = 1; !count; ++attempt) {
    try {
      count = advance();
    } catch (const Error& e) {
      // On a server two processes may both find no row for the location and
      // both insert one: the second insert fails on the key once the first
      // has committed, and reading again finds that row.
      if (attempt > 2 || e.SqlState().rfind("23", 0) != 0) throw;
    }
  }

  const int32_t prefix = services_.Settings().CurrPhysLocIDPrefix;
  if (prefix == 0) MsgBox("CurrPhysLocIDPrefix = 0 ");
  // The prefix's digits followed by the counter's: prefix 12, counter 345
  // give 12345.
  return KeyOf<Key>(Variant(std::to_string(prefix) + KeyText(*count)));
}

}  // namespace kelvary::records
