// The query interpreter's way to the database: the thread's ActiveInfoLink,
// and a few readers for the columns of the definition tables. Internal to
// kelvary/query/.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kelvary/platform/Error.h"
#include "kelvary/platform/Recordset.h"
#include "kelvary/platform/Variant.h"
#include "kelvary/service/InfoLink.h"

namespace kelvary::query_internal {

// ActiveLink: the active service object. Without one, Error 91, as any use
// of an unset object reference.
inline InfoLink& ActiveLink() {
  InfoLink* link = ActiveInfoLink();
  if (link == nullptr) {
    throw Error(kErrObjectVariableNotSet, "Object variable or With block variable not set");
  }
  return *link;
}

// Key: a collection key, the letter followed by the ID in decimal.
inline std::string Key(char letter, int32_t id) {
  return letter + std::to_string(id);
}

// FieldName: the name of DataTableFields row FieldId, "" when there is none.
inline std::string FieldNameOf(int32_t FieldId) {
  return ActiveLink().GetDescriptionFromCode(FieldId, "DataTableFields", "FieldName", "ID",
                                             pdssystem, "");
}

// Column readers for the current row. Text columns are read null-safely (a
// NULL is ""); numbers and booleans are converted directly, so a NULL there
// raises Error 94.
inline Variant ColumnValue(Recordset& rs, const char* name) {
  return rs.Fields(name).Value();
}
inline std::string TextColumn(Recordset& rs, const char* name) {
  return TextOf(ColumnValue(rs, name));
}
inline int32_t LongColumn(Recordset& rs, const char* name) {
  return CLng(ColumnValue(rs, name));
}
inline int16_t IntColumn(Recordset& rs, const char* name) {
  return CInt(ColumnValue(rs, name));
}
inline bool BoolColumn(Recordset& rs, const char* name) {
  return CBool(ColumnValue(rs, name));
}

}  // namespace kelvary::query_internal
