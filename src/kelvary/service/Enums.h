// The enumerations of the service object, and those it shares with the
// sibling library whose interface it imports (field data types, comparison
// operators, general data types, date-range choices, control types). Values
// are stored in databases and written by hosts: they are exact. Every
// enumeration has a 32-bit underlying type, so any stored number is a valid
// value even where no member names it.
#pragma once

#include <cstdint>

namespace kelvary {

enum ProjectDataSources : int32_t {
  pdsRawData = 0,
  pdsmaindata = 1,
  pdssystem = 2,
  pdsSequenceGenerator = 3,
};

enum StdDBTypes : int32_t {
  sdbAccess = 0,
  sdbOracle = 1,
  sdbSQLServer = 2,
};

enum DBRoles : int32_t {
  dbrStandalone = 0,
  dbrServer = 1,
  dbrClient = 2,
};

// Bits: which executed statements reach the history hook.
enum LogFileEntryTypes : int32_t {
  lfetNone = 0,
  lfetSelectSQL = 1,
  lfetDeleteStmts = 2,
  lfetUpdateSQL = 4,
  lfetInsertStmts = 8,
  lfetErrorMsgs = 16,
};

enum CodeGenMethods : int32_t {
  cgmDefault = 0,
  cgmMaxCollection = 1,
  cgmRawGenerate = 2,
  cgmDynamicTables = 3,
  cgmDCOM = 4,
  cgmStoredProcedure = 5,
  cgmNetworkServer = 6,
  cgmPhysicalLocationWise = 7,
};

enum EventTypes : int32_t {
  etActionOnData = 0,
  etOnRequest = 1,
  etRemindersBased = 2,
};

enum Deletabilities : int32_t {
  dlIgnore = 0,
  dlPromptbeforedelete = 1,
  dlNotDeletable = 2,
  dlResetToZero = 3,
  dlPromptBeforeResetToZero = 4,
};

enum DBRecordActionTypes : int32_t {
  dbratAdded = 0,
  dbratUpdated = 1,
  dbratPhysicallyDeleted = 2,
  dbratMarkedAsDeleted = 3,
  dbratPurgedMarkedAsDeleted = 4,
  dbratRestoredMarkedAsDeleted = 5,
};

// Bits of DataTables.TableProps.
enum DataTableProps : int32_t {
  dtpNone = 0,
  dtpDontAllowAdd = 1,
  dtpDontAllowEdit = 2,
  dtpSampleData = 4,
  dtpSingleRecordAccess = 8,
  dtpHiddenTable = 16,
  dtpVoiceComments = 32,
  dtpDocuments = 64,
  dtpBookMarks = 128,
  dtpRelatedReports = 256,
  dtpHideInQuickViewsSourceTable = 512,
  dtpHideInQuerySourceTable = 1024,
  dtpMailingLabels = 2048,
  dtpPublishHelp = 4096,
};

// Bits of DataTableFields.Flags.
enum DataTableFieldProps : int32_t {
  dtfpUniqueValue = 1,
  dtfpNotEditableWhenRecordEdited = 2,
  dtfpHiddenField = 4,
  dtfpEnforceSpaceIfNull = 8,
  dtfpUseDateChecks = 16,
  dtfpDontAllowRequiredChangeInDataSettings = 32,
  dtfpDontAllowDefaultValueChangeInDataSettings = 64,
  dtfpUniqueValueCombination = 128,
  dtfpExcludeFromCopyRecord = 256,
  dtfpCategoryField = 512,
  dtfpDontPublishHelp = 1024,
  dtfpNotEditableWhenRecordAdded = 2048,
  dtfpDefaultSearchField = 4096,
  dtfpShowCheckboxListAnyItemsInQueries = 8192,
  dtfpFillUniqueTextInQueries = 16384,
  dtfpConvertToUppercase = 32768,
  dtfpNeedsDocGenGeneration = 65536,
  dtfpProvideForDocGenGeneration = 131072,
  dtfpUseTextTemplates = 262144,
  dtfpNotAvlblForPlacementInTextTemplates = 524288,
};

// --- Imported from the sibling library's interface ---

enum CompareTypes : int32_t {
  cmpEquals = 1,
  cmpGreaterThan = 2,
  cmpLessThan = 3,
  cmpBetween = 4,
  cmpBeginsWith = 5,
  cmpEndsWith = 6,
  cmpContains = 7,
  cmpSoundsLike = 8,
};

enum GeneralDataTypes : int32_t {
  gdtText = 1,
  gdtNumber = 2,
  gdtDate = 3,
};

// Field data types (DataTableFields.DataFormat). The clause builders and the
// parameter texts treat them in groups; the members named here are the ones
// this library tests by name.
enum FieldDataTypes : int32_t {
  fdtUnknown = 0,
  fdtLong = 1,
  fdtInteger = 2,
  fdtText = 3,
  fdtMemo = 4,
  fdtDate = 18,
  fdtDateTime = 19,
  fdtTime = 20,
  fdtCodedValue = 21,
  fdtBoolean = 25,
  fdtGender = 33,
  fdtLastKnown = 42,
};

// Date-range choices of a date condition.
enum DateRangeSpecs : int32_t {
  drsAllDates = 1000,
  drsUserSpecifiedDates = 1001,
  drsToday = 1002,
  drsYesterday = 1003,
  drsTomorrow = 1004,
  drsWeekToDateFromSunday = 1005,
  drsMonthToDate = 1006,
  drsYearToDate = 1007,
  drsLast7Days = 1008,
  drsLast4WeeksToSunday = 1009,
  drsLastFullWeek = 1010,
  drsLastFullMonth = 1011,
  drsToToday = 1012,
  drsToYesterday = 1013,
  drsAfterToday = 1014,
  drsAfterTomorrow = 1015,
  drsAged0To30Days = 1016,
  drsAged31To60Days = 1017,
  drsAged61To90Days = 1018,
  drsAgedOver90Days = 1019,
  drsNext30Days = 1020,
  drsNext31To60Days = 1021,
  drsNext61To90Days = 1022,
  drsNext91To365Days = 1023,
  drsFirstQuarter = 1024,
  drsSecondQuarter = 1025,
  drsThirdQuarter = 1026,
  drsFourthQuarter = 1027,
  drsFirstHalfOfCalendar = 1028,
  drsSecondHalfOfCalendar = 1029,
  drsLastYearMTD = 1030,
  drsLastYearYTD = 1031,
  drsFinancialYTD = 1032,
  drsLastFinancialYTD = 1033,
};

// Kinds of input control for a field.
enum ControlTypes : int32_t {
  ctDropDownList = 2,
  ctSearchWindow = 10,
};

}  // namespace kelvary
