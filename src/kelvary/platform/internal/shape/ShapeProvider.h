// ShapeProvider: the seam between the cursor engine and the data-shaping
// layer. A statement whose first word is SHAPE (after blanks, in any case)
// never reaches a driver: Recordset::Open and Connection::Execute hand it to
// OpenShape, which runs each level on the connection's driver and loads the
// hierarchical result into the target engine (see internal/CursorEngine.h
// for how such a result is built). Everything else goes to the driver
// unchanged.
//
// OpenShape reads the statement (ShapeParser.h), runs each level's command
// once on the driver, groups every child level's rows under their parents
// by the RELATE columns (RelateIndex.h) and appends one chapter field per
// child to the parent rows: a Recordset of the related rows, sharing the
// level's rows with the other chapters of that level.
//
// Called on the thread that uses the connection.
#pragma once

#include <cctype>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "kelvary/platform/DataAccessTypes.h"
#include "kelvary/platform/Text.h"

namespace kelvary {
class Connection;
namespace internal {
class CursorEngine;
}  // namespace internal
}  // namespace kelvary

namespace kelvary::shape {

// IsShapeCommand: whether text is a SHAPE statement (first word SHAPE).
inline bool IsShapeCommand(std::string_view text) {
  size_t i = 0;
  while (i < text.size() && std::isspace(static_cast<unsigned char>(text[i])))
    ++i;
  static constexpr std::string_view kWord = "shape";
  if (!StartsWithNoCase(text, i, kWord)) return false;
  const size_t after = i + kWord.size();
  return after == text.size() || std::isspace(static_cast<unsigned char>(text[after])) ||
         text[after] == '{' || text[after] == '(';
}

// ShapeRequest: what the caller of Open asked for.
struct ShapeRequest {
  CursorTypeEnum cursor_type = adOpenStatic;
  LockTypeEnum lock_type = adLockReadOnly;
  int32_t max_records = 0;  // 0: all rows of the top level
};

// OpenShape runs the SHAPE statement command on connection and loads the
// result into target (target.Load). Raises Error on a statement it cannot
// read or that a level's driver rejects; target then stays closed.
// REQUIRES: connection open, target closed.
void OpenShape(const std::string& command, const std::shared_ptr<Connection>& connection,
               internal::CursorEngine& target, const ShapeRequest& request);

}  // namespace kelvary::shape
