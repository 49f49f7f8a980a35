// DualInterfaces.cpp: the vtable side of the library's dual interfaces.
// Generated from the member tables by kelvary-idl; do not edit by hand.
// clang-format off
#include "kelvary/automation/com/DualFace.h"

namespace kelvary::com {

namespace {

class Dual_InfoLink final : public DualFace<_InfoLink> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE get_CurrentUserSessionID(LONG* r) override { return Get(1, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_CurrentUserSessionID(LONG v) override { return Put(1, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_LogFileEntrySetting(LONG* r) override { return Get(2, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_LogFileEntrySetting(LONG v) override { return Put(2, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_DBRole(::DBRoles* r) override { return Get(3, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_DBRole(::DBRoles v) override { return Put(3, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ORDERFIELD1(BSTR* r) override { return Get(4, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ORDERFIELD1(BSTR v) override { return Put(4, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ORDERFIELD2(BSTR* r) override { return Get(5, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ORDERFIELD2(BSTR v) override { return Put(5, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ORDERFIELD3(BSTR* r) override { return Get(6, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ORDERFIELD3(BSTR v) override { return Put(6, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_MainDBType(::StdDBTypes* r) override { return Get(7, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_MainDBType(::StdDBTypes v) override { return Put(7, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_CurrentPhysicalLocationID(LONG* r) override { return Get(8, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_CurrentPhysicalLocationID(LONG v) override { return Put(8, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_CurrPhysLocIDPrefix(LONG* r) override { return Get(9, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_CurrPhysLocIDPrefix(LONG v) override { return Put(9, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_GenCodeMethod(::CodeGenMethods* r) override { return Get(10, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_GenCodeMethod(::CodeGenMethods v) override { return Put(10, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_CurrentUserID(LONG* r) override { return Get(11, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_CurrentUserID(LONG v) override { return Put(11, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_UseSafeDelete(VARIANT_BOOL* r) override { return Get(12, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_UseSafeDelete(VARIANT_BOOL v) override { return Put(12, Result{}, {In<VT_BOOL>(v)}); }
  HRESULT STDMETHODCALLTYPE get_EnableMultiLocationDataTransfer(VARIANT_BOOL* r) override { return Get(13, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_EnableMultiLocationDataTransfer(VARIANT_BOOL v) override { return Put(13, Result{}, {In<VT_BOOL>(v)}); }
  HRESULT STDMETHODCALLTYPE get_AuditTrailForAdmin(VARIANT_BOOL* r) override { return Get(14, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_AuditTrailForAdmin(VARIANT_BOOL v) override { return Put(14, Result{}, {In<VT_BOOL>(v)}); }
  HRESULT STDMETHODCALLTYPE get_DefSystemFile(BSTR* r) override { return Get(15, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_DefSystemFile(BSTR v) override { return Put(15, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_DefMainDataFile(BSTR* r) override { return Get(16, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_DefMainDataFile(BSTR v) override { return Put(16, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_CoreDataTable(BSTR* r) override { return Get(17, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_CoreDataTable(BSTR v) override { return Put(17, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_AppDataXion(_Connection** r) override { return Get(18, OutObject(r), {}); }
  HRESULT STDMETHODCALLTYPE putref_AppDataXion(_Connection* v) override { return PutRef(18, Result{}, {In<VT_DISPATCH>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ConfigsXion(_Connection** r) override { return Get(19, OutObject(r), {}); }
  HRESULT STDMETHODCALLTYPE putref_ConfigsXion(_Connection* v) override { return PutRef(19, Result{}, {In<VT_DISPATCH>(v)}); }
  HRESULT STDMETHODCALLTYPE ConnectDefault(_Connection** a1, _Connection** a2, BSTR a3, BSTR a4, VARIANT* a5, VARIANT_BOOL* r) override { return Method(20, Out<VT_BOOL>(r), {Ref<VT_DISPATCH>(a1), Ref<VT_DISPATCH>(a2), In<VT_BSTR>(a3), In<VT_BSTR>(a4), OptionalRef(a5)}); }
  HRESULT STDMETHODCALLTYPE InterpretUserDataLocation(::ProjectDataSources* r) override { return Method(21, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE FillRecordSet(::ProjectDataSources a1, _Recordset** a2, BSTR a3, ::CursorTypeEnum a4, ::LockTypeEnum a5, VARIANT_BOOL* r) override { return Method(22, Out<VT_BOOL>(r), {In<VT_I4>(a1), Ref<VT_DISPATCH>(a2), In<VT_BSTR>(a3), In<VT_I4>(a4), In<VT_I4>(a5)}); }
  HRESULT STDMETHODCALLTYPE ExecuteSQL(::ProjectDataSources a1, BSTR a2, VARIANT_BOOL* r) override { return Method(23, Out<VT_BOOL>(r), {In<VT_I4>(a1), In<VT_BSTR>(a2)}); }
  HRESULT STDMETHODCALLTYPE WriteSQLHistory(::LogFileEntryTypes a1, BSTR a2) override { return Method(24, Result{}, {In<VT_I4>(a1), In<VT_BSTR>(a2)}); }
  HRESULT STDMETHODCALLTYPE SafelyCloseRecordSet(_Recordset* a1) override { return Method(25, Result{}, {In<VT_DISPATCH>(a1)}); }
  HRESULT STDMETHODCALLTYPE IsValidRecord(_Recordset* a1, VARIANT_BOOL* r) override { return Method(26, Out<VT_BOOL>(r), {In<VT_DISPATCH>(a1)}); }
  HRESULT STDMETHODCALLTYPE RemoveNonNulls(_Recordset* a1) override { return Method(27, Result{}, {In<VT_DISPATCH>(a1)}); }
  HRESULT STDMETHODCALLTYPE AssignFieldValuesToAllRecs(_Recordset* a1, BSTR a2, VARIANT a3) override { return Method(28, Result{}, {In<VT_DISPATCH>(a1), In<VT_BSTR>(a2), In<VT_VARIANT>(a3)}); }
  HRESULT STDMETHODCALLTYPE InterpretRecordErrorStatus(::ProjectDataSources a1, VARIANT a2, _Recordset* a3, BSTR* r) override { return Method(29, Out<VT_BSTR>(r), {In<VT_I4>(a1), In<VT_VARIANT>(a2), In<VT_DISPATCH>(a3)}); }
  HRESULT STDMETHODCALLTYPE GetSQLEntityName(BSTR a1, BSTR* r) override { return Method(30, Out<VT_BSTR>(r), {In<VT_BSTR>(a1)}); }
  HRESULT STDMETHODCALLTYPE GetInvertedCommaSafeString(BSTR a1, BSTR* r) override { return Method(31, Out<VT_BSTR>(r), {In<VT_BSTR>(a1)}); }
  HRESULT STDMETHODCALLTYPE FormatDateToDBStr(DATE a1, BSTR* r) override { return Method(32, Out<VT_BSTR>(r), {In<VT_DATE>(a1)}); }
  HRESULT STDMETHODCALLTYPE CreateCheckForNullStmt(BSTR a1, BSTR* r) override { return Method(33, Out<VT_BSTR>(r), {In<VT_BSTR>(a1)}); }
  HRESULT STDMETHODCALLTYPE GetNameClause(BSTR a1, BSTR a2, BSTR a3, BSTR* r) override { return Method(34, Out<VT_BSTR>(r), {In<VT_BSTR>(a1), In<VT_BSTR>(a2), In<VT_BSTR>(a3)}); }
  HRESULT STDMETHODCALLTYPE CreateAlphaClause(BSTR a1, short a2, BSTR* r) override { return Method(35, Out<VT_BSTR>(r), {In<VT_BSTR>(a1), In<VT_I2>(a2)}); }
  HRESULT STDMETHODCALLTYPE GetCombinedPhone(BSTR a1, BSTR a2, BSTR* r) override { return Method(36, Out<VT_BSTR>(r), {In<VT_BSTR>(a1), In<VT_BSTR>(a2)}); }
  HRESULT STDMETHODCALLTYPE GetComparisionClause(BSTR a1, ::FieldDataTypes a2, ::CompareTypes a3, LONG a4, VARIANT a5, VARIANT a6, VARIANT_BOOL a7, VARIANT_BOOL a8, BSTR* r) override { return Method(37, Out<VT_BSTR>(r), {In<VT_BSTR>(a1), In<VT_I4>(a2), In<VT_I4>(a3), In<VT_I4>(a4), In<VT_VARIANT>(a5), In<VT_VARIANT>(a6), In<VT_BOOL>(a7), In<VT_BOOL>(a8)}); }
  HRESULT STDMETHODCALLTYPE GetBooleanCompareClause(BSTR a1, ::CompareTypes a2, VARIANT_BOOL a3, VARIANT_BOOL a4, BSTR* r) override { return Method(38, Out<VT_BSTR>(r), {In<VT_BSTR>(a1), In<VT_I4>(a2), In<VT_BOOL>(a3), In<VT_BOOL>(a4)}); }
  HRESULT STDMETHODCALLTYPE GetComparisionClauseForDefEqual(BSTR a1, ::GeneralDataTypes a2, VARIANT a3, VARIANT_BOOL a4, VARIANT_BOOL a5, BSTR* r) override { return Method(39, Out<VT_BSTR>(r), {In<VT_BSTR>(a1), In<VT_I4>(a2), In<VT_VARIANT>(a3), In<VT_BOOL>(a4), In<VT_BOOL>(a5)}); }
  HRESULT STDMETHODCALLTYPE GetDateSqlFromValues(BSTR a1, ::DateRangeSpecs a2, VARIANT a3, VARIANT a4, VARIANT a5, BSTR* r) override { return Method(40, Out<VT_BSTR>(r), {In<VT_BSTR>(a1), In<VT_I4>(a2), In<VT_VARIANT>(a3), In<VT_VARIANT>(a4), In<VT_VARIANT>(a5)}); }
  HRESULT STDMETHODCALLTYPE GetDateSqlFromControls(BSTR a1, ::DateRangeSpecs a2, IDispatch* a3, IDispatch* a4, BSTR* r) override { return Method(41, Out<VT_BSTR>(r), {In<VT_BSTR>(a1), In<VT_I4>(a2), In<VT_DISPATCH>(a3), In<VT_DISPATCH>(a4)}); }
  HRESULT STDMETHODCALLTYPE InitLists(VARIANT_BOOL a1, VARIANT_BOOL a2) override { return Method(42, Result{}, {In<VT_BOOL>(a1), In<VT_BOOL>(a2)}); }
  HRESULT STDMETHODCALLTYPE GetSearchLinkDetails(LONG a1, BSTR* a2, BSTR* a3, LONG* a4, BSTR* a5, ::ProjectDataSources* a6, BSTR* a7, BSTR* a8, VARIANT* a9, VARIANT* a10, VARIANT* a11, LONG* r) override { return Method(43, Out<VT_I4>(r), {In<VT_I4>(a1), Ref<VT_BSTR>(a2), Ref<VT_BSTR>(a3), Ref<VT_I4>(a4), Ref<VT_BSTR>(a5), Ref<VT_I4>(a6), Ref<VT_BSTR>(a7), Ref<VT_BSTR>(a8), OptionalRef(a9), OptionalRef(a10), OptionalRef(a11)}); }
  HRESULT STDMETHODCALLTYPE GetDescription(LONG a1, LONG a2, VARIANT a3, BSTR* r) override { return Method(44, Out<VT_BSTR>(r), {In<VT_I4>(a1), In<VT_I4>(a2), In<VT_VARIANT>(a3)}); }
  HRESULT STDMETHODCALLTYPE GetSrchlinkControlType(LONG a1, VARIANT* a2, ::ControlTypes* r) override { return Method(45, Out<VT_I4>(r), {In<VT_I4>(a1), Ref<VT_VARIANT>(a2)}); }
  HRESULT STDMETHODCALLTYPE GetDefinitionTable(LONG a1, LONG* r) override { return Method(46, Out<VT_I4>(r), {In<VT_I4>(a1)}); }
  HRESULT STDMETHODCALLTYPE GetCoreName(LONG a1, BSTR a2, VARIANT a3, VARIANT* r) override { return Method(47, Out<VT_VARIANT>(r), {In<VT_I4>(a1), In<VT_BSTR>(a2), In<VT_VARIANT>(a3)}); }
  HRESULT STDMETHODCALLTYPE GetDescriptionFromCode(LONG a1, BSTR a2, BSTR a3, BSTR a4, ::ProjectDataSources a5, BSTR a6, VARIANT a7, VARIANT a8, BSTR* r) override { return Method(48, Out<VT_BSTR>(r), {In<VT_I4>(a1), In<VT_BSTR>(a2), In<VT_BSTR>(a3), In<VT_BSTR>(a4), In<VT_I4>(a5), In<VT_BSTR>(a6), In<VT_VARIANT>(a7), In<VT_VARIANT>(a8)}); }
  HRESULT STDMETHODCALLTYPE GetCorrespondingValue(LONG a1, BSTR a2, BSTR a3, BSTR a4, ::ProjectDataSources a5, BSTR a6, VARIANT* r) override { return Method(49, Out<VT_VARIANT>(r), {In<VT_I4>(a1), In<VT_BSTR>(a2), In<VT_BSTR>(a3), In<VT_BSTR>(a4), In<VT_I4>(a5), In<VT_BSTR>(a6)}); }
  HRESULT STDMETHODCALLTYPE GetCorrespondingValueFromText(BSTR a1, BSTR a2, BSTR a3, BSTR a4, ::ProjectDataSources a5, BSTR a6, VARIANT* r) override { return Method(50, Out<VT_VARIANT>(r), {In<VT_BSTR>(a1), In<VT_BSTR>(a2), In<VT_BSTR>(a3), In<VT_BSTR>(a4), In<VT_I4>(a5), In<VT_BSTR>(a6)}); }
  HRESULT STDMETHODCALLTYPE GetHierarchicalParentNonZeroLongValue(LONG a1, BSTR a2, BSTR a3, BSTR a4, ::ProjectDataSources a5, LONG* r) override { return Method(51, Out<VT_I4>(r), {In<VT_I4>(a1), In<VT_BSTR>(a2), In<VT_BSTR>(a3), In<VT_BSTR>(a4), In<VT_I4>(a5)}); }
  HRESULT STDMETHODCALLTYPE IsCheckListAttributeEnabled(::ProjectDataSources a1, BSTR a2, BSTR a3, LONG a4, BSTR a5, LONG a6, VARIANT_BOOL* r) override { return Method(52, Out<VT_BOOL>(r), {In<VT_I4>(a1), In<VT_BSTR>(a2), In<VT_BSTR>(a3), In<VT_I4>(a4), In<VT_BSTR>(a5), In<VT_I4>(a6)}); }
  HRESULT STDMETHODCALLTYPE GetTableIDFromName(BSTR a1, LONG* r) override { return Method(53, Out<VT_I4>(r), {In<VT_BSTR>(a1)}); }
  HRESULT STDMETHODCALLTYPE SupplyMultiListdata(LONG a1, BSTR* a2, BSTR* a3, BSTR* a4, BSTR* a5, VARIANT* a6, BSTR* r) override { return Method(54, Out<VT_BSTR>(r), {In<VT_I4>(a1), Ref<VT_BSTR>(a2), Ref<VT_BSTR>(a3), Ref<VT_BSTR>(a4), Ref<VT_BSTR>(a5), OptionalRef(a6)}); }
  HRESULT STDMETHODCALLTYPE GetMultiListParentWnd(LONG a1, VARIANT* a2, LONG* r) override { return Method(55, Out<VT_I4>(r), {In<VT_I4>(a1), OptionalRef(a2)}); }
  HRESULT STDMETHODCALLTYPE GetMultiSettings(LONG a1, BSTR* a2, VARIANT* a3, LONG* r) override { return Method(56, Out<VT_I4>(r), {In<VT_I4>(a1), Ref<VT_BSTR>(a2), OptionalRef(a3)}); }
  HRESULT STDMETHODCALLTYPE FillWithMultiListOptions(LONG a1, IDispatch* a2) override { return Method(57, Result{}, {In<VT_I4>(a1), In<VT_DISPATCH>(a2)}); }
  HRESULT STDMETHODCALLTYPE GetMultiSelectSQL(LONG a1, BSTR* a2, BSTR* a3, ::ProjectDataSources* a4, BSTR* r) override { return Method(58, Out<VT_BSTR>(r), {In<VT_I4>(a1), Ref<VT_BSTR>(a2), Ref<VT_BSTR>(a3), Ref<VT_I4>(a4)}); }
  HRESULT STDMETHODCALLTYPE GetMultiString(LONG a1, LONG a2, BSTR* r) override { return Method(59, Out<VT_BSTR>(r), {In<VT_I4>(a1), In<VT_I4>(a2)}); }
  HRESULT STDMETHODCALLTYPE FillComboWithOptions(IDispatch* a1, LONG a2) override { return Method(60, Result{}, {In<VT_DISPATCH>(a1), In<VT_I4>(a2)}); }
  HRESULT STDMETHODCALLTYPE FillComboWithSQL(IDispatch* a1, ::ProjectDataSources a2, BSTR a3, BSTR a4, BSTR a5, VARIANT_BOOL a6, VARIANT a7) override { return Method(61, Result{}, {In<VT_DISPATCH>(a1), In<VT_I4>(a2), In<VT_BSTR>(a3), In<VT_BSTR>(a4), In<VT_BSTR>(a5), In<VT_BOOL>(a6), In<VT_VARIANT>(a7)}); }
  HRESULT STDMETHODCALLTYPE AddRecsToCombo(_Recordset* a1, BSTR a2, BSTR a3, IDispatch* a4) override { return Method(62, Result{}, {In<VT_DISPATCH>(a1), In<VT_BSTR>(a2), In<VT_BSTR>(a3), In<VT_DISPATCH>(a4)}); }
  HRESULT STDMETHODCALLTYPE RefreshHierarchicalList(::ProjectDataSources a1, IDispatch* a2, BSTR a3, BSTR a4, BSTR a5, BSTR a6) override { return Method(63, Result{}, {In<VT_I4>(a1), In<VT_DISPATCH>(a2), In<VT_BSTR>(a3), In<VT_BSTR>(a4), In<VT_BSTR>(a5), In<VT_BSTR>(a6)}); }
  HRESULT STDMETHODCALLTYPE FillComboWithValidDataTypes(IDispatch* a1, LONG a2) override { return Method(64, Result{}, {In<VT_DISPATCH>(a1), In<VT_I4>(a2)}); }
  HRESULT STDMETHODCALLTYPE GenerateNumericCode(::ProjectDataSources a1, BSTR a2, BSTR a3, VARIANT a4, LONG* r) override { return Method(65, Out<VT_I4>(r), {In<VT_I4>(a1), In<VT_BSTR>(a2), In<VT_BSTR>(a3), In<VT_VARIANT>(a4)}); }
  HRESULT STDMETHODCALLTYPE GenerateNumericCodeAsDouble(::ProjectDataSources a1, BSTR a2, BSTR a3, VARIANT a4, double* r) override { return Method(66, Out<VT_R8>(r), {In<VT_I4>(a1), In<VT_BSTR>(a2), In<VT_BSTR>(a3), In<VT_VARIANT>(a4)}); }
  HRESULT STDMETHODCALLTYPE UpdateTableMaxID(BSTR a1, LONG a2) override { return Method(67, Result{}, {In<VT_BSTR>(a1), In<VT_I4>(a2)}); }
  HRESULT STDMETHODCALLTYPE GetRegNo(BSTR a1, BSTR a2, BSTR a3, BSTR* r) override { return Method(68, Out<VT_BSTR>(r), {In<VT_BSTR>(a1), In<VT_BSTR>(a2), In<VT_BSTR>(a3)}); }
  HRESULT STDMETHODCALLTYPE SafeDeleteRecord(::ProjectDataSources a1, LONG a2, BSTR a3, LONG a4, LONG a5, LONG a6, BSTR a7, BSTR a8, _Recordset** a9, LONG* r) override { return Method(69, Out<VT_I4>(r), {In<VT_I4>(a1), In<VT_I4>(a2), In<VT_BSTR>(a3), In<VT_I4>(a4), In<VT_I4>(a5), In<VT_I4>(a6), In<VT_BSTR>(a7), In<VT_BSTR>(a8), Ref<VT_DISPATCH>(a9)}); }
  HRESULT STDMETHODCALLTYPE MassSafeDeleteEntries(::ProjectDataSources a1, LONG a2, BSTR a3, LONG a4, LONG a5, LONG a6, BSTR a7, BSTR a8, BSTR a9, VARIANT* a10) override { return Method(70, Result{}, {In<VT_I4>(a1), In<VT_I4>(a2), In<VT_BSTR>(a3), In<VT_I4>(a4), In<VT_I4>(a5), In<VT_I4>(a6), In<VT_BSTR>(a7), In<VT_BSTR>(a8), In<VT_BSTR>(a9), OptionalRef(a10)}); }
  HRESULT STDMETHODCALLTYPE GetKeyFieldSQL(VARIANT_BOOL a1, BSTR a2, double a3, double a4, BSTR a5, BSTR a6, BSTR* r) override { return Method(71, Out<VT_BSTR>(r), {In<VT_BOOL>(a1), In<VT_BSTR>(a2), In<VT_R8>(a3), In<VT_R8>(a4), In<VT_BSTR>(a5), In<VT_BSTR>(a6)}); }
  HRESULT STDMETHODCALLTYPE GetShowableRecordClause(BSTR a1, VARIANT_BOOL a2, BSTR* r) override { return Method(72, Out<VT_BSTR>(r), {In<VT_BSTR>(a1), In<VT_BOOL>(a2)}); }
  HRESULT STDMETHODCALLTYPE PostRecordActionHistory(::ProjectDataSources a1, ::DBRecordActionTypes a2, LONG a3, BSTR a4, LONG a5, LONG a6, LONG a7, BSTR a8, BSTR a9, VARIANT* r) override { return Method(73, Out<VT_VARIANT>(r), {In<VT_I4>(a1), In<VT_I4>(a2), In<VT_I4>(a3), In<VT_BSTR>(a4), In<VT_I4>(a5), In<VT_I4>(a6), In<VT_I4>(a7), In<VT_BSTR>(a8), In<VT_BSTR>(a9)}); }
  HRESULT STDMETHODCALLTYPE PostRecordActionHistoryAsDouble(::ProjectDataSources a1, ::DBRecordActionTypes a2, LONG a3, BSTR a4, LONG a5, double a6, double a7, BSTR a8, BSTR a9, VARIANT* r) override { return Method(74, Out<VT_VARIANT>(r), {In<VT_I4>(a1), In<VT_I4>(a2), In<VT_I4>(a3), In<VT_BSTR>(a4), In<VT_I4>(a5), In<VT_R8>(a6), In<VT_R8>(a7), In<VT_BSTR>(a8), In<VT_BSTR>(a9)}); }
  HRESULT STDMETHODCALLTYPE DoesSampleDataExist(VARIANT_BOOL* r) override { return Method(75, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE DeleteSampleData() override { return Method(76, Result{}, {}); }
};

class Dual_QueryInterpretor final : public DualFace<_QueryInterpretor> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE get_QueryBuildMethod(::QueryBuildMethods* r) override { return Get(1, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_QueryBuildMethod(::QueryBuildMethods v) override { return Put(1, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_DataSupplier(short* r) override { return Get(2, Out<VT_I2>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_DataSupplier(short v) override { return Put(2, Result{}, {In<VT_I2>(v)}); }
  HRESULT STDMETHODCALLTYPE get_IsSystemData(VARIANT_BOOL* r) override { return Get(3, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_IsSystemData(VARIANT_BOOL v) override { return Put(3, Result{}, {In<VT_BOOL>(v)}); }
  HRESULT STDMETHODCALLTYPE get_NumNestedLevels(short* r) override { return Get(4, Out<VT_I2>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_NumNestedLevels(short v) override { return Put(4, Result{}, {In<VT_I2>(v)}); }
  HRESULT STDMETHODCALLTYPE get_InterpretXtal(VARIANT_BOOL* r) override { return Get(5, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_InterpretXtal(VARIANT_BOOL v) override { return Put(5, Result{}, {In<VT_BOOL>(v)}); }
  HRESULT STDMETHODCALLTYPE get_RawSQL(BSTR* r) override { return Get(6, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_RawSQL(BSTR v) override { return Put(6, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_FinalSQLStmt(BSTR* r) override { return Get(7, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_FinalSQLStmt(BSTR v) override { return Put(7, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_bProgramAssignedWhereClause(VARIANT_BOOL* r) override { return Get(8, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_bProgramAssignedWhereClause(VARIANT_BOOL v) override { return Put(8, Result{}, {In<VT_BOOL>(v)}); }
  HRESULT STDMETHODCALLTYPE get_UniqueRecordId(LONG* r) override { return Get(9, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_UniqueRecordId(LONG v) override { return Put(9, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ShapeNests(_QueryShapeNests** r) override { return Get(10, OutObject(r), {}); }
  HRESULT STDMETHODCALLTYPE putref_ShapeNests(_QueryShapeNests* v) override { return PutRef(10, Result{}, {In<VT_DISPATCH>(v)}); }
  HRESULT STDMETHODCALLTYPE get_TemplateSortOptions(_QueryTemplateSortOptions** r) override { return Get(11, OutObject(r), {}); }
  HRESULT STDMETHODCALLTYPE putref_TemplateSortOptions(_QueryTemplateSortOptions* v) override { return PutRef(11, Result{}, {In<VT_DISPATCH>(v)}); }
  HRESULT STDMETHODCALLTYPE get_RepKey(BSTR* r) override { return Get(12, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_RepKey(BSTR v) override { return Put(12, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_QueryID(LONG* r) override { return Get(13, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_QueryID(LONG v) override { return Put(13, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_TemplateId(LONG* r) override { return Get(14, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_TemplateId(LONG v) override { return Put(14, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_CurrentConditions(_ConditionNodes** r) override { return Get(15, OutObject(r), {}); }
  HRESULT STDMETHODCALLTYPE putref_CurrentConditions(_ConditionNodes* v) override { return PutRef(15, Result{}, {In<VT_DISPATCH>(v)}); }
  HRESULT STDMETHODCALLTYPE get_TemplateDescription(BSTR* r) override { return Get(16, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_TemplateDescription(BSTR v) override { return Put(16, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_OptionsDisplayed(VARIANT_BOOL* r) override { return Get(17, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_OptionsDisplayed(VARIANT_BOOL v) override { return Put(17, Result{}, {In<VT_BOOL>(v)}); }
  HRESULT STDMETHODCALLTYPE get_TemplateSet(LONG* r) override { return Get(18, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_TemplateSet(LONG v) override { return Put(18, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_TemplateSupplier(LONG* r) override { return Get(19, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_TemplateSupplier(LONG v) override { return Put(19, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE IsSimpleTemplate(VARIANT_BOOL* r) override { return Method(20, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE InitSettings(BSTR a1, LONG a2, LONG a3, VARIANT_BOOL a4) override { return Method(21, Result{}, {In<VT_BSTR>(a1), In<VT_I4>(a2), In<VT_I4>(a3), In<VT_BOOL>(a4)}); }
  HRESULT STDMETHODCALLTYPE EncodeSQLStmt() override { return Method(22, Result{}, {}); }
  HRESULT STDMETHODCALLTYPE AssignRecordSet(_Recordset** a1, VARIANT_BOOL* r) override { return Method(23, Out<VT_BOOL>(r), {Ref<VT_DISPATCH>(a1)}); }
  HRESULT STDMETHODCALLTYPE AssignIDBasedWhereClause(LONG a1, LONG a2, LONG a3, BSTR a4) override { return Method(24, Result{}, {In<VT_I4>(a1), In<VT_I4>(a2), In<VT_I4>(a3), In<VT_BSTR>(a4)}); }
  HRESULT STDMETHODCALLTYPE GetConditionString(_ConditionNode* a1, BSTR* r) override { return Method(25, Out<VT_BSTR>(r), {In<VT_DISPATCH>(a1)}); }
  HRESULT STDMETHODCALLTYPE GetSqlPhrase(_RepParam* a1, VARIANT_BOOL a2, BSTR a3, BSTR* r) override { return Method(26, Out<VT_BSTR>(r), {In<VT_DISPATCH>(a1), In<VT_BOOL>(a2), In<VT_BSTR>(a3)}); }
  HRESULT STDMETHODCALLTYPE AreThereAnyParameters(VARIANT_BOOL a1, VARIANT_BOOL* r) override { return Method(27, Out<VT_BOOL>(r), {In<VT_BOOL>(a1)}); }
  HRESULT STDMETHODCALLTYPE AreNeededParametersOK(VARIANT_BOOL* r) override { return Method(28, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE GetCurrentSpecs(BSTR* r) override { return Method(29, Out<VT_BSTR>(r), {}); }
};

class Dual_QueryShapeNest final : public DualFace<_QueryShapeNest> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE get_BaseTableID(LONG* r) override { return Get(1, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_BaseTableID(LONG v) override { return Put(1, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ShapeIndex(short* r) override { return Get(2, Out<VT_I2>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ShapeIndex(short v) override { return Put(2, Result{}, {In<VT_I2>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ParentShapeId(LONG* r) override { return Get(3, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ParentShapeId(LONG v) override { return Put(3, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_SpecialRecLayout(::SpecialRecordLayouts* r) override { return Get(4, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_SpecialRecLayout(::SpecialRecordLayouts v) override { return Put(4, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_bUseParentFieldLink(VARIANT_BOOL* r) override { return Get(5, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_bUseParentFieldLink(VARIANT_BOOL v) override { return Put(5, Result{}, {In<VT_BOOL>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ParentFieldLinkID(LONG* r) override { return Get(6, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ParentFieldLinkID(LONG v) override { return Put(6, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ChildFieldLinkID(LONG* r) override { return Get(7, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ChildFieldLinkID(LONG v) override { return Put(7, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ParentFieldLinkName(BSTR* r) override { return Get(8, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ParentFieldLinkName(BSTR v) override { return Put(8, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ChildFieldLinkName(BSTR* r) override { return Get(9, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ChildFieldLinkName(BSTR v) override { return Put(9, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Depth(short* r) override { return Get(10, Out<VT_I2>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Depth(short v) override { return Put(10, Result{}, {In<VT_I2>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ID(LONG* r) override { return Get(11, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ID(LONG v) override { return Put(11, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_PreExistingWhereClause(VARIANT_BOOL* r) override { return Get(12, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_PreExistingWhereClause(VARIANT_BOOL v) override { return Put(12, Result{}, {In<VT_BOOL>(v)}); }
  HRESULT STDMETHODCALLTYPE get_FieldsList(BSTR* r) override { return Get(13, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_FieldsList(BSTR v) override { return Put(13, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_TablesList(BSTR* r) override { return Get(14, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_TablesList(BSTR v) override { return Put(14, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_TableJoins(BSTR* r) override { return Get(15, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_TableJoins(BSTR v) override { return Put(15, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_GroupByList(BSTR* r) override { return Get(16, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_GroupByList(BSTR v) override { return Put(16, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_HavingList(BSTR* r) override { return Get(17, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_HavingList(BSTR v) override { return Put(17, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_AssignedWhereClause(BSTR* r) override { return Get(18, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_AssignedWhereClause(BSTR v) override { return Put(18, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_AssignedSortClause(BSTR* r) override { return Get(19, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_AssignedSortClause(BSTR v) override { return Put(19, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ShapeName(BSTR* r) override { return Get(20, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ShapeName(BSTR v) override { return Put(20, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Title(BSTR* r) override { return Get(21, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Title(BSTR v) override { return Put(21, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_SortedOPFields(_KeyedCollection** r) override { return Get(22, OutObject(r), {}); }
  HRESULT STDMETHODCALLTYPE putref_SortedOPFields(_KeyedCollection* v) override { return PutRef(22, Result{}, {In<VT_DISPATCH>(v)}); }
  HRESULT STDMETHODCALLTYPE get_OutPutTables(_QueryDataTables** r) override { return Get(23, OutObject(r), {}); }
  HRESULT STDMETHODCALLTYPE putref_OutPutTables(_QueryDataTables* v) override { return PutRef(23, Result{}, {In<VT_DISPATCH>(v)}); }
  HRESULT STDMETHODCALLTYPE ClearTables() override { return Method(24, Result{}, {}); }
  HRESULT STDMETHODCALLTYPE UpdateSqlStmts() override { return Method(25, Result{}, {}); }
};

class Dual_QueryShapeNests final : public DualFace<_QueryShapeNests> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE Add(LONG a1, short a2, VARIANT_BOOL a3, LONG a4, BSTR a5, BSTR a6, VARIANT a7, _QueryShapeNest** r) override { return Method(1, OutObject(r), {In<VT_I4>(a1), In<VT_I2>(a2), In<VT_BOOL>(a3), In<VT_I4>(a4), In<VT_BSTR>(a5), In<VT_BSTR>(a6), In<VT_VARIANT>(a7)}); }
  HRESULT STDMETHODCALLTYPE get_Item(VARIANT a1, _QueryShapeNest** r) override { return Get(0, OutObject(r), {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE get_Count(LONG* r) override { return Get(2, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE Remove(VARIANT a1) override { return Method(3, Result{}, {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE get_NewEnum(IUnknown** r) override { return Get(-4, Out<VT_UNKNOWN>(r), {}); }
  HRESULT STDMETHODCALLTYPE Clear() override { return Method(4, Result{}, {}); }
};

class Dual_QueryDataTable final : public DualFace<_QueryDataTable> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE get_NestedBinding(short* r) override { return Get(1, Out<VT_I2>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_NestedBinding(short v) override { return Put(1, Result{}, {In<VT_I2>(v)}); }
  HRESULT STDMETHODCALLTYPE get_TableAlias(BSTR* r) override { return Get(2, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_TableAlias(BSTR v) override { return Put(2, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_TableName(BSTR* r) override { return Get(3, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_TableName(BSTR v) override { return Put(3, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_DataTableId(LONG* r) override { return Get(4, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_DataTableId(LONG v) override { return Put(4, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Depth(short* r) override { return Get(5, Out<VT_I2>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Depth(short v) override { return Put(5, Result{}, {In<VT_I2>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ID(LONG* r) override { return Get(6, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ID(LONG v) override { return Put(6, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ParentDataTable(LONG* r) override { return Get(7, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ParentDataTable(LONG v) override { return Put(7, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ParentDataField(LONG* r) override { return Get(8, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ParentDataField(LONG v) override { return Put(8, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_SourceDataField(LONG* r) override { return Get(9, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_SourceDataField(LONG v) override { return Put(9, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ParentDataFieldName(BSTR* r) override { return Get(10, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ParentDataFieldName(BSTR v) override { return Put(10, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_SourceDataFieldName(BSTR* r) override { return Get(11, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_SourceDataFieldName(BSTR v) override { return Put(11, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Title(BSTR* r) override { return Get(12, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Title(BSTR v) override { return Put(12, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_OutputFields(_QueryOutputFields** r) override { return Get(13, OutObject(r), {}); }
  HRESULT STDMETHODCALLTYPE putref_OutputFields(_QueryOutputFields* v) override { return PutRef(13, Result{}, {In<VT_DISPATCH>(v)}); }
  HRESULT STDMETHODCALLTYPE ClearFields() override { return Method(14, Result{}, {}); }
  HRESULT STDMETHODCALLTYPE GetSQLName(BSTR* r) override { return Method(15, Out<VT_BSTR>(r), {}); }
};

class Dual_QueryDataTables final : public DualFace<_QueryDataTables> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE Add(LONG a1, BSTR a2, LONG a3, LONG a4, LONG a5, LONG a6, LONG a7, short a8, BSTR a9, BSTR a10, VARIANT a11, _QueryDataTable** r) override { return Method(1, OutObject(r), {In<VT_I4>(a1), In<VT_BSTR>(a2), In<VT_I4>(a3), In<VT_I4>(a4), In<VT_I4>(a5), In<VT_I4>(a6), In<VT_I4>(a7), In<VT_I2>(a8), In<VT_BSTR>(a9), In<VT_BSTR>(a10), In<VT_VARIANT>(a11)}); }
  HRESULT STDMETHODCALLTYPE get_Item(VARIANT a1, _QueryDataTable** r) override { return Get(0, OutObject(r), {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE get_Count(LONG* r) override { return Get(2, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE Remove(VARIANT a1) override { return Method(3, Result{}, {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE get_NewEnum(IUnknown** r) override { return Get(-4, Out<VT_UNKNOWN>(r), {}); }
  HRESULT STDMETHODCALLTYPE Clear() override { return Method(4, Result{}, {}); }
};

class Dual_QueryOutputField final : public DualFace<_QueryOutputField> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE get_DataFieldID(LONG* r) override { return Get(1, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_DataFieldID(LONG v) override { return Put(1, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_FieldAlias(BSTR* r) override { return Get(2, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_FieldAlias(BSTR v) override { return Put(2, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_SpecialField(::SpecialFields* r) override { return Get(3, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_SpecialField(::SpecialFields v) override { return Put(3, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_SpecialFieldAlias(BSTR* r) override { return Get(4, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_SpecialFieldAlias(BSTR v) override { return Put(4, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_AdvancedFormatting(::AdvFormatting* r) override { return Get(5, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_AdvancedFormatting(::AdvFormatting v) override { return Put(5, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_QueryDataTableID(LONG* r) override { return Get(6, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_QueryDataTableID(LONG v) override { return Put(6, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ID(LONG* r) override { return Get(7, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ID(LONG v) override { return Put(7, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Title(BSTR* r) override { return Get(8, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Title(BSTR v) override { return Put(8, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_FieldName(BSTR* r) override { return Get(9, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_FieldName(BSTR v) override { return Put(9, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_DisplayOrder(short* r) override { return Get(10, Out<VT_I2>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_DisplayOrder(short v) override { return Put(10, Result{}, {In<VT_I2>(v)}); }
  HRESULT STDMETHODCALLTYPE GetEfectiveFieldName(BSTR* r) override { return Method(11, Out<VT_BSTR>(r), {}); }
};

class Dual_QueryOutputFields final : public DualFace<_QueryOutputFields> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE Add(LONG a1, BSTR a2, ::SpecialFields a3, ::AdvFormatting a4, LONG a5, LONG a6, BSTR a7, BSTR a8, BSTR a9, VARIANT a10, _QueryOutputField** r) override { return Method(1, OutObject(r), {In<VT_I4>(a1), In<VT_BSTR>(a2), In<VT_I4>(a3), In<VT_I4>(a4), In<VT_I4>(a5), In<VT_I4>(a6), In<VT_BSTR>(a7), In<VT_BSTR>(a8), In<VT_BSTR>(a9), In<VT_VARIANT>(a10)}); }
  HRESULT STDMETHODCALLTYPE get_Item(VARIANT a1, _QueryOutputField** r) override { return Get(0, OutObject(r), {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE get_Count(LONG* r) override { return Get(2, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE Remove(VARIANT a1) override { return Method(3, Result{}, {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE get_NewEnum(IUnknown** r) override { return Get(-4, Out<VT_UNKNOWN>(r), {}); }
  HRESULT STDMETHODCALLTYPE Clear() override { return Method(4, Result{}, {}); }
};

class Dual_QueryTemplateSortOption final : public DualFace<_QueryTemplateSortOption> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE get_SortDescending(VARIANT_BOOL* r) override { return Get(1, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_SortDescending(VARIANT_BOOL v) override { return Put(1, Result{}, {In<VT_BOOL>(v)}); }
  HRESULT STDMETHODCALLTYPE get_SortOrder(short* r) override { return Get(2, Out<VT_I2>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_SortOrder(short v) override { return Put(2, Result{}, {In<VT_I2>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ShapeNestBindings(LONG* r) override { return Get(3, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ShapeNestBindings(LONG v) override { return Put(3, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ID(LONG* r) override { return Get(4, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ID(LONG v) override { return Put(4, Result{}, {In<VT_I4>(v)}); }
};

class Dual_QueryTemplateSortOptions final : public DualFace<_QueryTemplateSortOptions> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE Add(VARIANT_BOOL a1, short a2, LONG a3, VARIANT a4, _QueryTemplateSortOption** r) override { return Method(1, OutObject(r), {In<VT_BOOL>(a1), In<VT_I2>(a2), In<VT_I4>(a3), In<VT_VARIANT>(a4)}); }
  HRESULT STDMETHODCALLTYPE get_Item(VARIANT a1, _QueryTemplateSortOption** r) override { return Get(0, OutObject(r), {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE get_Count(LONG* r) override { return Get(2, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE Remove(VARIANT a1) override { return Method(3, Result{}, {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE get_NewEnum(IUnknown** r) override { return Get(-4, Out<VT_UNKNOWN>(r), {}); }
  HRESULT STDMETHODCALLTYPE Clear() override { return Method(4, Result{}, {}); }
  HRESULT STDMETHODCALLTYPE GetSqlPhrase(BSTR* r) override { return Method(5, Out<VT_BSTR>(r), {}); }
};

class Dual_ConditionNode final : public DualFace<_ConditionNode> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE get_ID(LONG* r) override { return Get(1, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ID(LONG v) override { return Put(1, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ChildConditions(_RepParams** r) override { return Get(2, OutObject(r), {}); }
  HRESULT STDMETHODCALLTYPE putref_ChildConditions(_RepParams* v) override { return PutRef(2, Result{}, {In<VT_DISPATCH>(v)}); }
  HRESULT STDMETHODCALLTYPE get_NodeType(::NodeTypes* r) override { return Get(3, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_NodeType(::NodeTypes v) override { return Put(3, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_NodeLevel(short* r) override { return Get(4, Out<VT_I2>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_NodeLevel(short v) override { return Put(4, Result{}, {In<VT_I2>(v)}); }
  HRESULT STDMETHODCALLTYPE get_NestedBinding(LONG* r) override { return Get(5, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_NestedBinding(LONG v) override { return Put(5, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ParentGroupId(LONG* r) override { return Get(6, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ParentGroupId(LONG v) override { return Put(6, Result{}, {In<VT_I4>(v)}); }
};

class Dual_ConditionNodes final : public DualFace<_ConditionNodes> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE Add(LONG a1, short a2, ::NodeTypes a3, LONG a4, LONG a5, VARIANT a6, _ConditionNode** r) override { return Method(1, OutObject(r), {In<VT_I4>(a1), In<VT_I2>(a2), In<VT_I4>(a3), In<VT_I4>(a4), In<VT_I4>(a5), In<VT_VARIANT>(a6)}); }
  HRESULT STDMETHODCALLTYPE get_Item(VARIANT a1, _ConditionNode** r) override { return Get(0, OutObject(r), {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE get_Count(LONG* r) override { return Get(2, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE Remove(VARIANT a1) override { return Method(3, Result{}, {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE get_NewEnum(IUnknown** r) override { return Get(-4, Out<VT_UNKNOWN>(r), {}); }
  HRESULT STDMETHODCALLTYPE Clear() override { return Method(4, Result{}, {}); }
};

class Dual_RepParam final : public DualFace<_RepParam> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE get_ConditionID(LONG* r) override { return Get(1, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ConditionID(LONG v) override { return Put(1, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ID(LONG* r) override { return Get(2, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ID(LONG v) override { return Put(2, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_DataFormat(::FieldDataTypes* r) override { return Get(3, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_DataFormat(::FieldDataTypes v) override { return Put(3, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_SearchLinkID(LONG* r) override { return Get(4, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_SearchLinkID(LONG v) override { return Put(4, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_HasManyEntries(VARIANT_BOOL* r) override { return Get(5, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_HasManyEntries(VARIANT_BOOL v) override { return Put(5, Result{}, {In<VT_BOOL>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Units(BSTR* r) override { return Get(6, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Units(BSTR v) override { return Put(6, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Value1(VARIANT* r) override { return Get(7, Out<VT_VARIANT>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Value1(VARIANT v) override { return Put(7, Result{}, {In<VT_VARIANT>(v)}); }
  HRESULT STDMETHODCALLTYPE putref_Value1(VARIANT v) override { return PutRef(7, Result{}, {In<VT_VARIANT>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Value1Description(BSTR* r) override { return Get(8, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Value1Description(BSTR v) override { return Put(8, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Value2(VARIANT* r) override { return Get(9, Out<VT_VARIANT>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Value2(VARIANT v) override { return Put(9, Result{}, {In<VT_VARIANT>(v)}); }
  HRESULT STDMETHODCALLTYPE putref_Value2(VARIANT v) override { return PutRef(9, Result{}, {In<VT_VARIANT>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Value2Description(BSTR* r) override { return Get(10, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Value2Description(BSTR v) override { return Put(10, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Reverse(VARIANT_BOOL* r) override { return Get(11, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Reverse(VARIANT_BOOL v) override { return Put(11, Result{}, {In<VT_BOOL>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Operator(::CompareTypes* r) override { return Get(12, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Operator(::CompareTypes v) override { return Put(12, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_SUBOperator(LONG* r) override { return Get(13, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_SUBOperator(LONG v) override { return Put(13, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Hidden(VARIANT_BOOL* r) override { return Get(14, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Hidden(VARIANT_BOOL v) override { return Put(14, Result{}, {In<VT_BOOL>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Essential(VARIANT_BOOL* r) override { return Get(15, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Essential(VARIANT_BOOL v) override { return Put(15, Result{}, {In<VT_BOOL>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Removable(VARIANT_BOOL* r) override { return Get(16, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Removable(VARIANT_BOOL v) override { return Put(16, Result{}, {In<VT_BOOL>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ValueChangeble(VARIANT_BOOL* r) override { return Get(17, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ValueChangeble(VARIANT_BOOL v) override { return Put(17, Result{}, {In<VT_BOOL>(v)}); }
  HRESULT STDMETHODCALLTYPE get_QueryDataTableID(LONG* r) override { return Get(18, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_QueryDataTableID(LONG v) override { return Put(18, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_DataFieldID(LONG* r) override { return Get(19, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_DataFieldID(LONG v) override { return Put(19, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_CodeChar(BSTR* r) override { return Get(20, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_CodeChar(BSTR v) override { return Put(20, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_FieldName(BSTR* r) override { return Get(21, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_FieldName(BSTR v) override { return Put(21, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Title(BSTR* r) override { return Get(22, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Title(BSTR v) override { return Put(22, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE IsSelectionValid(VARIANT_BOOL* r) override { return Method(23, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE GetSimpleText(BSTR* r) override { return Method(24, Out<VT_BSTR>(r), {}); }
};

class Dual_RepParams final : public DualFace<_RepParams> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE Add(LONG a1, LONG a2, VARIANT_BOOL a3, VARIANT_BOOL a4, VARIANT a5, _RepParam** r) override { return Method(1, OutObject(r), {In<VT_I4>(a1), In<VT_I4>(a2), In<VT_BOOL>(a3), In<VT_BOOL>(a4), In<VT_VARIANT>(a5)}); }
  HRESULT STDMETHODCALLTYPE get_Item(VARIANT a1, _RepParam** r) override { return Get(0, OutObject(r), {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE get_Count(LONG* r) override { return Get(2, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE Remove(VARIANT a1) override { return Method(3, Result{}, {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE get_NewEnum(IUnknown** r) override { return Get(-4, Out<VT_UNKNOWN>(r), {}); }
  HRESULT STDMETHODCALLTYPE Clear() override { return Method(4, Result{}, {}); }
};

class Dual_ValueSet final : public DualFace<_ValueSet> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE get_ID(LONG* r) override { return Get(1, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ID(LONG v) override { return Put(1, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Value(VARIANT* r) override { return Get(2, Out<VT_VARIANT>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Value(VARIANT v) override { return Put(2, Result{}, {In<VT_VARIANT>(v)}); }
  HRESULT STDMETHODCALLTYPE putref_Value(VARIANT v) override { return PutRef(2, Result{}, {In<VT_VARIANT>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ValDataType(::FieldDataTypes* r) override { return Get(3, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ValDataType(::FieldDataTypes v) override { return Put(3, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_DefaultValue(VARIANT* r) override { return Get(4, Out<VT_VARIANT>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_DefaultValue(VARIANT v) override { return Put(4, Result{}, {In<VT_VARIANT>(v)}); }
  HRESULT STDMETHODCALLTYPE putref_DefaultValue(VARIANT v) override { return PutRef(4, Result{}, {In<VT_VARIANT>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Scope(short* r) override { return Get(5, Out<VT_I2>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Scope(short v) override { return Put(5, Result{}, {In<VT_I2>(v)}); }
};

class Dual_ValueSets final : public DualFace<_ValueSets> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE Add(VARIANT a1, LONG a2, VARIANT a3, VARIANT a4, VARIANT a5, VARIANT a6, _ValueSet** r) override { return Method(1, OutObject(r), {In<VT_VARIANT>(a1), In<VT_I4>(a2), In<VT_VARIANT>(a3), In<VT_VARIANT>(a4), In<VT_VARIANT>(a5), In<VT_VARIANT>(a6)}); }
  HRESULT STDMETHODCALLTYPE get_Item(VARIANT a1, _ValueSet** r) override { return Get(0, OutObject(r), {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE get_Count(LONG* r) override { return Get(2, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE Remove(VARIANT a1) override { return Method(3, Result{}, {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE get_NewEnum(IUnknown** r) override { return Get(-4, Out<VT_UNKNOWN>(r), {}); }
  HRESULT STDMETHODCALLTYPE Clear() override { return Method(4, Result{}, {}); }
};

class Dual_FieldLink final : public DualFace<_FieldLink> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE get_FieldName(BSTR* r) override { return Get(1, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_FieldName(BSTR v) override { return Put(1, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Caption(BSTR* r) override { return Get(2, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Caption(BSTR v) override { return Put(2, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_DataType(::FieldDataTypes* r) override { return Get(3, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_DataType(::FieldDataTypes v) override { return Put(3, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_DefaultValue(VARIANT* r) override { return Get(4, Out<VT_VARIANT>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_DefaultValue(VARIANT v) override { return Put(4, Result{}, {In<VT_VARIANT>(v)}); }
  HRESULT STDMETHODCALLTYPE putref_DefaultValue(VARIANT v) override { return PutRef(4, Result{}, {In<VT_VARIANT>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ControlName(BSTR* r) override { return Get(5, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ControlName(BSTR v) override { return Put(5, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ControlIndex(short* r) override { return Get(6, Out<VT_I2>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ControlIndex(short v) override { return Put(6, Result{}, {In<VT_I2>(v)}); }
  HRESULT STDMETHODCALLTYPE get_PolicyFlags(LONG* r) override { return Get(7, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_PolicyFlags(LONG v) override { return Put(7, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_NullAction(::NullActions* r) override { return Get(8, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_NullAction(::NullActions v) override { return Put(8, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_FieldID(LONG* r) override { return Get(9, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_FieldID(LONG v) override { return Put(9, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ControlType(::ControlTypes* r) override { return Get(10, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ControlType(::ControlTypes v) override { return Put(10, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_MaxLength(short* r) override { return Get(11, Out<VT_I2>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_MaxLength(short v) override { return Put(11, Result{}, {In<VT_I2>(v)}); }
  HRESULT STDMETHODCALLTYPE get_FormatStyle(LONG* r) override { return Get(12, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_FormatStyle(LONG v) override { return Put(12, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_DisplayUnits(BSTR* r) override { return Get(13, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_DisplayUnits(BSTR v) override { return Put(13, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_xLeft(float* r) override { return Get(14, Out<VT_R4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_xLeft(float v) override { return Put(14, Result{}, {In<VT_R4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_yTop(float* r) override { return Get(15, Out<VT_R4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_yTop(float v) override { return Put(15, Result{}, {In<VT_R4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ControlWidth(float* r) override { return Get(16, Out<VT_R4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ControlWidth(float v) override { return Put(16, Result{}, {In<VT_R4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ControlHeight(float* r) override { return Get(17, Out<VT_R4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ControlHeight(float v) override { return Put(17, Result{}, {In<VT_R4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_SearchLinkID(LONG* r) override { return Get(18, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_SearchLinkID(LONG v) override { return Put(18, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_HasManyEntries(VARIANT_BOOL* r) override { return Get(19, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_HasManyEntries(VARIANT_BOOL v) override { return Put(19, Result{}, {In<VT_BOOL>(v)}); }
};

class Dual_FieldLinks final : public DualFace<_FieldLinks> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE Add(LONG a1, ::NullActions a2, ::ControlTypes a3, short a4, BSTR a5, VARIANT a6, ::FieldDataTypes a7, BSTR a8, VARIANT a9, _FieldLink** r) override { return Method(1, OutObject(r), {In<VT_I4>(a1), In<VT_I4>(a2), In<VT_I4>(a3), In<VT_I2>(a4), In<VT_BSTR>(a5), In<VT_VARIANT>(a6), In<VT_I4>(a7), In<VT_BSTR>(a8), In<VT_VARIANT>(a9)}); }
  HRESULT STDMETHODCALLTYPE get_Item(VARIANT a1, _FieldLink** r) override { return Get(0, OutObject(r), {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE get_Count(LONG* r) override { return Get(2, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE Remove(VARIANT a1) override { return Method(3, Result{}, {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE get_NewEnum(IUnknown** r) override { return Get(-4, Out<VT_UNKNOWN>(r), {}); }
  HRESULT STDMETHODCALLTYPE Clear() override { return Method(4, Result{}, {}); }
};

class Dual_KeyedCollection final : public DualFace<_KeyedCollection> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE Add(VARIANT a1, VARIANT a2) override { return Method(1, Result{}, {In<VT_VARIANT>(a1), In<VT_VARIANT>(a2)}); }
  HRESULT STDMETHODCALLTYPE get_Item(VARIANT a1, VARIANT* r) override { return Get(0, Out<VT_VARIANT>(r), {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE get_Count(LONG* r) override { return Get(2, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE Remove(VARIANT a1) override { return Method(3, Result{}, {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE get_NewEnum(IUnknown** r) override { return Get(-4, Out<VT_UNKNOWN>(r), {}); }
  HRESULT STDMETHODCALLTYPE Clear() override { return Method(4, Result{}, {}); }
};

class Dual_Connection final : public DualFace<_Connection> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE get_CursorLocation(::CursorLocationEnum* r) override { return Get(1, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_CursorLocation(::CursorLocationEnum v) override { return Put(1, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE Open(VARIANT a1, VARIANT a2, VARIANT a3, VARIANT a4) override { return Method(2, Result{}, {In<VT_VARIANT>(a1), In<VT_VARIANT>(a2), In<VT_VARIANT>(a3), In<VT_VARIANT>(a4)}); }
  HRESULT STDMETHODCALLTYPE Close() override { return Method(3, Result{}, {}); }
  HRESULT STDMETHODCALLTYPE get_State(::ObjectStateEnum* r) override { return Get(4, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE get_ConnectionString(BSTR* r) override { return Get(5, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_ConnectionString(BSTR v) override { return Put(5, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE Execute(BSTR a1, VARIANT* a2, VARIANT a3, _Recordset** r) override { return Method(6, OutObject(r), {In<VT_BSTR>(a1), OptionalRef(a2), In<VT_VARIANT>(a3)}); }
  HRESULT STDMETHODCALLTYPE BeginTrans(LONG* r) override { return Method(7, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE CommitTrans() override { return Method(8, Result{}, {}); }
  HRESULT STDMETHODCALLTYPE RollbackTrans() override { return Method(9, Result{}, {}); }
  HRESULT STDMETHODCALLTYPE get_CommandTimeout(LONG* r) override { return Get(10, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_CommandTimeout(LONG v) override { return Put(10, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Version(BSTR* r) override { return Get(11, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE get_Mode(LONG* r) override { return Get(12, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Mode(LONG v) override { return Put(12, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Provider(BSTR* r) override { return Get(13, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Provider(BSTR v) override { return Put(13, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Errors(_Errors** r) override { return Get(14, OutObject(r), {}); }
};

class Dual_Recordset final : public DualFace<_Recordset> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE get_Fields(_Fields** r) override { return Get(0, OutObject(r), {}); }
  HRESULT STDMETHODCALLTYPE Open(VARIANT a1, VARIANT a2, VARIANT a3, VARIANT a4, VARIANT a5) override { return Method(1, Result{}, {In<VT_VARIANT>(a1), In<VT_VARIANT>(a2), In<VT_VARIANT>(a3), In<VT_VARIANT>(a4), In<VT_VARIANT>(a5)}); }
  HRESULT STDMETHODCALLTYPE Close() override { return Method(2, Result{}, {}); }
  HRESULT STDMETHODCALLTYPE get_State(::ObjectStateEnum* r) override { return Get(3, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE get_BOF(VARIANT_BOOL* r) override { return Get(4, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE get_EOF(VARIANT_BOOL* r) override { return Get(5, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE get_RecordCount(LONG* r) override { return Get(6, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE get_AbsolutePosition(LONG* r) override { return Get(7, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_AbsolutePosition(LONG v) override { return Put(7, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Bookmark(VARIANT* r) override { return Get(8, Out<VT_VARIANT>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Bookmark(VARIANT v) override { return Put(8, Result{}, {In<VT_VARIANT>(v)}); }
  HRESULT STDMETHODCALLTYPE MoveFirst() override { return Method(9, Result{}, {}); }
  HRESULT STDMETHODCALLTYPE MoveLast() override { return Method(10, Result{}, {}); }
  HRESULT STDMETHODCALLTYPE MoveNext() override { return Method(11, Result{}, {}); }
  HRESULT STDMETHODCALLTYPE MovePrevious() override { return Method(12, Result{}, {}); }
  HRESULT STDMETHODCALLTYPE Move(LONG a1, VARIANT a2) override { return Method(13, Result{}, {In<VT_I4>(a1), In<VT_VARIANT>(a2)}); }
  HRESULT STDMETHODCALLTYPE Find(BSTR a1, VARIANT a2, VARIANT a3, VARIANT a4) override { return Method(14, Result{}, {In<VT_BSTR>(a1), In<VT_VARIANT>(a2), In<VT_VARIANT>(a3), In<VT_VARIANT>(a4)}); }
  HRESULT STDMETHODCALLTYPE get_Filter(BSTR* r) override { return Get(15, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Filter(BSTR v) override { return Put(15, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE AddNew(VARIANT a1, VARIANT a2) override { return Method(16, Result{}, {In<VT_VARIANT>(a1), In<VT_VARIANT>(a2)}); }
  HRESULT STDMETHODCALLTYPE Update(VARIANT a1, VARIANT a2) override { return Method(17, Result{}, {In<VT_VARIANT>(a1), In<VT_VARIANT>(a2)}); }
  HRESULT STDMETHODCALLTYPE Delete(VARIANT a1) override { return Method(18, Result{}, {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE CancelUpdate() override { return Method(19, Result{}, {}); }
  HRESULT STDMETHODCALLTYPE Cancel() override { return Method(20, Result{}, {}); }
  HRESULT STDMETHODCALLTYPE get_EditMode(::EditModeEnum* r) override { return Get(21, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE get_MaxRecords(LONG* r) override { return Get(22, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_MaxRecords(LONG v) override { return Put(22, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_CursorType(::CursorTypeEnum* r) override { return Get(23, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_CursorType(::CursorTypeEnum v) override { return Put(23, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_LockType(::LockTypeEnum* r) override { return Get(24, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_LockType(::LockTypeEnum v) override { return Put(24, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_CursorLocation(::CursorLocationEnum* r) override { return Get(25, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_CursorLocation(::CursorLocationEnum v) override { return Put(25, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Source(BSTR* r) override { return Get(26, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Source(BSTR v) override { return Put(26, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_ActiveConnection(_Connection** r) override { return Get(27, OutObject(r), {}); }
  HRESULT STDMETHODCALLTYPE putref_ActiveConnection(_Connection* v) override { return PutRef(27, Result{}, {In<VT_DISPATCH>(v)}); }
  HRESULT STDMETHODCALLTYPE get_FieldCount(LONG* r) override { return Get(28, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE get_Sort(BSTR* r) override { return Get(29, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Sort(BSTR v) override { return Put(29, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE Clone(VARIANT a1, _Recordset** r) override { return Method(30, OutObject(r), {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE Supports(LONG a1, VARIANT_BOOL* r) override { return Method(31, Out<VT_BOOL>(r), {In<VT_I4>(a1)}); }
  HRESULT STDMETHODCALLTYPE GetString(VARIANT a1, VARIANT a2, VARIANT a3, VARIANT a4, VARIANT a5, BSTR* r) override { return Method(32, Out<VT_BSTR>(r), {In<VT_VARIANT>(a1), In<VT_VARIANT>(a2), In<VT_VARIANT>(a3), In<VT_VARIANT>(a4), In<VT_VARIANT>(a5)}); }
  HRESULT STDMETHODCALLTYPE UpdateBatch(VARIANT a1) override { return Method(33, Result{}, {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE CancelBatch(VARIANT a1) override { return Method(34, Result{}, {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE get_Status(LONG* r) override { return Get(35, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE GetRows(VARIANT a1, VARIANT a2, VARIANT a3, VARIANT* r) override { return Method(36, Out<VT_VARIANT>(r), {In<VT_VARIANT>(a1), In<VT_VARIANT>(a2), In<VT_VARIANT>(a3)}); }
  HRESULT STDMETHODCALLTYPE get_Index(BSTR* r) override { return Get(37, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Index(BSTR v) override { return Put(37, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE Seek(VARIANT a1, VARIANT a2) override { return Method(38, Result{}, {In<VT_VARIANT>(a1), In<VT_VARIANT>(a2)}); }
};

class Dual_Fields final : public DualFace<_Fields> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE get_Item(VARIANT a1, _Field** r) override { return Get(0, OutObject(r), {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE get_Count(LONG* r) override { return Get(1, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE get_NewEnum(IUnknown** r) override { return Get(-4, Out<VT_UNKNOWN>(r), {}); }
};

class Dual_Field final : public DualFace<_Field> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE get_Value(VARIANT* r) override { return Get(0, Out<VT_VARIANT>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Value(VARIANT v) override { return Put(0, Result{}, {In<VT_VARIANT>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Name(BSTR* r) override { return Get(1, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE get_Type(::DataTypeEnum* r) override { return Get(2, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE get_DefinedSize(LONG* r) override { return Get(3, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE get_OriginalValue(VARIANT* r) override { return Get(4, Out<VT_VARIANT>(r), {}); }
  HRESULT STDMETHODCALLTYPE get_Status(LONG* r) override { return Get(5, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE get_UnderlyingValue(VARIANT* r) override { return Get(6, Out<VT_VARIANT>(r), {}); }
  HRESULT STDMETHODCALLTYPE get_Precision(LONG* r) override { return Get(7, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE get_NumericScale(LONG* r) override { return Get(8, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE get_Attributes(LONG* r) override { return Get(9, Out<VT_I4>(r), {}); }
};

class Dual_Errors final : public DualFace<_Errors> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE get_Item(LONG a1, _Error** r) override { return Get(0, OutObject(r), {In<VT_I4>(a1)}); }
  HRESULT STDMETHODCALLTYPE get_Count(LONG* r) override { return Get(1, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE get_NewEnum(IUnknown** r) override { return Get(-4, Out<VT_UNKNOWN>(r), {}); }
};

class Dual_Error final : public DualFace<_Error> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE get_Description(BSTR* r) override { return Get(0, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE get_Number(LONG* r) override { return Get(1, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE get_Source(BSTR* r) override { return Get(2, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE get_SQLState(BSTR* r) override { return Get(3, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE get_NativeError(LONG* r) override { return Get(4, Out<VT_I4>(r), {}); }
};

class Dual_Command final : public DualFace<_Command> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE get_ActiveConnection(_Connection** r) override { return Get(1, OutObject(r), {}); }
  HRESULT STDMETHODCALLTYPE putref_ActiveConnection(_Connection* v) override { return PutRef(1, Result{}, {In<VT_DISPATCH>(v)}); }
  HRESULT STDMETHODCALLTYPE get_CommandText(BSTR* r) override { return Get(2, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_CommandText(BSTR v) override { return Put(2, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_CommandType(LONG* r) override { return Get(3, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_CommandType(LONG v) override { return Put(3, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_CommandTimeout(LONG* r) override { return Get(4, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_CommandTimeout(LONG v) override { return Put(4, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Prepared(VARIANT_BOOL* r) override { return Get(5, Out<VT_BOOL>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Prepared(VARIANT_BOOL v) override { return Put(5, Result{}, {In<VT_BOOL>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Parameters(_Parameters** r) override { return Get(0, OutObject(r), {}); }
  HRESULT STDMETHODCALLTYPE CreateParameter(VARIANT a1, VARIANT a2, VARIANT a3, VARIANT a4, VARIANT a5, _Parameter** r) override { return Method(6, OutObject(r), {In<VT_VARIANT>(a1), In<VT_VARIANT>(a2), In<VT_VARIANT>(a3), In<VT_VARIANT>(a4), In<VT_VARIANT>(a5)}); }
  HRESULT STDMETHODCALLTYPE Execute(VARIANT* a1, VARIANT a2, VARIANT a3, _Recordset** r) override { return Method(7, OutObject(r), {OptionalRef(a1), In<VT_VARIANT>(a2), In<VT_VARIANT>(a3)}); }
};

class Dual_Parameter final : public DualFace<_Parameter> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE get_Value(VARIANT* r) override { return Get(0, Out<VT_VARIANT>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Value(VARIANT v) override { return Put(0, Result{}, {In<VT_VARIANT>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Name(BSTR* r) override { return Get(1, Out<VT_BSTR>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Name(BSTR v) override { return Put(1, Result{}, {In<VT_BSTR>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Type(::DataTypeEnum* r) override { return Get(2, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Type(::DataTypeEnum v) override { return Put(2, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Direction(LONG* r) override { return Get(3, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Direction(LONG v) override { return Put(3, Result{}, {In<VT_I4>(v)}); }
  HRESULT STDMETHODCALLTYPE get_Size(LONG* r) override { return Get(4, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE put_Size(LONG v) override { return Put(4, Result{}, {In<VT_I4>(v)}); }
};

class Dual_Parameters final : public DualFace<_Parameters> {
 public:
  using DualFace::DualFace;
  HRESULT STDMETHODCALLTYPE get_Item(VARIANT a1, _Parameter** r) override { return Get(0, OutObject(r), {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE get_Count(LONG* r) override { return Get(1, Out<VT_I4>(r), {}); }
  HRESULT STDMETHODCALLTYPE Append(_Parameter* a1) override { return Method(2, Result{}, {In<VT_DISPATCH>(a1)}); }
  HRESULT STDMETHODCALLTYPE Delete(VARIANT a1) override { return Method(3, Result{}, {In<VT_VARIANT>(a1)}); }
  HRESULT STDMETHODCALLTYPE Refresh() override { return Method(4, Result{}, {}); }
  HRESULT STDMETHODCALLTYPE get_NewEnum(IUnknown** r) override { return Get(-4, Out<VT_UNKNOWN>(r), {}); }
};

}  // namespace

DualBase* NewDualFace(REFIID iid, ComDispatch* owner) {
  if (iid == __uuidof(_InfoLink)) return new Dual_InfoLink(owner);
  if (iid == __uuidof(_QueryInterpretor)) return new Dual_QueryInterpretor(owner);
  if (iid == __uuidof(_QueryShapeNest)) return new Dual_QueryShapeNest(owner);
  if (iid == __uuidof(_QueryShapeNests)) return new Dual_QueryShapeNests(owner);
  if (iid == __uuidof(_QueryDataTable)) return new Dual_QueryDataTable(owner);
  if (iid == __uuidof(_QueryDataTables)) return new Dual_QueryDataTables(owner);
  if (iid == __uuidof(_QueryOutputField)) return new Dual_QueryOutputField(owner);
  if (iid == __uuidof(_QueryOutputFields)) return new Dual_QueryOutputFields(owner);
  if (iid == __uuidof(_QueryTemplateSortOption)) return new Dual_QueryTemplateSortOption(owner);
  if (iid == __uuidof(_QueryTemplateSortOptions)) return new Dual_QueryTemplateSortOptions(owner);
  if (iid == __uuidof(_ConditionNode)) return new Dual_ConditionNode(owner);
  if (iid == __uuidof(_ConditionNodes)) return new Dual_ConditionNodes(owner);
  if (iid == __uuidof(_RepParam)) return new Dual_RepParam(owner);
  if (iid == __uuidof(_RepParams)) return new Dual_RepParams(owner);
  if (iid == __uuidof(_ValueSet)) return new Dual_ValueSet(owner);
  if (iid == __uuidof(_ValueSets)) return new Dual_ValueSets(owner);
  if (iid == __uuidof(_FieldLink)) return new Dual_FieldLink(owner);
  if (iid == __uuidof(_FieldLinks)) return new Dual_FieldLinks(owner);
  if (iid == __uuidof(_KeyedCollection)) return new Dual_KeyedCollection(owner);
  if (iid == __uuidof(_Connection)) return new Dual_Connection(owner);
  if (iid == __uuidof(_Recordset)) return new Dual_Recordset(owner);
  if (iid == __uuidof(_Fields)) return new Dual_Fields(owner);
  if (iid == __uuidof(_Field)) return new Dual_Field(owner);
  if (iid == __uuidof(_Errors)) return new Dual_Errors(owner);
  if (iid == __uuidof(_Error)) return new Dual_Error(owner);
  if (iid == __uuidof(_Command)) return new Dual_Command(owner);
  if (iid == __uuidof(_Parameter)) return new Dual_Parameter(owner);
  if (iid == __uuidof(_Parameters)) return new Dual_Parameters(owner);
  return nullptr;
}

}  // namespace kelvary::com
