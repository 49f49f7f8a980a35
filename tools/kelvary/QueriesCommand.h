// kelvary queries: the stored queries of a practice and their templates, as
// the query interpreter loads them: ID, name, build method and levels.
#pragma once

#include "Arguments.h"
#include "Output.h"

namespace kelvary::cli {

int QueriesCommand(const Arguments& args, Output& out);

}  // namespace kelvary::cli
