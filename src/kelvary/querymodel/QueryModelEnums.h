// The enumerations of the query model. Their values are stored in the
// configuration tables and written by hosts, so they are exact; gaps in a
// numbering are deliberate. Every enumeration has a 32-bit underlying type,
// so a stored number no member names is still a valid value.
//
// The operator, data-type, date-range and control-type enumerations the model
// shares with the sibling library live in kelvary/service/Enums.h.
#pragma once

#include <cstdint>

#include "kelvary/service/Enums.h"

namespace kelvary {

// QueryBuildMethods: how a query's result is produced.
enum QueryBuildMethods : int32_t {
  qbmAppDefined = 0,
  qbmDirectADO = 1,
  qbmCustomDataGridFromSQL = 2,
  qbmCustomDataGridWoSQL = 3,
  qbmCustomRecordSetFromSQL = 4,
  qbmCustomRecordSetWoSQL = 5,
  qbmCrosstabFromSQL = 6,
  qbmQueryDefStandard = 7,
  qbmQueryDefCrosstab = 8,
  qbmDigitalBuild = 9,
  qbmDirectADOWDigitalSearchTemplate = 10,
  qbmXtalReportQuery = 11,
};

// SpecialFields: the grouping or aggregate role of an output column. Value 5
// is unassigned on purpose; stored definitions rely on the numbers as they are.
enum SpecialFields : int32_t {
  sfnone = 0,
  sfAverage = 1,
  sfMin = 2,
  sfMax = 3,
  sfRCount = 4,
  sfStdDev = 6,
  sfSERR = 7,
  sfSum = 8,
  sfgroup = 101,
  sfGroupAndView = 102,
};

// AdvFormatting: how an output column presents a date or time.
enum AdvFormatting : int32_t {
  afNone = 0,
  afTimeOnly = 1,
  afShortMonth = 2,
  afLongMonth = 3,
  afWeekDay = 4,
};

// SpecialRecordLayouts: the record layout of a shape level.
enum SpecialRecordLayouts : int32_t {
  srlNone = 0,
  srlGroup = 1,
};

// NodeTypes: how the conditions of a group combine: ntall every one must
// hold, ntAny one suffices.
enum NodeTypes : int32_t {
  ntall = 0,
  ntAny = 1,
};

// NullActions: what a form does with a field left empty.
enum NullActions : int32_t {
  naIgnore = 0,
  naPrompt = 1,
  naEnforceEntry = 2,
};

}  // namespace kelvary
