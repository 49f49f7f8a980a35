// WriteBack: the changes of a recordset read from one table, written to
// that table. Update, AddNew+Update and Delete become UPDATE, INSERT and
// DELETE on the base table (the one table every updatable field names as
// its origin), the row located by its key and, for an update, the original
// values of the changed fields; without the key among the fields, by the
// original values of all the table's fields, refusing when that matches more
// than one row. A statement that changes no row means the row moved under
// us: Error 3640, the fields that moved marked. An inserted row is read back
// by its key, so that the values the database supplied (defaults, generated
// keys) are what the recordset holds. A constraint the database enforces
// marks the fields it names (the driver reads its own messages), or every
// changed field when it names none.
//
// The statement texts are made once per table and set of changed fields
// and kept, so that a run of edits to the same fields reuses the driver's
// prepared statement. The key is asked of the driver on the first write.
//
// A writer serves every recordset over the same columns (the chapters of
// one level share one); it is used on the connection's thread.
#pragma once

#include <memory>
#include <vector>

#include "kelvary/platform/internal/CursorEngine.h"
#include "kelvary/platform/internal/Session.h"

namespace kelvary::internal {

// BaseTableWriter: a RowWriter for rows with the given columns, writing
// through session. Errors of the writes are recorded on the session.
std::shared_ptr<RowWriter> BaseTableWriter(std::shared_ptr<Session> session,
                                           const std::vector<ColumnInfo>& columns);

}  // namespace kelvary::internal
