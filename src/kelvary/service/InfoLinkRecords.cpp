// The key, safe-delete and sample-data members of InfoLink: each forwards to
// the subsystem that holds its logic (records/).
#include "kelvary/records/KeyGenerator.h"
#include "kelvary/records/SafeDelete.h"
#include "kelvary/records/SampleData.h"
#include "kelvary/service/InfoLink.h"

namespace kelvary {

int32_t InfoLink::GenerateNumericCode(ProjectDataSources SourceofData,
                                      const std::string& Table_Name, const std::string& Field_Name,
                                      const std::optional<std::string>& LimitString) {
  return keys_->GenerateNumericCode(SourceofData, Table_Name, Field_Name, LimitString);
}

double InfoLink::GenerateNumericCodeAsDouble(ProjectDataSources SourceofData,
                                             const std::string& Table_Name,
                                             const std::string& Field_Name,
                                             const std::optional<std::string>& LimitString) {
  return keys_->GenerateNumericCodeAsDouble(SourceofData, Table_Name, Field_Name, LimitString);
}

void InfoLink::UpdateTableMaxID(const std::string& Table_Name, int32_t MaxCd) {
  keys_->UpdateTableMaxID(Table_Name, MaxCd);
}

std::string InfoLink::GetRegNo(const std::string& FName, const std::string& MName,
                               const std::string& LName) {
  return keys_->GetRegNo(FName, MName, LName);
}

int32_t InfoLink::SafeDeleteRecord(ProjectDataSources SourceofData, int32_t DTableId,
                                   const std::string& TblName, int32_t UserId, int32_t KeyValue1,
                                   int32_t KeyValue2, const std::string& KeyField1,
                                   const std::string& KeyField2,
                                   std::shared_ptr<Recordset>& RealRecs) {
  return safe_delete_->SafeDeleteRecord(SourceofData, DTableId, TblName, UserId, KeyValue1,
                                        KeyValue2, KeyField1, KeyField2, RealRecs);
}

void InfoLink::MassSafeDeleteEntries(ProjectDataSources SourceofData, int32_t DTableId,
                                     const std::string& TblName, int32_t UserId, int32_t KeyValue1,
                                     int32_t KeyValue2, const std::string& ConditionSQL,
                                     const std::string& KeyField1, const std::string& KeyField2,
                                     std::shared_ptr<Recordset>* RealRecs) {
  safe_delete_->MassSafeDeleteEntries(SourceofData, DTableId, TblName, UserId, KeyValue1, KeyValue2,
                                      ConditionSQL, KeyField1, KeyField2, RealRecs);
}

std::string InfoLink::GetKeyFieldSQL(bool bOnlyWhereClause, const std::string& TableName,
                                     double KeyValue1, double KeyValue2,
                                     const std::string& KeyField1, const std::string& KeyField2) {
  return records::SafeDelete::GetKeyFieldSQL(bOnlyWhereClause, TableName, KeyValue1, KeyValue2,
                                             KeyField1, KeyField2);
}

std::string InfoLink::GetShowableRecordClause(const std::string& TableName,
                                              bool bAddAndToIt) const {
  return safe_delete_->GetShowableRecordClause(TableName, bAddAndToIt);
}

Variant InfoLink::PostRecordActionHistory(ProjectDataSources SourceofData,
                                          DBRecordActionTypes DBActionType, int32_t TableId,
                                          const std::string& TableName, int32_t UserId,
                                          int32_t KeyValue1, int32_t KeyValue2,
                                          const std::string& KeyField1,
                                          const std::string& KeyField2) {
  return safe_delete_->PostRecordActionHistory(SourceofData, DBActionType, TableId, TableName,
                                               UserId, KeyValue1, KeyValue2, KeyField1, KeyField2);
}

Variant InfoLink::PostRecordActionHistoryAsDouble(ProjectDataSources SourceofData,
                                                  DBRecordActionTypes DBActionType, int32_t TableId,
                                                  const std::string& TableName, int32_t UserId,
                                                  double KeyValue1, double KeyValue2,
                                                  const std::string& KeyField1,
                                                  const std::string& KeyField2) {
  return safe_delete_->PostRecordActionHistoryAsDouble(SourceofData, DBActionType, TableId,
                                                       TableName, UserId, KeyValue1, KeyValue2,
                                                       KeyField1, KeyField2);
}

bool InfoLink::DoesSampleDataExist() {
  return sample_data_->DoesSampleDataExist();
}

void InfoLink::DeleteSampleData() {
  sample_data_->DeleteSampleData();
}

}  // namespace kelvary
