// SafeDelete: rows of the application's data tables deleted, or marked as
// deleted (RecordStatus 1) when the UseSafeDelete setting is on, and every
// action handed to the host through the Before/AfterPostActionHistory
// events, whose handlers write the audit rows. Also the key-field clause and
// the clause that hides marked rows.
//
// Borrows the ServicePort, the metadata cache (table IDs in the modes that
// keep them) and the value look-ups (a table's ID by name), which must
// outlive it. One thread.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kelvary/lookups/MetadataCache.h"
#include "kelvary/lookups/ValueLookups.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/service/internal/ServicePort.h"

namespace kelvary::records {

class SafeDelete {
 public:
  SafeDelete(ServicePort& services, lookups::MetadataCache& cache, lookups::ValueLookups& values)
      : services_(services), cache_(cache), values_(values) {}

  int32_t SafeDeleteRecord(ProjectDataSources SourceofData, int32_t DTableId,
                           const std::string& TblName, int32_t UserId, int32_t KeyValue1,
                           int32_t KeyValue2, const std::string& KeyField1,
                           const std::string& KeyField2, std::shared_ptr<Recordset>& RealRecs);
  void MassSafeDeleteEntries(ProjectDataSources SourceofData, int32_t DTableId,
                             const std::string& TblName, int32_t UserId, int32_t KeyValue1,
                             int32_t KeyValue2, const std::string& ConditionSQL,
                             const std::string& KeyField1, const std::string& KeyField2,
                             std::shared_ptr<Recordset>* RealRecs);
  static std::string GetKeyFieldSQL(bool bOnlyWhereClause, const std::string& TableName,
                                    double KeyValue1, double KeyValue2,
                                    const std::string& KeyField1, const std::string& KeyField2);
  std::string GetShowableRecordClause(const std::string& TableName, bool bAddAndToIt) const;
  Variant PostRecordActionHistory(ProjectDataSources SourceofData, DBRecordActionTypes DBActionType,
                                  int32_t TableId, const std::string& TableName, int32_t UserId,
                                  int32_t KeyValue1, int32_t KeyValue2,
                                  const std::string& KeyField1, const std::string& KeyField2);
  Variant PostRecordActionHistoryAsDouble(ProjectDataSources SourceofData,
                                          DBRecordActionTypes DBActionType, int32_t TableId,
                                          const std::string& TableName, int32_t UserId,
                                          double KeyValue1, double KeyValue2,
                                          const std::string& KeyField1,
                                          const std::string& KeyField2);

 private:
  // FindUniqueKeyFields: the first two fields of the table's unique key
  // (DataTableFields flagged dtfpUniqueValue or dtfpUniqueValueCombination).
  void FindUniqueKeyFields(int32_t DataTableID, std::string& KeyField1, std::string& KeyField2);
  // TableIdOf: a table's DataTables ID; 0, after "Use Dravent to define",
  // when it is not defined.
  int32_t TableIdOf(const std::string& TableName);
  template <class Key>
  Variant PostActionHistory(ProjectDataSources SourceofData, DBRecordActionTypes DBActionType,
                            int32_t TableId, const std::string& TableName, int32_t UserId,
                            Key KeyValue1, Key KeyValue2, const std::string& KeyField1,
                            const std::string& KeyField2);

  ServicePort& services_;
  lookups::MetadataCache& cache_;
  lookups::ValueLookups& values_;
};

}  // namespace kelvary::records
