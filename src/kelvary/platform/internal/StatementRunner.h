// StatementRunner: the one way a statement of a connection runs, for
// Recordset::Open and Connection::Execute alike. It alone decides whether
// the shaping layer runs the text (a SHAPE statement) or the driver does
// (anything else, unchanged), and it runs both through the session, so that
// a failure is recorded on the connection in one place.
//
// Called on the thread that uses the connection.
#pragma once

#include <cstdint>
#include <string>

#include "kelvary/platform/internal/Session.h"
#include "kelvary/platform/internal/drivers/Driver.h"
#include "kelvary/platform/internal/shape/ShapeProvider.h"

namespace kelvary::internal {

// RunStatement runs text on the session's driver, fetching at most
// max_records rows (0: all; for a SHAPE statement, of its top level). The
// chapters of a SHAPE statement's rows are made by make_chapter. Starts an
// operation of the session: a failure becomes the connection's errors.
// REQUIRES: session open (otherwise Error 3704, recorded too).
StatementResult RunStatement(Session& session, const std::string& text, int32_t max_records,
                             shape::ChapterMaker& make_chapter);

}  // namespace kelvary::internal
