// InfoLink: the service object of the system. The host creates one, sets its
// settings, gives it its connections (or data-source names through
// ConnectDefault) and from then on calls it for every record read, statement
// execution, look-up, list fill, new key, safe delete and SQL clause.
//
// InfoLink is a thin facade: it owns the settings, the connections, the
// event sinks and the subsystem objects (the metadata cache, the value
// look-ups, search links and multi-selects, list filling, key generation,
// safe delete, sample data), and each of their members forwards in one line
// to the subsystem that holds its logic. The subsystems reach the service
// object only through the narrow ServicePort (InfoLinkPort). The service
// core (connections, record access, events) is here; the clause builders
// are pure functions in sql/.
//
// Expected problems never throw: the member shows the system's message
// through the message channel (MsgBox) and returns the empty value of its
// result. Platform failures that the system does not trap reach the caller
// as Error.
//
// Threads: one thread uses an InfoLink. ActiveInfoLink() is per thread: the
// InfoLink on which ConnectDefault last succeeded on this thread, cleared
// when that object is destroyed. It does not own the object.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kelvary/platform/Connection.h"
#include "kelvary/platform/DataAccessTypes.h"
#include "kelvary/platform/Date.h"
#include "kelvary/platform/HostControls.h"
#include "kelvary/platform/KeyedCollection.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/platform/Variant.h"
#include "kelvary/service/Enums.h"
#include "kelvary/service/InfoLinkEvents.h"

namespace kelvary {

class InfoLinkPort;
namespace lookups {
class MetadataCache;
class ValueLookups;
class SearchLinks;
class ListFilling;
}  // namespace lookups
namespace records {
class KeyGenerator;
class SafeDelete;
class SampleData;
}  // namespace records

class InfoLink {
 public:
  InfoLink();
  // Releases in the system's order: stamps the user session's logout time
  // (when AppDataXion is set), closes the caches, clears ActiveInfoLink,
  // closes the sequence-generator connection it opened. Never throws.
  ~InfoLink();
  InfoLink(const InfoLink&) = delete;
  InfoLink& operator=(const InfoLink&) = delete;

  // ---- Settings (plain settings are fields) ----
  int32_t CurrentUserSessionID = 0;
  int32_t LogFileEntrySetting = lfetNone;  // LogFileEntryTypes bits
  DBRoles DBRole = dbrStandalone;
  std::string ORDERFIELD1 = "FirstName";
  std::string ORDERFIELD2 = "MiddleName";
  std::string ORDERFIELD3 = "LastName";
  StdDBTypes MainDBType = sdbAccess;
  int32_t CurrentPhysicalLocationID = 0;
  int32_t CurrPhysLocIDPrefix = 0;
  CodeGenMethods GenCodeMethod = cgmDefault;
  int32_t CurrentUserID = 0;
  bool UseSafeDelete = false;
  bool EnableMultiLocationDataTransfer = false;
  bool AuditTrailForAdmin = false;
  std::string DefSystemFile;
  std::string DefMainDataFile;

  // CoreDataTable: stored upper-cased.
  const std::string& CoreDataTable() const { return core_data_table_; }
  void CoreDataTable(const std::string& value);

  // The main (practice) and system (configuration) connections, shared by
  // reference; setting one opens or closes nothing.
  const std::shared_ptr<Connection>& AppDataXion() const { return app_data_xion_; }
  void AppDataXion(std::shared_ptr<Connection> connection) {
    app_data_xion_ = std::move(connection);
  }
  const std::shared_ptr<Connection>& ConfigsXion() const { return configs_xion_; }
  void ConfigsXion(std::shared_ptr<Connection> connection) {
    configs_xion_ = std::move(connection);
  }

  // ---- Events ----
  // Advise subscribes a sink; Unadvise removes it. Sinks are held until
  // removed or until this object ends.
  void Advise(std::shared_ptr<InfoLinkEvents> sink);
  void Unadvise(const std::shared_ptr<InfoLinkEvents>& sink);

  // ---- Service object and connections ----
  // ConnectDefault opens the main connection (unless MainXion is given) from
  // MainDSN, or from DirectXectString when that is given and not empty, and
  // the system connection (unless SysXion is given) from SystemDSN; in mode
  // cgmPhysicalLocationWise also the sequence-generator connection; then
  // loads the metadata caches and makes this object the ActiveInfoLink.
  // False, with no message, when opening or loading fails.
  bool ConnectDefault(std::shared_ptr<Connection>& MainXion, std::shared_ptr<Connection>& SysXion,
                      const std::string& MainDSN, const std::string& SystemDSN,
                      const std::optional<std::string>& DirectXectString = std::nullopt);
  // InterpretUserDataLocation: which connection holds the Users table.
  ProjectDataSources InterpretUserDataLocation();

  // ---- Record access and SQL history ----
  // FillRecordSet opens SQLStmt into rs (created when empty, closed first
  // when open) on the connection of SourceofData; True when rows may be read,
  // positioned on the first.
  bool FillRecordSet(ProjectDataSources SourceofData, std::shared_ptr<Recordset>& rs,
                     const std::string& SQLStmt, CursorTypeEnum CursorType, LockTypeEnum LocKType);
  // ExecuteSQL runs a statement that returns no rows; always True (failures
  // are shown, not returned).
  bool ExecuteSQL(ProjectDataSources SourceofData, const std::string& SQLStmt);
  // WriteSQLHistory: the history hook; records nothing itself and passes the
  // call to the observer installed with SetSQLHistoryObserver, if any.
  void WriteSQLHistory(LogFileEntryTypes DoAction, const std::string& SqlStr);
  using SQLHistoryObserver = std::function<void(LogFileEntryTypes, const std::string&)>;
  void SetSQLHistoryObserver(SQLHistoryObserver observer);
  void SafelyCloseRecordSet(const std::shared_ptr<Recordset>& CloseThis);
  bool IsValidRecord(const std::shared_ptr<Recordset>& Recs);
  void RemoveNonNulls(const std::shared_ptr<Recordset>& rs);
  void AssignFieldValuesToAllRecs(const std::shared_ptr<Recordset>& Recs,
                                  const std::string& FldName, const Variant& FldValue);
  std::string InterpretRecordErrorStatus(ProjectDataSources srcData, const Error* ByrefErrObject,
                                         const std::shared_ptr<Recordset>& RecToCheck);

  // ---- Dialect helpers (pure; read MainDBType and the ORDERFIELD settings) ----
  std::string GetSQLEntityName(const std::string& SrcStr) const;
  std::string GetInvertedCommaSafeString(const std::string& OrgStr) const;
  std::string FormatDateToDBStr(Date SrcDate) const;
  std::string CreateCheckForNullStmt(const std::string& FldName) const;
  std::string GetNameClause(const std::string& TblName, const std::string& PrefixFld,
                            const std::string& alias) const;
  std::string CreateAlphaClause(const std::string& ComparisionField, int16_t tb) const;
  std::string GetCombinedPhone(const std::string& Ph1, const std::string& Ph2) const;

  // ---- Comparison and date-range clauses ----
  std::string GetComparisionClause(const std::string& FldName, FieldDataTypes DType,
                                   CompareTypes CompareType, int32_t SUBOperator,
                                   const Variant& CompareValue1, const Variant& CompareValue2,
                                   bool bReverse, bool bUseXtal);
  std::string GetBooleanCompareClause(const std::string& FldName, CompareTypes CompareType,
                                      bool booleanVal, bool bUseXtal);
  std::string GetComparisionClauseForDefEqual(const std::string& FldName, GeneralDataTypes GDType,
                                              const Variant& CompareValue, bool bReverse,
                                              bool bUseXtal);
  std::string GetDateSqlFromValues(const std::string& FieldName, DateRangeSpecs CurrentSpecs,
                                   const Variant& DateFrom, const Variant& DateTo,
                                   std::optional<bool> bUseXtalFmla = std::nullopt) const;
  std::string GetDateSqlFromControls(const std::string& FieldName, DateRangeSpecs CurrentSpecs,
                                     const DateControl& DateFrom, const DateControl& DateTo) const;

  // ---- Metadata cache and search links ----
  // Optional out-arguments are pointers: nullptr means "not passed".
  void InitLists(bool bFSLnx, bool bMSlcts);
  int32_t GetSearchLinkDetails(int32_t SearchLinkID, std::string& SearchDisplayField,
                               std::string& SearchValueField, int32_t& SearchTable,
                               std::string& SearchTableName, ProjectDataSources& SourceData,
                               std::string& SQLStmt, std::string& SelectCaption,
                               bool* HasManyEntries = nullptr, int16_t* DefNewScreenID = nullptr,
                               std::string* SecondaryDisplayField = nullptr);
  std::string GetDescription(int32_t SearchLinkID, int32_t CurrValue,
                             std::optional<int16_t> NumCharSpace = std::nullopt);
  ControlTypes GetSrchlinkControlType(int32_t SrchLnk, Variant& HasLotsaEntries);
  int32_t GetDefinitionTable(int32_t SearchLink);

  // ---- Value look-ups ----
  Variant GetCoreName(int32_t CoreCode, const std::string& TblName,
                      std::optional<int16_t> NumCharSpace = std::nullopt);
  std::string GetDescriptionFromCode(
      int32_t CurrValue, const std::string& TableName, const std::string& descriptionField,
      const std::string& ValueField, ProjectDataSources Dtsrc, const std::string& SQLStmt,
      std::optional<int16_t> NumCharSpace = std::nullopt,
      const std::optional<std::string>& SecondaryDisplayField = std::nullopt);
  Variant GetCorrespondingValue(int32_t SearchValue, const std::string& TableName,
                                const std::string& OutPutField, const std::string& Searchfield,
                                ProjectDataSources Dtsrc, const std::string& SQLStmt);
  Variant GetCorrespondingValueFromText(const std::string& SearchText, const std::string& TableName,
                                        const std::string& OutPutField,
                                        const std::string& Searchfield, ProjectDataSources Dtsrc,
                                        const std::string& SQLStmt);
  int32_t GetHierarchicalParentNonZeroLongValue(int32_t StartFromID, const std::string& TblName,
                                                const std::string& ParentFieldName,
                                                const std::string& ValueFieldName,
                                                ProjectDataSources DatSrc);
  bool IsCheckListAttributeEnabled(ProjectDataSources SourceofData, const std::string& TableName,
                                   const std::string& AttributeField, int32_t AttributeValue,
                                   const std::string& SourceField, int32_t SrcFieldValue);
  int32_t GetTableIDFromName(const std::string& TblName);

  // ---- Multi-select lists ----
  std::string SupplyMultiListdata(int32_t MultiListID, std::string& DescriptionTbl,
                                  std::string& SqlStr, std::string& DisplayField,
                                  std::string& ValueField, int32_t* SrchLinkId = nullptr);
  int32_t GetMultiListParentWnd(int32_t MultiListID, int32_t* SrchLnkID = nullptr);
  int32_t GetMultiSettings(int32_t MultiListID, std::string& StorageTableName,
                           std::string* ParentTableName = nullptr);
  void FillWithMultiListOptions(int32_t ParentSrchLnk, ListControl& fcb);
  std::string GetMultiSelectSQL(int32_t NegativeMultiOption, std::string& SrchDisplayFld,
                                std::string& SrchValueField, ProjectDataSources& SourceofData);
  std::string GetMultiString(int32_t MultiLinkId, int32_t ParentID);

  // ---- List-control filling ----
  void FillComboWithOptions(ListControl& cb, int32_t SearchLinkID);
  void FillComboWithSQL(ListControl& cb, ProjectDataSources SourceData, const std::string& SQLStmt,
                        const std::string& SearchDisplayField, const std::string& SearchValueField,
                        bool bSelectFirst, std::optional<bool> bDontClear = std::nullopt);
  void AddRecsToCombo(const std::shared_ptr<Recordset>& Recs, const std::string& DescField,
                      const std::string& ValFld, ListControl& fc);
  void RefreshHierarchicalList(ProjectDataSources SourceofData, ListControl& fc,
                               const std::string& DescFld, const std::string& IDFld,
                               const std::string& TableName, const std::string& FilterString);
  void FillComboWithValidDataTypes(ListControl& cb, int32_t DataFormatUsageID);

  // ---- Key generation ----
  int32_t GenerateNumericCode(ProjectDataSources SourceofData, const std::string& Table_Name,
                              const std::string& Field_Name,
                              const std::optional<std::string>& LimitString = std::nullopt);
  double GenerateNumericCodeAsDouble(ProjectDataSources SourceofData, const std::string& Table_Name,
                                     const std::string& Field_Name,
                                     const std::optional<std::string>& LimitString = std::nullopt);
  void UpdateTableMaxID(const std::string& Table_Name, int32_t MaxCd);
  std::string GetRegNo(const std::string& FName, const std::string& MName,
                       const std::string& LName);

  // ---- Safe delete and action history ----
  int32_t SafeDeleteRecord(ProjectDataSources SourceofData, int32_t DTableId,
                           const std::string& TblName, int32_t UserId, int32_t KeyValue1,
                           int32_t KeyValue2, const std::string& KeyField1,
                           const std::string& KeyField2, std::shared_ptr<Recordset>& RealRecs);
  void MassSafeDeleteEntries(ProjectDataSources SourceofData, int32_t DTableId,
                             const std::string& TblName, int32_t UserId, int32_t KeyValue1,
                             int32_t KeyValue2, const std::string& ConditionSQL,
                             const std::string& KeyField1, const std::string& KeyField2,
                             std::shared_ptr<Recordset>* RealRecs = nullptr);
  std::string GetKeyFieldSQL(bool bOnlyWhereClause, const std::string& TableName, double KeyValue1,
                             double KeyValue2, const std::string& KeyField1,
                             const std::string& KeyField2);
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

  // ---- Sample data ----
  // DoesSampleDataExist: some data table is marked as holding demonstration
  // rows (DataTables.FirstSampleDataID above 0).
  bool DoesSampleDataExist();
  // DeleteSampleData removes the demonstration rows from every marked table,
  // asks whether to reset the marks, clears SelectedRecords and confirms.
  void DeleteSampleData();

 private:
  friend class InfoLinkPort;  // the subsystems' door: connections and events

  // The connection that SourceofData names, or nullptr (pdsRawData and any
  // other value).
  std::shared_ptr<Connection> ConnectionFor(ProjectDataSources SourceofData) const;
  void CloseUserSession();
  // Raise calls f(sink) on every subscribed sink, in order of subscription.
  template <class F>
  void Raise(F&& f) {
    const auto sinks = sinks_;  // a handler may subscribe or unsubscribe
    for (const auto& sink : sinks)
      f(*sink);
  }

  std::string core_data_table_;
  std::shared_ptr<Connection> app_data_xion_;
  std::shared_ptr<Connection> configs_xion_;
  std::vector<std::shared_ptr<InfoLinkEvents>> sinks_;
  SQLHistoryObserver history_observer_;
  std::shared_ptr<Recordset> spare_recordset_;
  std::shared_ptr<Connection> sequence_generator_xion_;

  // The subsystems, in the order they depend on each other; each borrows
  // port_ and the ones before it.
  std::unique_ptr<InfoLinkPort> port_;
  std::unique_ptr<lookups::MetadataCache> metadata_;
  std::unique_ptr<lookups::ValueLookups> values_;
  std::unique_ptr<lookups::SearchLinks> search_links_;
  std::unique_ptr<lookups::ListFilling> lists_;
  std::unique_ptr<records::KeyGenerator> keys_;
  std::unique_ptr<records::SafeDelete> safe_delete_;
  std::unique_ptr<records::SampleData> sample_data_;
};

// ActiveInfoLink: the InfoLink that last connected on this thread, or nullptr.
InfoLink* ActiveInfoLink();

namespace internal {
// For the service object itself (and tests that need an active object
// without a database): sets this thread's ActiveInfoLink.
void SetActiveInfoLink(InfoLink* link);
}  // namespace internal

}  // namespace kelvary
