// ShapeTree: a hierarchical recordset in one line, for the tests of this
// folder.
#pragma once

#include <string>

#include "kelvary/platform/Recordset.h"

namespace kelvary::testing {

// ShapeTree: the first field of every row, each chapter's rows in brackets
// after it: "1[10,12],2[]". Leaves every cursor at EOF.
inline std::string ShapeTree(Recordset& rs) {
  std::string text;
  if (rs.RecordCount() > 0) rs.MoveFirst();
  for (; !rs.Eof(); rs.MoveNext()) {
    text += (text.empty() ? "" : ",") + TextOf(rs.Fields(0).Value());
    for (int32_t i = 1; i < rs.FieldCount(); ++i) {
      if (rs.Fields(i).Type() != adChapter) continue;
      auto child = rs.Fields(i).Value().ObjectAs<Recordset>();
      text += child ? "[" + ShapeTree(*child) + "]" : "[not a recordset]";
    }
  }
  return text;
}

}  // namespace kelvary::testing
