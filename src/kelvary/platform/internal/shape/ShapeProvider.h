// ShapeProvider: the data-shaping layer's way in. A statement whose first
// word is SHAPE (after blanks, in any case) never reaches a driver as it
// stands: the statement runner (internal/StatementRunner.h) hands it to
// RunShape, which runs each level on the driver and returns the top level's
// rows with their chapters. Everything else goes to the driver unchanged.
//
// RunShape reads the statement (ShapeParser.h), runs each level's command
// once on the driver, groups every child level's rows under their parents
// by the RELATE columns (RelateIndex.h) and appends one chapter column per
// child to the parent rows. A chapter cell holds what the caller's
// ChapterMaker makes of the related rows (a Recordset sharing the level's
// rows with the other chapters of that level), so that the shaping layer
// knows nothing of recordsets.
//
// Called on the thread that uses the connection.
#pragma once

#include <cctype>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kelvary/platform/Text.h"
#include "kelvary/platform/Variant.h"
#include "kelvary/platform/internal/drivers/Driver.h"

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

// ChapterMaker: makes the cell value of one chapter: the rows numbered
// rows (in ascending order) of store, the result of the child level whose
// command is source. store is shared by every chapter of the level and never
// changed.
class ChapterMaker {
 public:
  virtual Variant Chapter(const std::shared_ptr<const RowSet>& store, std::vector<uint32_t> rows,
                          const std::string& source) = 0;

 protected:
  ~ChapterMaker() = default;
};

// RunShape runs the SHAPE statement command on driver: the top level's rows
// (at most max_records of them; 0: all) with a chapter column per child.
// Raises Error on a statement it cannot read or that a level's driver
// rejects.
RowSet RunShape(const std::string& command, DriverConnection& driver, int32_t max_records,
                ChapterMaker& make_chapter);

}  // namespace kelvary::shape
