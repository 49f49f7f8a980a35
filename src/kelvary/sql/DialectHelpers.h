// Dialect helpers: the small text builders that every SQL-producing part of
// the library uses (identifiers from captions, apostrophe quoting, date
// literals, null tests, composed person names, initial-letter filters, joined
// phone numbers).
//
// Each is a pure function of its arguments: the dialect and the name-part
// fields are passed in by the caller (InfoLink passes its MainDBType and
// ORDERFIELD1..3). No database, no messages, no state; safe on any thread.
#pragma once

#include <cstdint>
#include <string>

#include "kelvary/platform/Date.h"
#include "kelvary/service/Enums.h"

namespace kelvary::sql {

// NameFields: the three columns whose values make up a person's name, in
// display order (by default FirstName, MiddleName, LastName).
struct NameFields {
  std::string first = "FirstName";
  std::string middle = "MiddleName";
  std::string last = "LastName";
};

// GetSQLEntityName: SrcStr with every apostrophe, double quote, "[", "/",
// "\", ".", "-", "]", blank, ")" and "(" removed; nothing is added.
std::string GetSQLEntityName(const std::string& SrcStr);

// GetInvertedCommaSafeString: OrgStr with every apostrophe doubled.
std::string GetInvertedCommaSafeString(const std::string& OrgStr);

// FormatDateToDBStr: the date literal of SrcDate's calendar day (time of day
// dropped): TO_Date('dd-Mon-yyyy','DD-Mon-YYYY') for Oracle, #mm/dd/yyyy#
// for Access and SQL Server alike.
std::string FormatDateToDBStr(StdDBTypes db_type, Date SrcDate);

// CreateCheckForNullStmt: " (Isnull(FldName) = true ) " in every dialect.
std::string CreateCheckForNullStmt(const std::string& FldName);

// GetNameClause: a select-list item composing the full name from the three
// name fields (qualified by TblName when given), optionally preceded by
// PrefixFld, named alias.
std::string GetNameClause(StdDBTypes db_type, const NameFields& fields, const std::string& TblName,
                          const std::string& PrefixFld, const std::string& alias);

// CreateAlphaClause: the filter for the initial letter of tab tb of an
// alphabet strip (1 is A, 26 is Z); "" for tab 27, the tab for everything.
// REQUIRES: tb + 64 is a character code (0 to 255); otherwise Error 5.
std::string CreateAlphaClause(StdDBTypes db_type, const std::string& ComparisionField, int16_t tb);

// GetCombinedPhone: Ph1 trimmed, then "  ,  " and Ph2 when Ph2 is given.
std::string GetCombinedPhone(const std::string& Ph1, const std::string& Ph2);

}  // namespace kelvary::sql
