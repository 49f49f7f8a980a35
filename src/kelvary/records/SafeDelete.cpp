// Safe delete and the record-action history: rows of the application's data
// tables are deleted, or marked as deleted (RecordStatus 1) when
// UseSafeDelete is on, and every action is handed to the host through the
// Before/AfterPostActionHistory events; the host's handlers write the audit
// rows. CheckAllowRecordDelete, BeforeDeleteRecord and AfterDeleteRecord are
// declared for hosts and raised by no member.
//
// Choices made where the system leaves them open:
// - The table-key collection holds table IDs in the dynamic-tables and
//   location-wise modes only, so only those two modes resolve a table's ID
//   from it; the others (and a table the collection does not know yet, or
//   knows as 0) look it up by name in DataTables.
// - A non-zero table ID given to the action history is used as it is.
// - bContinue starts True; the message after a failure is "Error Encountered
//   while Transferring Records", a line break and the error's description.
// - A unique-key field is one whose Flags carry dtfpUniqueValue or
//   dtfpUniqueValueCombination.
// - PostRecordActionHistory returns True when the action reached the
//   AfterPostActionHistory handlers, False otherwise.
#include "kelvary/records/SafeDelete.h"

#include <cstdint>
#include <exception>
#include <string>
#include <type_traits>

#include "kelvary/lookups/internal/LookupQuery.h"
#include "kelvary/platform/Messages.h"

namespace kelvary::records {
namespace {

// The key value of a row's key field as the history expects it; 0 for an
// unused field.
int32_t KeyValueOf(const std::shared_ptr<Recordset>& rs, const std::string& field) {
  return field.empty() ? 0 : CLng(rs->Fields(field).Value());
}

}  // namespace

std::string SafeDelete::GetKeyFieldSQL(bool bOnlyWhereClause, const std::string& TableName,
                                       double KeyValue1, double KeyValue2,
                                       const std::string& KeyField1, const std::string& KeyField2) {
  if (KeyField1.empty() && KeyField2.empty()) {
    MsgBox("No Key Fields defined for table : " + TableName);
    return "";
  }
  // Key values are numbers, never quoted.
  std::string where;
  if (!KeyField1.empty()) where = " ( " + KeyField1 + " = " + NumberText(KeyValue1) + " ) ";
  if (!KeyField2.empty()) {
    where += std::string(where.empty() ? "" : " AND ") + " ( " + KeyField2 + " = " +
             NumberText(KeyValue2) + " ) ";
  }
  if (bOnlyWhereClause) return where;
  return "Select * from " + TableName + " Where " + where;
}

std::string SafeDelete::GetShowableRecordClause(const std::string& TableName,
                                                bool bAddAndToIt) const {
  if (!services_.Settings().UseSafeDelete) return "";
  return std::string(bAddAndToIt ? " AND " : "") + " ( " + TableName +
         (TableName.empty() ? "" : ".") + "RecordStatus" + " <> " + "1" + " ) ";
}

int32_t SafeDelete::SafeDeleteRecord(ProjectDataSources SourceofData, int32_t DTableId,
                                     const std::string& TblName, int32_t UserId, int32_t KeyValue1,
                                     int32_t KeyValue2, const std::string& KeyField1,
                                     const std::string& KeyField2,
                                     std::shared_ptr<Recordset>& RealRecs) {
  const bool safe = services_.Settings().UseSafeDelete;
  if (!RealRecs) {
    const std::string where =
        GetKeyFieldSQL(true, TblName, KeyValue1, KeyValue2, KeyField1, KeyField2);
    // Two blanks before "where" in the DELETE: the system's own text.
    const std::string sql =
        safe ? "Update " + TblName + " set RecordStatus = " + "1" + " where " + where
             : "Delete from " + TblName + "  where " + where;
    // Always the main data, whatever SourceofData says: a fixed choice.
    services_.ExecuteSQL(pdsmaindata, sql);
  } else if (safe) {
    // The caller's recordset is positioned on the row.
    RealRecs->Fields("RecordStatus").Value(Variant(int32_t{1}));
    RealRecs->Update();
  } else {
    RealRecs->Delete();
  }
  // Marked as deleted even when the row was removed: hosts' audit trails
  // rely on this action type for single deletes.
  PostRecordActionHistory(SourceofData, dbratMarkedAsDeleted, DTableId, TblName, UserId, KeyValue1,
                          KeyValue2, KeyField1, KeyField2);
  return 0;
}

void SafeDelete::MassSafeDeleteEntries(ProjectDataSources SourceofData, int32_t DTableId,
                                       const std::string& TblName, int32_t UserId,
                                       int32_t KeyValue1, int32_t KeyValue2,
                                       const std::string& ConditionSQL,
                                       const std::string& KeyField1, const std::string& KeyField2,
                                       std::shared_ptr<Recordset>* RealRecs) {
  (void)UserId;  // every row's action is posted with user -1, on purpose
  // The resolved ID serves the unique-key look-up only; the history
  // receives DTableId as it came in.
  const int32_t table_id = DTableId != 0 ? DTableId : TableIdOf(TblName);

  std::string field1 = KeyField1;
  std::string field2 = KeyField2;
  if (field1.empty() && field2.empty()) FindUniqueKeyFields(table_id, field1, field2);

  std::shared_ptr<Recordset> rs;
  const bool own_rows = RealRecs == nullptr || *RealRecs == nullptr;
  if (own_rows) {
    const std::string sql =
        ConditionSQL.empty() ? GetKeyFieldSQL(false, TblName, KeyValue1, KeyValue2, field1, field2)
                             : "Select * from " + TblName + " where " + ConditionSQL;
    services_.FillRecordSet(SourceofData, rs, sql, adOpenStatic, adLockOptimistic);
  } else {
    rs = *RealRecs;
  }

  if (field1.empty() && field2.empty()) {
    MsgBox("Unique keys not found for " + TblName);
    return;
  }
  if (!rs || rs->State() != adStateOpen || rs->RecordCount() < 1) return;

  if (!services_.Settings().UseSafeDelete) {
    // The action is posted before its row goes, so that the host can still
    // read it.
    while (rs->RecordCount() >= 1) {
      rs->MoveFirst();
      const int32_t value1 = KeyValueOf(rs, field1);
      const int32_t value2 = KeyValueOf(rs, field2);
      PostRecordActionHistory(SourceofData, dbratPhysicallyDeleted, DTableId, TblName, -1, value1,
                              value2, field1, field2);
      rs->Delete();
    }
  } else {
    rs->MoveFirst();
    while (!rs->Eof()) {
      const int32_t value1 = KeyValueOf(rs, field1);
      const int32_t value2 = KeyValueOf(rs, field2);
      rs->Fields("RecordStatus").Value(Variant(int32_t{1}));
      rs->Update();
      PostRecordActionHistory(SourceofData, dbratMarkedAsDeleted, DTableId, TblName, -1, value1,
                              value2, field1, field2);
      rs->MoveNext();
    }
  }
  CloseRecordsetSafely(rs);
}

Variant SafeDelete::PostRecordActionHistory(ProjectDataSources SourceofData,
                                            DBRecordActionTypes DBActionType, int32_t TableId,
                                            const std::string& TableName, int32_t UserId,
                                            int32_t KeyValue1, int32_t KeyValue2,
                                            const std::string& KeyField1,
                                            const std::string& KeyField2) {
  return PostActionHistory<int32_t>(SourceofData, DBActionType, TableId, TableName, UserId,
                                    KeyValue1, KeyValue2, KeyField1, KeyField2);
}

Variant SafeDelete::PostRecordActionHistoryAsDouble(ProjectDataSources SourceofData,
                                                    DBRecordActionTypes DBActionType,
                                                    int32_t TableId, const std::string& TableName,
                                                    int32_t UserId, double KeyValue1,
                                                    double KeyValue2, const std::string& KeyField1,
                                                    const std::string& KeyField2) {
  return PostActionHistory<double>(SourceofData, DBActionType, TableId, TableName, UserId,
                                   KeyValue1, KeyValue2, KeyField1, KeyField2);
}

template <class Key>
Variant SafeDelete::PostActionHistory(ProjectDataSources SourceofData,
                                      DBRecordActionTypes DBActionType, int32_t TableId,
                                      const std::string& TableName, int32_t UserId, Key KeyValue1,
                                      Key KeyValue2, const std::string& KeyField1,
                                      const std::string& KeyField2) {
  constexpr bool kIsLong = std::is_same_v<Key, int32_t>;
  // Configuration rows are not audited.
  if (SourceofData == pdssystem) return Variant(false);
  try {
    if (TableId == 0) {
      TableId = TableIdOf(TableName);
      if (TableId == 0) return Variant(false);
    }
    bool bContinue = true;
    services_.Raise([&](InfoLinkEvents& sink) {
      if constexpr (kIsLong) {
        sink.BeforePostActionHistory(SourceofData, DBActionType, TableId, TableName, UserId,
                                     KeyValue1, KeyValue2, KeyField1, KeyField2, bContinue);
      } else {
        sink.BeforePostActionHistoryAsDouble(SourceofData, DBActionType, TableId, TableName, UserId,
                                             KeyValue1, KeyValue2, KeyField1, KeyField2, bContinue);
      }
    });
    if (!bContinue) return Variant(false);
    services_.Raise([&](InfoLinkEvents& sink) {
      if constexpr (kIsLong) {
        sink.AfterPostActionHistory(SourceofData, DBActionType, TableId, TableName, UserId,
                                    KeyValue1, KeyValue2, KeyField1, KeyField2);
      } else {
        sink.AfterPostActionHistoryAsDouble(SourceofData, DBActionType, TableId, TableName, UserId,
                                            KeyValue1, KeyValue2, KeyField1, KeyField2);
      }
    });
    return Variant(true);
  } catch (const std::exception& e) {
    MsgBox(std::string("Error Encountered while Transferring Records") + "\r\n" + e.what());
    return Variant(false);
  }
}

void SafeDelete::FindUniqueKeyFields(int32_t DataTableID, std::string& KeyField1,
                                     std::string& KeyField2) {
  const std::string sql = "Select * from DataTablefields where (Flags > 0 ) and ( DataTableID = " +
                          std::to_string(DataTableID) + " ) ";
  lookups::LookupQuery query(services_, pdssystem, sql);
  if (!query.Found()) return;
  for (Recordset& rs = query.Rows(); !rs.Eof(); rs.MoveNext()) {
    const int32_t flags = CLng(rs.Fields("Flags").Value());
    if ((flags & (dtfpUniqueValue | dtfpUniqueValueCombination)) == 0) continue;
    const std::string name = TextOf(rs.Fields("FieldName").Value());
    if (KeyField1.empty()) {
      KeyField1 = name;
    } else if (KeyField2.empty()) {
      KeyField2 = name;
    } else {
      // The first two fields stay the key.
      MsgBox("Not handled more than 2 fields for a unique value combination");
      break;
    }
  }
}

int32_t SafeDelete::TableIdOf(const std::string& TableName) {
  const CodeGenMethods method = services_.Settings().GenCodeMethod;
  if (method == cgmDynamicTables || method == cgmPhysicalLocationWise) {
    if (const auto entry = cache_.FindTableKey(TableName)) {
      const int32_t id = CLng(*entry);
      if (id != 0) return id;
    }
  }
  return values_.GetTableIDFromName(TableName);
}

}  // namespace kelvary::records
