// kelvary check: walks a practice's configuration the way the application
// will use it and reports what would fail in front of a user: search links
// whose table, columns or own statement do not open, multi-selects whose
// tables are missing, stored queries that do not build or open (alone and
// with each template), data tables in no database or with fields that are
// not there. One finding per broken item, so that one fault is told once.
#pragma once

#include "Arguments.h"
#include "Output.h"

namespace kelvary::cli {

int CheckCommand(const Arguments& args, Output& out);

}  // namespace kelvary::cli
