// The numeric constants of the classic data-access library that the system
// passes around: cursor locations and types, lock types, object states, edit
// modes, search directions, field data types and field status codes. Their
// values are stored by hosts and written into code, so they are exact.
#pragma once

#include <cstdint>

namespace kelvary {

enum CursorLocationEnum : int32_t {
  adUseNone = 1,
  adUseServer = 2,
  adUseClient = 3,
};

enum ConnectModeEnum : int32_t {
  adModeUnknown = 0,
  adModeRead = 1,
  adModeWrite = 2,
  adModeReadWrite = 3,
  adModeShareDenyRead = 4,
  adModeShareDenyWrite = 8,
  adModeShareExclusive = 12,
  adModeShareDenyNone = 16,
};

enum CursorTypeEnum : int32_t {
  adOpenUnspecified = -1,
  adOpenForwardOnly = 0,
  adOpenKeyset = 1,
  adOpenDynamic = 2,
  adOpenStatic = 3,
};

enum LockTypeEnum : int32_t {
  adLockUnspecified = -1,
  adLockReadOnly = 1,
  adLockPessimistic = 2,
  adLockOptimistic = 3,
  adLockBatchOptimistic = 4,
};

enum ObjectStateEnum : int32_t {
  adStateClosed = 0,
  adStateOpen = 1,
};

enum EditModeEnum : int32_t {
  adEditNone = 0,
  adEditInProgress = 1,
  adEditAdd = 2,
  adEditDelete = 4,
};

enum SearchDirectionEnum : int32_t {
  adSearchBackward = -1,
  adSearchForward = 1,
};

// Where Find starts: these three values, or a bookmark.
enum BookmarkEnum : int32_t {
  adBookmarkCurrent = 0,
  adBookmarkFirst = 1,
  adBookmarkLast = 2,
};

// Options of Open and Execute.
enum CommandOptionsEnum : int32_t {
  adCmdUnspecified = -1,
  adCmdText = 1,
  adCmdTable = 2,  // the source is a table name
  adCmdStoredProc = 4,
  adCmdUnknown = 8,
  adCmdTableDirect = 512,
  adExecuteNoRecords = 128,
};

enum FilterGroupEnum : int32_t {
  adFilterNone = 0,
  adFilterPendingRecords = 1,
  adFilterAffectedRecords = 2,
  adFilterFetchedRecords = 3,
  adFilterConflictingRecords = 5,
};

enum AffectEnum : int32_t {
  adAffectCurrent = 1,
  adAffectGroup = 2,
  adAffectAll = 3,
  adAffectAllChapters = 4,
};

// How Seek matches the key: the first or last row equal to it, or the
// first row after it (or equal), or the last before it (or equal), in the
// order of the index.
enum SeekEnum : int32_t {
  adSeekFirstEQ = 1,
  adSeekLastEQ = 2,
  adSeekAfterEQ = 4,
  adSeekAfter = 8,
  adSeekBeforeEQ = 16,
  adSeekBefore = 32,
};

enum GetRowsOptionEnum : int32_t {
  adGetRowsRest = -1,
};

enum StringFormatEnum : int32_t {
  adClipString = 2,
};

// What Recordset::Supports answers.
enum CursorOptionEnum : int32_t {
  adHoldRecords = 0x100,
  adMovePrevious = 0x200,
  adBookmark = 0x2000,
  adApproxPosition = 0x4000,
  adUpdateBatch = 0x10000,
  adResync = 0x20000,
  adNotify = 0x40000,
  adFind = 0x80000,
  adSeek = 0x400000,
  adIndex = 0x800000,
  adAddNew = 0x1000400,
  adDelete = 0x1000800,
  adUpdate = 0x1008000,
};

enum FieldAttributeEnum : int32_t {
  adFldMayDefer = 0x2,
  adFldUpdatable = 0x4,
  adFldUnknownUpdatable = 0x8,
  adFldFixed = 0x10,
  adFldIsNullable = 0x20,
  adFldMayBeNull = 0x40,
  adFldLong = 0x80,
  adFldRowID = 0x100,
  adFldKeyColumn = 0x8000,
};

// Field types: the classic data-type codes.
enum DataTypeEnum : int32_t {
  adEmpty = 0,
  adSmallInt = 2,
  adInteger = 3,
  adSingle = 4,
  adDouble = 5,
  adCurrency = 6,
  adDate = 7,
  adBSTR = 8,
  adBoolean = 11,
  adVariant = 12,
  adDecimal = 14,
  adTinyInt = 16,
  adUnsignedTinyInt = 17,
  adUnsignedSmallInt = 18,
  adUnsignedInt = 19,
  adBigInt = 20,
  adUnsignedBigInt = 21,
  adBinary = 128,
  adChar = 129,
  adWChar = 130,
  adNumeric = 131,
  adDBDate = 133,
  adDBTime = 134,
  adDBTimeStamp = 135,
  adChapter = 136,
  adVarNumeric = 139,
  adVarChar = 200,
  adLongVarChar = 201,
  adVarWChar = 202,
  adLongVarWChar = 203,
  adVarBinary = 204,
  adLongVarBinary = 205,
};

// True for the field types that hold numbers (integers of every width,
// floating point, currency and the decimal kinds).
constexpr bool IsNumericType(DataTypeEnum type) {
  switch (type) {
    case adSmallInt:
    case adInteger:
    case adSingle:
    case adDouble:
    case adCurrency:
    case adDecimal:
    case adTinyInt:
    case adUnsignedTinyInt:
    case adUnsignedSmallInt:
    case adUnsignedInt:
    case adBigInt:
    case adUnsignedBigInt:
    case adNumeric:
    case adVarNumeric:
      return true;
    default:
      return false;
  }
}

// Field status codes.
enum FieldStatusEnum : int32_t {
  adFieldOK = 0,
  adFieldCantConvertValue = 2,
  adFieldIsNull = 3,
  adFieldTruncated = 4,
  adFieldSignMismatch = 5,
  adFieldDataOverflow = 6,
  adFieldCantCreate = 7,
  adFieldUnavailable = 8,
  adFieldPermissionDenied = 9,
  adFieldIntegrityViolation = 10,
  adFieldSchemaViolation = 11,
  adFieldBadStatus = 12,
  adFieldDefault = 13,
};

// Record status: what Recordset::Status says of the current row under
// batch updating (bits; a pending change together with what went wrong).
enum RecordStatusEnum : int32_t {
  adRecOK = 0,  // written by the last batch
  adRecNew = 0x1,
  adRecModified = 0x2,
  adRecDeleted = 0x4,
  adRecUnmodified = 0x8,
  adRecInvalid = 0x10,
  adRecMultipleChanges = 0x40,
  adRecPendingChanges = 0x80,
  adRecCanceled = 0x100,
  adRecCantRelease = 0x400,
  adRecConcurrencyViolation = 0x800,  // changed or deleted by someone else since it was read
  adRecIntegrityViolation = 0x1000,
  adRecMaxChangesExceeded = 0x2000,
  adRecObjectOpen = 0x4000,
  adRecOutOfMemory = 0x8000,
  adRecPermissionDenied = 0x10000,
  adRecSchemaViolation = 0x20000,
  adRecDBDeleted = 0x40000,
};

}  // namespace kelvary
