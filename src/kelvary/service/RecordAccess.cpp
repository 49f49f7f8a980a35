// The two operations through which every read and write of the service
// object passes, the SQL history hook, and the small recordset utilities.
#include <exception>

#include "kelvary/platform/Messages.h"
#include "kelvary/platform/Text.h"
#include "kelvary/service/InfoLink.h"
#include "kelvary/service/internal/ServicePort.h"

namespace kelvary {
namespace {

constexpr const char* kLineBreak = "\r\n";

bool IsKnownSource(ProjectDataSources source) {
  return source == pdsmaindata || source == pdssystem || source == pdsSequenceGenerator;
}

std::string DescriptionOf(const std::exception& e) {
  if (const auto* error = dynamic_cast<const Error*>(&e)) return error->Description();
  return e.what();
}

[[noreturn]] void ThrowNoConnection() {
  throw Error(kErrObjectVariableNotSet,
              "The connection cannot be used: it is not set for this data source");
}

std::string LeftTrimBlanks(const std::string& text) {
  const size_t first = text.find_first_not_of(' ');
  return first == std::string::npos ? std::string() : text.substr(first);
}

}  // namespace

bool InfoLink::FillRecordSet(ProjectDataSources SourceofData, std::shared_ptr<Recordset>& rs,
                             const std::string& SQLStmt, CursorTypeEnum CursorType,
                             LockTypeEnum LocKType) {
  bool result = false;
  try {
    if (!rs) rs = std::make_shared<Recordset>();
    // The same recordset may be passed again and again: a pending new or
    // changed row is dropped before it is reopened.
    if (rs->State() == adStateOpen) {
      if (!rs->Bof() && !rs->Eof()) {
        const EditModeEnum mode = rs->EditMode();
        if (mode == adEditAdd || mode == adEditInProgress) rs->CancelUpdate();
      }
      rs->Close();
    }
    if (!IsKnownSource(SourceofData)) {
      // Nothing is opened; counting below then fails on the closed
      // recordset and the loading message follows this one.
      MsgBox("No Raw Connection available");
    } else {
      auto connection = ConnectionFor(SourceofData);
      if (!connection) ThrowNoConnection();
      rs->Open(SQLStmt, connection, CursorType, LocKType, adCmdUnspecified);
    }
    if (rs->RecordCount() != 0) {
      result = true;
      rs->MoveFirst();
    }
    if (LogFileEntrySetting > 0 && (LogFileEntrySetting & lfetSelectSQL) != 0) {
      WriteSQLHistory(lfetSelectSQL, SQLStmt);
    }
  } catch (const std::exception& e) {
    // Two blanks between ":" and "with": the text is the system's own.
    MsgBox("Error while Loading Records :  with sql " + SQLStmt + kLineBreak + DescriptionOf(e));
    return false;
  }
  return result;
}

bool InfoLink::ExecuteSQL(ProjectDataSources SourceofData, const std::string& SQLStmt) {
  std::string trimmed;  // set once the statement has been classified
  try {
    if (!IsKnownSource(SourceofData)) {
      MsgBox("No Raw Connection available");
    } else {
      auto connection = ConnectionFor(SourceofData);
      if (!connection) ThrowNoConnection();
      int32_t records_affected = 0;
      connection->Execute(SQLStmt, records_affected, adCmdUnspecified);
    }
    if (LogFileEntrySetting > 0) {
      const std::string text = LeftTrimBlanks(SQLStmt);
      const std::string verb = UpperCase(text.substr(0, 6));
      int32_t code = 0;
      if (verb == "INSERT") code = lfetInsertStmts;
      if (verb == "UPDATE") code = lfetUpdateSQL;
      if (verb == "DELETE") code = lfetDeleteStmts;
      trimmed = text;
      // A statement of no known kind has code 0, which always passes: such
      // statements (CREATE, ALTER, EXEC...) reach the hook on purpose.
      if ((LogFileEntrySetting & code) == code) {
        WriteSQLHistory(static_cast<LogFileEntryTypes>(code), text);
      }
    }
  } catch (const std::exception& e) {
    MsgBox("Error executing sql : " + SQLStmt + kLineBreak + DescriptionOf(e));
    if ((LogFileEntrySetting & lfetErrorMsgs) != 0) WriteSQLHistory(lfetErrorMsgs, trimmed);
  }
  // Always True: callers cannot tell a failure from the result, by design.
  return true;
}

void InfoLink::WriteSQLHistory(LogFileEntryTypes DoAction, const std::string& SqlStr) {
  // The hook itself records nothing; an observer may watch it.
  if (history_observer_) history_observer_(DoAction, SqlStr);
}

void InfoLink::SetSQLHistoryObserver(SQLHistoryObserver observer) {
  history_observer_ = std::move(observer);
}

void CloseRecordsetSafely(const std::shared_ptr<Recordset>& rs) {
  if (!rs) return;
  if (rs->State() != adStateOpen) return;
  if (!rs->Bof() && !rs->Eof()) {
    const EditModeEnum mode = rs->EditMode();
    if (mode == adEditInProgress || mode == adEditAdd) {
      try {
        rs->Cancel();
      } catch (const std::exception&) {
      }
      try {
        rs->CancelUpdate();
      } catch (const std::exception&) {
      }
    }
  }
  rs->Close();
}

void InfoLink::SafelyCloseRecordSet(const std::shared_ptr<Recordset>& CloseThis) {
  CloseRecordsetSafely(CloseThis);
}

bool InfoLink::IsValidRecord(const std::shared_ptr<Recordset>& Recs) {
  if (!Recs || Recs->State() == adStateClosed) return false;
  return Recs->RecordCount() > 0 && !Recs->Bof() && !Recs->Eof();
}

void InfoLink::RemoveNonNulls(const std::shared_ptr<Recordset>& rs) {
  // The name is the system's: nulls are replaced, nothing is removed.
  for (int32_t i = 0; i < rs->FieldCount(); ++i) {
    Field& field = rs->Fields(i);
    if (!field.Value().IsNull()) continue;
    if (IsNumericType(field.Type())) {
      field.Value(Variant(int16_t{0}));
    } else if (field.Type() == adBoolean) {
      field.Value(Variant(false));
    }
  }
}

void InfoLink::AssignFieldValuesToAllRecs(const std::shared_ptr<Recordset>& Recs,
                                          const std::string& FldName, const Variant& FldValue) {
  if (Recs->RecordCount() <= 0) return;
  Recs->MoveFirst();
  // No Update call: moving off each changed row commits it.
  while (!Recs->Eof()) {
    Recs->Fields(FldName).Value(FldValue);
    Recs->MoveNext();
  }
}

std::string InfoLink::InterpretRecordErrorStatus(ProjectDataSources /*srcData*/,
                                                 const Error* /*ByrefErrObject*/,
                                                 const std::shared_ptr<Recordset>& RecToCheck) {
  std::string report;
  for (int32_t i = 0; i < RecToCheck->FieldCount(); ++i) {
    const Field& field = RecToCheck->Fields(i);
    if (field.Status() == adFieldOK) continue;
    if (!report.empty()) report += " , ";
    report += field.Name() + " ( " + std::to_string(field.Status()) + " ) ";
  }
  if (report.empty()) return "";
  return std::string(kLineBreak) + "Offending Fields " + report;
}

}  // namespace kelvary
